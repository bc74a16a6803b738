// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/frm5_chart_fixture.h"

namespace brelant {
namespace {

using test::ChartTest;
using test::Click;
using test::SampleChartRam;
using test::Type;
using testing::ElementsAre;

constexpr Colour kAlarmBack = 255;
constexpr Colour kOkBack = 65280;

class ChartFormTest : public ChartTest {
 protected:
  std::vector<Colour> StatusBacks() const {
    std::vector<Colour> backs;
    for (const auto* status : panel.txbStatus) backs.push_back(status->Back());
    return backs;
  }
};

// General fields

TEST_F(ChartFormTest, ShowsIdentityAndVariant) {
  EXPECT_EQ(panel.txbSN.Text(), "10401042");
  EXPECT_EQ(panel.txbID.Text(), "7");
  EXPECT_EQ(panel.txbVersion.Text(), "3");
  SetRam(226, {1});
  panel.FormUpdate();
  EXPECT_EQ(panel.txbVersion.Text(), "1");
}

TEST_F(ChartFormTest, WhatTheSensorTellsTakesNoEdit) {
  panel.SimMode(true);
  for (auto* field : {&panel.txbSN, &panel.txbVersion, &panel.txbKELActTempAenable}) {
    EXPECT_FALSE(field->Editable()) << field->Name();
  }
  for (auto* field : panel.txbStatus) EXPECT_FALSE(field->Editable()) << field->Name();
}

TEST_F(ChartFormTest, TheFixedCaptions) {
  EXPECT_THAT(Texts(panel.lblStatus), ElementsAre("CO2 PRE ALARM:", "CO2 MAIN ALARM:", "CO2 TWA ALARM:",
                                                  "TEMP ALARM LOW:", "TEMP ALARM HIGH:"));
  EXPECT_EQ(panel.lblKELActTempAenable.Text(), "Temp alarm on central unit:");
  EXPECT_EQ(panel.cbxSimulated.Text(), "Simulated");
}

TEST_F(ChartFormTest, InitialisingItDoesNothing) {
  ground.image.RamImage[65] = 0;
  ground.image.RamValid[65] = false;
  EXPECT_TRUE(panel.FormUpdateInit());
  EXPECT_TRUE(ground.port.Events().empty());
  EXPECT_EQ(ground.session.LastError, "");
}

TEST_F(ChartFormTest, TheMenusOfThisPanel) {
  struct Case {
    const char* name;
    const char* caption;
    const char* parent;
  };
  for (const auto& [name, caption, parent] :
       {Case{"options", "KVX options", "mFile"}, Case{"mCalibrate", "Calibrate", "M0"},
        Case{"CalTemp", "TEMP", "mCalibrate"}, Case{"mCalCO2", "CO2 sinle point", "mCalibrate"},
        Case{"mCalCO2Zero", "Zero", "mCalCO2"}, Case{"mCalCO2Background", "Fresh air", "mCalCO2"},
        Case{"mCalCO2Other", "Other", "mCalCO2"}, Case{"mCalCO2span", "CO2 span", "mCalibrate"},
        Case{"mCalCurve", "Calibration curve", "mCalibrate"}, Case{"mTWAreset", "TWA reset", "M0"}}) {
    const auto* entry = panel.form.Find(name);
    ASSERT_NE(entry, nullptr) << name;
    EXPECT_EQ(entry->Text(), caption);
    EXPECT_EQ(entry->parent, parent) << name;
  }
  EXPECT_EQ(panel.form.Find("mOptions"), nullptr);
  for (auto* menu : {&panel.mDisplayModes, &panel.mTempUnit}) EXPECT_FALSE(menu->Visible()) << menu->Name();
}

TEST_F(ChartFormTest, ExitEndsTheSessionAtOnce) {
  EXPECT_TRUE(Click(panel.mExit));
  EXPECT_EQ(ground.sessionsEnded, 1);
  EXPECT_EQ(ground.session.LastError, "Avbryt");
  EXPECT_EQ(ground.session.PanelCommand, 0);
}

// Levels

TEST_F(ChartFormTest, ShowsTheFiveLevels) {
  EXPECT_THAT(Texts(panel.txbKelLevel), ElementsAre("800", "1200", "600", "20", "25"));
  EXPECT_THAT(Texts(panel.lblFKelunit), ElementsAre("ppm", "ppm", "ppm", "C", "C"));
}

TEST_F(ChartFormTest, ALevelIsReadFromOneOfTheTwoWordsOfItsFunction) {
  // b of 0, 1, 2 and 4 and a of 3; the flags are no part of the word.
  SetRam(165, {128 | 23, 112});
  SetRam(170, {23, 212});
  SetRam(175, {24, 56});
  SetRam(178, {26, 144});
  SetRam(185, {30, 20});
  panel.FormUpdate();
  EXPECT_THAT(Texts(panel.txbKelLevel), ElementsAre("1000", "1100", "1200", "18", "27"));
  // The other words are shown nowhere.
  for (const std::size_t other : {163U, 168U, 173U, 180U, 183U}) SetRam(other, {30, 0});
  panel.FormUpdate();
  EXPECT_THAT(Texts(panel.txbKelLevel), ElementsAre("1000", "1100", "1200", "18", "27"));
}

TEST_F(ChartFormTest, WithTWAOffTheFirstLevelIsShownThroughChannel3) {
  TakeTWAOff();
  // 5800 is 800 ppm through channel 1 and 0.8 % through channel 3.
  EXPECT_EQ(panel.txbKelLevel[0].Text(), "0.8");
  EXPECT_EQ(panel.lblFKelunit[0].Text(), "%");
  EXPECT_EQ(panel.txbKelLevel[1].Text(), "1200");
  EXPECT_EQ(panel.lblFKelunit[1].Text(), "ppm");
}

TEST_F(ChartFormTest, WithTWAOffTheFirstLevelIsStoredThroughChannel1AllTheSame) {
  TakeTWAOff();
  Type(panel.txbKelLevel[0], "900");
  EXPECT_EQ(Word(163), 5890);
  EXPECT_EQ(Word(165), 5900);
  EXPECT_EQ(panel.txbKelLevel[0].Text(), "0.9");
}

TEST_F(ChartFormTest, WithTWAOffTheFirstLevelFallsAtEachReading) {
  TakeTWAOff();
  EXPECT_EQ(panel.txbKelLevel[0].Text(), "0.8");
  panel.FormRead();
  // 0.8 ppm, rounded to a byte.
  EXPECT_EQ(Word(165), 5001);
  EXPECT_EQ(Word(163), 4991);
  panel.FormUpdate();
  EXPECT_EQ(panel.txbKelLevel[0].Text(), "0.001");
}

TEST_F(ChartFormTest, ChannelThreeHasTheTypeOfThePanelWhateverItsDefinitionSays) {
  TakeTWAOff();
  EXPECT_EQ(ground.definitions.Channel(3).ChannelType, 15);
  EXPECT_EQ(panel.lblCH_Type[2].Text(), "%");
}

TEST_F(ChartFormTest, EachLevelKeepsItsBand) {
  struct Case {
    int level;
    const char* typed;
    std::vector<std::pair<std::size_t, std::uint8_t>> bytes;
  };
  const std::vector<Case> cases{
      // 5000 + 1000 = 23 x 256 + 112, 10 less below it
      {0, "1000", {{163, 128 | 23}, {164, 102}, {165, 128 | 23}, {166, 112}}},
      // 5000 + 1500 = 25 x 256 + 100
      {1, "1500", {{168, 128 | 25}, {169, 90}, {170, 25}, {171, 100}}},
      // a and b alike: 5000 + 700 = 22 x 256 + 68
      {2, "700", {{173, 22}, {174, 68}, {175, 128 | 22}, {176, 68}}},
      // 5000 + 1800 = 26 x 256 + 144, 100 more above it
      {3, "18", {{178, 128 | 26}, {179, 144}, {180, 26}, {181, 244}}},
      // 5000 + 2800 = 30 x 256 + 120, 100 less below it
      {4, "28", {{183, 30}, {184, 20}, {185, 128 | 30}, {186, 120}}},
  };
  for (const auto& [level, typed, bytes] : cases) {
    Show(SampleChartRam());
    Type(panel.txbKelLevel[level], typed);
    ExpectChanged(bytes);
    EXPECT_EQ(panel.txbKelLevel[level].Text(), typed);
  }
}

TEST_F(ChartFormTest, ALevelIsTakenInItsUnit) {
  SetRam(207, {32});
  panel.FormUpdate();
  // 20 and 25 degrees.
  EXPECT_EQ(panel.txbKelLevel[3].Text(), "68");
  EXPECT_EQ(panel.txbKelLevel[4].Text(), "77");
  EXPECT_THAT(Texts(panel.lblFKelunit), ElementsAre("ppm", "ppm", "ppm", "F", "F"));
  Type(panel.txbKelLevel[4], "86");
  EXPECT_EQ(Word(183), 7900);
  EXPECT_EQ(Word(185), 8000);
}

TEST_F(ChartFormTest, EnterInALevelTakesItAndKeepsTheFocus) {
  auto& level = panel.txbKelLevel[1];
  panel.form.GainFocus(level);
  panel.form.ChangeText(level, "1500");
  EXPECT_EQ(level.Back(), test::kWhite);
  EXPECT_TRUE(panel.form.PressKey(level, test::kEnter));
  EXPECT_EQ(Word(170), 6500);
  EXPECT_EQ(panel.form.Focused(), &level);
  EXPECT_EQ(level.Back(), test::kFieldBack);
  EXPECT_EQ(level.Fore(), test::kYellow);
}

TEST_F(ChartFormTest, TheIdIsLimitedAndTakenForAnotherReason) {
  Type(panel.txbID, "35");
  EXPECT_EQ(panel.txbID.Text(), "29");
  EXPECT_EQ(Ram(208), 7);
  Click(panel.cbxKelrelay[0]);
  panel.FormRead();
  EXPECT_EQ(Ram(208), 29);
}

// Taking the form

TEST_F(ChartFormTest, AFormThatIsTakenBackLeavesTheImage) {
  EXPECT_TRUE(panel.FormRead());
  ExpectChanged({});
}

TEST_F(ChartFormTest, TakesTheRelays) {
  EXPECT_THAT(Values(panel.cbxKelrelay), ElementsAre(1, 0, 1, 0, 1));
  panel.cbxKelrelay[0].SetValue(0);
  panel.cbxKelrelay[1].SetValue(1);
  panel.FormRead();
  ExpectChanged({{189, 64 | 32 | 16 | 4 | 2}});
  SetRam(189, {8 | 2});
  panel.FormUpdate();
  EXPECT_THAT(Values(panel.cbxKelrelay), ElementsAre(0, 1, 0, 1, 0));
}

TEST_F(ChartFormTest, AlwaysStoresVariant3) {
  SetRam(226, {1});
  panel.FormUpdate();
  panel.FormRead();
  EXPECT_EQ(Ram(226), 3);
}

TEST_F(ChartFormTest, TheSignsOfTheFunctionsStay) {
  for (const std::size_t high : {163U, 165U, 168U, 170U, 173U, 175U, 178U, 180U, 183U, 185U}) {
    const int flag = (Ram(high) & 128) ^ 128;
    SetRam(high, {(Ram(high) & 127) | flag});
  }
  const auto before = WholeRam();
  panel.FormUpdate();
  panel.FormRead();
  EXPECT_EQ(WholeRam(), before);
}

TEST_F(ChartFormTest, ADisplayModeThatIsNotThereIsKept) {
  SetRam(31, {9});
  panel.FormUpdate();
  EXPECT_EQ(panel.lblDisplayMode.Text(), "");
  panel.FormRead();
  EXPECT_EQ(Ram(31), 9);
}

// TWA on P0

TEST_F(ChartFormTest, OnlyThreeMeansTWAOnP0) {
  for (int byte = 0; byte < 256; ++byte) {
    SetRam(162, {byte});
    panel.FormUpdate();
    EXPECT_EQ(panel.cbxTWAonP0.Value(), byte == 3 ? 1 : 0) << byte;
  }
}

TEST_F(ChartFormTest, TogglingTWARenamesTwoDisplayModesAtOnce) {
  EXPECT_EQ(panel.mDisplayMode[1].Text(), "CO2 TWA");
  EXPECT_EQ(panel.mDisplayMode[3].Text(), "CO2 TWA + CO2");
  EXPECT_EQ(panel.lblDisplayMode.Text(), "CO2 TWA + CO2");
  std::vector<std::string> others;
  for (const int mode : {0, 2, 4}) others.push_back(panel.mDisplayMode[mode].Text());
  EXPECT_TRUE(Click(panel.cbxTWAonP0));
  EXPECT_EQ(panel.mDisplayMode[1].Text(), "TEMP");
  EXPECT_EQ(panel.mDisplayMode[3].Text(), "TEMP + CO2");
  EXPECT_EQ(panel.lblDisplayMode.Text(), "TEMP + CO2");
  EXPECT_EQ(Ram(31), 3);
  for (std::size_t i = 0; i < 3; ++i)
    EXPECT_EQ(panel.mDisplayMode[static_cast<int>(2 * i)].Text(), others[i]);
  EXPECT_TRUE(Click(panel.cbxTWAonP0));
  EXPECT_EQ(panel.mDisplayMode[1].Text(), "CO2 TWA");
  EXPECT_EQ(panel.lblDisplayMode.Text(), "CO2 TWA + CO2");
}

TEST_F(ChartFormTest, TakingTWAOffStoresItAndTheUnit) {
  EXPECT_TRUE(Click(panel.cbxTWAonP0));
  // The first level was read through channel 1 a last time: 800 ppm.
  ExpectChanged({{162, 1}, {205, 16}, {207, 16}});
  EXPECT_TRUE(Click(panel.cbxTWAonP0));
  EXPECT_EQ(Ram(162), 3);
  EXPECT_EQ(Ram(205), 243);
  EXPECT_EQ(Ram(207), 16);
}

TEST_F(ChartFormTest, WithTWAOffTheUnitIsCopiedBeforeItIsShown) {
  TakeTWAOff();
  SetRam(205, {32});
  SetRam(207, {16});
  panel.FormUpdate();
  EXPECT_EQ(Ram(207), 32);
  EXPECT_EQ(panel.lblCH_Type[0].Text(), "F");
}

TEST_F(ChartFormTest, WithTWAOnTheUnitIsLeft) {
  SetRam(207, {32});
  panel.FormUpdate();
  EXPECT_EQ(Ram(205), 243);
  EXPECT_EQ(Ram(207), 32);
  EXPECT_EQ(panel.lblCH_Type[0].Text(), "F");
}

// Units

TEST_F(ChartFormTest, ShowsTheUnitsOfChannels0And1And3) {
  EXPECT_THAT(Texts(panel.lblCH_Type), ElementsAre("C", "ppm", "%"));
}

TEST_F(ChartFormTest, FarenheitWithTWAOff) {
  TakeTWAOff();
  ground.ui.choices = {1};
  EXPECT_TRUE(Click(panel.lblCH_Type[0]));
  EXPECT_THAT(ground.ui.popups, ElementsAre(ElementsAre("C", "F")));
  EXPECT_EQ(panel.lblCH_Type[0].Text(), "F");
  panel.FormRead();
  EXPECT_EQ(Ram(205), 32);
  EXPECT_EQ(Ram(207), 32);
}

TEST_F(ChartFormTest, FarenheitWithTWAOn) {
  ground.ui.choices = {1};
  EXPECT_TRUE(Click(panel.lblCH_Type[0]));
  EXPECT_EQ(panel.lblCH_Type[0].Text(), "F");
  // Byte 205 has the unit itself until the form is taken the next time; 207 follows then.
  EXPECT_EQ(Ram(205), 32);
  EXPECT_EQ(Ram(207), 16);
  panel.FormRead();
  EXPECT_EQ(Ram(205), 243);
  EXPECT_EQ(Ram(207), 32);
  panel.FormUpdate();
  EXPECT_EQ(panel.lblCH_Type[0].Text(), "F");
}

TEST_F(ChartFormTest, CelsiusAgain) {
  TakeTWAOff();
  ground.ui.choices = {1, 0};
  Click(panel.lblCH_Type[0]);
  Click(panel.lblCH_Type[0]);
  EXPECT_EQ(panel.lblCH_Type[0].Text(), "C");
  panel.FormRead();
  EXPECT_EQ(Ram(205), 16);
  EXPECT_EQ(Ram(207), 16);
}

TEST_F(ChartFormTest, AChangeOfUnitShowsLevelsAndLiveValuesInIt) {
  ground.ui.choices = {1};
  Click(panel.lblCH_Type[0]);
  // 21.5 degrees are 70.7.
  EXPECT_EQ(panel.txbCHact[0].Text(), "71");
  EXPECT_EQ(panel.txbKelLevel[3].Text(), "68");
  EXPECT_EQ(panel.txbKelLevel[4].Text(), "77");
  // They were taken in the old unit first.
  EXPECT_EQ(Word(178), 7000);
  EXPECT_EQ(Word(185), 7500);
}

TEST_F(ChartFormTest, AUnitThatIsNoTemperatureCannotBeChosen) {
  Click(panel.lblCH_Type[1]);
  Click(panel.lblCH_Type[2]);
  EXPECT_TRUE(ground.ui.popups.empty());
}

TEST_F(ChartFormTest, ADisplayModeIsChosen) {
  ground.ui.choices = {1};
  EXPECT_TRUE(Click(panel.lblDisplayMode));
  ASSERT_EQ(ground.ui.popups.size(), 1U);
  EXPECT_EQ(ground.ui.popups[0].size(), 5U);
  EXPECT_EQ(ground.ui.popups[0][1], "CO2 TWA");
  EXPECT_EQ(panel.lblDisplayMode.Text(), "CO2 TWA");
  ExpectChanged({{31, 1}});
}

// Live values

TEST_F(ChartFormTest, ShowsTheLiveValuesOfChannels0And1And3) {
  EXPECT_THAT(Texts(panel.txbCHact), ElementsAre("22", "812", "0.236"));
  // The word of channel 2 is skipped.
  SetRam(24, {30, 0});
  panel.FormUpdateM();
  EXPECT_THAT(Texts(panel.txbCHact), ElementsAre("22", "812", "0.236"));
}

TEST_F(ChartFormTest, ShowsWhetherTheCentralUnitIsToAlarm) {
  EXPECT_EQ(panel.txbKELActTempAenable.Text(), "Enabled");
  SetRam(14, {127});
  panel.FormUpdateM();
  EXPECT_EQ(panel.txbKELActTempAenable.Text(), "Disabled");
  SetRam(14, {128});
  panel.FormUpdateM();
  EXPECT_EQ(panel.txbKELActTempAenable.Text(), "Enabled");
}

TEST_F(ChartFormTest, ShowsTheAlarms) {
  EXPECT_THAT(Texts(panel.txbStatus), ElementsAre("OK", "ALARM", "OK", "ALARM", "OK"));
  EXPECT_THAT(StatusBacks(), ElementsAre(kOkBack, kAlarmBack, kOkBack, kAlarmBack, kOkBack));
  SetRam(255, {1 | 4 | 16});
  panel.FormUpdateM();
  EXPECT_THAT(Texts(panel.txbStatus), ElementsAre("ALARM", "OK", "ALARM", "OK", "ALARM"));
  EXPECT_THAT(StatusBacks(), ElementsAre(kAlarmBack, kOkBack, kAlarmBack, kOkBack, kAlarmBack));
}

TEST_F(ChartFormTest, TellsItsAlarmsToWhoeverWatches) {
  const auto alarms = panel.Alarms();
  ASSERT_EQ(alarms.size(), 5U);
  for (std::size_t i = 0; i < alarms.size(); ++i) {
    EXPECT_EQ(alarms[i].state, panel.txbStatus[static_cast<int>(i)].Text()) << i;
  }
}

TEST_F(ChartFormTest, TellsItsLiveValuesToWhoeverWatches) {
  const auto values = panel.LiveValues();
  ASSERT_EQ(values.size(), 3U);
  EXPECT_EQ(values[0].name, "TEMP");
  EXPECT_EQ(values[1].text, "812");
  EXPECT_EQ(values[1].unit, "ppm");
  EXPECT_EQ(values[2].name, "CO2 TWA");
  EXPECT_EQ(values[2].unit, "%");
}

TEST_F(ChartFormTest, InLiveModeALiveValueTakesNoEdit) {
  panel.SimMode(false);
  auto& value = panel.txbCHact[1];
  panel.form.GainFocus(value);
  EXPECT_NE(value.Back(), test::kWhite);
  panel.form.ChangeText(value, "900");
  panel.form.LoseFocus(value);
  EXPECT_EQ(value.Text(), "812");
  EXPECT_EQ(value.Fore(), test::kGreen);
}

}  // namespace
}  // namespace brelant
