// SPDX-License-Identifier: GPL-3.0-or-later
// What the panels of platform 8 show of a unit, and what they do without one.
#include "safety/frm8_fixture.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using test::Click;
using test::Type;
using testing::ElementsAre;
using testing::IsEmpty;

class Frm8LiveTest : public test::Frm8Test {};
class Frm8TankLiveTest : public test::Frm8TankTest {};

TEST_F(Frm8LiveTest, APollAsksForTheValuesThenSixTimesForTheStateByte) {
  Start();
  ASSERT_TRUE(panel.FormUpdateM());
  EXPECT_THAT(Frames(),
              ElementsAre("R20+4", "R28+2", "R383+1", "R383+1", "R383+1", "R383+1", "R383+1", "R383+1"));
}

TEST_F(Frm8TankLiveTest, APollAsksForTheWeightToo) {
  Start();
  PutLive(11, 37);
  ASSERT_TRUE(panel.FormUpdateM());
  EXPECT_THAT(Frames(), ElementsAre("R20+4", "R28+2", "R34+2", "R383+1", "R383+1", "R383+1", "R383+1",
                                    "R383+1", "R383+1"));
  EXPECT_EQ(panel.txbCHact[5].Text(), "37");
}

TEST_F(Frm8LiveTest, EachValueHasItsScale) {
  struct Case {
    int temperature;
    int co2;
    int twa;
    std::vector<std::string> celsius;
    const char* fahrenheit;
  };
  Start();
  for (const auto& [temperature, co2, twa, celsius, fahrenheit] : {
           Case{2200, 1830, 620, {"22", "1.83", "620"}, "71.6"},
           Case{-550, -1, -20, {"-5.5", "-0.001", "-20"}, "22.1"},
           Case{0, 0, 0, {"0", "0", "0"}, "32"},
           Case{32767, 32767, 32767, {"327.67", "32.767", "32767"}, "621.81"},
           Case{-32768, -32768, -32768, {"-327.68", "-32.768", "-32768"}, "-557.82"},
       }) {
    PutLive(4, temperature);
    PutLive(5, co2);
    PutLive(8, twa);
    panel.lblCH_Type[0].SetText("°C");
    ASSERT_TRUE(panel.FormUpdateM());
    EXPECT_EQ(Texts(panel.txbCHact), celsius);
    panel.lblCH_Type[0].SetText("°F");
    ASSERT_TRUE(panel.FormUpdateM());
    EXPECT_EQ(panel.txbCHact[0].Text(), fahrenheit);
    EXPECT_EQ(panel.txbCHact[1].Text(), celsius[1]);
  }
}

// Bits 0 to 4 and 7 of the byte; 5 and 6 are nothing.
TEST_F(Frm8LiveTest, EveryStateByteIsShown) {
  Start();
  for (int state = 0; state < 256; ++state) {
    StateByte() = static_cast<std::uint8_t>(state);
    ASSERT_TRUE(panel.FormUpdateM());
    for (int i = 0; i < 5; ++i) {
      const bool isOn = (state >> i) % 2 == 1;
      ASSERT_EQ(panel.txbStatus[i].Text(), isOn ? "ALARM" : "OK") << state;
      ASSERT_EQ(panel.txbStatus[i].Back(), isOn ? test::kRed : test::kGreen) << state;
    }
    ASSERT_EQ(panel.txbKELActTempAenable.Text(), state >= 128 ? "Enabled" : "Disabled") << state;
  }
}

TEST_F(Frm8LiveTest, WhoeverWatchesIsToldValuesAndAlarms) {
  Start();
  PutLive(4, 2150);
  StateByte() = 8;
  ASSERT_TRUE(panel.FormUpdateM());
  const auto values = panel.LiveValues();
  ASSERT_EQ(values.size(), 3U);
  EXPECT_EQ(values[0].text, "21.5");
  EXPECT_EQ(values[0].unit, "°C");
  EXPECT_EQ(values[1].unit, "%");
  EXPECT_EQ(values[2].unit, "ppm");
  const auto alarms = panel.Alarms();
  ASSERT_EQ(alarms.size(), 5U);
  EXPECT_EQ(alarms[3].name, "TEMP 1 low");
  EXPECT_EQ(alarms[3].state, "ALARM");
  EXPECT_EQ(alarms[4].state, "OK");
}

TEST_F(Frm8LiveTest, PollsEveryTwoSeconds) {
  Start();
  Run(milliseconds(6900));
  EXPECT_EQ(session.polls, 4U);
  EXPECT_THAT(Told(), IsEmpty());
}

TEST_F(Frm8LiveTest, AUnitThatFallsSilentEndsInSimulatedMode) {
  Start();
  After(seconds(1), [this] { unit.isSilent = true; });
  Run(seconds(60));
  EXPECT_THAT(Told(), ElementsAre(test::kNoUnit));
  EXPECT_FALSE(port.PortOpen());
  EXPECT_EQ(panel.cbxSimulated.Value(), 1);
  EXPECT_EQ(panel.form.Caption(), "BRELANT Simulated mode");
}

TEST_F(Frm8LiveTest, AfterALostLinkUntickingConnectsAgainAsTheFirstTime) {
  Start();
  After(seconds(1), [this] { unit.isSilent = true; });
  After(seconds(60), [this] {
    ASSERT_FALSE(port.PortOpen());
    unit.isSilent = false;
    PutSetting(4256, 2450);
    // The dialog's settings are those of the next session.
    ground.Choose(frmComSet::networkSensor, frmComSet::kiBus, "9");
    ground.comSet.txbComPort.SetText("8");
    port.Forget();
    Click(panel.cbxSimulated);
    EXPECT_EQ(port.Sent().front(), 254);
    EXPECT_EQ(panel.txbKelLevel[4].Text(), "24.5");
  });
  Run(seconds(70));
  EXPECT_EQ(port.selected, "1");
  EXPECT_EQ(panel.cbxSimulated.Value(), 0);
  EXPECT_EQ(panel.form.Caption(), "BRELANT");
}

TEST_F(Frm8LiveTest, ANetworkUnitIsAddressedByItsId) {
  ground.Choose(frmComSet::networkSensor, frmComSet::kiBus, "17");
  unit.isSilent = true;
  EXPECT_FALSE(panel.FormUpdateInit());
  EXPECT_EQ(port.Sent().front(), 224 + 17);
}

// Without a unit

TEST_F(Frm8LiveTest, WithoutAUnitNothingIsAskedOrSent) {
  Start(frmComSet::simulatedMode);
  EXPECT_TRUE(panel.FormUpdate());
  EXPECT_TRUE(panel.FormUpdateM());
  EXPECT_TRUE(panel.FormRead(true));
  Type(panel.txbKelLevel[0], "2");
  Run(seconds(10));
  EXPECT_THAT(port.Story(), IsEmpty());
  EXPECT_THAT(Told(), IsEmpty());
  EXPECT_EQ(panel.txbKelLevel[0].Text(), "2");
}

TEST_F(Frm8LiveTest, WithoutAUnitTheValuesAreComparedWithTheLevels) {
  struct Case {
    std::vector<std::string> values;
    std::vector<std::string> states;
  };
  Start();
  panel.SimMode(true);
  const std::vector<std::string> levels{"1,5", "2.5", "500", "10", "30"};
  for (int i = 0; i < 5; ++i) panel.txbKelLevel[i].SetText(levels.at(static_cast<std::size_t>(i)));
  for (const auto& [values, states] : {
           Case{{"20", "1.4", "499"}, {"OK", "OK", "OK", "OK", "OK"}},
           Case{{"10", "1.5", "500"}, {"ALARM", "OK", "ALARM", "ALARM", "OK"}},
           Case{{"30", "2,5", "501"}, {"ALARM", "ALARM", "ALARM", "OK", "ALARM"}},
           Case{{"-4", "", "x"}, {"OK", "OK", "OK", "ALARM", "OK"}},
       }) {
    for (int i = 0; i < 3; ++i) panel.txbCHact[i].SetText(values.at(static_cast<std::size_t>(i)));
    panel.Simulate();
    EXPECT_EQ(Texts(panel.txbStatus), states);
  }
}

TEST_F(Frm8LiveTest, LiveValuesAreTypedInSimulatedModeOnly) {
  Start();
  const auto before = panel.txbCHact[0].Text();
  Type(panel.txbCHact[0], "50");
  EXPECT_EQ(panel.txbCHact[0].Text(), before);
  panel.SimMode(true);
  Type(panel.txbCHact[0], "50");
  EXPECT_EQ(panel.txbCHact[0].Text(), "50");
}

TEST_F(Frm8LiveTest, TheStateLineTogglesInSimulatedModeOnly) {
  Start();
  StateByte() = 128;
  ASSERT_TRUE(panel.FormUpdateM());
  const auto focus = [this] {
    panel.form.GainFocus(panel.txbKELActTempAenable);
    panel.form.LoseFocus(panel.txbKELActTempAenable);
    return panel.txbKELActTempAenable.Text();
  };
  EXPECT_EQ(focus(), "Enabled");
  panel.SimMode(true);
  EXPECT_EQ(focus(), "Disabled");
  EXPECT_EQ(focus(), "Enabled");
  EXPECT_EQ(focus(), "Disabled");
}

TEST_F(Frm8LiveTest, SimulatedModeHasColoursCaptionAndNoCommands) {
  Start();
  const std::vector<std::string> commands{
      "mReadfromsensor", "mSendtosensor", "mCalibrate", "btnReadFromSensor", "btnSendToSensor",
      "mLoadsettings",   "mSavesettings", "CalTemp",    "mCalCO2Zero",       "mCalCO2Background",
      "mCalCO2Other",    "mCalCO2span",   "mTWAreset"};
  for (const bool on : {true, false}) {
    panel.SimMode(on);
    EXPECT_EQ(panel.cbxSimulated.Value(), on ? 1 : 0);
    EXPECT_EQ(panel.form.Caption(), on ? "BRELANT Simulated mode" : "BRELANT");
    EXPECT_EQ(session.LastError, on ? "" : "Avbryt");
    for (const auto* field : panel.txbCHact) EXPECT_EQ(field->Fore(), on ? test::kYellow : test::kGreen);
    for (const auto& name : commands) {
      const auto* control = panel.form.Find(name);
      ASSERT_NE(control, nullptr) << name;
      EXPECT_EQ(control->Enabled(), !on) << name;
    }
  }
}

TEST_F(Frm8LiveTest, TheEndOfASessionSendsNothing) {
  Start();
  panel.txbKelLevel[0].SetText("9");
  panel.LeaveSession();
  EXPECT_TRUE(static_cast<Panel&>(panel).FormRead());
  EXPECT_THAT(Writes(), IsEmpty());
  EXPECT_FALSE(port.PortOpen());
}

TEST_F(Frm8LiveTest, ExitAndTheButtonLeaveThePanel) {
  for (const char* name : {"mExit", "Command1"}) {
    session.sessionOver = false;
    session.PanelCommand = 0;
    Start();
    After(milliseconds(500), [&] { Click(*panel.form.Find(name)); });
    panel.PanelLoop();
    EXPECT_TRUE(session.sessionOver);
  }
  EXPECT_EQ(ground.sessionsEnded, 2);
}

TEST_F(Frm8LiveTest, HelpIsThePageOfThePlatform) {
  Start();
  Click(panel.mHelp);
  EXPECT_THAT(ground.ui.opened, ElementsAre("C:\\KVX\\help8.html"));
}

}  // namespace
}  // namespace brelant
