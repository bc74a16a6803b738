// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/knowledge.h"

namespace brelant {
namespace {

using namespace test;
using testing::IsEmpty;

class IdentityTest : public KnowledgeTest {};

TEST_F(IdentityTest, ASerialNumberOfPlatform5HasItsHighByteFirst) {
  Attach(kPart5);
  SetRam(66, 3);
  SetRam(67, 5);
  EXPECT_EQ(info.GetSerialNumber(), 773);  // 3 x 256 + 5
}

TEST_F(IdentityTest, SoHaveThoseOfPlatforms6And61) {
  for (const auto part : {kPart6, kPart61}) {
    Attach(part);
    SetEeprom(170, 3);
    SetEeprom(171, 5);
    EXPECT_EQ(info.GetSerialNumber(), 773) << +part;
  }
}

TEST_F(IdentityTest, ThoseOfPlatforms7And8HaveTheLowByteFirst) {
  Attach(kPart7);
  for (int i = 0; i < 3; ++i) {
    SetEeprom(998 + i, static_cast<float>(i + 1));
    SetEeprom(8166 + i, static_cast<float>(i + 4));
  }
  EXPECT_EQ(info.GetSerialNumber(), 197121);  // 1 + 2 x 256 + 3 x 65536
  bus.KnowPart(kPart8);
  EXPECT_EQ(info.GetSerialNumber(), 394500);  // 4 + 5 x 256 + 6 x 65536
}

TEST_F(IdentityTest, OtherPlatformsHaveNone) {
  Attach(kPart9);
  EXPECT_EQ(info.GetSerialNumber(), 0);
}

TEST_F(IdentityTest, ASerialNumberIsFetchedWhenItsFlagsAreClear) {
  bus.KnowPart(kPart5);
  Dialogue line(port);
  line.Exchange({130, 66, 196}, {6, 0, 123, 129});
  EXPECT_EQ(info.GetSerialNumber(), 123);
  EXPECT_EQ(line.Trouble(), "");

  ScriptedBus other;
  Definitions none(other.session, other.image, other.com, other.machine);
  SnsInfo on7(other.session, other.image, other.com, none, other.machine);
  other.KnowPart(kPart7);
  Dialogue otherLine(other.port);
  otherLine.Exchange({140, 3, 230, 117}, {6, 1, 2, 3, 255, 11});
  EXPECT_EQ(on7.GetSerialNumber(), 197121);
  EXPECT_EQ(otherLine.Trouble(), "");
}

TEST_F(IdentityTest, OneClearFlagIsEnoughForAFetch) {
  Attach(kPart5);
  image.RamValid[67] = false;
  Dialogue line(port);
  line.Exchange({130, 66, 196}, {6, 1, 0, 7});
  EXPECT_EQ(info.GetSerialNumber(), 256);
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(IdentityTest, AFetchThatFailsGivesZeroAndTheReadsText) {
  bus.KnowPart(kPart6);
  EXPECT_EQ(info.GetSerialNumber(), 0);
  EXPECT_EQ(session.LastError, "Can't read from sensor");
}

TEST_F(IdentityTest, TheIdentityHasFiveDigitsOfSerialNumber) {
  struct Case {
    int serial;
    const char* identity;
  };
  Attach(kPart61);
  for (const auto& [serial, identity] : {Case{123, "8500123"}, Case{0, "8500000"}, Case{12, "8500012"},
                                         Case{1234, "8501234"}, Case{54321, "8554321"}}) {
    image.SetEepromWord(170, static_cast<float>(serial));
    EXPECT_EQ(info.GetSensorIdentity(), identity);
  }
}

TEST_F(IdentityTest, ALongerSerialNumberHasNoIdentity) {
  Attach(kPart7);
  SetEeprom(998, 160);  // 100000 = 160 + 134 x 256 + 1 x 65536
  SetEeprom(999, 134);
  SetEeprom(1000, 1);
  ASSERT_EQ(info.GetSerialNumber(), 100000);
  EXPECT_EQ(info.GetSensorIdentity(), "");
  SetEeprom(998, 159);
  EXPECT_EQ(info.GetSensorIdentity(), "3399999");
}

TEST_F(IdentityTest, TheVariantOfPlatforms5And7IsAByte) {
  Attach(kPart5);
  SetRam(226, 3);
  EXPECT_EQ(info.GetProductVariant(), 3);
  bus.KnowPart(kPart7);
  SetEeprom(1023, 2);
  EXPECT_EQ(info.GetProductVariant(), 2);
  bus.KnowPart(kPart8);
  EXPECT_EQ(info.GetProductVariant(), 0);
}

TEST_F(IdentityTest, TheVariantOfPlatforms6And61FollowsItsRulesInOrder) {
  struct Case {
    int part;
    float e173;
    float e165;
    float e90;
    float variant;
  };
  for (const auto& c : {
           Case{88, 0, 0, 0, 4},   // bit 0 of 165 clear and 173 zero
           Case{221, 0, 0, 1, 4},  // that rule comes before the part number
           Case{221, 0, 1, 1, 5},  //
           Case{221, 3, 0, 1, 5},  //
           Case{88, 3, 0, 1, 2},   // bit 0 of 90
           Case{88, 6, 1, 1, 2},   //
           Case{88, 6, 1, 2, 0},   // 6 counts as 0
           Case{88, 6, 0, 0, 0},   //
           Case{88, 0, 1, 0, 0},   //
           Case{88, 3, 2, 0, 3},   //
           Case{85, 1, 0, 0, 1},   //
       }) {
    Attach(static_cast<std::uint8_t>(c.part));
    SetEeprom(173, c.e173);
    SetEeprom(165, c.e165);
    SetEeprom(90, c.e90);
    EXPECT_EQ(info.GetProductVariant(), c.variant)
        << c.part << " " << c.e173 << " " << c.e165 << " " << c.e90;
  }
}

TEST_F(IdentityTest, TheVariantsBytesAreFetchedInOrderEachByItsFlag) {
  bus.KnowPart(kPart6);
  Dialogue line(port);
  line.Exchange({138, 86, 224}, {6, 0, 3, 9});
  line.Exchange({138, 45, 183}, {6, 0, 0, 6});
  line.Exchange({138, 82, 220}, {6, 88, 1, 95});
  EXPECT_EQ(info.GetProductVariant(), 3);
  EXPECT_EQ(line.Trouble(), "");

  image.EepromValid[172] = image.EepromValid[91] = image.EepromValid[165] = false;
  EXPECT_EQ(info.GetProductVariant(), 3);
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(IdentityTest, AFailedFetchOfTheVariantEndsIt) {
  bus.KnowPart(kPart6);
  Dialogue line(port);
  line.Exchange({138, 86, 224}, {6, 0, 3, 9});
  session.LastError.clear();
  port.onOutput = [](const Bytes&) {};
  EXPECT_EQ(info.GetProductVariant(), 0);
  EXPECT_EQ(port.Sent().size(), 100U + 3);  // and "ATO"
}

TEST_F(IdentityTest, TheScaleFactorOfPlatforms5And6) {
  Attach(kPart5);
  EXPECT_EQ(info.GetScaleFactor(), 1);
  bus.KnowPart(kPart6);
  SetEeprom(165, 1);
  EXPECT_EQ(info.GetScaleFactor(), 1);
  SetEeprom(165, 2);
  EXPECT_EQ(info.GetScaleFactor(), 2);
}

TEST_F(IdentityTest, TheScaleFactorOfPlatform61) {
  Attach(215);
  SetEeprom(165, 1);
  SetEeprom(173, 0);
  EXPECT_EQ(info.GetScaleFactor(), 1);
  SetEeprom(173, 1);
  EXPECT_EQ(info.GetScaleFactor(), 2);
  SetEeprom(173, 3);
  EXPECT_EQ(info.GetScaleFactor(), 0);
  SetEeprom(173, 0);
  bus.KnowPart(214);
  EXPECT_EQ(info.GetScaleFactor(), 0);
  bus.KnowPart(85);
  EXPECT_EQ(info.GetScaleFactor(), 0);
}

TEST_F(IdentityTest, TheScaleFactorOfPlatform7AndOthers) {
  Attach(kPart7);
  image.SetEepromWord(762, 2048);
  EXPECT_EQ(info.GetScaleFactor(), 1);
  image.SetEepromWord(762, 4096);
  EXPECT_EQ(info.GetScaleFactor(), 2);
  bus.KnowPart(kPart9);
  EXPECT_EQ(info.GetScaleFactor(), 0);
}

TEST_F(IdentityTest, NothingIsRememberedWhenTheImageChanges) {
  Attach(kPart5);
  EXPECT_EQ(info.GetPlatform(), 5);
  bus.com.ClearImage(30);
  Attach(kPart6);
  EXPECT_EQ(info.GetPlatform(), 6);
  EXPECT_EQ(info.GetProtocolGeneration(), 1);
}

TEST_F(IdentityTest, OnceTheFlagsAreSetNoQueryTouchesTheBus) {
  for (const auto part : {kPart5, kPart6, kPart61, kPart7, kPart8, kPart9}) {
    Attach(part);
    info.GetSensorIdentity();
    info.GetProductVariant();
    info.GetScaleFactor();
    info.GetProtocolGeneration();
    for (int channel = 0; channel < 16; ++channel) {
      const auto number = static_cast<float>(channel);
      info.GetChannelOffsetFlag(number);
      info.GetCurveType(number);
      info.GetZeroWord(number == 11 ? number : 3);
      if (part != kPart5) {
        info.GetChannelName(number, false);
        info.GetChannelUnit(number);
        info.RawToText(6000, number, false);
      }
    }
  }
  EXPECT_THAT(port.Events(), IsEmpty());
}

}  // namespace
}  // namespace brelant
