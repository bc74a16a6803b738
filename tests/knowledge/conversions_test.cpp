// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/knowledge.h"

namespace brelant {
namespace {

using namespace test;

class ConversionsTest : public KnowledgeTest {
 protected:
  void Configure6(int channel, int byte) {
    Attach(kPart6);
    SetEeprom(218 + channel, static_cast<float>(byte));
  }
  void Configure7(int channel, int byte) {
    Attach(kPart7);
    SetEeprom(792 + channel, static_cast<float>(byte));
  }
};

// Configuration bytes: offset 128, divider code x 32, unit code x 4, scale code.
constexpr int kOffset = 128;
constexpr int kThousand = 1;
constexpr int kHundred = 2;
constexpr int kTen = 3;
constexpr int kFahrenheit = 2 * 4;
constexpr int kVolt = 3 * 4;
constexpr int kBy10 = 1 * 32;
constexpr int kBy100Or16 = 2 * 32;
constexpr int kBy163 = 3 * 32;

TEST_F(ConversionsTest, AConfigurationByteWorkedThrough) {
  Configure6(4, 0x8D);
  EXPECT_EQ(info.RawToText(6000, 4, false), "1");
  EXPECT_EQ(info.GetChannelUnit(4), "V");
  ASSERT_EQ(0x8D, kOffset + kVolt + kThousand);
}

TEST_F(ConversionsTest, FahrenheitHasTheDecimalsOfItsScaleAndNoMore) {
  Configure6(4, kFahrenheit + kHundred);
  EXPECT_EQ(info.RawToText(2000, 4, true), "68");     // 20 C
  EXPECT_EQ(info.RawToText(2001, 4, true), "68.02");  // 20.01 C is 68.018
  Configure6(4, kFahrenheit + kTen);
  EXPECT_EQ(info.RawToText(201, 4, true), "68.2");  // 20.1 C is 68.18
}

TEST_F(ConversionsTest, ADivisionIsTruncatedUnlessItsFractionIsKept) {
  Configure6(4, kBy100Or16 + kTen);
  EXPECT_EQ(info.RawToText(1234, 4, true), "1.2");  // 12.34 to 12
  EXPECT_EQ(info.RawToText(1234, 4, true, true), "1.234");
  EXPECT_EQ(info.RawToText(1299, 4, true), "1.2");
}

TEST_F(ConversionsTest, TruncationIsTowardZero) {
  Configure6(4, kOffset + kBy10);
  EXPECT_EQ(info.RawToText(4981, 4, false), "-1");  // -19 / 10
}

TEST_F(ConversionsTest, TheOffsetCountsOnlyWhereItsFlagIsSet) {
  Configure6(4, 0);
  EXPECT_EQ(info.RawToText(6000, 4, false), "6000");
  Configure6(4, kOffset);
  EXPECT_EQ(info.RawToText(6000, 4, false), "1000");
  EXPECT_EQ(info.RawToText(6000, 4, true), "6000");
}

TEST_F(ConversionsTest, Platform7IsSignedAndPlatform6IsNot) {
  Configure7(4, 0);
  EXPECT_EQ(info.RawToText(65535, 4, false), "-1");
  EXPECT_EQ(info.RawToText(32767, 4, false), "32767");
  Configure6(4, 0);
  EXPECT_EQ(info.RawToText(65535, 4, false), "65535");
}

TEST_F(ConversionsTest, Platform7HasItsOwnDivider) {
  Configure7(4, kBy100Or16 + kTen);
  EXPECT_EQ(info.RawToText(1600, 4, false), "10");  // 1600 / 16 / 10
  Configure7(4, kOffset);
  EXPECT_EQ(info.RawToText(6000, 4, false), "6000");
}

TEST_F(ConversionsTest, Platform8IsShownButHasNoWayBack) {
  Attach(kPart8);
  SetEeprom(7960 + 4, kTen);
  EXPECT_EQ(info.RawToText(65531, 4, false), "-0.5");
  EXPECT_EQ(info.TextToRaw("12", 4, false), 0);
}

TEST_F(ConversionsTest, Platform9HasNeither) {
  Attach(kPart9);
  EXPECT_EQ(info.RawToText(100, 4, false), "");
  EXPECT_EQ(info.TextToRaw("12", 4, false), 0);
}

TEST_F(ConversionsTest, ATextIsScaledMultipliedAndOffset) {
  Configure6(4, kOffset + kBy10 + kHundred);
  EXPECT_EQ(info.TextToRaw("1.5", 4, true), 1500);
  EXPECT_EQ(info.TextToRaw("1.5", 4, false), 6500);
  Configure6(4, kBy10 + kHundred);
  EXPECT_EQ(info.TextToRaw("1.5", 4, false), 1500);
}

TEST_F(ConversionsTest, ATextIsReadByItsDigitsPointAndSign) {
  Configure6(4, kTen);
  EXPECT_EQ(info.TextToRaw("12,5 ppm", 4, false), 125);
  EXPECT_EQ(info.TextToRaw("12.5%", 4, false), 125);
  EXPECT_EQ(info.TextToRaw("-3.5 C", 4, false), -35);
  EXPECT_EQ(info.TextToRaw("abc", 4, false), 0);
}

TEST_F(ConversionsTest, TheExactDecimalProductIsTruncated) {
  Configure6(4, kHundred);
  EXPECT_EQ(info.TextToRaw("0.29", 4, false), 29);
  EXPECT_EQ(info.TextToRaw("1.15", 4, false), 115);
  EXPECT_EQ(info.TextToRaw("-0.29", 4, false), -29);
  EXPECT_EQ(info.TextToRaw("0.299", 4, false), 29);
  EXPECT_EQ(info.TextToRaw("-0.299", 4, false), -29);
  Configure6(4, kThousand + kBy163);
  EXPECT_EQ(info.TextToRaw("0.007", 4, false), 1141);  // 7 x 163
}

TEST_F(ConversionsTest, AValueThatIsShownAndReadBackDoesNotCreep) {
  for (const int scale : {0, kThousand, kHundred, kTen}) {
    Configure6(4, scale);
    for (int raw = 0; raw < 30000; raw += 7) {
      const auto value = static_cast<float>(raw);
      ASSERT_EQ(info.TextToRaw(info.RawToText(value, 4, true), 4, true), value) << scale;
    }
  }
}

TEST_F(ConversionsTest, FahrenheitIsReadBackAsCelsius) {
  Configure6(4, kFahrenheit + kHundred);
  EXPECT_EQ(info.TextToRaw("68", 4, true), 2000);
  EXPECT_EQ(info.TextToRaw("32", 4, true), 0);
  EXPECT_EQ(info.TextToRaw("68.5", 4, true), 2027);  // 20.2777... C
  EXPECT_EQ(info.TextToRaw("14", 4, true), -1000);
}

TEST_F(ConversionsTest, Channel13OfPlatform6IsAByte) {
  Attach(kPart6);
  EXPECT_EQ(info.TextToRaw("7", 13, false), 7);
  EXPECT_EQ(info.TextToRaw("258", 13, false), 2);
}

TEST_F(ConversionsTest, ANegativeResultOnPlatform7BecomesAWord) {
  Configure7(4, kTen);
  EXPECT_EQ(info.TextToRaw("-0.1", 4, false), 65535);
  EXPECT_EQ(info.TextToRaw("1.5", 4, false), 15);
  EXPECT_EQ(info.TextToRaw("2", 13, false), 2);
}

struct Typed {
  int type;
  float raw;
  const char* text;
};

TEST_F(ConversionsTest, TheTypesOfPlatform5ToText) {
  for (const auto& [type, raw, text] : {
           Typed{0, 2155, "21.6"},    // 215.5 to the even 216
           Typed{0, 2145, "21.4"},    // 214.5 to the even 214
           Typed{0, -2155, "-21.6"},  //
           Typed{1, 2150, "22"},      // 21.5 to the even 22
           Typed{1, 2250, "22"},      //
           Typed{2, 2000, "68"},      //
           Typed{3, 2250, "72"},      // 72.5 to the even 72
           Typed{4, 800, "800"},      //
           Typed{5, 12345, "12.34"},  // 1234.5 to the even 1234
           Typed{6, 455, "45.5"},     //
           Typed{7, 455, "4.55"},     //
           Typed{8, 455, "45.5"},     //
           Typed{9, 455, "4.55"},     //
           Typed{15, 455, "0.455"},   //
           Typed{10, 455, ""},        //
           Typed{14, 455, ""},        //
       }) {
    AttachTyped(type);
    EXPECT_EQ(info.RawToText(raw, 0, true), text) << type;
    EXPECT_EQ(info.RawToText(raw + 5000, 0, false), text) << type;
  }
}

TEST_F(ConversionsTest, Type5WorkedThrough) {
  AttachTyped(5);
  EXPECT_EQ(info.RawToText(17345, 0, false), "12.34");
}

TEST_F(ConversionsTest, TheTypesOfPlatform5FromText) {
  for (const auto& [type, raw, text] : {
           Typed{0, 2150, "21.5"},
           Typed{1, 2100, "21"},
           Typed{2, 2000, "68"},
           Typed{3, 2000, "68"},
           Typed{4, 800, "800"},
           Typed{5, 12340, "12.34"},
           Typed{6, 455, "45.5"},
           Typed{7, 455, "4.55"},
           Typed{8, 455, "45.5"},
           Typed{9, 455, "4.55"},
           Typed{15, 455, "0.455"},
           Typed{10, 0, "7"},
       }) {
    AttachTyped(type);
    EXPECT_EQ(info.TextToRaw(text, 0, true), raw) << type;
    EXPECT_EQ(info.TextToRaw(text, 0, false), raw + 5000) << type;
  }
}

TEST_F(ConversionsTest, ChannelsAbove3OfPlatform5AreShownAsTheyAre) {
  AttachTyped(0);
  EXPECT_EQ(info.RawToText(5123, 4, false), "5123");
  EXPECT_EQ(info.TextToRaw("12,5", 4, false), 12.5F);
}

}  // namespace
}  // namespace brelant
