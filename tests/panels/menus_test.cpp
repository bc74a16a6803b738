// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/panel_fixture.h"

namespace brelant {
namespace {

using test::Click;
using test::Frm5Test;
using testing::ElementsAre;

class MenusTest : public Frm5Test {};

TEST_F(MenusTest, HaveTheirCaptionsAndPlaces) {
  struct Case {
    const char* name;
    const char* caption;
    const char* parent;
  };
  for (const auto& [name, caption, parent] :
       {Case{"mFile", "File", ""}, Case{"mLoadsettings", "Load settings", "mFile"},
        Case{"mSavesettings", "Save settings", "mFile"}, Case{"mOptions", "KVX options", "mFile"},
        Case{"mComSet", "Show communication setup dialog when KVX starts.", "mOptions"},
        Case{"mExit", "Exit", "mFile"}, Case{"M0", "Sensor", ""},
        Case{"mReadfromsensor", "Read from sensor", "M0"}, Case{"mSendtosensor", "Send to sensor", "M0"},
        Case{"mCalibrate", "Calibrate", "M0"}, Case{"mTWAreset", "TWA reset", "M0"},
        Case{"mHelp", "Help", ""}}) {
    const auto* entry = panel.form.Find(name);
    ASSERT_NE(entry, nullptr) << name;
    EXPECT_EQ(entry->Kind(), ControlKind::menu) << name;
    EXPECT_EQ(entry->Text(), caption);
    EXPECT_EQ(entry->parent, parent) << name;
    EXPECT_TRUE(entry->Visible()) << name;
  }
}

TEST_F(MenusTest, ACommandIsSetBehindTheGuardBoxAndNothingIsSent) {
  struct Case {
    Control& control;
    int code;
  };
  for (const auto& [control, code] :
       {Case{panel.btnReadFromSensor, 1}, Case{panel.mReadfromsensor, 1}, Case{panel.btnSendToSensor, 3},
        Case{panel.mSendtosensor, 3}, Case{panel.mLoadsettings, 4}, Case{panel.mSavesettings, 5},
        Case{panel.mTWAreset, 13}}) {
    ground.session.PanelCommand = 0;
    ground.msg.ShowProgress("", true, &panel.form);
    ASSERT_FALSE(ground.msg.Visible());
    EXPECT_TRUE(Click(control)) << control.Name();
    EXPECT_EQ(ground.session.PanelCommand, code) << control.Name();
    EXPECT_TRUE(ground.msg.Visible()) << control.Name();
    EXPECT_EQ(ground.msg.Label1.Text(), "Please wait");
    EXPECT_TRUE(ground.msg.Label1.Visible());
    EXPECT_FALSE(ground.msg.Label2.Visible());
    EXPECT_FALSE(ground.msg.Label3.Visible());
    EXPECT_FALSE(ground.msg.ProgressBar1.Visible());
    EXPECT_TRUE(panel.form.Busy());
  }
  EXPECT_TRUE(ground.port.Events().empty());
}

TEST_F(MenusTest, TheLaterOfTwoCommandsStands) {
  Click(panel.mReadfromsensor);
  Click(panel.mSendtosensor);
  EXPECT_EQ(ground.session.PanelCommand, 3);
}

TEST_F(MenusTest, TheMarkOfTheDialogHasTheOppositeSenseOfWhatIsStored) {
  panel.mComSet.SetValue(1);
  ground.comSet.cbxDontShow.SetValue(0);
  ground.store.writes.clear();
  EXPECT_TRUE(Click(panel.mComSet));
  EXPECT_EQ(panel.mComSet.Value(), 0);
  EXPECT_EQ(ground.comSet.cbxDontShow.Value(), 1);
  EXPECT_TRUE(Click(panel.mComSet));
  EXPECT_EQ(panel.mComSet.Value(), 1);
  EXPECT_EQ(ground.comSet.cbxDontShow.Value(), 0);
  EXPECT_THAT(ground.store.writes, ElementsAre("KVX/Start/Dont=1", "KVX/Start/Dont=0"));
}

TEST_F(MenusTest, HelpOpensThePageOfPlatformAndVariant) {
  ground.session.LastError = "untouched";
  EXPECT_TRUE(Click(panel.mHelp));
  SetRam(226, {3});
  EXPECT_TRUE(Click(panel.mHelp));
  // AppDir is the application's path and one backslash.
  EXPECT_THAT(ground.ui.opened, ElementsAre("C:\\KVX\\help5v0.html", "C:\\KVX\\help5v3.html"));
  EXPECT_EQ(ground.session.LastError, "untouched");
}

TEST_F(MenusTest, ExitEndsTheSessionAtOnceAndSilently) {
  EXPECT_TRUE(Click(panel.mExit));
  EXPECT_EQ(ground.sessionsEnded, 1);
  EXPECT_EQ(ground.session.LastError, "Avbryt");
  EXPECT_EQ(ground.session.PanelCommand, 0);
}

TEST_F(MenusTest, ClosingTheWindowEndsTheSession) {
  panel.form.Close();
  EXPECT_EQ(ground.sessionsEnded, 1);
  EXPECT_TRUE(panel.form.Visible());
}

}  // namespace
}  // namespace brelant
