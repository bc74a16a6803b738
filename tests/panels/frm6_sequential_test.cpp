// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/frm6_fixture.h"

namespace brelant {
namespace {

using test::EepromBytes;
using test::Frm6Test;
using test::kPart88;
using test::Put;
using test::SampleEeprom;
using test::Type;
using testing::ElementsAre;

/// Set points 22 C and 800 ppm; ventilation from 22 to 26.5 C; cooling over 2.5 C; CO2 over 400 ppm; at least
/// 25 %. The words of the functions that follow from these are right.
EepromBytes SequentialSample() {
  auto eeprom = SampleEeprom(kPart88, 4);
  Put(eeprom, 0, {28, 32});                         // 5000 + 2200
  Put(eeprom, 112, {128 + 27, 38, 128 + 20, 130});  // 7200 - 250, 5000 + 250; both flags
  Put(eeprom, 117, {21, 24, 21, 24});               // 5800 - 400, 5000 + 400
  Put(eeprom, 122, {128 + 28, 32, 29, 226});        // 5000 + 2200, 5000 + 2650
  eeprom[142] = 144;
  return eeprom;
}

class Frm6SequentialTest : public Frm6Test {
 protected:
  Frm6SequentialTest() { Show(SequentialSample()); }

  void ExpectChanged(std::size_t address, std::initializer_list<std::uint8_t> bytes) {
    auto expected = SequentialSample();
    Put(expected, address, bytes);
    EXPECT_EQ(Eeprom(), expected);
  }
  platform6::SequentialFace& face = panel.sequential;
};

TEST_F(Frm6SequentialTest, ShowsSetPointsAndRanges) {
  EXPECT_EQ(face.txbV4SetPtemp.Text(), "22");
  EXPECT_EQ(face.txbV4SetPCO2.Text(), "800");
  EXPECT_EQ(face.txbV4PrangeVentTemp.Text(), "4.5");
  EXPECT_EQ(face.txbV4PrangeCoolTemp.Text(), "2.5");
  EXPECT_EQ(face.txbV4PrangeVentCO2.Text(), "400");
  EXPECT_EQ(face.txbV4MinVent.Text(), "25");
}

TEST_F(Frm6SequentialTest, EveryFieldGoesThroughItsChannel) {
  // Channel 2 in whole degrees, channel 3 in tenths; channel 11 in tenths, channel 12 in whole ppm.
  SetEeprom(220, {0x84, 0x87});
  SetEeprom(229, {0x93, 0x90});
  panel.FormUpdate();
  EXPECT_EQ(face.txbV4SetPtemp.Text(), "220");
  EXPECT_EQ(face.txbV4SetPCO2.Text(), "80");
  EXPECT_EQ(face.txbV4PrangeVentTemp.Text(), "45");
  EXPECT_EQ(face.txbV4PrangeCoolTemp.Text(), "25");
  EXPECT_EQ(face.txbV4PrangeVentCO2.Text(), "40");
  const auto before = Eeprom();
  EXPECT_TRUE(panel.FormRead());
  EXPECT_EQ(Eeprom(), before);
}

TEST_F(Frm6SequentialTest, AFormOnTheGrainIsTakenBackByteForByte) {
  EXPECT_TRUE(panel.FormRead());
  EXPECT_EQ(Eeprom(), SequentialSample());
}

TEST_F(Frm6SequentialTest, TheTemperatureSetPointMovesTheCooling) {
  Type(face.txbV4SetPtemp, "23.25");
  auto expected = SequentialSample();
  Put(expected, 0, {28, 157});          // 5000 + 2325
  Put(expected, 112, {128 + 27, 163});  // 7325 - 250
  EXPECT_EQ(Eeprom(), expected);
  EXPECT_EQ(face.txbV4SetPtemp.Text(), "23.25");
}

TEST_F(Frm6SequentialTest, TheCO2SetPointMovesItsVentilation) {
  Type(face.txbV4SetPCO2, "1000");
  auto expected = SequentialSample();
  Put(expected, 18, {23, 112});   // 5000 + 1000
  Put(expected, 117, {21, 224});  // 6000 - 400
  EXPECT_EQ(Eeprom(), expected);
}

TEST_F(Frm6SequentialTest, ARangeIsStoredWithTheWordThatFollowsFromIt) {
  Type(face.txbV4PrangeCoolTemp, "4");
  ExpectChanged(112, {128 + 26, 144, 128 + 21, 24});  // 7200 - 400, 5000 + 400
  Show(SequentialSample());
  Type(face.txbV4PrangeVentCO2, "600");
  ExpectChanged(117, {20, 80, 21, 224});  // 5800 - 600, 5000 + 600
}

TEST_F(Frm6SequentialTest, TheRangeOfTheVentilationMovesItsBegin) {
  Type(face.txbV4PrangeVentTemp, "6.4");
  // 26.5 - 6.4 = 20.1.
  ExpectChanged(122, {128 + 27, 98});
  EXPECT_EQ(face.txbV4PrangeVentTemp.Text(), "6.4");
}

TEST_F(Frm6SequentialTest, RangesHaveTheDecimalsOfTheirChannel) {
  for (int raw = 0; raw < 3000; raw += 7) {
    const int word = 5000 + 2650 - raw;
    SetEeprom(122, {word / 256, word % 256});
    panel.FormUpdate();
    const auto text = face.txbV4PrangeVentTemp.Text();
    ASSERT_LE(text.size(), 5U) << text;
    ASSERT_TRUE(panel.FormRead());
    ASSERT_THAT(Eeprom(122, 2), ElementsAre(word / 256, word % 256)) << text;
  }
}

TEST_F(Frm6SequentialTest, TheFlagsStay) {
  for (const int flag : {0, 128}) {
    for (const std::size_t address : {112U, 114U, 117U, 119U, 122U}) {
      const int byte = Eeprom(address, 1).front();
      SetEeprom(address, {(byte & 127) | flag});
    }
    panel.FormUpdate();
    EXPECT_EQ(face.txbV4PrangeCoolTemp.Text(), "2.5");
    const auto before = Eeprom();
    EXPECT_TRUE(panel.FormRead());
    EXPECT_EQ(Eeprom(), before);
  }
}

TEST_F(Frm6SequentialTest, TheEndOfTheVentilationHasAFlagOfItsOwn) {
  SetEeprom(124, {128 + 29, 226});
  panel.FormUpdate();
  EXPECT_EQ(face.txbV4PrangeVentTemp.Text(), "4.5");
  EXPECT_TRUE(panel.FormRead());
  EXPECT_THAT(Eeprom(122, 4), ElementsAre(128 + 28, 32, 128 + 29, 226));
}

TEST_F(Frm6SequentialTest, TheLeastVentilationIsABaseLine) {
  Type(face.txbV4MinVent, "30");
  ExpectChanged(142, {148});  // 230 / 400 x 256 = 147.2
  EXPECT_EQ(face.txbV4MinVent.Text(), "31");
}

class Frm6SequentialSensorTest : public test::Frm6SensorTest {
 protected:
  Frm6SequentialSensorTest() : Frm6SensorTest(kPart88, 4) {}
};

TEST_F(Frm6SequentialSensorTest, ShowsTheLiveOutputsCrossed) {
  HoldWord(236, 163 * 42);
  HoldWord(238, 163 * 17);
  EXPECT_TRUE(panel.ActionSensorReadM());
  EXPECT_EQ(panel.sequential.txbV4Out1Out.Text(), "17");
  EXPECT_EQ(panel.sequential.txbV4Out2Out.Text(), "42");
}

}  // namespace
}  // namespace brelant
