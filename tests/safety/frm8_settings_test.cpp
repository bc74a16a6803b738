// SPDX-License-Identifier: GPL-3.0-or-later
// Settings of the units of platform 8: what is read into the form, what is edited, what is sent.
#include <map>

#include "safety/frm8_fixture.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using test::Click;
using test::Type;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kOnlyThree = "Only 3 channels can be chosen at the same time for each relay";
constexpr const char* kUnread = "The settings of the unit have not been read.";

class Frm8SettingsTest : public test::Frm8Test {
 protected:
  void Read() { ASSERT_TRUE(panel.FormUpdate()) << session.LastError; }
  /// The last writes of the relay words.
  std::vector<std::string> RelayWrites() {
    Forget();
    EXPECT_TRUE(panel.FormRead(true));
    const auto writes = Writes();
    return {writes.end() - 2, writes.end()};
  }
  std::vector<std::string> WritesOf(const std::string& start) {
    Forget();
    EXPECT_TRUE(panel.FormRead(true)) << session.LastError;
    auto writes = Writes();
    std::erase_if(writes, [&](const auto& each) { return !each.starts_with(start); });
    return writes;
  }
  void Untick(const ControlArray& boxes) {
    for (auto* box : boxes) box->SetValue(0);
  }
};
class Frm8TankSettingsTest : public test::Frm8TankTest {};

// Reading

TEST_F(Frm8SettingsTest, AsksInTheToldOrder) {
  Start();
  Read();
  EXPECT_THAT(Frames(), ElementsAre("E4401+4",                                              // display
                                    "E8166+1", "E8167+1", "E8168+1", "R65+1",               // serial number
                                    "E4160+1",                                              // ID
                                    "E7964+2", "E7968+1",                                   // units
                                    "E4244+2", "E4252+2", "E4248+2", "E4240+2", "E4256+2",  // levels
                                    "E4580+2",                                              // output P0
                                    "E4436+4"));                                            // relays
}

TEST_F(Frm8SettingsTest, ShowsANewUnit) {
  Start();
  EXPECT_EQ(panel.txbSN.Text(), "4001042");
  EXPECT_EQ(panel.txbID.Text(), "1");
  EXPECT_EQ(panel.txbVersion.Text(), "1");
  EXPECT_THAT(Texts(panel.lblCH_Type), ElementsAre("°C", "%", "ppm"));
  EXPECT_THAT(Texts(panel.lblFKelunit), ElementsAre("%", "%", "ppm", "°C", "°C"));
  EXPECT_THAT(Texts(panel.txbKelLevel), ElementsAre("1.5", "2.5", "18000", "21", "23"));
  EXPECT_EQ(panel.cbxTWAonP0.Value(), 1);
  EXPECT_THAT(Ticked(panel.cbxKelrelay), ElementsAre(0, 1));
  EXPECT_THAT(Ticked(panel.cbxKelrelay2), ElementsAre(2, 3, 4));
  const auto& modes = panel.mDisplayMode;
  EXPECT_THAT(Texts(panel.lblDisplayMode),
              ElementsAre(modes[5].Text(), modes[4].Text(), modes[8].Text(), modes[5].Text()));
}

TEST_F(Frm8TankSettingsTest, HasAFieldForTheWeight) {
  Start();
  EXPECT_EQ(panel.txbVersion.Text(), "2");
  ASSERT_EQ(panel.txbCHact.Count(), 6);
  for (const int i : {0, 1, 2, 5}) EXPECT_TRUE(panel.txbCHact[i].Visible()) << i;
  for (const int i : {3, 4}) EXPECT_FALSE(panel.txbCHact[i].Visible()) << i;
  EXPECT_EQ(panel.txbStatus.Count(), 5);
  EXPECT_EQ(panel.LiveValues().size(), 4U);
}

TEST_F(Frm8SettingsTest, EachLevelGoesToItsField) {
  PutSetting(4244, 1234);  // CO2 pre
  PutSetting(4252, -1);    // main
  PutSetting(4248, 777);   // TWA
  PutSetting(4240, -550);  // low temperature
  PutSetting(4256, 3005);  // high
  for (const int copy : {4246, 4254, 4250, 4242, 4258}) PutSetting(static_cast<std::size_t>(copy), 9);
  Start();
  EXPECT_THAT(Texts(panel.txbKelLevel), ElementsAre("1.234", "-0.001", "777", "-5.5", "30.05"));
  unit.eeprom[7964] = 10;
  Read();
  EXPECT_THAT(Texts(panel.txbKelLevel), ElementsAre("1.234", "-0.001", "777", "22.1", "86.09"));
  EXPECT_THAT(Texts(panel.lblFKelunit), ElementsAre("%", "%", "ppm", "°F", "°F"));
}

TEST_F(Frm8SettingsTest, OnlyOneWordMeansThatCO2DrivesTheOutput) {
  Start();
  for (const auto& [word, value] : {std::pair{37301, 0}, {37302, 1}, {37300, 1}, {0, 1}, {65535, 1}}) {
    PutSetting(4580, word);
    Read();
    EXPECT_EQ(panel.cbxTWAonP0.Value(), value) << word;
  }
}

TEST_F(Frm8SettingsTest, EveryNibbleOfARelayWordTicksItsBox) {
  Start();
  const std::map<int, int> boxOf{{5, 0}, {7, 1}, {6, 2}, {4, 3}, {8, 4}};
  for (int nibble = 0; nibble < 16; ++nibble) {
    const auto box = boxOf.find(nibble);
    const std::vector<int> ticked = box == boxOf.end() ? std::vector<int>{} : std::vector{box->second};
    for (const int shift : {4, 8, 12}) {
      // The others are 9, which is no alarm; the lowest one is not looked at.
      const int word = (0x9990 & ~(15 << shift)) | nibble << shift | 5;
      PutSetting(4436, word);
      PutSetting(4438, word);
      Read();
      EXPECT_EQ(Ticked(panel.cbxKelrelay), ticked) << word;
      EXPECT_EQ(Ticked(panel.cbxKelrelay2), ticked) << word;
    }
  }
}

TEST_F(Frm8SettingsTest, AReadThatFailsLeavesTheFields) {
  Start();
  unit.eeprom[4401] = 8;
  unit.eeprom[4160] = 12;
  PutSetting(4244, 1000);
  PutSetting(4436, 0x9999);
  // The unit falls silent before the last answer.
  ground.pump.OnPass([this] {
    const auto frames = Frames();
    if (!frames.empty() && frames.back().starts_with("E4580")) unit.isSilent = true;
    return false;
  });
  EXPECT_FALSE(panel.FormUpdate());
  EXPECT_EQ(Frames().back(), "E4580+2");
  EXPECT_EQ(panel.lblDisplayMode[0].Text(), "CO2");
  EXPECT_EQ(panel.txbID.Text(), "1");
  EXPECT_EQ(panel.txbKelLevel[0].Text(), "1.5");
  EXPECT_THAT(Ticked(panel.cbxKelrelay), ElementsAre(0, 1));
}

// Sending

TEST_F(Frm8SettingsTest, SendsAllInTheToldOrderAndReadsNothingBack) {
  Start();
  ASSERT_TRUE(panel.FormRead(true));
  EXPECT_THAT(Frames(), ElementsAre("E7964+1", "E7964 = 6",            // Celsius, beside the rest of its byte
                                    "E4160 = 1",                       // ID
                                    "E4244 = 1500", "E4246 = 1500",    // CO2 pre
                                    "E4252 = 2500", "E4254 = 2500",    // main
                                    "E4248 = 18000", "E4250 = 18000",  // TWA
                                    "E4240 = 2100", "E4242 = 2100",    // low temperature
                                    "E4256 = 2300", "E4258 = 2300",    // high
                                    "E4436 = 153", "E4438 = 153",      // relays cleared
                                    "E4580 = 37302",                   // TWA on P0
                                    "E4436 = 1881", "E4438 = 33897"));  // 0x0759, 0x8469
  EXPECT_THAT(Told(), IsEmpty());
}

TEST_F(Frm8SettingsTest, WhatIsReadComesBackAsItWas) {
  for (const std::uint8_t unitBits : {6, 10}) {
    for (const int word : {-32768, -550, -1, 0, 1, 99, 2100, 2101, 2102, 2103, 12345, 32767}) {
      unit.eeprom[7964] = unitBits;
      for (const std::size_t level : {4240, 4244, 4248, 4252, 4256}) {
        PutSetting(level, word);
        PutSetting(level + 2, word);
      }
      Start();
      const auto before = unit.eeprom;
      ASSERT_TRUE(panel.FormRead(true)) << session.LastError;
      EXPECT_EQ(unit.eeprom, before) << word << " " << int{unitBits};
      panel.LeaveSession();
    }
  }
}

TEST_F(Frm8SettingsTest, EachLevelIsScaledAndWrittenTwice) {
  Start();
  const std::vector<std::string> levels{"1,234", "0.0004", "620.6", "-5.504", "100"};
  for (int i = 0; i < 5; ++i) panel.txbKelLevel[i].SetText(levels.at(static_cast<std::size_t>(i)));
  EXPECT_THAT(WritesOf("E42"),
              ElementsAre("E4244 = 1234", "E4246 = 1234", "E4252 = 0", "E4254 = 0", "E4248 = 621",
                          "E4250 = 621", "E4240 = 64986", "E4242 = 64986", "E4256 = 10000", "E4258 = 10000"));
}

TEST_F(Frm8SettingsTest, InFahrenheit32IsSentAs0) {
  unit.eeprom[7964] = 10;
  Start();
  for (const auto& [text, raw] :
       {std::pair{"32", "0"}, {"71.6", "2200"}, {"31", "65480"}, {"212", "10000"}}) {
    panel.txbKelLevel[3].SetText(text);
    EXPECT_THAT(WritesOf("E4240"), ElementsAre("E4240 = " + std::string(raw))) << text;
  }
  EXPECT_THAT(WritesOf("E7964"), ElementsAre("E7964 = 10"));
}

TEST_F(Frm8SettingsTest, AllBoxesClearMakeTheWord9) {
  Start();
  Untick(panel.cbxKelrelay);
  Untick(panel.cbxKelrelay2);
  EXPECT_THAT(RelayWrites(), ElementsAre("E4436 = 9", "E4438 = 9"));
}

TEST_F(Frm8SettingsTest, EveryChoiceOfUpToThreeBoxesHasItsWord) {
  Start();
  const std::vector<int> numbers{5, 7, 6, 4, 8};
  for (int choice = 0; choice < 32; ++choice) {
    int word = 9;
    int shift = 4;
    for (int i = 0; i < 5; ++i) {
      const bool isTicked = (choice >> i) % 2 == 1;
      panel.cbxKelrelay[i].SetValue(isTicked ? 1 : 0);
      panel.cbxKelrelay2[4 - i].SetValue(0);
      if (!isTicked) continue;
      word += numbers.at(static_cast<std::size_t>(i)) << shift;
      shift += 4;
    }
    if (shift > 16) continue;
    EXPECT_THAT(RelayWrites(), ElementsAre("E4436 = " + std::to_string(word), "E4438 = 9")) << choice;
  }
}

TEST_F(Frm8SettingsTest, TheOutputFollowsItsBox) {
  Start();
  EXPECT_THAT(WritesOf("E4580"), ElementsAre("E4580 = 37302"));
  Click(panel.cbxTWAonP0);
  EXPECT_THAT(WritesOf("E4580"), ElementsAre("E4580 = 37301"));
}

TEST_F(Frm8SettingsTest, OnlyAChangedPositionOfTheDisplayIsSent) {
  Start();
  EXPECT_THAT(WritesOf("E440"), IsEmpty());
  ground.ui.choices = {1, 2, 0};  // of 4, 5 and 8
  Click(panel.lblDisplayMode[1]);
  Click(panel.lblDisplayMode[0]);
  Click(panel.lblDisplayMode[3]);
  ASSERT_EQ(ground.ui.popups.front().size(), 3U);
  EXPECT_THAT(WritesOf("E440"), ElementsAre("E4401 = 8", "E4402 = 5", "E4404 = 4"));
}

TEST_F(Frm8SettingsTest, APositionThatTheMenuDoesNotHaveStays) {
  unit.eeprom[4402] = 11;
  unit.eeprom[4403] = 200;
  Start();
  EXPECT_EQ(panel.lblDisplayMode[1].Text(), "");
  EXPECT_THAT(WritesOf("E440"), IsEmpty());
}

TEST_F(Frm8SettingsTest, ALevelWithoutRoomIsRefusedBeforeAnythingIsSent) {
  Start();
  panel.txbKelLevel[1].SetText("40");
  EXPECT_FALSE(panel.FormRead(true));
  EXPECT_EQ(session.LastError, "The value 40 does not fit into its place.");
  EXPECT_THAT(unit.frames, IsEmpty());
}

TEST_F(Frm8SettingsTest, AFailureOfTheLineIsToldByTheCommand) {
  Start();
  After(milliseconds(600), [this] {
    unit.isSilent = true;
    Click(panel.btnSendToSensor);
  });
  Run(seconds(60));
  EXPECT_THAT(Told(), ElementsAre("The unit does not answer.", test::kNoUnit));
}

// Settings that have never been read whole

TEST_F(Frm8SettingsTest, NothingIsSentOfSettingsThatWereNeverRead) {
  ground.Choose(frmComSet::singleSensor, frmComSet::kiBus);
  ASSERT_TRUE(panel.FormUpdateInit());
  Forget();
  EXPECT_FALSE(panel.FormRead(true));
  EXPECT_EQ(session.LastError, kUnread);
  EXPECT_THAT(unit.frames, IsEmpty());
}

TEST_F(Frm8SettingsTest, TheyAreReadWithALaterPoll) {
  ground.Choose(frmComSet::singleSensor, frmComSet::kiBus);
  ASSERT_TRUE(panel.FormUpdateInit());
  Run(milliseconds(1900));
  EXPECT_EQ(panel.txbKelLevel[4].Text(), "23");
}

// Edits

TEST_F(Frm8SettingsTest, AFinishedEditIsSentAndReadBack) {
  Start();
  Type(panel.txbKelLevel[4], "22,456");
  EXPECT_EQ(Setting(4256), 2246);
  EXPECT_EQ(Setting(4258), 2246);
  // As the unit's grain allows.
  EXPECT_EQ(panel.txbKelLevel[4].Text(), "22.46");
  EXPECT_EQ(Frames().back(), "E4436+4");
  EXPECT_THAT(Told(), IsEmpty());
}

TEST_F(Frm8SettingsTest, ARefusedEditIsToldAndTheUnitsValueShownAgain) {
  Start();
  Type(panel.txbKelLevel[1], "40");
  EXPECT_THAT(Told(), ElementsAre("The value 40 does not fit into its place."));
  EXPECT_THAT(Writes(), IsEmpty());
  EXPECT_EQ(panel.txbKelLevel[1].Text(), "2.5");
}

TEST_F(Frm8SettingsTest, ALevelBeingTypedIsNeitherSentNorOverwritten) {
  Start();
  panel.form.GainFocus(panel.txbKelLevel[3]);
  panel.form.ChangeText(panel.txbKelLevel[3], "9");
  PutSetting(4240, 1850);
  Read();
  EXPECT_EQ(panel.txbKelLevel[3].Text(), "9");
  EXPECT_THAT(WritesOf("E4240"), ElementsAre("E4240 = 1850"));
  panel.form.LoseFocus(panel.txbKelLevel[3]);
  EXPECT_EQ(Setting(4240), 900);
}

TEST_F(Frm8SettingsTest, ChoicesMadeWhileAnEditIsSentAreKept) {
  Start();
  After(milliseconds(200), [this] {
    Click(panel.cbxKelrelay[2]);
    Click(panel.cbxTWAonP0);
    ground.ui.choices = {2};
    Click(panel.lblDisplayMode[0]);
  });
  Type(panel.txbKelLevel[4], "22");
  EXPECT_THAT(Ticked(panel.cbxKelrelay), ElementsAre(0, 1, 2));
  EXPECT_EQ(Setting(4436), 0x0759);
  EXPECT_EQ(panel.cbxTWAonP0.Value(), 0);
  ASSERT_TRUE(panel.FormRead(true));
  EXPECT_EQ(Setting(4436), 0x6759);
  EXPECT_EQ(Setting(4580), 37301);
  EXPECT_EQ(unit.eeprom[4401], 8);
}

TEST_F(Frm8SettingsTest, ReadFromSensorDropsChoicesThatWereNotSent) {
  Start();
  Click(panel.cbxKelrelay[0]);
  Type(panel.txbID, "7");
  ASSERT_TRUE(panel.ActionSensorRead());
  EXPECT_THAT(Ticked(panel.cbxKelrelay), ElementsAre(0, 1));
  EXPECT_EQ(panel.txbID.Text(), "1");
}

// The ID

TEST_F(Frm8SettingsTest, AnIdAbove29Becomes29) {
  Start();
  for (const auto& [typed, shown] :
       {std::pair{"45", "29"}, {"29", "29"}, {"30", "29"}, {"7", "7"}, {"", "0"}}) {
    Type(panel.txbID, typed);
    EXPECT_EQ(panel.txbID.Text(), shown) << typed;
  }
  EXPECT_THAT(unit.frames, IsEmpty());
}

TEST_F(Frm8SettingsTest, TheIdIsAnEditField) {
  Start();
  panel.form.GainFocus(panel.txbID);
  EXPECT_EQ(panel.txbID.Back(), test::kWhite);
  EXPECT_EQ(panel.txbID.Fore(), test::kBlack);
  EXPECT_TRUE(panel.form.PressKey(panel.txbID, test::kEnter));
  EXPECT_EQ(panel.txbID.Back(), test::kFieldBack);
  EXPECT_EQ(panel.txbID.Fore(), test::kYellow);
}

TEST_F(Frm8SettingsTest, TheIdGoesWithTheNextSending) {
  Start();
  Type(panel.txbID, "45");
  EXPECT_EQ(unit.eeprom[4160], 1);
  Type(panel.txbKelLevel[4], "22");
  EXPECT_EQ(unit.eeprom[4160], 29);
  EXPECT_EQ(panel.txbID.Text(), "29");
}

TEST_F(Frm8SettingsTest, AnIdBeingTypedIsNeitherSentNorOverwritten) {
  Start();
  panel.form.GainFocus(panel.txbID);
  panel.form.ChangeText(panel.txbID, "2");
  EXPECT_THAT(WritesOf("E4160"), ElementsAre("E4160 = 1"));
  Read();
  EXPECT_EQ(panel.txbID.Text(), "2");
}

// The relay rule

TEST_F(Frm8SettingsTest, AFourthBoxOfARelayIsRefused) {
  Start();
  Click(panel.cbxKelrelay[2]);
  EXPECT_THAT(Told(), IsEmpty());
  for (const int box : {3, 4}) {
    Forget();
    Click(panel.cbxKelrelay[box]);
    EXPECT_THAT(Told(), ElementsAre(kOnlyThree));
    EXPECT_THAT(Ticked(panel.cbxKelrelay), ElementsAre(0, 1, 2));
  }
  Forget();
  // The other relay has three already.
  Click(panel.cbxKelrelay2[0]);
  EXPECT_THAT(Told(), ElementsAre(kOnlyThree));
  EXPECT_THAT(Ticked(panel.cbxKelrelay2), ElementsAre(2, 3, 4));
  Forget();
  Click(panel.cbxKelrelay[0]);
  Click(panel.cbxKelrelay[4]);
  EXPECT_THAT(Told(), IsEmpty());
  EXPECT_THAT(Ticked(panel.cbxKelrelay), ElementsAre(1, 2, 4));
  EXPECT_THAT(unit.frames, IsEmpty());
}

// The temperature unit

TEST_F(Frm8SettingsTest, AChosenUnitIsSentAtOnceAndTheFormFilledAgain) {
  Start();
  PutLive(4, 2200);
  ASSERT_TRUE(panel.FormUpdateM());
  Forget();
  ground.ui.choices = {1};
  Click(panel.lblCH_Type[0]);
  EXPECT_THAT(ground.ui.popups.back(), ElementsAre("C", "F"));
  EXPECT_THAT(Writes(), ElementsAre("E7964 = 10"));
  EXPECT_EQ(session.PanelCommand, 2);
  // The form is right even before it is filled again.
  EXPECT_EQ(panel.lblCH_Type[0].Text(), "°F");
  EXPECT_THAT(Texts(panel.lblFKelunit), ElementsAre("%", "%", "ppm", "°F", "°F"));
  EXPECT_THAT(Texts(panel.txbKelLevel), ElementsAre("1.5", "2.5", "18000", "69.8", "73.4"));
  EXPECT_EQ(panel.txbCHact[0].Text(), "71.6");
  PutSetting(4256, 2450);
  Run(milliseconds(1900));
  EXPECT_THAT(Texts(panel.txbKelLevel), ElementsAre("1.5", "2.5", "18000", "69.8", "76.1"));
  EXPECT_EQ(session.PanelCommand, 0);
}

TEST_F(Frm8SettingsTest, BackToCelsius) {
  unit.eeprom[7964] = 10;
  Start();
  ASSERT_EQ(panel.txbKelLevel[3].Text(), "69.8");
  ground.ui.choices = {0};
  Click(panel.lblCH_Type[0]);
  EXPECT_THAT(Writes(), ElementsAre("E7964 = 6"));
  EXPECT_EQ(panel.lblCH_Type[0].Text(), "°C");
  EXPECT_EQ(panel.txbKelLevel[3].Text(), "21");
  EXPECT_THAT(WritesOf("E4240"), ElementsAre("E4240 = 2100"));
}

TEST_F(Frm8SettingsTest, AMenuThatIsLeftChangesNothing) {
  Start();
  Click(panel.lblCH_Type[0]);
  Click(panel.lblDisplayMode[0]);
  EXPECT_THAT(unit.frames, IsEmpty());
  EXPECT_EQ(session.PanelCommand, 0);
  EXPECT_EQ(panel.lblCH_Type[0].Text(), "°C");
}

TEST_F(Frm8SettingsTest, AUnitThatCouldNotBeSentIsNotShown) {
  Start();
  unit.isSilent = true;
  ground.ui.choices = {1};
  Click(panel.lblCH_Type[0]);
  EXPECT_THAT(Told(), ElementsAre("The unit does not answer."));
  EXPECT_EQ(panel.lblCH_Type[0].Text(), "°C");
  EXPECT_EQ(panel.txbKelLevel[3].Text(), "21");
  EXPECT_EQ(session.PanelCommand, 0);
}

TEST_F(Frm8SettingsTest, WithoutAUnitOnlyTheTextsChange) {
  Start(frmComSet::simulatedMode);
  panel.txbKelLevel[3].SetText("20");
  ground.ui.choices = {1};
  Click(panel.lblCH_Type[0]);
  EXPECT_EQ(panel.txbKelLevel[3].Text(), "68");
  EXPECT_EQ(panel.lblFKelunit[4].Text(), "°F");
  EXPECT_THAT(port.Story(), IsEmpty());
}

TEST_F(Frm8SettingsTest, TheMenusHaveTheToldNames) {
  for (const char* name :
       {"mTempUnit", "mTempUnitCelsius", "mTempUnitFarenheit", "mTimeUnits", "mTimeUnitMin", "mTimeUnitSec",
        "mDisplayModes", "mDisplayMode(4)", "mDisplayMode(8)", "mTWAreset", "mCalCO2Zero",
        "mCalCO2Background", "mCalCO2Other", "mCalCO2span", "CalTemp"}) {
    EXPECT_NE(panel.form.Find(name), nullptr) << name;
  }
  for (const char* name : {"mTempUnitFahrenheit", "txbCHact(3)", "txbStatus(5)", "cbxKelrelay(5)",
                           "mCalWeightEmpty", "mLoggerExp"}) {
    EXPECT_EQ(panel.form.Find(name), nullptr) << name;
  }
}

}  // namespace
}  // namespace brelant
