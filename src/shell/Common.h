// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace brelant {

/// The value with bit 15 as its sign: 65535 gives -1.
double SignedWord(float value);
/// The value with bit 7 as its sign: 128 gives -128.
float SignedByte(float value);
/// The inverse of SignedWord.
float UnsignedWord(float value);

/// Bits 15 to 8 of the value rounded to nearest (ties to even), negative numbers in two's complement. A value
/// above 65535 becomes 65535 in the caller's variable first.
std::uint8_t HighByte(float& value);
/// Bits 7 to 0 of the same.
std::uint8_t LowByte(float& value);
/// True if the bit of that mask is set in the value rounded to nearest.
bool HasBit(float value, int mask);
/// The bits of the value rounded to nearest, as the low 16 bits of two's complement.
std::uint16_t Bits(float value);
/// The value rounded to nearest, low 8 bits, as it is stored in one byte of the image.
float AsByte(double value);

/// Whole number nearest to the value, ties to the even neighbour.
double Round(double value);
/// Whole part, truncated toward zero.
double Fix(double value);
/// The next whole number above for values above 0, the whole part rounded down for the others.
float RoundUp(float value);

/// Entry i holds the i + 1 low bits set.
constexpr std::array<std::int32_t, 32> FillBitMasks() {
  std::array<std::int32_t, 32> masks{};
  std::uint32_t mask = 0;
  for (auto& entry : masks) {
    mask = mask << 1 | 1U;
    entry = static_cast<std::int32_t>(mask);
  }
  return masks;
}
/// Logical shift right of the 32-bit pattern; bits is 1 to 31.
std::int32_t ShiftRight(std::int32_t value, std::int16_t bits);

/// The number in a text that a user typed: digits, "." or "," as the decimal mark and "-" count, everything
/// else is skipped, and the reading stops at the first character that does not fit. No number gives 0.
float ParseNumber(std::string_view text);

/// The shortest digits that read back the same single, with a decimal point; no exponent from 1e-5 to below
/// 1e15; 0 for negative zero.
std::string NumberText(float value);

}  // namespace brelant
