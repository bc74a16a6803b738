// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/Common.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace brelant {

namespace {

// A value outside the range of a whole number has no bits to speak of; the limits keep the conversion
// defined.
std::int64_t Rounded(double value) {
  if (std::isnan(value)) return 0;
  constexpr double kLimit = 9.0e15;
  return static_cast<std::int64_t>(std::nearbyint(std::clamp(value, -kLimit, kLimit)));
}

std::uint16_t ClampedBits(float& value) {
  if (value > 65535) value = 65535;
  return Bits(value);
}

/// "-1.25e-02" as "-0.0125". The digits stay the shortest ones, which the library's own fixed form of a large
/// number does not keep.
std::string Plain(const std::string& scientific) {
  const auto mark = scientific.find('e');
  const int exponent = std::stoi(scientific.substr(mark + 1));
  std::string digits = scientific.substr(0, mark);
  std::erase(digits, '.');
  const std::string sign = digits.front() == '-' ? "-" : "";
  digits.erase(0, sign.size());
  if (exponent < 0) return sign + "0." + std::string(static_cast<std::size_t>(-exponent - 1), '0') + digits;
  const auto whole = static_cast<std::size_t>(exponent) + 1;
  if (digits.size() <= whole) return sign + digits + std::string(whole - digits.size(), '0');
  return sign + digits.insert(whole, ".");
}

}  // namespace

double SignedWord(float value) {
  return HasBit(value, 0x8000) ? static_cast<double>(value) - 65535 - 1 : static_cast<double>(value);
}

float SignedByte(float value) {
  return HasBit(value, 0x80) ? value - 255 - 1 : value;
}

float UnsignedWord(float value) {
  return value < 0 ? value + 65535 + 1 : value;
}

std::uint8_t HighByte(float& value) {
  return static_cast<std::uint8_t>(ClampedBits(value) >> 8);
}

std::uint8_t LowByte(float& value) {
  return static_cast<std::uint8_t>(ClampedBits(value) & 0xFF);
}

bool HasBit(float value, int mask) {
  return (Rounded(value) & mask) != 0;
}

std::uint16_t Bits(float value) {
  return static_cast<std::uint16_t>(Rounded(value));
}

float AsByte(double value) {
  return static_cast<float>(Rounded(value) & 0xFF);
}

double Round(double value) {
  return std::nearbyint(value);
}

double Fix(double value) {
  return std::trunc(value);
}

float RoundUp(float value) {
  return value > 0 ? std::ceil(value) : std::floor(value);
}

std::int32_t ShiftRight(std::int32_t value, std::int16_t bits) {
  constexpr auto kMasks = FillBitMasks();
  return (value >> bits) & kMasks[static_cast<std::size_t>(31 - bits)];
}

float ParseNumber(std::string_view text) {
  std::string kept;
  for (const char c : text) {
    if (c >= '0' && c <= '9') kept += c;
    if (c == ',' || c == '.') kept += '.';
    if (c == '-') kept += c;
  }
  double value = 0;
  const auto error =
      std::from_chars(kept.data(), kept.data() + kept.size(), value, std::chars_format::fixed).ec;
  if (error == std::errc::result_out_of_range) {
    // from_chars does not say which end of the range was left: a digit before the mark means the upper one.
    value = kept.find_first_of("123456789") < kept.find('.') ? std::numeric_limits<double>::max() : 0;
    if (kept.front() == '-') value = -value;
  }
  constexpr double kLimit = std::numeric_limits<float>::max();
  return static_cast<float>(std::clamp(value, -kLimit, kLimit));
}

std::string NumberText(float value) {
  if (value == 0) return "0";
  std::array<char, 64> buffer{};
  const auto end =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::scientific).ptr;
  std::string text(buffer.data(), end);
  const float size = std::abs(value);
  if (size >= 1e-5F && size < 1e15F) return Plain(text);
  std::replace(text.begin(), text.end(), 'e', 'E');
  return text;
}

}  // namespace brelant
