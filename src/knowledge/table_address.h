// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>

namespace brelant {

inline constexpr int kTableSize = 34;

/// Where the high byte of a table's entry stands in EepromImage (docs/memory-maps.md, Sensor tables); nothing
/// on a platform without tables.
constexpr std::optional<int> TableAddress(int platform, int table, int entry) {
  const int offset = kTableSize * table + 2 * entry;
  switch (platform) {
    case 5:
      return offset;
    case 6:
    case 61:
      return 308 + offset;
    case 7:
      return 512 + offset;
    default:
      return {};
  }
}

}  // namespace brelant
