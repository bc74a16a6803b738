// SPDX-License-Identifier: GPL-3.0-or-later
#include "comm/platform_rule.h"

namespace brelant {

namespace {

int Group(std::uint8_t part) {
  return (part & 96) / 32;
}
int Member(std::uint8_t part) {
  return (part & 24) / 8;
}

}  // namespace

std::uint8_t PlatformOfPart(std::uint8_t part) {
  switch (Group(part)) {
    case 3:
      return 5;
    case 2:
      return Member(part) == 3 ? 6 : Member(part) == 2 ? 61 : 0;
    case 1:
      return Member(part) == 1 ? 8 : 7;
    default:
      return part == 154 ? 9 : 0;
  }
}

std::uint8_t ProtocolGenerationOfPart(std::uint8_t part) {
  switch (PlatformOfPart(part)) {
    case 5:
      return Member(part) == 0 ? 2 : 1;
    case 6:
      return 1;
    case 61:
    case 7:
      return 2;
    default:
      return 0;
  }
}

}  // namespace brelant
