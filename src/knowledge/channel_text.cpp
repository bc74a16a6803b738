// SPDX-License-Identifier: GPL-3.0-or-later
#include "knowledge/channel_text.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "shell/Common.h"

namespace brelant {

namespace {

std::string Text(double value) {
  return NumberText(static_cast<float>(value));
}

/// The number that the shortest text of a single stands for.
double DecimalValue(float value) {
  const auto text = NumberText(value);
  double result = 0;
  std::from_chars(text.data(), text.data() + text.size(), result);
  return result;
}

/// A decimal number as digits / 10^places.
struct Decimal {
  std::int64_t digits = 0;
  std::int64_t power = 1;
};

/// False for a number too large or too fine to be computed with exactly.
bool ExactDecimal(float value, Decimal& decimal) {
  constexpr std::size_t kMostDigits = 12;
  auto text = NumberText(value);
  const auto mark = text.find('.');
  if (text.find('E') != std::string::npos || text.size() > kMostDigits) return false;
  if (mark != std::string::npos) {
    for (std::size_t i = mark + 1; i < text.size(); ++i) decimal.power *= 10;
    text.erase(mark, 1);
  }
  return std::from_chars(text.data(), text.data() + text.size(), decimal.digits).ec == std::errc{};
}

}  // namespace

std::string TypedText(float raw, int type) {
  const double value = raw;
  switch (type) {
    case 0:
      return Text(Round(value / 10) / 10);
    case 1:
      return Text(Round(value / 100));
    case 2:
    case 3:
      return Text(Round(value / 100 * 1.8 + 32));
    case 4:
      return Text(value);
    case 5:
      return Text(Round(value / 10) / 100);
    case 6:
    case 8:
      return Text(value / 10);
    case 7:
    case 9:
      return Text(value / 100);
    case 15:
      return Text(value / 1000);
    default:
      return {};
  }
}

float TypedRaw(float typed, int type) {
  const double value = DecimalValue(typed);
  const auto scaled = [&](double factor) { return static_cast<float>(value * factor); };
  switch (type) {
    case 0:
    case 1:
    case 7:
    case 9:
      return scaled(100);
    case 2:
    case 3:
      return static_cast<float>((value - 32) / 1.8 * 100);
    case 4:
      return typed;
    case 5:
    case 15:
      return scaled(1000);
    case 6:
    case 8:
      return scaled(10);
    default:
      return 0;
  }
}

std::string TypedUnit(int type) {
  switch (type) {
    case 0:
    case 1:
      return "C";
    case 2:
    case 3:
      return "F";
    case 4:
      return "ppm";
    case 5:
    case 6:
    case 7:
    case 15:
      return "%";
    case 8:
    case 9:
      return "g/kg";
    default:
      return {};
  }
}

std::string FormattedText(double raw, const ChannelFormat& format, bool keepFraction) {
  if (format.divider == 0 || format.scale == 0) return {};
  double value = raw / format.divider;
  if (!keepFraction) value = Fix(value);
  value /= format.scale;
  if (format.fahrenheit) value = Round((value * 1.8 + 32) * format.scale) / format.scale;
  return Text(value);
}

float FormattedRaw(float value, const ChannelFormat& format) {
  const auto factor = static_cast<std::int64_t>(format.scale * format.divider);
  Decimal decimal;
  if (!ExactDecimal(value, decimal)) {
    const double celsius = format.fahrenheit ? (static_cast<double>(value) - 32) / 1.8 : value;
    return static_cast<float>(Fix(celsius * static_cast<double>(factor)));
  }
  // Whole-number division is the truncation.
  const std::int64_t raw = format.fahrenheit
                               ? (decimal.digits - 32 * decimal.power) * 10 * factor / (18 * decimal.power)
                               : decimal.digits * factor / decimal.power;
  return static_cast<float>(raw);
}

}  // namespace brelant
