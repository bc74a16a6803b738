// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cmath>
#include <string>

#include "shell/Common.h"

namespace brelant::platform6 {

/// Percent of a base line byte, -200 to 198, rounded down to whole ones (docs/memory-maps.md, Platform 6).
inline double BaseLinePercent(float byte) {
  return std::floor(byte * 256.0 / 65536 * 400 - 200);
}

/// The byte that does not fall short of the percentage, limited to what a byte holds.
inline float BaseLineByte(double percent) {
  const auto byte = RoundUp(static_cast<float>((percent + 200) / 400 * 65536 / 256));
  return std::clamp(byte, 0.0F, 255.0F);
}

/// The same as texts of a field.
inline std::string BaseLineText(float byte) {
  return NumberText(static_cast<float>(BaseLinePercent(byte)));
}

}  // namespace brelant::platform6
