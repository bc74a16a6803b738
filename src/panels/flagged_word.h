// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>

#include "shell/Common.h"

namespace brelant {

/// Two bytes of the image that hold a flag in bit 7 of the first one and a word of 15 bits in the rest.
inline constexpr int kWordFlag = 128;

inline bool FlagOf(std::span<const float> bytes) {
  return HasBit(bytes[0], kWordFlag);
}
inline float WordOf(std::span<const float> bytes) {
  return static_cast<float>((Bits(bytes[0]) & (kWordFlag - 1)) * 256) + bytes[1];
}
inline void StoreWord(std::span<float> bytes, float word, bool flag) {
  bytes[0] = static_cast<float>((HighByte(word) & (kWordFlag - 1)) + (flag ? kWordFlag : 0));
  bytes[1] = LowByte(word);
}

}  // namespace brelant
