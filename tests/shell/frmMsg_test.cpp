// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/frmMsg.h"

#include <gtest/gtest.h>

#include "support/virtual_machine.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;

class frmMsgTest : public testing::Test {
 protected:
  void Pass(milliseconds time) {
    const auto end = machine.clock.Now() + time;
    while (machine.clock.Now() < end) machine.pump.Wait(end);
  }

  test::VirtualMachine<test::ScriptedPort> machine;
  Session session;
  Screen screen;
  frmMsg box{session, machine.pump, screen};
  Form owner{screen, "owner", "Owner"};
};

TEST_F(frmMsgTest, HasNoCaptionAndACancelButton) {
  EXPECT_EQ(box.form.Name(), "frmMsg");
  EXPECT_EQ(box.form.Caption(), "");
  EXPECT_EQ(box.Command1.Text(), "Cancel");
  for (const char* name : {"Label1", "Label2", "Label3", "ProgressBar1", "Command1"}) {
    EXPECT_NE(box.form.Find(name), nullptr) << name;
  }
}

TEST_F(frmMsgTest, TheUsualCallShowsOneLine) {
  box.ShowProgress("Please wait", true, nullptr);
  EXPECT_TRUE(box.Visible());
  EXPECT_EQ(box.Label1.Text(), "Please wait");
  EXPECT_TRUE(box.Label1.Visible());
  EXPECT_FALSE(box.Label2.Visible());
  EXPECT_FALSE(box.Label3.Visible());
  EXPECT_FALSE(box.ProgressBar1.Visible());
  EXPECT_FALSE(box.form.Modal());
}

TEST_F(frmMsgTest, ShowsTheLinesAndTheBarThatAreAskedFor) {
  box.ShowProgress("Reading", false, nullptr, true, false, false);
  EXPECT_FALSE(box.Label1.Visible());
  EXPECT_TRUE(box.Label2.Visible());
  EXPECT_TRUE(box.Label3.Visible());
  EXPECT_TRUE(box.ProgressBar1.Visible());
}

TEST_F(frmMsgTest, ASecondCallRearrangesTheBoxThatIsOpen) {
  box.ShowProgress("Please wait", true, nullptr);
  box.ProgressBar1.SetValue(50);
  box.ShowProgress("Reading sensor", false, nullptr);
  EXPECT_TRUE(box.Visible());
  EXPECT_EQ(box.Label1.Text(), "Reading sensor");
  EXPECT_TRUE(box.ProgressBar1.Visible());
  EXPECT_EQ(box.ProgressBar1.Value(), 0);
}

TEST_F(frmMsgTest, AnEmptyTextClosesTheBox) {
  box.ShowProgress("Please wait", true, nullptr);
  box.ShowProgress("", true, nullptr);
  EXPECT_FALSE(box.Visible());
  EXPECT_EQ(screen.Front(), nullptr);
}

TEST_F(frmMsgTest, AnEmptyTextWithNoBoxOpenIsHarmless) {
  box.ShowProgress("", true, &owner);
  EXPECT_FALSE(box.Visible());
  EXPECT_FALSE(owner.Busy());
}

TEST_F(frmMsgTest, TheOwnerHasTheHourglassForAsLong) {
  box.ShowProgress("Please wait", true, &owner);
  EXPECT_TRUE(owner.Busy());
  box.ShowProgress("", true, &owner);
  EXPECT_FALSE(owner.Busy());
}

TEST_F(frmMsgTest, TheTimerFetchesBarAndLines) {
  box.ShowProgress("Reading", false, nullptr, false, false, false);
  session.BusProgress = 37;
  session.BusBusyText = "Reading from sensor";
  session.BusBusyText2 = "more";
  Pass(milliseconds(500));
  EXPECT_EQ(box.ProgressBar1.Value(), 37);
  EXPECT_EQ(box.Label2.Text(), "Reading from sensor");
  EXPECT_EQ(box.Label3.Text(), "more");
  session.BusProgress = 100;
  Pass(milliseconds(500));
  EXPECT_EQ(box.ProgressBar1.Value(), 100);
}

TEST_F(frmMsgTest, TheTimerLeavesWhatIsHiddenAlone) {
  box.ShowProgress("Please wait", true, nullptr);
  session.BusProgress = 37;
  session.BusBusyText = "Reading from sensor";
  Pass(milliseconds(500));
  EXPECT_EQ(box.ProgressBar1.Value(), 0);
  EXPECT_EQ(box.Label2.Text(), "");
}

TEST_F(frmMsgTest, ShowingLetsPendingEventsRun) {
  bool ran = false;
  machine.pump.At(machine.clock.Now(), [&] { ran = true; });
  box.ShowProgress("Please wait", true, nullptr);
  EXPECT_TRUE(ran);
}

TEST_F(frmMsgTest, CancelBreaksTheTransferAndLeavesTheBoxOpen) {
  box.ShowProgress("Reading", false, nullptr);
  EXPECT_TRUE(box.form.Click(box.Command1));
  EXPECT_TRUE(session.CancelPressed);
  EXPECT_EQ(session.LastError, "Avbryt");
  EXPECT_TRUE(box.Visible());
}

TEST_F(frmMsgTest, ASecondPressOnCancelChangesNothing) {
  box.ShowProgress("Reading", false, nullptr);
  box.form.Click(box.Command1);
  box.form.Click(box.Command1);
  EXPECT_TRUE(session.CancelPressed);
  EXPECT_EQ(session.LastError, "Avbryt");
  EXPECT_TRUE(box.Visible());
}

TEST_F(frmMsgTest, CancelReplacesAnotherText) {
  session.LastError = "Can't read from sensor";
  box.ShowProgress("Reading", false, nullptr);
  box.form.Click(box.Command1);
  EXPECT_EQ(session.LastError, "Avbryt");
}

TEST_F(frmMsgTest, AClosedBoxNoLongerTicks) {
  box.ShowProgress("Reading", false, nullptr);
  box.ShowProgress("", true, nullptr);
  session.BusProgress = 55;
  Pass(milliseconds(500));
  EXPECT_EQ(box.ProgressBar1.Value(), 0);
}

}  // namespace
}  // namespace brelant
