// SPDX-License-Identifier: GPL-3.0-or-later
#include <cstdint>
#include <string_view>

#include "console/script/parser.h"

/// Any line of a script: a command, nothing, or a syntax error.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view line(reinterpret_cast<const char*>(data), size);
  try {
    brelant::script::ParseLine(line);
  } catch (const brelant::script::SyntaxError&) {
    return 0;
  }
  return 0;
}
