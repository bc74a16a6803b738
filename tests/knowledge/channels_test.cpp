// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/knowledge.h"

namespace brelant {
namespace {

using namespace test;
using testing::IsEmpty;

class ChannelsTest : public KnowledgeTest {
 protected:
  /// A platform 6 sensor with these bits of EEPROM 98, and of variant 3 unless told otherwise.
  void Attach6(int installed, float variant = 3) {
    Attach(kPart6);
    SetEeprom(98, static_cast<float>(installed));
    SetEeprom(173, variant);
    SetEeprom(165, 1);
  }
  std::vector<std::string> Names(int count, bool relayNames = false) {
    std::vector<std::string> names;
    for (int i = 0; i < count; ++i) names.push_back(info.GetChannelName(static_cast<float>(i), relayNames));
    return names;
  }
};

TEST_F(ChannelsTest, TheNamesOfPlatform6WithEverythingInstalled) {
  Attach6(127);
  EXPECT_THAT(Names(15),
              testing::ElementsAre("Out 1", "Out 2", "Temp 1", "Temp 2", "AH 1", "AH 2", "RH 1", "RH 2",
                                   "Dtemp", "Out 3", "Out 4", "CO2", "CO", "Error", "Ch 14"));
}

TEST_F(ChannelsTest, TheRelayNamesOfPlatform6) {
  Attach6(127);
  EXPECT_EQ(info.GetChannelName(9, true), "Relay 1");
  EXPECT_EQ(info.GetChannelName(10, true), "Relay 2");
  EXPECT_EQ(info.GetChannelName(0, true), "Out 1");
}

TEST_F(ChannelsTest, Channel10IsCoWhateverNamesAreAskedFor) {
  Attach6(127);
  SetEeprom(90, 1);
  EXPECT_EQ(info.GetChannelName(10, false), "CO");
  EXPECT_EQ(info.GetChannelName(10, true), "CO");
  SetEeprom(90, 2);
  EXPECT_EQ(info.GetChannelName(10, true), "Relay 2");
}

TEST_F(ChannelsTest, WithPart223TheFirstTwoOutputsChangePlaces) {
  Attach6(127);
  bus.KnowPart(223);
  EXPECT_EQ(info.GetChannelName(0, false), "Out 2");
  EXPECT_EQ(info.GetChannelName(1, false), "Out 1");
}

TEST_F(ChannelsTest, OfAPairOfWhichOneIsInstalledBothLoseTheirNumber) {
  const char* names[] = {"Temp", "AH", "RH"};
  for (int pair = 0; pair < 3; ++pair) {
    const auto first = static_cast<float>(2 + 2 * pair);
    for (int half = 0; half < 2; ++half) {
      Attach6(127 & ~(1 << (2 * pair + half)));
      EXPECT_EQ(info.GetChannelName(first, false), names[pair]);
      EXPECT_EQ(info.GetChannelName(first + 1, false), names[pair]);
      EXPECT_EQ(info.IsChannelPresent(first, false, false), half == 1);
      EXPECT_EQ(info.IsChannelPresent(first + 1, false, false), half == 0);
    }
  }
}

TEST_F(ChannelsTest, TheNamesOfPlatform61) {
  Attach(kPart61);
  EXPECT_THAT(Names(16),
              testing::ElementsAre("Ch 0", "Ch 1", "Ch 2", "Ch 3", "Temp", "CO2", "Ch 6", "Ch 7", "Ch 8",
                                   "Ch 9", "Ch 10", "Ch 11", "Ch 12", "Ch 13", "Old 0", "Dtemp"));
}

TEST_F(ChannelsTest, TheNamesOfPlatform7) {
  Attach(kPart7);
  EXPECT_THAT(Names(8), testing::ElementsAre("Ch 0", "Ch 1", "Ch 2", "Ch 3", "Temp", "CO2", "O2", "Ch 7"));
}

TEST_F(ChannelsTest, PlatformsWithoutNames) {
  Attach(kPart8);
  EXPECT_EQ(info.GetChannelName(0, false), "");
  bus.KnowPart(kPart9);
  EXPECT_EQ(info.GetChannelName(0, false), "");
}

TEST_F(ChannelsTest, TheNamesOfPlatform5ComeFromItsDefinition) {
  DefinitionFile definition;
  definition.SetName(0, "Temp");
  definition.SetActive(0, 1);
  definition.SetName(1, "CO2");
  definition.SetActive(1, 0);
  definition.SetName(2, "RH");
  definition.SetActive(2, -1);
  definition.SetName(3, "Out");
  definition.SetActive(3, 7);
  Install(kPart5, definition);
  Attach(kPart5);
  EXPECT_THAT(Names(6), testing::ElementsAre("Temp", "OFF", "OFF", "Out", "OFF", "OFF"));
  EXPECT_TRUE(info.IsChannelPresent(0, false, false));
  EXPECT_FALSE(info.IsChannelPresent(1, false, false));
  EXPECT_FALSE(info.IsChannelPresent(2, false, false));
  EXPECT_TRUE(info.IsChannelPresent(3, false, false));
  EXPECT_FALSE(info.IsChannelPresent(4, false, false));
}

TEST_F(ChannelsTest, WithoutADefinitionThereIsNoName) {
  Attach(kPart5);
  EXPECT_EQ(info.GetChannelName(0, false), "");
  EXPECT_THAT(session.LastError, testing::StartsWith("Can't find file: "));
}

TEST_F(ChannelsTest, WhatIsInstalledOnPlatform6) {
  for (int bit = 0; bit < 7; ++bit) {
    Attach6(1 << bit);
    for (int channel = 2; channel <= 8; ++channel) {
      EXPECT_EQ(info.IsChannelPresent(static_cast<float>(channel), false, false), channel == bit + 2);
    }
  }
}

TEST_F(ChannelsTest, TheGasChannelsOfPlatform6ArePresentWhenTheirBitIsClear) {
  Attach6(0);
  SetEeprom(158, 0);
  EXPECT_TRUE(info.IsChannelPresent(11, false, false));
  EXPECT_TRUE(info.IsChannelPresent(12, false, false));
  SetEeprom(158, 2);
  EXPECT_FALSE(info.IsChannelPresent(11, false, false));
  EXPECT_TRUE(info.IsChannelPresent(12, false, false));
  SetEeprom(158, 4);
  EXPECT_TRUE(info.IsChannelPresent(11, false, false));
  EXPECT_FALSE(info.IsChannelPresent(12, false, false));
}

TEST_F(ChannelsTest, TheErrorChannelIsAlwaysThereAndTheOutputsUnlessHidden) {
  Attach6(127);
  EXPECT_TRUE(info.IsChannelPresent(13, true, true));
  for (const float output : {0.0F, 1.0F, 9.0F, 10.0F}) {
    EXPECT_TRUE(info.IsChannelPresent(output, false, false)) << output;
    EXPECT_FALSE(info.IsChannelPresent(output, false, true)) << output;
  }
  EXPECT_FALSE(info.IsChannelPresent(14, false, false));
}

TEST_F(ChannelsTest, DtempCanBeHidden) {
  Attach6(127);
  EXPECT_TRUE(info.IsChannelPresent(8, false, false));
  EXPECT_FALSE(info.IsChannelPresent(8, true, false));
}

TEST_F(ChannelsTest, Variant1HasNoThirdAndFourthOutput) {
  Attach6(127, 1);
  EXPECT_FALSE(info.IsChannelPresent(9, false, false));
  EXPECT_FALSE(info.IsChannelPresent(10, false, false));
  EXPECT_TRUE(info.IsChannelPresent(0, false, false));
}

TEST_F(ChannelsTest, Variant2MeasuresCoOnItsTenthChannel) {
  Attach6(127);
  SetEeprom(90, 1);
  ASSERT_EQ(info.GetProductVariant(), 2);
  EXPECT_FALSE(info.IsChannelPresent(12, false, false));
  EXPECT_FALSE(info.IsChannelPresent(2, false, false));
  EXPECT_TRUE(info.IsChannelPresent(10, false, true));
  EXPECT_TRUE(info.IsChannelPresent(10, false, false));
  EXPECT_FALSE(info.IsChannelPresent(9, false, true));
}

TEST_F(ChannelsTest, TheOtherPlatformsDoNotKnowPresence) {
  Attach(kPart61);
  EXPECT_FALSE(info.IsChannelPresent(5, false, false));
  EXPECT_EQ(session.LastError, "Ej klart");
  session.LastError.clear();
  Attach(kPart7);
  EXPECT_FALSE(info.IsChannelPresent(5, false, false));
  EXPECT_EQ(session.LastError, "");
}

TEST_F(ChannelsTest, TheScaleCodesHaveTheirOddOrder) {
  const float scales[] = {1, 1000, 100, 10};
  for (int code = 0; code < 4; ++code) {
    Attach(kPart6);
    SetEeprom(218 + 11, static_cast<float>(0xFC | code));
    EXPECT_EQ(info.GetChannelScale(11), scales[code]);
    Attach(kPart7);
    SetEeprom(792 + 5, static_cast<float>(code));
    EXPECT_EQ(info.GetChannelScale(5), scales[code]);
    Attach(kPart8);
    SetEeprom(7960 + 3, static_cast<float>(code));
    EXPECT_EQ(info.GetChannelScale(3), scales[code]);
  }
}

TEST_F(ChannelsTest, TheDividersDifferInOne) {
  const int on6[] = {1, 10, 100, 163};
  const int on7[] = {1, 10, 16, 163};
  for (int code = 0; code < 4; ++code) {
    Attach(kPart61);
    SetEeprom(218 + 5, static_cast<float>(0x9F | code << 5));
    EXPECT_EQ(info.GetChannelDivider(5), on6[code]);
    Attach(kPart7);
    SetEeprom(792 + 5, static_cast<float>(code << 5));
    EXPECT_EQ(info.GetChannelDivider(5), on7[code]);
    Attach(kPart8);
    SetEeprom(7960 + 5, static_cast<float>(code << 5));
    EXPECT_EQ(info.GetChannelDivider(5), on7[code]);
  }
}

TEST_F(ChannelsTest, TheUnitsByCode) {
  const char* units[] = {"", "C", "F", "V", "ppm", "%", "g/kg", "tool"};
  for (int code = 0; code < 8; ++code) {
    for (const auto part : {kPart6, kPart61}) {
      Attach(part);
      SetEeprom(218 + 4, static_cast<float>(0xE3 | code << 2));
      EXPECT_EQ(info.GetChannelUnit(4), units[code]);
    }
    Attach(kPart7);
    SetEeprom(792 + 4, static_cast<float>(code << 2));
    EXPECT_EQ(info.GetChannelUnit(4), units[code]);
  }
}

TEST_F(ChannelsTest, ChannelsAndPlatformsWithoutAUnit) {
  Attach(kPart6);
  SetEeprom(218 + 13, 4);
  EXPECT_EQ(info.GetChannelUnit(13), "");
  Attach(kPart8);
  SetEeprom(7960 + 4, 4);
  EXPECT_EQ(info.GetChannelUnit(4), "");
  Attach(kPart9);
  EXPECT_EQ(info.GetChannelUnit(4), "");
}

TEST_F(ChannelsTest, TheOffsetFlag) {
  Attach(kPart6);
  SetEeprom(218 + 12, 128);
  SetEeprom(218 + 13, 128);
  SetEeprom(218 + 11, 127);
  EXPECT_EQ(info.GetChannelOffsetFlag(12), 1);
  EXPECT_EQ(info.GetChannelOffsetFlag(11), 0);
  EXPECT_EQ(info.GetChannelOffsetFlag(13), 0);
  Attach(kPart7);
  SetEeprom(792 + 4, 128);
  EXPECT_EQ(info.GetChannelOffsetFlag(4), 0);
  Attach(kPart5);
  EXPECT_EQ(info.GetChannelOffsetFlag(0), 1);
  Attach(kPart8);
  EXPECT_EQ(info.GetChannelOffsetFlag(0), 0);
}

TEST_F(ChannelsTest, AboveChannel12ScaleAndDividerAreOne) {
  Attach(kPart6);
  SetEeprom(218 + 13, 0x6F);
  EXPECT_EQ(info.GetChannelScale(13), 1);
  EXPECT_EQ(info.GetChannelDivider(13), 1);
}

TEST_F(ChannelsTest, Platform5HasNeitherScaleNorDivider) {
  Attach(kPart5);
  EXPECT_EQ(info.GetChannelScale(0), 0);
  EXPECT_EQ(session.LastError, "Ej klart");
  session.LastError.clear();
  EXPECT_EQ(info.GetChannelDivider(0), 0);
  EXPECT_EQ(session.LastError, "Ej klart");
}

TEST_F(ChannelsTest, AConfigurationByteIsFetchedByItsFlag) {
  bus.KnowPart(kPart6);
  Dialogue line(port);
  line.Exchange({138, 111, 249}, {6, 3, 0, 9});  // 218 + 4
  EXPECT_EQ(info.GetChannelScale(4), 10);
  EXPECT_EQ(info.GetChannelScale(4), 10);
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(ChannelsTest, AConfigurationByteThatCannotBeFetchedGivesZero) {
  bus.KnowPart(kPart6);
  EXPECT_EQ(info.GetChannelScale(4), 0);
  EXPECT_EQ(session.LastError, "Can't read from sensor");
  EXPECT_EQ(info.GetChannelUnit(4), "");
  EXPECT_EQ(info.RawToText(100, 4, true), "");
}

TEST_F(ChannelsTest, ATypeComesFromTheDefinitionOrFromTheSensor) {
  AttachTyped(0, 4, 7, 9);
  EXPECT_EQ(info.GetChannelType(0), 0);
  EXPECT_EQ(info.GetChannelType(1), 4);
  EXPECT_EQ(info.GetChannelType(2), 7);
  EXPECT_EQ(info.GetChannelType(3), 9);
  SetRam(205, 0x31);  // channel 1 is of type 3
  SetRam(206, 0x82);  // channel 2 is of type 8
  EXPECT_EQ(info.GetChannelType(1), 3);
  EXPECT_EQ(info.GetChannelType(2), 8);
  SetRam(206, 0xF1);  // the second of two wins
  EXPECT_EQ(info.GetChannelType(1), 15);
}

TEST_F(ChannelsTest, TheOverridesAreFetchedByTheirFlags) {
  AttachTyped(0, 4);
  image.RamValid[206] = false;
  Dialogue line(port);
  line.Exchange({194, 77, 15}, {6, 15, 0x91, 166});
  EXPECT_EQ(info.GetChannelType(1), 9);
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(ChannelsTest, TheUnitsOfPlatform5ByType) {
  struct Case {
    int type;
    const char* unit;
  };
  for (const auto& [type, unit] :
       {Case{0, "C"}, Case{1, "C"}, Case{2, "F"}, Case{3, "F"}, Case{4, "ppm"}, Case{5, "%"}, Case{6, "%"},
        Case{7, "%"}, Case{8, "g/kg"}, Case{9, "g/kg"}, Case{15, "%"}, Case{10, ""}, Case{14, ""}}) {
    AttachTyped(0);
    SetRam(206, static_cast<float>(type << 4 | 1));
    SetRam(205, 0);  // its low nibble is 0, so the type of channel 0 stays as it is
    EXPECT_EQ(info.GetChannelUnit(1), unit) << type;
    EXPECT_EQ(info.GetChannelUnit(4), "");
  }
}

TEST_F(ChannelsTest, TheUnitTakesTheTypeOfChannel0FromByte207By17) {
  AttachTyped(4);
  SetRam(205, 15);
  SetRam(207, 0x9C);  // 144 / 17 = 8.47
  EXPECT_EQ(info.GetChannelUnit(0), "g/kg");
  EXPECT_EQ(info.GetChannelType(0), 8);
  SetRam(207, 0x3F);  // 48 / 17 = 2.82
  EXPECT_EQ(info.GetChannelUnit(0), "F");
  EXPECT_EQ(info.GetChannelType(0), 3);
  SetRam(207, 0x60);  // 96 / 17 = 5.65
  EXPECT_EQ(info.GetChannelUnit(1), "C");
  EXPECT_EQ(info.GetChannelType(0), 6);
}

TEST_F(ChannelsTest, TheCurveTypesOfPlatform6) {
  Attach(kPart6);
  for (int i = 53; i <= 59; ++i) SetEeprom(i, static_cast<float>(i + 100));
  struct Case {
    float channel;
    int curve;
  };
  for (const auto& [channel, curve] : {Case{2, 153}, Case{3, 154}, Case{6, 155}, Case{7, 156}, Case{8, 157},
                                       Case{11, 158}, Case{12, 159}, Case{13, 0}}) {
    EXPECT_EQ(info.GetCurveType(channel), curve) << channel;
  }
  EXPECT_EQ(session.LastError, "");
}

TEST_F(ChannelsTest, AChannelWithoutACurveIsUnknown) {
  for (const int channel : {0, 1, 4, 5, 9, 10, 14}) {
    session.LastError.clear();
    Attach(kPart6);
    EXPECT_EQ(info.GetCurveType(static_cast<float>(channel)), 0);
    EXPECT_EQ(session.LastError, "Unknown channel '" + std::to_string(channel) + "'.");
  }
}

TEST_F(ChannelsTest, TheCurveTypesOfTheOtherPlatforms) {
  Attach(kPart61);
  SetEeprom(165, 1);
  EXPECT_EQ(info.GetCurveType(5), 2);
  SetEeprom(173, 1);
  EXPECT_EQ(info.GetCurveType(5), 9);
  SetEeprom(173, 3);
  EXPECT_EQ(info.GetCurveType(5), 0);
  Attach(kPart7);
  EXPECT_EQ(info.GetCurveType(5), 0);
}

TEST_F(ChannelsTest, GasIndexesAndTables) {
  Attach(kPart5);
  EXPECT_EQ(info.GetGasChannel(0), 1);
  EXPECT_EQ(info.GetGasChannel(1), 2);
  EXPECT_EQ(info.GetGasChannel(2), 0);
  EXPECT_EQ(info.GetChannelTable(3), 3);
  Attach(kPart6);
  EXPECT_EQ(info.GetGasChannel(0), 11);
  EXPECT_EQ(info.GetGasChannel(1), 12);
  EXPECT_EQ(info.GetGasChannel(2), 0);
  const int tables[] = {0, 0, 0, 0, 1, 1, 2, 2, 3, 0, 0, 4, 5, 0, 0};
  for (int channel = 0; channel < 15; ++channel) {
    EXPECT_EQ(info.GetChannelTable(static_cast<float>(channel)), tables[channel]) << channel;
  }
  Attach(kPart61);
  EXPECT_EQ(info.GetGasChannel(0), 5);
  EXPECT_EQ(info.GetGasChannel(1), 0);
  EXPECT_EQ(info.GetChannelTable(5), 4);
  EXPECT_EQ(info.GetChannelTable(4), 0);
  Attach(kPart7);
  EXPECT_EQ(info.GetGasChannel(0), 0);
  EXPECT_EQ(info.GetChannelTable(5), 0);
}

}  // namespace
}  // namespace brelant
