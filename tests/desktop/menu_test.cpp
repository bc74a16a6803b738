// SPDX-License-Identifier: GPL-3.0-or-later
#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QSet>

#include <gtest/gtest.h>

#include "bench_form.h"
#include "desktop/kit/MenuBinding.h"

namespace brelant::test {
namespace {

class MenuTest : public testing::Test {
 protected:
  MenuTest() {
    form.AddMenu("", "mFile", "File");
    Command(form.AddMenu("mFile", "mLoadsettings", "Load settings"));
    form.AddMenu("mFile", "mOptions", "KVX options");
    Command(form.AddMenu("mOptions", "mComSet", "Show communication setup dialog when KVX starts."));
    Command(form.AddMenu("mFile", "mSavesettings", "Save settings"));
    form.AddMenu("mFile", "mNothing", "Nothing");
    Command(form.AddMenu("", "mHelp", "Help"));
    form.AddMenu("mFile", "mCalibrate", "Calibrate");
    form.AddMenu("mCalibrate", "mCalCO2", "CO2 single point");
    Command(form.AddMenu("mCalCO2", "mCalCO2Zero", "Zero"));
    Command(form.AddMenu("mCalCO2", "mCalCO2Other", "Other"));
    Command(form.AddMenu("mCalibrate", "mCalCO2span", "CO2 span"));
    Command(form.AddMenu("mCalibrate", "mCalCurve", "Calibration curve"));
    form.AddMenu("", "mChannels", "Channels").SetVisible(false);
    form.AddMenu("mChannels", "mCHannel(0)", "TEMP");
    BindMenus(bench.views, bar, {{{"mLoadsettings", QKeySequence(Qt::CTRL | Qt::Key_O)}}, {"mComSet"}});
    bench.Open();
  }

  void Command(Control& entry) {
    entry.onClick = [this, name = entry.Name()] { clicked = name; };
  }
  QAction* Action(const QString& name) const {
    for (auto* action : bar.findChildren<QAction*>()) {
      if (action->objectName() == name) return action;
    }
    return nullptr;
  }
  static QStringList Names(const QList<QAction*>& actions) {
    QStringList names;
    for (const auto* action : actions) names.append(action->objectName());
    return names;
  }

  BenchForm bench;
  Form& form = bench.form;
  QMenuBar& bar = bench.Put<QMenuBar>();
  std::string clicked;
};

TEST_F(MenuTest, StandsAsTheFormTellsAndWithoutTheMenusThatPopUp) {
  EXPECT_EQ(Names(bar.actions()), QStringList({"mFile", "mHelp"}));
  EXPECT_EQ(Names(Action("mFile")->menu()->actions()),
            QStringList({"mLoadsettings", "mOptions", "mSavesettings", "mNothing", "mCalibrate"}));
  EXPECT_EQ(Names(Action("mOptions")->menu()->actions()), QStringList({"mComSet"}));
}

TEST_F(MenuTest, ReportsClicks) {
  Action("mLoadsettings")->trigger();
  bench.Pass();
  EXPECT_EQ(clicked, "mLoadsettings");
  Action("mHelp")->trigger();
  bench.Pass();
  EXPECT_EQ(clicked, "mHelp");
}

TEST_F(MenuTest, ATickIsTheFormsValue) {
  auto& control = *form.Find("mComSet");
  control.SetValue(1);
  bench.Pass();
  EXPECT_TRUE(Action("mComSet")->isChecked());
  // The rule of this form leaves the value as it is.
  Action("mComSet")->trigger();
  bench.Pass();
  EXPECT_TRUE(Action("mComSet")->isChecked());
  EXPECT_FALSE(Action("mLoadsettings")->isCheckable());
}

TEST_F(MenuTest, IsDisabledAndHiddenByTheForm) {
  form.Find("mLoadsettings")->SetEnabled(false);
  form.Find("mSavesettings")->SetVisible(false);
  bench.Pass();
  EXPECT_FALSE(Action("mLoadsettings")->isEnabled());
  EXPECT_FALSE(Action("mSavesettings")->isVisible());
}

TEST_F(MenuTest, AnEntryThatNoRuleStandsBehindIsDisabled) {
  EXPECT_FALSE(Action("mNothing")->isEnabled());
  EXPECT_TRUE(Action("mOptions")->isEnabled());
}

TEST_F(MenuTest, HasShortcutsAndALetterOfItsOwnForEachEntryOfAMenu) {
  EXPECT_EQ(Action("mLoadsettings")->shortcut(), QKeySequence("Ctrl+O"));
  QSet<QChar> letters;
  for (const auto* action : Action("mFile")->menu()->actions()) {
    const auto at = action->text().indexOf('&');
    ASSERT_GE(at, 0) << action->text().toStdString();
    letters.insert(action->text()[at + 1].toUpper());
  }
  EXPECT_EQ(letters.size(), 5);
  EXPECT_EQ(Action("mLoadsettings")->text(), "&Load settings");
  EXPECT_EQ(Action("mSavesettings")->text(), "&Save settings");
}

TEST_F(MenuTest, MenusStandWithinMenusWithinMenus) {
  EXPECT_EQ(Names(Action("mCalibrate")->menu()->actions()),
            QStringList({"mCalCO2", "mCalCO2span", "mCalCurve"}));
  EXPECT_EQ(Names(Action("mCalCO2")->menu()->actions()), QStringList({"mCalCO2Zero", "mCalCO2Other"}));
  Action("mCalCO2Zero")->trigger();
  bench.Pass();
  EXPECT_EQ(clicked, "mCalCO2Zero");
}

TEST_F(MenuTest, EachMenuGivesItsLettersAnew) {
  EXPECT_EQ(Action("mCalCO2")->text(), "&CO2 single point");
  EXPECT_EQ(Action("mCalCO2span")->text(), "CO2 &span");
  EXPECT_EQ(Action("mCalCurve")->text(), "C&alibration curve");
  EXPECT_EQ(Action("mCalCO2Zero")->text(), "&Zero");
  EXPECT_EQ(Action("mCalCO2Other")->text(), "&Other");
}

TEST_F(MenuTest, MenusAreDisabledEachByItsOwnControl) {
  form.Find("mCalibrate")->SetEnabled(false);
  form.Find("mCalCurve")->SetEnabled(false);
  bench.Pass();
  EXPECT_FALSE(Action("mCalibrate")->isEnabled());
  EXPECT_FALSE(Action("mCalCurve")->isEnabled());
  form.Find("mCalibrate")->SetEnabled(true);
  bench.Pass();
  EXPECT_TRUE(Action("mCalibrate")->isEnabled());
  EXPECT_TRUE(Action("mCalCO2")->isEnabled());
  EXPECT_FALSE(Action("mCalCurve")->isEnabled());
}

}  // namespace
}  // namespace brelant::test
