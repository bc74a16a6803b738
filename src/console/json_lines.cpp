// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/json_lines.h"

#include <nlohmann/json.hpp>
#include <ostream>

namespace brelant {

void JsonLines::Print(const Json& json) {
  out_ << json.dump(-1, ' ', false, Json::error_handler_t::replace) << std::endl;
}

}  // namespace brelant
