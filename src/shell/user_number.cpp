// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/user_number.h"

#include "shell/Common.h"

namespace brelant {

std::optional<float> FindNumber(std::string_view text) {
  if (text.find_first_of("0123456789") == std::string_view::npos) return {};
  const float number = ParseNumber(text);
  const bool isLost = number == 0 && text.find_first_of("123456789") != std::string_view::npos;
  return isLost ? std::nullopt : std::optional(number);
}

}  // namespace brelant
