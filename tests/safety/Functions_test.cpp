// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/Functions.h"

#include <array>
#include <cstdlib>
#include <limits>

#include <gtest/gtest.h>

namespace brelant::Functions {
namespace {

constexpr int kCaseWords = 128;

/// A Case word by its three fields.
constexpr std::int32_t CaseWord(int decimals, int unit, int extra) {
  return decimals | unit << 2 | extra << 5;
}

constexpr int kCelsius = 1;
constexpr int kFahrenheit = 2;
constexpr int kPpm = 4;

/// A number as it is, without a float.
struct Fraction {
  std::int64_t top;
  std::int64_t bottom;
};

/// Halves go to the even neighbour. `bottom` is above 0.
std::int64_t Nearest(const Fraction& number) {
  const auto down = number.top / number.bottom - (number.top % number.bottom < 0 ? 1 : 0);
  const auto rest = 2 * (number.top - down * number.bottom);
  if (rest == number.bottom) return down % 2 == 0 ? down : down + 1;
  return rest > number.bottom ? down + 1 : down;
}

bool IsHalf(const Fraction& number) {
  return number.top % number.bottom != 0 && 2 * number.top % number.bottom == 0;
}

struct Scale {
  std::int64_t divisor;
  /// Ten to the number of decimals.
  std::int64_t grains;
};
Scale ScaleOf(int caseWord) {
  constexpr std::array<std::int64_t, 4> kDivisors{1, 1, 100, 10};
  constexpr std::array<std::int64_t, 4> kExtra{1, 10, 16375, 1};
  const auto code = static_cast<std::size_t>(caseWord % 4);
  return {kDivisors.at(code) * kExtra.at(static_cast<std::size_t>(caseWord / 32)), kDivisors.at(code)};
}
bool IsFahrenheit(int caseWord) {
  return caseWord / 4 % 8 == kFahrenheit;
}

/// What a raw value shows, in grains of the last decimal.
Fraction Shown(std::int64_t raw, int caseWord) {
  const auto scale = ScaleOf(caseWord);
  if (!IsFahrenheit(caseWord)) return {raw * scale.grains, scale.divisor};
  return {(9 * raw + 160 * scale.divisor) * scale.grains, 5 * scale.divisor};
}

TEST(UnitLetter, IsThatOfBits2To4) {
  constexpr std::array<const char*, 8> kUnits{"w/o", "C", "F", "V", "ppm", "%", "", ""};
  for (int word = 0; word < kCaseWords; ++word) {
    EXPECT_EQ(UnitLetter(word), kUnits.at(static_cast<std::size_t>(word >> 2 & 7))) << word;
  }
  EXPECT_EQ(UnitLetter(0x1234), "%");  // 0x34 is 0 01 101 00
}

TEST(CelsiusToFahrenheit, Is9Fifths) {
  EXPECT_DOUBLE_EQ(CelsiusToFahrenheit(0), 32);
  EXPECT_DOUBLE_EQ(CelsiusToFahrenheit(100), 212);
  EXPECT_DOUBLE_EQ(CelsiusToFahrenheit(-40), -40);
  EXPECT_DOUBLE_EQ(CelsiusToFahrenheit(21.5), 70.7);
}

TEST(FahrenheitToCelsius, IsTheWayBack) {
  EXPECT_DOUBLE_EQ(FahrenheitToCelsius(32), 0);
  EXPECT_DOUBLE_EQ(FahrenheitToCelsius(212), 100);
  EXPECT_DOUBLE_EQ(FahrenheitToCelsius(-40), -40);
  EXPECT_NEAR(FahrenheitToCelsius(70.7), 21.5, 1e-12);
}

TEST(RawToDisplay, DividesByTheDecimals) {
  EXPECT_DOUBLE_EQ(RawToDisplay(1234, CaseWord(0, kPpm, 0)), 1234);
  EXPECT_DOUBLE_EQ(RawToDisplay(1234, CaseWord(1, kPpm, 0)), 1234);
  EXPECT_DOUBLE_EQ(RawToDisplay(1234, CaseWord(2, kCelsius, 0)), 12.34);
  EXPECT_DOUBLE_EQ(RawToDisplay(1234, CaseWord(3, kCelsius, 0)), 123.4);
}

TEST(RawToDisplay, DividesByTheExtraScale) {
  EXPECT_DOUBLE_EQ(RawToDisplay(1234, CaseWord(3, kCelsius, 1)), 12.3);
  EXPECT_DOUBLE_EQ(RawToDisplay(32750, CaseWord(0, kPpm, 2)), 2);
  EXPECT_DOUBLE_EQ(RawToDisplay(1234, CaseWord(3, kCelsius, 3)), 123.4);
}

TEST(RawToDisplay, ConvertsToFahrenheitBehindTheScale) {
  // 21.50 degrees Celsius.
  EXPECT_DOUBLE_EQ(RawToDisplay(2150, CaseWord(2, kFahrenheit, 0)), 70.7);
  // 215 / 10 / 10 = 2.15 degrees Celsius, 35.87 Fahrenheit.
  EXPECT_DOUBLE_EQ(RawToDisplay(215, CaseWord(3, kFahrenheit, 1)), 35.9);
}

TEST(RawToDisplay, TakesBit15OfAWordAsTheSign) {
  EXPECT_DOUBLE_EQ(RawToDisplay(65535, CaseWord(0, kPpm, 0)), -1);
  EXPECT_DOUBLE_EQ(RawToDisplay(32768, CaseWord(0, kPpm, 0)), -32768);
  EXPECT_DOUBLE_EQ(RawToDisplay(32767, CaseWord(0, kPpm, 0)), 32767);
  // -5.50 degrees Celsius.
  EXPECT_DOUBLE_EQ(RawToDisplay(64986, CaseWord(2, kCelsius, 0)), -5.5);
  EXPECT_DOUBLE_EQ(RawToDisplay(64986, CaseWord(2, kFahrenheit, 0)), 22.1);
}

TEST(RawToDisplay, TakesAValueThatIsNegativeAlreadyAsItIs) {
  EXPECT_DOUBLE_EQ(RawToDisplay(-1, CaseWord(0, kPpm, 0)), -1);
  EXPECT_DOUBLE_EQ(RawToDisplay(-550, CaseWord(2, kCelsius, 0)), -5.5);
  for (int raw = -32768; raw < 0; raw += 97) {
    EXPECT_EQ(RawToDisplay(raw, CaseWord(2, kFahrenheit, 0)),
              RawToDisplay(raw + 65536, CaseWord(2, kFahrenheit, 0)))
        << raw;
  }
}

TEST(RawToDisplay, IsTheExactNumberRoundedForEveryCaseWord) {
  for (int word = 0; word < kCaseWords; ++word) {
    const auto grains = static_cast<double>(ScaleOf(word).grains);
    for (int raw = -32768; raw <= 32767; raw += 13) {
      const auto exact = Shown(raw, word);
      const double shown = RawToDisplay(raw & 0xFFFF, word);
      if (IsHalf(exact)) {
        // A double is not exact enough to tell to which side.
        const auto half = static_cast<double>(exact.top) / static_cast<double>(exact.bottom);
        ASSERT_NEAR(shown * grains, half, 0.5 + 1e-9) << "raw " << raw << ", Case " << word;
      } else {
        const auto expected = static_cast<double>(Nearest(exact)) / grains;
        ASSERT_DOUBLE_EQ(shown, expected) << "raw " << raw << ", Case " << word;
      }
    }
  }
}

TEST(RawToDisplay, LooksAtNothingAboveBit6OfTheCaseWord) {
  for (int word = 0; word < kCaseWords; ++word) {
    EXPECT_EQ(RawToDisplay(12345, word | 0xFF80), RawToDisplay(12345, word)) << word;
    EXPECT_EQ(DisplayToRaw(1.5, word | 0xFF80), DisplayToRaw(1.5, word)) << word;
  }
}

TEST(DisplayToRaw, MultipliesByBothDivisors) {
  EXPECT_EQ(DisplayToRaw(1234, CaseWord(0, kPpm, 0)), 1234);
  EXPECT_EQ(DisplayToRaw(1234, CaseWord(1, kPpm, 0)), 1234);
  EXPECT_EQ(DisplayToRaw(12.34, CaseWord(2, kCelsius, 0)), 1234);
  EXPECT_EQ(DisplayToRaw(12.34, CaseWord(3, kCelsius, 0)), 123);
  EXPECT_EQ(DisplayToRaw(12.34, CaseWord(3, kCelsius, 1)), 1234);
  EXPECT_EQ(DisplayToRaw(2, CaseWord(0, kPpm, 2)), 32750);
  EXPECT_EQ(DisplayToRaw(12.34, CaseWord(3, kCelsius, 3)), 123);
}

TEST(DisplayToRaw, ConvertsFromFahrenheitBeforeTheScale) {
  EXPECT_EQ(DisplayToRaw(70.7, CaseWord(2, kFahrenheit, 0)), 2150);
  EXPECT_EQ(DisplayToRaw(32, CaseWord(2, kFahrenheit, 0)), 0);
  EXPECT_EQ(DisplayToRaw(-40, CaseWord(3, kFahrenheit, 1)), -4000);
}

TEST(DisplayToRaw, RoundsHalvesToTheEvenNeighbourAndKeepsTheSign) {
  EXPECT_EQ(DisplayToRaw(0.5, CaseWord(0, kPpm, 0)), 0);
  EXPECT_EQ(DisplayToRaw(1.5, CaseWord(0, kPpm, 0)), 2);
  EXPECT_EQ(DisplayToRaw(2.5, CaseWord(0, kPpm, 0)), 2);
  EXPECT_EQ(DisplayToRaw(-1.5, CaseWord(0, kPpm, 0)), -2);
  EXPECT_EQ(DisplayToRaw(-5.5, CaseWord(2, kCelsius, 0)), -550);
}

TEST(DisplayToRaw, IsTheInverseWhereNoGrainIsLost) {
  for (int word = 0; word < kCaseWords; ++word) {
    const int extra = word / 32;
    if (extra == 1 || extra == 2) continue;
    for (int raw = -32768; raw <= 32767; raw += 7) {
      ASSERT_EQ(DisplayToRaw(RawToDisplay(raw & 0xFFFF, word), word), raw) << "Case " << word;
    }
  }
}

TEST(DisplayToRaw, ComesBackWithinHalfAGrainWhereTheExtraScaleTakesDigits) {
  for (int word = 0; word < kCaseWords; ++word) {
    const auto scale = ScaleOf(word);
    // Half a grain of what is shown, and the last rounding.
    const auto most = scale.divisor / scale.grains / 2 + 1;
    for (int raw = -32768; raw <= 32767; raw += 101) {
      const auto back = DisplayToRaw(RawToDisplay(raw & 0xFFFF, word), word);
      ASSERT_LE(std::abs(back - raw), most) << "raw " << raw << ", Case " << word;
    }
  }
}

TEST(DisplayToRaw, ANumberThatNoLongHoldsStaysTooLarge) {
  constexpr auto kCase = CaseWord(2, kCelsius, 2);
  EXPECT_EQ(DisplayToRaw(1e12, kCase), std::numeric_limits<std::int32_t>::max());
  EXPECT_EQ(DisplayToRaw(-1e12, kCase), std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(DisplayToRaw(std::numeric_limits<float>::infinity(), kCase),
            std::numeric_limits<std::int32_t>::max());
}

/// 2^(2h + 1 + m) (f + 8) / 16 x 2, as a fraction.
Fraction Period(int code) {
  const int high = code / 16;
  const int low = code % 16;
  const int exponent = 2 * high + 1 + (low < 8 ? 0 : 1);
  return {(std::int64_t{1} << exponent) * (low % 8 + 8) * 2, 16};
}

TEST(LoggerPeriodSeconds, IsTheExactPeriodRoundedForEveryCode) {
  for (int code = 0; code < 128; ++code) EXPECT_EQ(LoggerPeriodSeconds(code), Nearest(Period(code))) << code;
}

TEST(LoggerPeriodSeconds, BeginsAt2SecondsAndGrowsFourfoldEach16Codes) {
  EXPECT_EQ(LoggerPeriodSeconds(0), 2);
  EXPECT_EQ(LoggerPeriodSeconds(8), 4);
  EXPECT_EQ(LoggerPeriodSeconds(0x10), 8);
  EXPECT_EQ(LoggerPeriodSeconds(0x70), 32768);
  EXPECT_EQ(LoggerPeriodSeconds(0x7F), 122880);  // 2^16 x 15 / 16 x 2
}

TEST(LoggerPeriodSeconds, RoundsHalvesToTheEvenNeighbour) {
  EXPECT_EQ(LoggerPeriodSeconds(2), 2);    // 2.5
  EXPECT_EQ(LoggerPeriodSeconds(6), 4);    // 3.5
  EXPECT_EQ(LoggerPeriodSeconds(9), 4);    // 4.5
  EXPECT_EQ(LoggerPeriodSeconds(11), 6);   // 5.5
  EXPECT_EQ(LoggerPeriodSeconds(13), 6);   // 6.5
  EXPECT_EQ(LoggerPeriodSeconds(15), 8);   // 7.5
  EXPECT_EQ(LoggerPeriodSeconds(1), 2);    // 2.25
  EXPECT_EQ(LoggerPeriodSeconds(3), 3);    // 2.75
  EXPECT_EQ(LoggerPeriodSeconds(17), 9);   // 9
  EXPECT_EQ(LoggerPeriodSeconds(25), 18);  // 18
}

TEST(LoggerCodeForMinutes, Is128ForMinutesThatNoPeriodFits) {
  EXPECT_EQ(LoggerCodeForMinutes(0), 128);
  EXPECT_EQ(LoggerCodeForMinutes(-1), 128);
  EXPECT_EQ(LoggerCodeForMinutes(-32768), 128);
}

TEST(LoggerCodeForMinutes, TakesAPeriodThatIsExactlyThoseMinutes) {
  // 60 s: 2^5 x 15 / 8. 120 s: twice that, which the upper half of the codes of the same h has.
  EXPECT_EQ(LoggerCodeForMinutes(1), 128 + 0x27);
  EXPECT_EQ(LoggerCodeForMinutes(2), 128 + 0x2F);
  EXPECT_EQ(LoggerCodeForMinutes(4), 128 + 0x37);
}

TEST(LoggerCodeForMinutes, IsTheLastCodeForMinutesAboveAllPeriods) {
  EXPECT_EQ(LoggerCodeForMinutes(2047), 128 + 0x7E);  // 122880 s are 2048 minutes
  EXPECT_EQ(LoggerCodeForMinutes(2048), 255);
  EXPECT_EQ(LoggerCodeForMinutes(32767), 255);
}

TEST(LoggerCodeForMinutes, IsTheLongestPeriodThatFitsForEveryMinute) {
  for (int minutes = 1; minutes <= 2100; ++minutes) {
    int code = 0;
    for (int each = 0; each < 128; ++each) {
      if (Nearest(Period(each)) <= 60 * std::int64_t{minutes}) code = each;
    }
    ASSERT_EQ(LoggerCodeForMinutes(minutes), code + 128) << minutes;
  }
}

TEST(IndexInList, IsTheFirstEqualEntry) {
  constexpr std::array<std::string_view, 5> kList{"", "CO2", "TEMP 1", "CO2", "temp 1"};
  EXPECT_EQ(IndexInList(kList, "CO2"), 1);
  EXPECT_EQ(IndexInList(kList, "TEMP 1"), 2);
  EXPECT_EQ(IndexInList(kList, ""), 0);
}

TEST(IndexInList, MindsTheCase) {
  constexpr std::array<std::string_view, 2> kList{"TEMP 1", "temp 1"};
  EXPECT_EQ(IndexInList(kList, "temp 1"), 1);
  EXPECT_EQ(IndexInList(kList, "Temp 1"), 2);
}

TEST(IndexInList, IsOneBehindTheLastWhereThereIsNone) {
  constexpr std::array<std::string_view, 3> kList{"a", "b", "c"};
  EXPECT_EQ(IndexInList(kList, "d"), 3);
  EXPECT_EQ(IndexInList(kList, "ab"), 3);
  EXPECT_EQ(IndexInList({}, "a"), 0);
}

}  // namespace
}  // namespace brelant::Functions
