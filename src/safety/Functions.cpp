// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/Functions.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "shell/Common.h"

namespace brelant::Functions {

namespace {

constexpr int kTimingFlag = 128;

std::size_t Field(std::int32_t word, int shift, std::uint32_t mask) {
  return static_cast<std::uint32_t>(word) >> shift & mask;
}

struct Decimals {
  int count;
  double divisor;
};
Decimals DecimalsOf(std::int32_t caseWord) {
  static constexpr std::array<Decimals, 4> kDecimals{{{0, 1}, {0, 1}, {2, 100}, {1, 10}}};
  return kDecimals.at(Field(caseWord, 0, 3));
}

double ExtraDivisorOf(std::int32_t caseWord) {
  static constexpr std::array<double, 4> kDivisors{1, 10, 16375, 1};
  return kDivisors.at(Field(caseWord, 5, 3));
}

}  // namespace

std::string UnitLetter(std::int32_t caseWord) {
  static constexpr std::array<const char*, 8> kUnits{"w/o", "C", "F", "V", "ppm", "%", "", ""};
  return kUnits.at(Field(caseWord, 2, 7));
}

double RawToDisplay(std::int32_t raw, std::int32_t caseWord) {
  // A word that was read as a signed one is negative already.
  const auto word = static_cast<std::uint16_t>(raw);
  double value = SignedWord(word) / ExtraDivisorOf(caseWord) / DecimalsOf(caseWord).divisor;
  if (UnitLetter(caseWord) == "F") value = CelsiusToFahrenheit(value);
  return RoundToDecimals(value, caseWord);
}

std::int32_t DisplayToRaw(double value, std::int32_t caseWord) {
  if (UnitLetter(caseWord) == "F") value = FahrenheitToCelsius(value);
  const double raw = Round(value * ExtraDivisorOf(caseWord) * DecimalsOf(caseWord).divisor);
  using Limits = std::numeric_limits<std::int32_t>;
  return static_cast<std::int32_t>(std::clamp<double>(raw, Limits::min(), Limits::max()));
}

double RoundToDecimals(double value, std::int32_t caseWord) {
  const double scale = std::pow(10, DecimalsOf(caseWord).count);
  return Round(value * scale) / scale;
}

double CelsiusToFahrenheit(double celsius) {
  return 9.0 / 5 * celsius + 32;
}

double FahrenheitToCelsius(double fahrenheit) {
  return (fahrenheit - 32) * 5 / 9;
}

std::int32_t LoggerPeriodSeconds(std::int32_t code) {
  const auto high = static_cast<int>(Field(code, 4, 15));
  const auto low = static_cast<int>(Field(code, 0, 15));
  const int exponent = 2 * high + 1 + (low < 8 ? 0 : 1);
  return static_cast<std::int32_t>(Round(std::ldexp((low % 8 + 8) / 16.0 * 2, exponent)));
}

std::int32_t LoggerCodeForMinutes(int minutes) {
  constexpr double kMinute = 60;
  int code = 0;
  while (code < kTimingFlag && LoggerPeriodSeconds(code) / kMinute <= minutes) ++code;
  return std::max(code - 1, 0) | kTimingFlag;
}

int IndexInList(std::span<const std::string_view> list, std::string_view text) {
  return static_cast<int>(std::find(list.begin(), list.end(), text) - list.begin());
}

}  // namespace brelant::Functions
