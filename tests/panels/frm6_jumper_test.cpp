// SPDX-License-Identifier: GPL-3.0-or-later
#include <limits>

#include "panels/frm6_fixture.h"

namespace brelant {
namespace {

using test::EepromBytes;
using test::Frm6Test;
using test::kPart88;
using test::Put;
using test::SampleEeprom;
using test::Texts;
using test::Type;
using testing::ElementsAre;

/// Functions 1 to 3 on CO2 in ppm, 4 to 6 on RH in tenths of a percent: grains that hold the hand-made table.
/// Function 1 goes from -1000 to 1000, so that it gives a tenth of x.
EepromBytes JumperSample() {
  auto eeprom = SampleEeprom(kPart88, 3);
  Put(eeprom, 106, {9, 15, 160, 151, 112});   // -1000, 1000; slope flag
  Put(eeprom, 111, {9, 147, 136, 21, 24});    // 0, 400; sign flag
  Put(eeprom, 116, {9, 20, 30, 20, 130});     // 150, 250; no flags
  Put(eeprom, 121, {4, 148, 180, 152, 156});  // 30, 130; both flags
  Put(eeprom, 126, {4, 20, 80, 153, 100});    // 20, 150; slope flag
  Put(eeprom, 131, {4, 149, 24, 21, 124});    // 40, 50; sign flag
  return eeprom;
}

class Frm6JumperTest : public Frm6Test {
 protected:
  Frm6JumperTest() { Show(JumperSample()); }

  std::vector<std::string> Shown() {
    std::vector<std::string> texts;
    for (const char* name : {"A1", "A2", "B", "C", "D1", "D2", "E", "F", "G1", "G2", "I", "K"}) {
      texts.push_back(Entry(std::string("txb6v3") + name).Text());
    }
    return texts;
  }
  /// The hand-made corners.
  void TypeCorners() {
    auto& face = panel.jumper;
    face.txb6v3A1.SetText("300");
    face.txb6v3B.SetText("650");
    face.txb6v3C.SetText("1000");
    face.txb6v3D1.SetText("400");
    face.txb6v3E.SetText("700");
    face.txb6v3F.SetText("800");
    face.txb6v3G1.SetText("250");
    face.txb6v3I.SetText("500");
    face.txb6v3K.SetText("600");
  }
};

TEST_F(Frm6JumperTest, ShowsTheCornersThatTheFunctionsMake) {
  // A: -1000 and 1000. B, and E by the same search: y + (y - 30) = 100. C: 1000. D: 0 and 400. F: 400. G:
  // 250. I: 50 % of 1000. K: y = 50.
  EXPECT_THAT(Shown(),
              ElementsAre("0", "0", "650", "1000", "200", "200", "650", "400", "250", "250", "500", "500"));
}

TEST_F(Frm6JumperTest, CornersAreShownInWholeNumbers) {
  // Function 2 from 0 to 401: 200.5 to the even neighbour. Function 6 to 44.45 %, on tenths 44.4.
  SetEeprom(111, {9, 147, 136, 21, 25});
  SetEeprom(131, {4, 149, 24, 21, 69});
  panel.FormUpdate();
  EXPECT_EQ(panel.jumper.txb6v3D1.Text(), "200");
  // 5445 less 5000 is 44.5 %: 445.
  EXPECT_EQ(panel.jumper.txb6v3I.Text(), "445");
}

TEST_F(Frm6JumperTest, TakesTheCornersIntoTheFunctions) {
  TypeCorners();
  EXPECT_TRUE(panel.FormRead());
  // A(1), B(1) = -1000, 1000. A(2), B(2) = 2 x 400 - 800, 800. A(3), B(3) = 150, 250.
  EXPECT_THAT(Eeprom(106, 5), ElementsAre(9, 15, 160, 128 + 23, 112));
  EXPECT_THAT(Eeprom(111, 5), ElementsAre(9, 128 + 19, 136, 22, 168));
  EXPECT_THAT(Eeprom(116, 5), ElementsAre(9, 20, 30, 20, 130));
  // A(4) = 30, on tenths 5300.
  EXPECT_THAT(Eeprom(121, 3), ElementsAre(4, 128 + 20, 180));
  // A(5) = 40: 5400.
  EXPECT_THAT(Eeprom(126, 3), ElementsAre(4, 21, 24));
  // A(6) = 40, B(6) = 50: 5400, 5500.
  EXPECT_THAT(Eeprom(131, 5), ElementsAre(4, 128 + 21, 24, 21, 124));
  // B(4) = 130 and B(5) = 160, but for a grain; flags kept.
  const auto words = Eeprom(121, 10);
  EXPECT_NEAR((words[3] - 128) * 256 + words[4], 6300, 1);
  EXPECT_NEAR((words[8] - 128) * 256 + words[9], 6600, 1);
}

TEST_F(Frm6JumperTest, NothingButFunctionsTriggerAndGeneralFieldsIsTaken) {
  TypeCorners();
  panel.outputs.txbOutBaseLine[0].SetText("50");
  panel.txbDigLevel.SetText("50");
  panel.trigger.txbDigTtime.SetText("99");
  EXPECT_TRUE(panel.FormRead());
  auto expected = JumperSample();
  const auto taken = Eeprom();
  std::copy(taken.begin() + 106, taken.begin() + 136, expected.begin() + 106);
  EXPECT_EQ(taken, expected);
}

TEST_F(Frm6JumperTest, WhatWasTakenIsShownAgainButA) {
  TypeCorners();
  EXPECT_TRUE(panel.FormRead());
  panel.FormUpdate();
  // A is the middle of -C and C. E is found by the search of B. The offset of 10 % moves K: 60 - 10 = 50.
  EXPECT_THAT(Shown(),
              ElementsAre("0", "0", "650", "1000", "400", "400", "650", "800", "250", "250", "500", "600"));
}

TEST_F(Frm6JumperTest, TheOffsetIsTheForms) {
  TypeCorners();
  EXPECT_TRUE(panel.FormRead());
  Load(JumperSample());
  panel.FormUpdate();
  EXPECT_EQ(panel.jumper.txb6v3K.Text(), "600");
  frm6 other{ground.context};
  other.FormUpdateInit();
  other.FormUpdate();
  EXPECT_EQ(other.jumper.txb6v3K.Text(), "500");
}

TEST_F(Frm6JumperTest, TheSecondOfAPairIsNotTaken) {
  TypeCorners();
  EXPECT_TRUE(panel.FormRead());
  const auto expected = Eeprom();
  Show(JumperSample());
  TypeCorners();
  panel.jumper.txb6v3A2.SetText("1");
  panel.jumper.txb6v3D2.SetText("1");
  panel.jumper.txb6v3G2.SetText("1");
  EXPECT_TRUE(panel.FormRead());
  EXPECT_EQ(Eeprom(), expected);
}

TEST_F(Frm6JumperTest, APairMirrorsWhatIsTyped) {
  for (const char* letter : {"A", "D", "G"}) {
    auto& one = Entry(std::string("txb6v3") + letter + "1");
    auto& two = Entry(std::string("txb6v3") + letter + "2");
    panel.form.ChangeText(one, "123");
    EXPECT_EQ(two.Text(), "123") << letter;
    panel.form.ChangeText(two, "456");
    EXPECT_EQ(one.Text(), "456") << letter;
  }
}

TEST_F(Frm6JumperTest, LeavingAFieldTakesAndShowsTheForm) {
  Type(panel.jumper.txb6v3G2, "300");
  EXPECT_THAT(Eeprom(116, 5), ElementsAre(9, 20, 80, 20, 180));
  EXPECT_EQ(panel.jumper.txb6v3G1.Text(), "300");
  Type(panel.jumper.txb6v3F, "500.7");
  EXPECT_EQ(panel.jumper.txb6v3F.Text(), "500");
}

TEST_F(Frm6JumperTest, WithoutCNothingIsTaken) {
  for (const char* text : {"0", "", "x"}) {
    ground.session.LastError.clear();
    panel.jumper.txb6v3C.SetText(text);
    panel.txbID.SetText("12");
    EXPECT_FALSE(panel.FormRead());
    EXPECT_NE(ground.session.LastError, "");
    EXPECT_EQ(Eeprom(), JumperSample());
  }
}

TEST_F(Frm6JumperTest, TheTriggerLevelKeepsItsSignBit) {
  for (const int byte : {37, 128 + 37, 128, 0, 255}) {
    Show(JumperSample());
    SetEeprom(136, {byte});
    panel.FormUpdate();
    EXPECT_TRUE(panel.FormRead());
    EXPECT_THAT(Eeprom(136, 1), ElementsAre(byte));
  }
  SetEeprom(136, {128 + 37});
  panel.FormUpdate();
  panel.trigger.txbDigTlevel.SetText("50");
  EXPECT_TRUE(panel.FormRead());
  EXPECT_THAT(Eeprom(136, 1), ElementsAre(128 + 64));
}

TEST_F(Frm6JumperTest, AnotherSignOfTheTriggerLevelIsNotTaken) {
  for (const auto& [byte, typed] : {std::pair{37, "-50"}, {128 + 37, "50"}}) {
    SetEeprom(136, {byte});
    panel.FormUpdate();
    panel.trigger.txbDigTlevel.SetText(typed);
    EXPECT_TRUE(panel.FormRead());
    EXPECT_THAT(Eeprom(136, 1), ElementsAre((byte & 128) | 64)) << typed;
  }
}

TEST_F(Frm6JumperTest, ShowsTheTriggerLevelRounded) {
  // 38 / 127 is 29.92 %.
  SetEeprom(136, {128 + 38});
  panel.FormUpdate();
  EXPECT_EQ(panel.trigger.txbDigTlevel.Text(), "-30");
}

TEST_F(Frm6JumperTest, ASearchWithoutANumberLeavesItsField) {
  platform6::FunctionEnds ends;
  for (int i = 1; i <= 6; ++i) ends.B(i) = 100;
  ends.A(1) = std::numeric_limits<float>::quiet_NaN();
  const auto before = Shown();
  panel.jumper.Update(ends, [] {});
  const auto after = Shown();
  // B, E and K.
  for (const std::size_t field : {2U, 6U, 11U}) EXPECT_EQ(after[field], before[field]);
  EXPECT_EQ(after[3], "100");
}

TEST_F(Frm6JumperTest, EventsRunDuringASearch) {
  int passes = ground.pump.Passes();
  panel.FormUpdate();
  EXPECT_GT(ground.pump.Passes(), passes);
  passes = ground.pump.Passes();
  panel.FormRead();
  EXPECT_GT(ground.pump.Passes(), passes);
}

class Frm6JumperSensorTest : public test::Frm6SensorTest {
 protected:
  Frm6JumperSensorTest() : Frm6SensorTest(kPart88, 3) {}
};

TEST_F(Frm6JumperSensorTest, ShowsTheLiveOutputs) {
  HoldWord(236, 163 * 42);
  HoldWord(238, 163 * 17);
  HoldWord(26, 163 * 5);
  EXPECT_TRUE(panel.ActionSensorReadM());
  EXPECT_THAT(Texts(panel.jumper.txb6v3AN), ElementsAre("42", "17", "5"));
}

}  // namespace
}  // namespace brelant
