// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/dialog_fixture.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using test::Click;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kStored = "BRELANT/Z7731/UpdatePeriod";
constexpr const char* kChanged = "Update frequency has been succesfully changed.";

class OptionsDialogTest : public test::DialogTest {
 protected:
  void SetTo(const std::string& text) {
    EXPECT_EQ(In(panel.m_Options, dialog.form,
                 [&] {
                   EXPECT_TRUE(dialog.form.ChangeText(dialog.txtSeconds, text));
                   EXPECT_TRUE(Click(dialog.btnChangeUpdate));
                 }),
              1);
  }

  frmZ7731Options& dialog = panel.Options;
};

TEST_F(OptionsDialogTest, HasItsCaptions) {
  EXPECT_EQ(dialog.form.Name(), "frmZ7731Options");
  EXPECT_EQ(dialog.form.Caption(), "Options...");
  EXPECT_EQ(dialog.btnChangeUpdate.Text(), "Change update frequency");
}

TEST_F(OptionsDialogTest, OpensWithThePeriodInUse) {
  ground.store.values[kStored] = "17";
  StartOnKiBus();
  EXPECT_EQ(In(panel.m_Options, dialog.form, [this] { EXPECT_EQ(dialog.txtSeconds.Text(), "17"); }), 1);
  EXPECT_EQ(Transfers(), 0U);
}

TEST_F(OptionsDialogTest, APeriodIsTakenAndStored) {
  StartOnKiBus();
  SetTo("9");
  EXPECT_EQ(panel.UpdatePeriod, 9);
  EXPECT_EQ(ground.store.values[kStored], "9");
  EXPECT_THAT(Told(), ElementsAre(kChanged));
  EXPECT_EQ(Transfers(), 0U);
  // The next session has it.
  panel.LeaveSession();
  panel.UpdatePeriod = 3;
  StartOnKiBus();
  EXPECT_EQ(panel.UpdatePeriod, 9);
}

TEST_F(OptionsDialogTest, OneSecondIsTheShortest) {
  StartOnKiBus();
  SetTo("1");
  EXPECT_EQ(panel.UpdatePeriod, 1);
  EXPECT_EQ(ground.store.values[kStored], "1");
  for (const char* text : {"0", "-5", "0.5", "0,4"}) {
    ground.ui.messages.clear();
    SetTo(text);
    EXPECT_THAT(Told(), ElementsAre("Invalid value")) << text;
    EXPECT_EQ(panel.UpdatePeriod, 1) << text;
    EXPECT_EQ(ground.store.values[kStored], "1") << text;
  }
}

TEST_F(OptionsDialogTest, ATextThatIsNoNumberChangesNothing) {
  StartOnKiBus();
  for (const char* text : {"", "x", "3 s", "32768"}) {
    ground.ui.messages.clear();
    SetTo(text);
    EXPECT_EQ(panel.UpdatePeriod, 2) << text;
    EXPECT_EQ(ground.store.values.count(kStored), 0U) << text;
    EXPECT_THAT(Told(), ElementsAre(testing::AllOf(Not(kChanged), Not(IsEmpty())))) << text;
  }
}

TEST_F(OptionsDialogTest, ThePeriodCountsAtOnce) {
  StartOnKiBus();
  TimeFrames();
  After(milliseconds(4500), [this] { SetTo("5"); });
  After(milliseconds(15500), [this] { SetTo("1"); });
  Run(milliseconds(18900));
  const auto polls = TimesOf(kPollBegins);
  std::vector<std::int64_t> periods;
  for (std::size_t i = 1; i < polls.size(); ++i) periods.push_back((polls[i] - polls[i - 1] + 250) / 500);
  // In half seconds: at 0, 2, 4, 9, 14; at 15.5, where the second has passed, and every second.
  EXPECT_THAT(periods, ElementsAre(4, 4, 10, 10, 3, 2, 2, 2));
}

TEST_F(OptionsDialogTest, TheyOpenWithoutAUnitToo) {
  ASSERT_TRUE(StartSimulated());
  SetTo("4");
  EXPECT_EQ(ground.store.values[kStored], "4");
  EXPECT_THAT(Told(), ElementsAre(kChanged));
}

TEST_F(OptionsDialogTest, TheAboutBoxTellsTheVersion) {
  ASSERT_TRUE(StartSimulated());
  EXPECT_EQ(
      In(panel.m_About, panel.About.form, [this] { EXPECT_EQ(panel.About.lblVersion.Text(), "2.1.0"); }), 1);
  EXPECT_EQ(panel.About.form.Caption(), "About BRELANT");
  EXPECT_EQ(panel.About.btnOK.Text(), "OK");
}

}  // namespace
}  // namespace brelant
