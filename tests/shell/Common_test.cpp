// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/Common.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>

#include <gtest/gtest.h>

namespace brelant {
namespace {

TEST(SignedWord, TakesBit15AsTheSign) {
  EXPECT_EQ(SignedWord(65535), -1);
  EXPECT_EQ(SignedWord(32768), -32768);
  EXPECT_EQ(SignedWord(32767), 32767);
  EXPECT_EQ(SignedWord(0), 0);
}

TEST(SignedWord, TestsTheBitOfTheRoundedValueAndKeepsTheFraction) {
  EXPECT_EQ(SignedWord(32767.75F), -32768.25);
  EXPECT_EQ(SignedWord(32767.25F), 32767.25);
}

TEST(SignedByte, TakesBit7AsTheSign) {
  EXPECT_EQ(SignedByte(128), -128);
  EXPECT_EQ(SignedByte(255), -1);
  EXPECT_EQ(SignedByte(127), 127);
  EXPECT_EQ(SignedByte(0), 0);
}

TEST(UnsignedWord, IsTheWayBack) {
  EXPECT_EQ(UnsignedWord(-1), 65535);
  EXPECT_EQ(UnsignedWord(-32768), 32768);
  EXPECT_EQ(UnsignedWord(32767), 32767);
  EXPECT_EQ(UnsignedWord(0), 0);
}

TEST(HighByte, ClampsTheCallersVariable) {
  float value = 70000;
  EXPECT_EQ(HighByte(value), 255);
  EXPECT_EQ(value, 65535);
}

TEST(LowByte, ClampsTheCallersVariable) {
  float value = 65792;  // 257 x 256: its own low byte is 0
  EXPECT_EQ(LowByte(value), 255);
  EXPECT_EQ(value, 65535);
}

TEST(HighAndLowByte, LeaveAVariableInRangeAlone) {
  float value = 4660.25F;  // 0x1234 and a fraction
  EXPECT_EQ(HighByte(value), 0x12);
  EXPECT_EQ(LowByte(value), 0x34);
  EXPECT_EQ(value, 4660.25F);
}

TEST(HighAndLowByte, RoundToNearestWithTiesToEven) {
  float up = 255.5F;  // to 256
  EXPECT_EQ(HighByte(up), 1);
  EXPECT_EQ(LowByte(up), 0);
  float down = 254.5F;  // to 254
  EXPECT_EQ(HighByte(down), 0);
  EXPECT_EQ(LowByte(down), 254);
  float nearest = 511.75F;  // to 512
  EXPECT_EQ(HighByte(nearest), 2);
  EXPECT_EQ(LowByte(nearest), 0);
}

TEST(HighAndLowByte, NegativeNumbersAreTwosComplement) {
  float value = -2;
  EXPECT_EQ(HighByte(value), 255);
  EXPECT_EQ(LowByte(value), 254);
  EXPECT_EQ(value, -2);
  float fraction = -2.5F;  // to -2
  EXPECT_EQ(LowByte(fraction), 254);
}

TEST(Bits, AreTheLow16OfTheRoundedValue) {
  EXPECT_EQ(Bits(-1), 65535);
  EXPECT_EQ(Bits(65536 + 7), 7);
  EXPECT_EQ(Bits(2.5F), 2);
  EXPECT_EQ(Bits(3.5F), 4);
}

TEST(HasBit, LooksAtTheRoundedValue) {
  EXPECT_TRUE(HasBit(4, 4));
  EXPECT_FALSE(HasBit(3, 4));
  EXPECT_TRUE(HasBit(3.5F, 4));
  EXPECT_FALSE(HasBit(2.5F, 1));
  EXPECT_TRUE(HasBit(-1, 0x8000));
}

TEST(AsByte, KeepsTheLowEightBits) {
  EXPECT_EQ(AsByte(256 + 13), 13);
  EXPECT_EQ(AsByte(-1), 255);
  EXPECT_EQ(AsByte(12.5), 12);
  EXPECT_EQ(AsByte(255), 255);
}

TEST(Round, TakesTheEvenNeighbourInATie) {
  EXPECT_EQ(Round(2.5), 2);
  EXPECT_EQ(Round(3.5), 4);
  EXPECT_EQ(Round(-2.5), -2);
  EXPECT_EQ(Round(1234.5), 1234);
  EXPECT_EQ(Round(2.6), 3);
}

TEST(Fix, TruncatesTowardZero) {
  EXPECT_EQ(Fix(2.9), 2);
  EXPECT_EQ(Fix(-2.9), -2);
}

TEST(RoundUp, GoesToTheNextWholeNumberOnlyAboveZero) {
  EXPECT_EQ(RoundUp(2.1F), 3);
  EXPECT_EQ(RoundUp(2), 2);
  EXPECT_EQ(RoundUp(-2.1F), -3);
  EXPECT_EQ(RoundUp(-2), -2);
  EXPECT_EQ(RoundUp(0), 0);
  EXPECT_EQ(RoundUp(0.001F), 1);
}

TEST(FillBitMasks, EntryHoldsOneBitMoreThanItsIndex) {
  const auto masks = FillBitMasks();
  EXPECT_EQ(masks.size(), 32U);
  EXPECT_EQ(masks[0], 1);
  EXPECT_EQ(masks[7], 255);
  EXPECT_EQ(masks[30], 2147483647);
  EXPECT_EQ(masks[31], -1);
}

TEST(ShiftRight, DoesNotSpreadTheSign) {
  EXPECT_EQ(ShiftRight(-1, 8), 16777215);
  EXPECT_EQ(ShiftRight(-1, 1), 2147483647);
  EXPECT_EQ(ShiftRight(-1, 31), 1);
  EXPECT_EQ(ShiftRight(1024, 3), 128);
}

TEST(ParseNumber, TakesEitherDecimalMark) {
  EXPECT_EQ(ParseNumber("12,5 ppm"), 12.5F);
  EXPECT_EQ(ParseNumber("12.5"), 12.5F);
  EXPECT_EQ(ParseNumber(",5"), 0.5F);
  EXPECT_EQ(ParseNumber("5,"), 5);
}

TEST(ParseNumber, SkipsWhatIsNoPartOfANumber) {
  EXPECT_EQ(ParseNumber("CO2 4"), 24);
  EXPECT_EQ(ParseNumber("1 000"), 1000);
  EXPECT_EQ(ParseNumber("1e3"), 13);
  EXPECT_EQ(ParseNumber("+7"), 7);
  EXPECT_EQ(ParseNumber("0x10"), 10);
}

TEST(ParseNumber, StopsAtTheFirstCharacterThatDoesNotFit) {
  EXPECT_EQ(ParseNumber("1.2.3"), 1.2F);
  EXPECT_EQ(ParseNumber("12-3"), 12);
  EXPECT_EQ(ParseNumber("--5"), 0);
}

TEST(ParseNumber, NothingIsZero) {
  EXPECT_EQ(ParseNumber("abc"), 0);
  EXPECT_EQ(ParseNumber(""), 0);
  EXPECT_EQ(ParseNumber("-"), 0);
  EXPECT_EQ(ParseNumber("."), 0);
}

TEST(ParseNumber, TakesTheSign) {
  EXPECT_EQ(ParseNumber("-3.5"), -3.5F);
  EXPECT_EQ(ParseNumber(" - 3 "), -3);
}

TEST(ParseNumber, OutlastsAnyLength) {
  EXPECT_TRUE(std::isfinite(ParseNumber(std::string(5000, '9'))));
  EXPECT_EQ(ParseNumber("0." + std::string(5000, '0') + "1"), 0);
}

TEST(NumberText, HasTheShortestDigits) {
  EXPECT_EQ(NumberText(0.1F), "0.1");
  EXPECT_EQ(NumberText(12.34F), "12.34");
  EXPECT_EQ(NumberText(-3.5F), "-3.5");
  EXPECT_EQ(NumberText(1.0F / 3), "0.33333334");
  EXPECT_EQ(NumberText(16777216), "16777216");
}

TEST(NumberText, HasNoTrailingZeroAndNoNegativeZero) {
  EXPECT_EQ(NumberText(21), "21");
  EXPECT_EQ(NumberText(0), "0");
  EXPECT_EQ(NumberText(-0.0F), "0");
}

TEST(NumberText, HasNoExponentInTheMiddleOfTheRange) {
  EXPECT_EQ(NumberText(1e-5F), "0.00001");
  EXPECT_EQ(NumberText(1e10F), "10000000000");
  EXPECT_EQ(NumberText(9e14F), "900000000000000");
}

TEST(NumberText, HasAnExponentBeyond) {
  EXPECT_NE(NumberText(1e15F).find_first_of("eE"), std::string::npos);
  EXPECT_NE(NumberText(9e-6F).find_first_of("eE"), std::string::npos);
}

/// The shortest digits by trying one more after the other.
std::string ShortestByTrial(float value) {
  std::array<char, 64> text{};
  int digits = 0;
  do {
    std::snprintf(text.data(), text.size(), "%.*e", digits++, static_cast<double>(value));
  } while (std::strtof(text.data(), nullptr) != value);
  std::string number(text.data());
  const auto mark = number.find('e');
  const int exponent = std::atoi(number.c_str() + mark + 1);
  const bool negative = number.front() == '-';
  std::string plain;
  for (const char c : number.substr(0, mark)) {
    if (c >= '0' && c <= '9') plain += c;
  }
  const auto size = static_cast<int>(plain.size());
  if (exponent < 0) {
    plain = "0." + std::string(static_cast<std::size_t>(-exponent - 1), '0') + plain;
  } else if (exponent + 1 >= size) {
    plain += std::string(static_cast<std::size_t>(exponent + 1 - size), '0');
  } else {
    plain.insert(static_cast<std::size_t>(exponent) + 1, ".");
  }
  return (negative ? "-" : "") + plain;
}

TEST(NumberText, AgreesWithTheShortestDigitsFoundByTrial) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> magnitude(-4.9, 14.9);
  for (int i = 0; i < 2000; ++i) {
    const auto value = static_cast<float>(std::pow(10.0, magnitude(random)) * (i % 2 == 0 ? 1 : -1));
    ASSERT_EQ(NumberText(value), ShortestByTrial(value)) << i;
  }
}

TEST(NumberText, ReadsBackTheSame) {
  for (const float value : {1e-30F, 3.4e38F, 1e15F, 2.5e-6F, -7e20F}) {
    EXPECT_EQ(std::strtof(NumberText(value).c_str(), nullptr), value);
  }
}

}  // namespace
}  // namespace brelant
