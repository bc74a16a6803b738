// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace brelant::Functions {

/// Numbers of the safety system: Case words, which tell how a raw value is shown, and logger periods
/// (docs/memory-maps.md, Platforms 8 and 9).

/// Bits 2 to 4 of a Case word: the unit.
inline constexpr std::int32_t kWithoutUnit = 227;
inline constexpr std::int32_t kCelsiusBits = 4;
inline constexpr std::int32_t kFahrenheitBits = 8;

/// The unit of a Case word, such as "C", "ppm" or "w/o"; empty for codes without one.
std::string UnitLetter(std::int32_t caseWord);
/// A raw 16-bit word, signed, as a number in the unit of the Case word, rounded to its decimals.
double RawToDisplay(std::int32_t raw, std::int32_t caseWord);
/// The inverse, a whole number; one that has no room stays at the limit of the type.
std::int32_t DisplayToRaw(double value, std::int32_t caseWord);
/// Rounded to the decimals of the Case word.
double RoundToDecimals(double value, std::int32_t caseWord);
double CelsiusToFahrenheit(double celsius);
double FahrenheitToCelsius(double fahrenheit);

/// The period of a timing code, 0 to 127, in seconds.
std::int32_t LoggerPeriodSeconds(std::int32_t code);
/// The code, with bit 7 set, of the longest period that is not longer than that many minutes; code 0 if
/// there is none.
std::int32_t LoggerCodeForMinutes(int minutes);

/// The index of the first text of the list that is equal, the size of the list if there is none.
int IndexInList(std::span<const std::string_view> list, std::string_view text);

}  // namespace brelant::Functions
