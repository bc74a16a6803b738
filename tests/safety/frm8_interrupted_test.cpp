// SPDX-License-Identifier: GPL-3.0-or-later
// Platform 8: what comes in between while the form is edited, read and sent. What reaches the unit is what
// the user meant, and no relay is left without its alarms.
#include "safety/frm8_fixture.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using test::Click;
using test::Type;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Frm8InterruptedTest : public test::Frm8Test {
 protected:
  /// Acts once, when that frame has come.
  void When(const std::string& frame, const std::function<void()>& act) {
    ground.pump.OnPass([this, frame, act, isDone = std::make_shared<bool>(false)] {
      const auto frames = Frames();
      if (*isDone || std::find(frames.begin(), frames.end(), frame) == frames.end()) return false;
      *isDone = true;
      act();
      return true;
    });
  }
  void ExpectRelays() {
    EXPECT_EQ(Setting(4436), 0x0759);
    EXPECT_EQ(Setting(4438), 0x8469);
  }
};

// Fields that have the focus

TEST_F(Frm8InterruptedTest, AFieldWithTheFocusAloneShowsWhatTheUnitHolds) {
  Start();
  for (auto* field : {&panel.txbKelLevel[0], &panel.txbID}) panel.form.GainFocus(*field);
  PutSetting(4244, 1800);
  unit.eeprom[4160] = 12;
  ASSERT_TRUE(panel.FormUpdate());
  EXPECT_EQ(panel.txbKelLevel[0].Text(), "1.8");
  EXPECT_EQ(panel.txbID.Text(), "12");
}

TEST_F(Frm8InterruptedTest, ALevelWithTheFocusFollowsTheUnit) {
  for (const char* typed : {"", "21"}) {
    Start();
    panel.form.GainFocus(panel.txbKelLevel[3]);
    if (*typed != 0) panel.form.ChangeText(panel.txbKelLevel[3], typed);
    ground.ui.choices = {1};
    Click(panel.lblCH_Type[0]);
    EXPECT_EQ(panel.txbKelLevel[3].Text(), "69.8");
    panel.form.LoseFocus(panel.txbKelLevel[3]);
    EXPECT_EQ(Setting(4240), 2100);
    unit.eeprom[7964] = 6;
    panel.LeaveSession();
    session.PanelCommand = 0;
  }
}

// Simulated mode

TEST_F(Frm8InterruptedTest, WhatWasTypedInSimulatedModeIsNeverSent) {
  Start();
  Click(panel.cbxSimulated);
  Type(panel.txbKelLevel[0], "9");
  unit.isSilent = true;
  Click(panel.cbxSimulated);
  unit.isSilent = false;
  session.LastError.clear();
  Type(panel.txbKelLevel[1], "2.6");
  EXPECT_EQ(Setting(4244), 1500);
  Run(milliseconds(1900));
  EXPECT_EQ(panel.txbKelLevel[0].Text(), "1.5");
  EXPECT_EQ(panel.cbxSimulated.Value(), 0);
}

TEST_F(Frm8InterruptedTest, AnEditThatWaitedWhileTheLinkWasLostIsDropped) {
  Start();
  After(milliseconds(500), [this] { unit.isSilent = true; });
  // In the middle of the poll that fails.
  After(milliseconds(2500), [this] { Type(panel.txbKelLevel[0], "2"); });
  After(seconds(60), [this] {
    ASSERT_EQ(panel.cbxSimulated.Value(), 1);
    unit.isSilent = false;
    Click(panel.cbxSimulated);
  });
  Run(seconds(65));
  EXPECT_EQ(panel.txbKelLevel[0].Text(), "1.5");
  EXPECT_EQ(Setting(4244), 1500);
  EXPECT_THAT(Writes(), IsEmpty());
}

// The display

TEST_F(Frm8InterruptedTest, AChoiceThatGoesBackAfterASendingIsSentAgain) {
  Start();
  for (const int choice : {0, 1}) {
    ground.ui.choices = {choice};
    Click(panel.lblDisplayMode[0]);
    Forget();
    ASSERT_TRUE(panel.FormRead(true));
    EXPECT_THAT(Writes(), testing::Contains(choice == 0 ? "E4401 = 4" : "E4401 = 5"));
    Forget();
    ASSERT_TRUE(panel.FormRead(true));
    EXPECT_THAT(Writes(), testing::Not(testing::Contains(HasSubstr("E4401"))));
  }
}

TEST_F(Frm8InterruptedTest, AfterABrokenOffSendingTheDisplayIsSentAgain) {
  Start();
  ground.ui.choices = {0};
  Click(panel.lblDisplayMode[0]);
  When("E4401 = 4", [this] { unit.isSilent = true; });
  EXPECT_FALSE(panel.FormRead(true));
  unit.isSilent = false;
  session.LastError.clear();
  ground.ui.choices = {1};
  Click(panel.lblDisplayMode[0]);
  ASSERT_TRUE(panel.FormRead(true));
  EXPECT_EQ(unit.eeprom[4401], 5);
}

// Between the reset of a relay and its word

TEST_F(Frm8InterruptedTest, ACancelComesTooLateForTheRelays) {
  for (const char* moment : {"E4436 = 153", "E4438 = 153", "E4580 = 37302", "E4436 = 1881"}) {
    session.sessionOver = false;
    Start();
    When(moment, [this] {
      EXPECT_TRUE(Click(ground.msg.Command1));
      // Also one who presses it again.
      After(milliseconds(10), [this] { Click(ground.msg.Command1); });
    });
    ClickInLoop(panel.btnSendToSensor);
    ExpectRelays();
    EXPECT_THAT(Told(), IsEmpty()) << moment;
    EXPECT_EQ(session.LastError, "");
    panel.LeaveSession();
  }
}

TEST_F(Frm8InterruptedTest, ACancelBeforeTheResetStillEndsTheSending) {
  Start();
  panel.txbKelLevel[4].SetText("30");
  When("E4240 = 2100", [this] { EXPECT_TRUE(Click(ground.msg.Command1)); });
  ClickInLoop(panel.btnSendToSensor);
  EXPECT_EQ(Setting(4256), 2300);
  ExpectRelays();
}

TEST_F(Frm8InterruptedTest, AWindowThatIsClosedWaitsForTheRelays) {
  for (const char* moment : {"E4436 = 153", "E4580 = 37302", "E4436 = 1881"}) {
    session.sessionOver = false;
    Start();
    When(moment, [this] { panel.form.Close(); });
    After(milliseconds(100), [this] { Type(panel.txbKelLevel[4], "22"); });
    // Until the window leaves.
    panel.PanelLoop();
    ExpectRelays();
    EXPECT_TRUE(session.sessionOver);
    panel.LeaveSession();
  }
  EXPECT_EQ(ground.sessionsEnded, 3);
}

TEST_F(Frm8InterruptedTest, RelaysThatAreLeftWithoutAlarmsAreToldAndTheTicksAreSentAgain) {
  for (const char* moment : {"E4436 = 153", "E4438 = 153", "E4436 = 1881"}) {
    Start();
    When(moment, [this] { unit.isSilent = true; });
    EXPECT_FALSE(panel.FormRead(true));
    EXPECT_EQ(session.LastError,
              "The unit does not answer.\n\nThe relays may be without alarms until everything has been sent "
              "again.");
    unit.isSilent = false;
    session.LastError.clear();
    ASSERT_TRUE(panel.FormUpdate());
    EXPECT_THAT(Ticked(panel.cbxKelrelay), ElementsAre(0, 1)) << moment;
    EXPECT_THAT(Ticked(panel.cbxKelrelay2), ElementsAre(2, 3, 4)) << moment;
    ASSERT_TRUE(panel.FormRead(true));
    ExpectRelays();
    panel.LeaveSession();
  }
}

TEST_F(Frm8InterruptedTest, ALevelThatLooksLikeAResetIsNone) {
  Start();
  panel.txbKelLevel[0].SetText("0.153");
  When("E4244 = 153", [this] { unit.isSilent = true; });
  EXPECT_FALSE(panel.FormRead(true));
  EXPECT_EQ(session.LastError, "The unit does not answer.");
}

}  // namespace
}  // namespace brelant
