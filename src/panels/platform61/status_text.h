// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <string>

#include "shell/Common.h"

namespace brelant::platform61 {

/// The texts of the bits of a status byte that are set, each with a blank behind it; empty if there is
/// nothing to tell (docs/memory-maps.md, Status byte).
inline std::string StatusText(float status) {
  struct Fault {
    int mask;
    const char* text;
  };
  static constexpr std::array<Fault, 7> kFaults{{{1, "FatalError "},
                                                 {4, "Algorithm error "},
                                                 {8, "Output error "},
                                                 {16, "Selfdiagnostic error "},
                                                 {32, "Out of range "},
                                                 {64, "Memory error "},
                                                 {128, "Warming up "}}};
  std::string text;
  for (const auto& fault : kFaults) {
    if (HasBit(status, fault.mask)) text += fault.text;
  }
  return text;
}

}  // namespace brelant::platform61
