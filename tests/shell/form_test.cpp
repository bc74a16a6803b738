// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/form.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/virtual_machine.h"

namespace brelant {
namespace {

using testing::ElementsAre;

class FormTest : public testing::Test {
 protected:
  Screen screen;
  Form form{screen, "frm", "Caption"};
  std::vector<std::string> story;

  Control::Handler Tell(const std::string& what) {
    return [this, what] { story.push_back(what); };
  }
};

TEST_F(FormTest, AFaceFindsControlsByName) {
  auto& text = form.Add(ControlKind::text, "txbA", "start");
  const auto array = form.AddArray(ControlKind::label, "lblB", 3);
  auto& odd = form.AddIndexed(ControlKind::label, "lblC", 7, "seven");
  EXPECT_EQ(form.Find("txbA"), &text);
  EXPECT_EQ(text.Text(), "start");
  EXPECT_EQ(form.Find("lblB(2)"), &array[2]);
  EXPECT_EQ(form.Find("lblC(7)"), &odd);
  EXPECT_EQ(form.Find("lblB(3)"), nullptr);
  EXPECT_EQ(array.Count(), 3);
  EXPECT_THROW(array[3], std::out_of_range);
  EXPECT_EQ(&text.Owner(), &form);
}

TEST_F(FormTest, AMenuEntryKnowsWhereItStands) {
  auto& entry = form.AddMenu("mFile", "mExit", "Exit");
  EXPECT_EQ(entry.parent, "mFile");
  EXPECT_EQ(entry.Kind(), ControlKind::menu);
}

TEST_F(FormTest, EachChangeCountsUpTheRevisionAndNoChangeDoesNot) {
  auto& text = form.Add(ControlKind::text, "txbA");
  auto before = form.Revision();
  const auto changed = [&] { return std::exchange(before, form.Revision()) != form.Revision(); };
  text.SetText("1");
  EXPECT_TRUE(changed());
  text.SetText("1");
  EXPECT_FALSE(changed());
  text.SetValue(1);
  EXPECT_TRUE(changed());
  text.SetItems({"a"});
  EXPECT_TRUE(changed());
  text.SetEnabled(false);
  EXPECT_TRUE(changed());
  text.SetVisible(false);
  EXPECT_TRUE(changed());
  text.SetBack(255);
  EXPECT_TRUE(changed());
  text.SetFore(255);
  EXPECT_TRUE(changed());
  text.SetTip("tip");
  EXPECT_TRUE(changed());
  form.SetCaption("Other");
  EXPECT_TRUE(changed());
  form.SetBusy(true);
  EXPECT_TRUE(changed());
}

TEST_F(FormTest, FocusMovesFromFieldToField) {
  auto& first = form.Add(ControlKind::text, "txbA");
  auto& second = form.Add(ControlKind::text, "txbB");
  first.onFocus = Tell("A in");
  first.onLeave = Tell("A out");
  second.onFocus = Tell("B in");
  form.GainFocus(first);
  form.GainFocus(first);
  form.GainFocus(second);
  EXPECT_THAT(story, ElementsAre("A in", "A out", "B in"));
  EXPECT_EQ(form.Focused(), &second);
}

TEST_F(FormTest, AFieldWithoutTheFocusCannotLoseIt) {
  auto& text = form.Add(ControlKind::text, "txbA");
  text.onLeave = Tell("out");
  EXPECT_FALSE(form.LoseFocus(text));
  EXPECT_THAT(story, ElementsAre());
}

TEST_F(FormTest, ActsOnWhatIsHiddenOrDisabledAreIgnored) {
  auto& text = form.Add(ControlKind::list, "txbA", "old");
  text.SetItems({"new"});
  text.onFocus = text.onChange = text.onClick = Tell("act");
  text.onKey = [&](int) { return true; };
  const auto tryAll = [&] {
    EXPECT_FALSE(form.GainFocus(text));
    EXPECT_FALSE(form.ChangeText(text, "new"));
    EXPECT_FALSE(form.Click(text));
    EXPECT_FALSE(form.Choose(text, "new"));
    EXPECT_FALSE(form.PressKey(text, 13));
  };
  text.SetEnabled(false);
  tryAll();
  text.SetEnabled(true);
  text.SetVisible(false);
  tryAll();
  EXPECT_EQ(text.Text(), "old");
  EXPECT_THAT(story, ElementsAre());
}

TEST_F(FormTest, AnEntryUnderADisabledMenuCannotBeClicked) {
  auto& menu = form.AddMenu("", "mCalibrate", "Calibrate");
  auto& inner = form.AddMenu("mCalibrate", "mGas", "Gas");
  auto& entry = form.AddMenu("mGas", "mZero", "Zero");
  entry.onClick = Tell("zero");
  for (auto* disabled : {&menu, &inner}) {
    disabled->SetEnabled(false);
    EXPECT_FALSE(form.Click(entry)) << disabled->Name();
    disabled->SetEnabled(true);
  }
  EXPECT_THAT(story, ElementsAre());
  EXPECT_TRUE(form.Click(entry));
  EXPECT_THAT(story, ElementsAre("zero"));
}

TEST_F(FormTest, AnEntryOfAMenuThatIsOnlyPoppedUpCanBeClickedUnlessItIsDisabled) {
  auto& menu = form.AddMenu("", "mUnits", "Units");
  auto& entry = form.AddMenu("mUnits", "mCelsius", "C");
  menu.SetVisible(false);
  EXPECT_TRUE(form.Click(entry));
  menu.SetEnabled(false);
  EXPECT_FALSE(form.Click(entry));
}

TEST_F(FormTest, AnEntryInAHiddenMenuOfAMenuCannotBeClicked) {
  form.AddMenu("", "mCalibrate", "Calibrate");
  auto& inner = form.AddMenu("mCalibrate", "mGas", "Gas");
  auto& entry = form.AddMenu("mGas", "mZero", "Zero");
  inner.SetVisible(false);
  EXPECT_FALSE(form.Click(entry));
}

TEST_F(FormTest, AButtonTakesTheFocusFromTheFieldBeforeItIsClicked) {
  auto& text = form.Add(ControlKind::text, "txbA");
  auto& button = form.Add(ControlKind::button, "btn");
  text.onLeave = Tell("out");
  button.onClick = Tell("click");
  form.GainFocus(text);
  form.Click(button);
  EXPECT_THAT(story, ElementsAre("out", "click"));
}

TEST_F(FormTest, ALabelAndAMenuDoNot) {
  auto& text = form.Add(ControlKind::text, "txbA");
  auto& label = form.Add(ControlKind::label, "lbl");
  auto& menu = form.AddMenu("", "m", "M");
  text.onLeave = Tell("out");
  form.GainFocus(text);
  form.Click(label);
  form.Click(menu);
  EXPECT_EQ(form.Focused(), &text);
  EXPECT_THAT(story, ElementsAre());
}

TEST_F(FormTest, AClickTurnsACheckBeforeItsRuleRuns) {
  auto& check = form.Add(ControlKind::check, "cbx");
  int seen = -1;
  check.onClick = [&] { seen = check.Value(); };
  form.Click(check);
  EXPECT_EQ(seen, 1);
  form.Click(check);
  EXPECT_EQ(seen, 0);
}

TEST_F(FormTest, OptionsExcludeEachOtherWithinTheirGroup) {
  const auto mode = form.AddArray(ControlKind::option, "optA", 2);
  const auto other = form.AddArray(ControlKind::option, "optB", 2);
  for (auto* option : other) option->group = 1;
  form.Click(mode[0]);
  form.Click(other[1]);
  form.Click(mode[1]);
  EXPECT_EQ(mode[0].Value(), 0);
  EXPECT_EQ(mode[1].Value(), 1);
  EXPECT_EQ(other[1].Value(), 1);
}

TEST_F(FormTest, OnlyALineOfTheListCanBeChosen) {
  auto& list = form.Add(ControlKind::list, "cmb");
  list.SetItems({"one", "two"});
  list.onChange = Tell("changed");
  EXPECT_FALSE(form.Choose(list, "three"));
  EXPECT_TRUE(form.Choose(list, "two"));
  EXPECT_EQ(list.Value(), 1);
  EXPECT_EQ(list.Text(), "two");
  EXPECT_THAT(story, ElementsAre("changed"));
}

TEST_F(FormTest, AKeyIsHandedToTheRule) {
  auto& text = form.Add(ControlKind::text, "txbA");
  EXPECT_FALSE(form.PressKey(text, 13));
  text.onKey = [](int code) { return code == 13; };
  EXPECT_TRUE(form.PressKey(text, 13));
  EXPECT_FALSE(form.PressKey(text, 27));
}

TEST_F(FormTest, ClosingHidesUnlessTheFormHasARuleForIt) {
  form.Show();
  form.Close();
  EXPECT_FALSE(form.Visible());
  form.onClose = Tell("close");
  form.Show();
  form.Close();
  EXPECT_TRUE(form.Visible());
  EXPECT_THAT(story, ElementsAre("close"));
}

TEST_F(FormTest, TheFrontFormIsTheOneShownLast) {
  Form second{screen, "second", ""};
  EXPECT_EQ(screen.Front(), nullptr);
  form.Show();
  second.Show();
  EXPECT_EQ(screen.Front(), &second);
  EXPECT_THAT(screen.Shown(), ElementsAre(&form, &second));
  second.Hide();
  EXPECT_EQ(screen.Front(), &form);
  EXPECT_EQ(screen.Find("second"), &second);
  EXPECT_EQ(screen.Find("third"), nullptr);
}

TEST_F(FormTest, TheScreenIsToldOfEachShowingAndHidingOnce) {
  screen.onShow = [this](Form& shown, bool visible) {
    story.push_back(shown.Name() + (visible ? " in" : " out"));
  };
  form.Show();
  form.Show();
  form.Hide();
  form.Hide();
  EXPECT_THAT(story, ElementsAre("frm in", "frm out"));
}

TEST_F(FormTest, AFormThatIsGoneIsNotFound) {
  {
    Form brief{screen, "brief", ""};
    brief.Show();
  }
  EXPECT_EQ(screen.Find("brief"), nullptr);
  EXPECT_EQ(screen.Front(), nullptr);
}

TEST_F(FormTest, AModalFormWaitsUntilItIsHidden) {
  test::VirtualMachine<test::ScriptedPort> machine;
  machine.pump.After(std::chrono::minutes(5), [&] { form.Hide(); });
  form.ShowModal(machine.pump, [] { return false; });
  EXPECT_GE(machine.clock.Now(), std::chrono::minutes(5));
  EXPECT_FALSE(form.Visible());
  EXPECT_FALSE(form.Modal());
}

}  // namespace
}  // namespace brelant
