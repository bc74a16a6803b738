// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/frm61_fixture.h"

namespace brelant {
namespace {

using std::chrono::seconds;
using test::Frm61Test;
using test::kBlack;
using test::kEnter;
using test::kFieldBack;
using test::kPart61;
using test::kPart7;
using test::kWhite;
using test::kYellow;
using test::Product61;
using test::Sample61;
using test::Sample7;
using test::Texts;
using test::Type;
using testing::ElementsAre;

/// frm61 in off-line mode.
class Frm61SimulatedTest : public Frm61Test {
 protected:
  void Simulate(const Product61& product) {
    Show(product);
    panel.SimMode(true);
  }
};

TEST_F(Frm61SimulatedTest, TypedValuesOfPlatform61AreScaledBack) {
  Simulate({61, 0});
  // 5000 + 2150 = 27 x 256 + 238; 5000 + 812 = 22 x 256 + 180; 5000 + 2090 = 27 x 256 + 178.
  Type(panel.txbCHact[0], "21.5");
  EXPECT_THAT(Ram(20, 2), ElementsAre(27, 238));
  Type(panel.txbCHact[1], "0,8129");
  EXPECT_THAT(Ram(22, 2), ElementsAre(22, 180));
  Type(panel.txbCHact[2], "20.90 %");
  EXPECT_THAT(Ram(24, 2), ElementsAre(27, 178));
  EXPECT_THAT(Texts(panel.txbCHact), ElementsAre("21.5", "0.812", "20.9", ""));
  // 5000 - 1000 = 15 x 256 + 160.
  Type(panel.txbCHact[0], "-10");
  EXPECT_THAT(Ram(20, 2), ElementsAre(15, 160));
  EXPECT_EQ(panel.txbCHact[0].Text(), "-10");
}

TEST_F(Frm61SimulatedTest, OnPlatform61TheScaleIsThatOfTheChannel) {
  auto eeprom = Sample61(0);
  // Temperature in tenths without an offset, CO2 in ppm with one, O2 in tenths of 163.
  test::PutBytes(eeprom, 222, {0x07, 0x90, 0x77});
  Show(kPart61, eeprom);
  panel.SimMode(true);
  panel.txbCHact[0].SetText("21.5");
  panel.txbCHact[1].SetText("812");
  panel.txbCHact[2].SetText("20.9");
  panel.FormReadM();
  // 209 x 163 = 34067 = 133 x 256 + 19.
  EXPECT_THAT(Ram(20, 6), ElementsAre(0, 215, 22, 180, 133, 19));
}

TEST_F(Frm61SimulatedTest, TypedValuesOfPlatform7HaveFixedFactors) {
  Simulate({7, 2});
  Type(panel.txbCHact[0], "21.5");
  EXPECT_THAT(Ram(20, 2), ElementsAre(8, 102));  // 2150
  Type(panel.txbCHact[1], "0,812");
  EXPECT_THAT(Ram(22, 2), ElementsAre(3, 44));  // 812
  Type(panel.txbCHact[2], "20.9");
  EXPECT_THAT(Ram(24, 2), ElementsAre(8, 42));  // 2090
  EXPECT_THAT(Texts(panel.txbCHact), ElementsAre("21.5", "0.812", "20.9", ""));
  // -1000 is 64536 = 252 x 256 + 24.
  Type(panel.txbCHact[0], "-10");
  EXPECT_THAT(Ram(20, 2), ElementsAre(252, 24));
  EXPECT_EQ(panel.txbCHact[0].Text(), "-10");
}

TEST_F(Frm61SimulatedTest, OnPlatform7TheFactorsAreNotThoseOfTheChannels) {
  auto eeprom = Sample7(2);
  // Tenths, whole ppm and thousandths.
  test::PutBytes(eeprom, 796, {1 << 2 | 3, 4 << 2, 5 << 2 | 1});
  Show(kPart7, eeprom);
  panel.SimMode(true);
  panel.txbCHact[0].SetText("1");
  panel.txbCHact[1].SetText("2");
  panel.txbCHact[2].SetText("3");
  panel.FormReadM();
  EXPECT_THAT(Ram(20, 6), ElementsAre(0, 100, 7, 208, 1, 44));
  EXPECT_TRUE(panel.FormUpdateM());
  EXPECT_THAT(Texts(panel.txbCHact), ElementsAre("10", "2000", "0.3", ""));
}

TEST_F(Frm61SimulatedTest, AnEditTakesTheFormShowsItTakesTheValueAndShowsIt) {
  Simulate({7, 2});
  // Taken and shown before the alarms are compared: 19.009 is stored as 19, which 19 is not below.
  panel.txbID.SetText("012");
  panel.rows.lblAlarm7Level[2].SetText("19.009");
  Type(panel.txbCHact[2], "19.00");
  EXPECT_THAT(Eeprom(16, 1), ElementsAre(12));
  EXPECT_EQ(panel.txbID.Text(), "12");
  EXPECT_EQ(panel.rows.lblAlarm7Level[2].Text(), "19");
  EXPECT_THAT(Ram(24, 2), ElementsAre(7, 108));
  EXPECT_EQ(panel.txbCHact[2].Text(), "19");
  EXPECT_THAT(RowStates(), ElementsAre("OK", "OK"));
}

TEST_F(Frm61SimulatedTest, AnEditOnPlatform61GoesInTheSameOrder) {
  Simulate({61, 0});
  panel.txbID.SetText("012");
  panel.alarms.txbAlarm061Level[2].SetText("19.009");
  Type(panel.txbCHact[2], "19.00");
  EXPECT_THAT(Eeprom(32, 1), ElementsAre(12));
  EXPECT_EQ(panel.txbID.Text(), "12");
  EXPECT_EQ(panel.alarms.txbAlarm061Level[2].Text(), "19");
  EXPECT_EQ(panel.txbCHact[2].Text(), "19");
  EXPECT_EQ(panel.alarms.txbAlarm061Status[2].Text(), "OK");
}

TEST_F(Frm61SimulatedTest, TheAlarmsReactAtOnce) {
  Simulate({61, 0});
  Type(panel.txbCHact[2], "20.9");
  Type(panel.txbCHact[1], "1.501");
  EXPECT_THAT(Texts(panel.alarms.txbAlarm061Status), ElementsAre("ALARM", "OK", "OK", "OK"));
  Type(panel.txbCHact[1], "1.5");
  EXPECT_THAT(Texts(panel.alarms.txbAlarm061Status), ElementsAre("OK", "OK", "OK", "OK"));
  Simulate({7, 2});
  Type(panel.txbCHact[2], "20.9");
  Type(panel.txbCHact[1], "3.001");
  EXPECT_THAT(RowStates(), ElementsAre("ALARM", "ALARM"));
  Type(panel.txbCHact[1], "3");
  EXPECT_THAT(RowStates(), ElementsAre("ALARM", "OK"));
}

TEST_F(Frm61SimulatedTest, TheEnterKeyTakesAValueToo) {
  Simulate({7, 2});
  auto& field = panel.txbCHact[1];
  panel.form.GainFocus(field);
  EXPECT_EQ(field.Back(), kWhite);
  EXPECT_EQ(field.Fore(), kBlack);
  panel.form.ChangeText(field, "3.5");
  EXPECT_TRUE(panel.form.PressKey(field, kEnter));
  EXPECT_EQ(field.Back(), kFieldBack);
  EXPECT_EQ(field.Fore(), kYellow);
  EXPECT_THAT(Ram(22, 2), ElementsAre(13, 172));
  EXPECT_EQ(RowStates()[1], "ALARM");
}

TEST_F(Frm61SimulatedTest, OnVariant1ATypedValueStaysAndReachesNoMemory) {
  Simulate({61, 1});
  const auto before = ground.image;
  Type(panel.txbCHact[1], "812,50");
  EXPECT_EQ(panel.txbCHact[1].Text(), "812,50");
  EXPECT_EQ(ground.image.RamImage, before.RamImage);
  EXPECT_EQ(ground.image.EepromImage, before.EepromImage);
  // Filling the live fields would ask the sensor.
  EXPECT_TRUE(panel.FormUpdateM());
  EXPECT_TRUE(ground.port.Events().empty());
  EXPECT_EQ(panel.txbCHact[1].Text(), "812,50");
}

TEST_F(Frm61SimulatedTest, InLiveModeAValueTakesNoEdit) {
  for (const auto& product : {Product61{61, 0}, Product61{61, 1}, Product61{7, 2}}) {
    Show(product);
    panel.SimMode(false);
    ground.session.LastError.clear();
    const auto before = ground.image;
    panel.txbCHact[1].SetText("0.4");
    const auto back = panel.txbCHact[1].Back();
    panel.form.GainFocus(panel.txbCHact[1]);
    EXPECT_EQ(panel.txbCHact[1].Back(), back) << product;
    panel.form.ChangeText(panel.txbCHact[1], "3");
    panel.form.PressKey(panel.txbCHact[1], kEnter);
    panel.form.LoseFocus(panel.txbCHact[1]);
    EXPECT_EQ(panel.txbCHact[1].Text(), "0.4") << product;
    EXPECT_EQ(ground.image.RamImage, before.RamImage) << product;
    EXPECT_EQ(ground.image.EepromImage, before.EepromImage) << product;
  }
}

TEST_F(Frm61SimulatedTest, TheStatusTakesNoEdit) {
  Simulate({7, 2});
  EXPECT_TRUE(panel.FormUpdateM());
  Type(panel.txbStatus, "x");
  EXPECT_EQ(panel.txbStatus.Text(), "OK");
}

TEST_F(Frm61SimulatedTest, TheLoopRunsTheModelOfVariant0) {
  Simulate({61, 0});
  After(seconds(1), [this] {
    panel.txbCHact[1].SetText("1.501");
    panel.txbCHact[2].SetText("18.5");
  });
  std::vector<std::string> states;
  After(seconds(2), [&] { states = Texts(panel.alarms.txbAlarm061Status); });
  Run(seconds(10));
  EXPECT_THAT(states, ElementsAre("ALARM", "OK", "ALARM", "OK"));
  EXPECT_TRUE(ground.port.Events().empty());
}

TEST_F(Frm61SimulatedTest, TheLoopPollsNothing) {
  for (const auto& product : {Product61{61, 1}, Product61{7, 1}}) {
    Simulate(product);
    const auto before = ground.image;
    Run(seconds(10));
    EXPECT_TRUE(ground.port.Events().empty()) << product;
    EXPECT_EQ(ground.image.RamImage, before.RamImage);
    EXPECT_TRUE(ground.ui.messages.empty());
  }
}

}  // namespace
}  // namespace brelant
