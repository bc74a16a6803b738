// SPDX-License-Identifier: GPL-3.0-or-later
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

#include <gtest/gtest.h>

#include "bench_form.h"
#include "desktop/kit/PopupLabel.h"
#include "desktop/kit/bind.h"
#include "desktop/kit/fields.h"

namespace brelant::test {
namespace {

TEST(LabelTest, ShowsTextAndIsHiddenWithItsControl) {
  BenchForm bench;
  auto& control = bench.form.Add(ControlKind::label, "Label1(42)", "Base line");
  auto& label = bench.Put<QLabel>();
  Bind(bench.views, control, label);
  bench.Open();
  EXPECT_EQ(label.text(), "Base line");
  control.SetText("<b>");
  control.SetVisible(false);
  bench.Pass();
  EXPECT_EQ(label.text(), "<b>");
  EXPECT_EQ(label.textFormat(), Qt::PlainText);
  EXPECT_FALSE(label.isVisible());
}

TEST(ButtonTest, ReportsClicksAndUnderlinesItsLetter) {
  BenchForm bench;
  auto& control = bench.form.Add(ControlKind::button, "btnSendToSensor", "Send to sensor");
  int clicks = 0;
  control.onClick = [&] { ++clicks; };
  auto& button = bench.Put<QPushButton>();
  Bind(bench.views, control, button, {'d'});
  bench.Open();
  EXPECT_EQ(button.text(), "Sen&d to sensor");
  Press(button);
  bench.Pass();
  EXPECT_EQ(clicks, 1);
  control.SetEnabled(false);
  bench.Pass();
  EXPECT_FALSE(button.isEnabled());
}

TEST(ButtonTest, OneThatNoRuleStandsBehindIsDisabled) {
  BenchForm bench;
  auto& control = bench.form.Add(ControlKind::button, "cmdSendFile", "Send file to sensor");
  auto& button = bench.Put<QPushButton>();
  Bind(bench.views, control, button);
  bench.Open();
  EXPECT_FALSE(button.isEnabled());
}

TEST(CheckTest, IsTickedByTheFormAlone) {
  BenchForm bench;
  auto& control = bench.form.Add(ControlKind::check, "cbxFout1(0)", "Out 1");
  auto& check = bench.Put<QCheckBox>();
  Bind(bench.views, control, check, {{}, "Function 1 feeds output 1"});
  bench.Open();
  EXPECT_EQ(check.text(), "");
  EXPECT_EQ(check.accessibleName(), "Function 1 feeds output 1");
  Press(check);
  bench.Pass();
  EXPECT_EQ(control.Value(), 1);
  EXPECT_TRUE(check.isChecked());
  control.SetValue(0);
  bench.Pass();
  EXPECT_FALSE(check.isChecked());
}

TEST(CheckTest, ATickThatTheFormRefusedIsTakenBack) {
  BenchForm bench;
  auto& control = bench.form.Add(ControlKind::check, "cbxSimulated", "Simulated");
  auto& check = bench.Put<QCheckBox>();
  Bind(bench.views, control, check);
  bench.Open();
  Press(check);
  EXPECT_TRUE(check.isChecked());
  control.SetEnabled(false);
  bench.Pass();
  EXPECT_EQ(control.Value(), 0);
  EXPECT_FALSE(check.isChecked());
}

class OptionTest : public testing::Test {
 protected:
  OptionTest() {
    for (int i = 0; i < 3; ++i) {
      controls[i].group = 1;
      options.push_back(&bench.Put<QRadioButton>());
      Bind(bench.views, controls[i], *options.back());
    }
    bench.Open();
  }

  BenchForm bench;
  ControlArray controls = bench.form.AddArray(ControlKind::option, "optStartMode", 3);
  std::vector<QRadioButton*> options;
};

TEST_F(OptionTest, NoneIsSelectedUntilTheFormSaysSo) {
  for (const auto* option : options) EXPECT_FALSE(option->isChecked());
  bench.form.Select(controls[2]);
  bench.Pass();
  EXPECT_TRUE(options[2]->isChecked());
}

TEST_F(OptionTest, ExcludeEachOther) {
  Press(*options[0]);
  bench.Pass();
  Press(*options[1]);
  bench.Pass();
  EXPECT_EQ(controls[0].Value(), 0);
  EXPECT_EQ(controls[1].Value(), 1);
  EXPECT_FALSE(options[0]->isChecked());
  EXPECT_TRUE(options[1]->isChecked());
}

TEST_F(OptionTest, AChoiceThatTheFormTurnedIntoAnotherIsShownSo) {
  controls[2].onClick = [&] { bench.form.Select(controls[0]); };
  Press(*options[2]);
  bench.Pass();
  EXPECT_TRUE(options[0]->isChecked());
  EXPECT_FALSE(options[2]->isChecked());
}

TEST_F(OptionTest, TheArrowKeysChoose) {
  int clicks = 0;
  controls[1].onClick = [&] { ++clicks; };
  Press(*options[0]);
  bench.Pass();
  QTest::keyClick(options[0], Qt::Key_Down);
  bench.Pass();
  EXPECT_EQ(clicks, 1);
  EXPECT_EQ(controls[1].Value(), 1);
}

class ChoiceFieldTest : public testing::Test {
 protected:
  ChoiceFieldTest() {
    control.SetText("1");
    control.SetItems({"/dev/ttyUSB0  Adapter", "/dev/ttyS0"});
    box.setEditable(true);
    Bind(bench.views, control, box, Always("Serial port"));
    bench.Open();
    bench.window.setFocus();
    bench.Pass();
  }

  void ChooseItem(int index) {
    box.setCurrentIndex(index);
    box.activated(index);
  }

  BenchForm bench;
  Control& control = bench.form.Add(ControlKind::text, "txbComPort");
  QComboBox& box = bench.Put<QComboBox>();
};

TEST_F(ChoiceFieldTest, OffersTheItemsAndShowsTheText) {
  ASSERT_EQ(box.count(), 2);
  EXPECT_EQ(box.itemText(0), "/dev/ttyUSB0  Adapter");
  EXPECT_EQ(box.currentText(), "1");
  EXPECT_EQ(box.lineEdit()->accessibleName(), "Serial port");
}

TEST_F(ChoiceFieldTest, AChoiceIsAChangeOfTheTextAndShowsWhatTheFormMakesOfIt) {
  control.onChange = [&] {
    if (control.Text() == "/dev/ttyUSB0  Adapter") control.SetText("/dev/ttyUSB0");
  };
  ChooseItem(0);
  bench.Pass();
  EXPECT_EQ(control.Text(), "/dev/ttyUSB0");
  EXPECT_EQ(box.currentText(), "/dev/ttyUSB0");
  ChooseItem(0);
  bench.Pass();
  EXPECT_EQ(box.currentText(), "/dev/ttyUSB0");
}

TEST_F(ChoiceFieldTest, CanBeTypedInto) {
  Type(*box.lineEdit(), "/dev/pts/3");
  bench.Pass();
  EXPECT_EQ(control.Text(), "/dev/pts/3");
}

TEST_F(ChoiceFieldTest, ReportsFocusAndEnterLikeAnyField) {
  int key = 0;
  bool left = false;
  control.onKey = [&](int code) {
    key = code;
    return true;
  };
  control.onLeave = [&] { left = true; };
  Press(*box.lineEdit());
  bench.Pass();
  EXPECT_EQ(bench.form.Focused(), &control);
  PressKey(box, Qt::Key_Return);
  bench.Pass();
  EXPECT_EQ(key, 13);
  bench.window.setFocus();
  bench.Pass();
  EXPECT_TRUE(left);
}

TEST_F(ChoiceFieldTest, NewItemsLeaveTheTextAlone) {
  control.SetItems({"/dev/ttyUSB1"});
  bench.Pass();
  ASSERT_EQ(box.count(), 1);
  EXPECT_EQ(box.currentText(), "1");
}

TEST(ListTest, ShowsItemsAndReportsTheChoice) {
  BenchForm bench;
  auto& control = bench.form.Add(ControlKind::list, "cmbTypeOfS");
  control.SetItems({"Last", "Vega 3"});
  control.SetValue(0);
  auto& list = bench.Put<QListWidget>();
  Bind(bench.views, control, list, "Type of sensor to simulate:");
  bench.Open();
  EXPECT_EQ(list.count(), 2);
  EXPECT_EQ(list.currentRow(), 0);
  list.setFocus();
  QTest::keyClick(&list, Qt::Key_Down);
  bench.Pass();
  EXPECT_EQ(control.Value(), 1);
  EXPECT_EQ(control.Text(), "Vega 3");
}

TEST(BarTest, ShowsTheValue) {
  BenchForm bench;
  auto& control = bench.form.Add(ControlKind::bar, "ProgressBar1");
  auto& bar = bench.Put<QProgressBar>();
  Bind(bench.views, control, bar);
  bench.Open();
  EXPECT_EQ(bar.value(), 0);
  control.SetValue(42);
  bench.Pass();
  EXPECT_EQ(bar.value(), 42);
}

class PopupLabelTest : public testing::Test {
 protected:
  PopupLabelTest() {
    control.onClick = [this] { ++clicks; };
    bench.window.layout()->addWidget(&label);
    Bind(bench.views, field, edit, Always("a"));
    bench.Open();
  }

  BenchForm bench;
  int clicks = 0;
  Control& field = bench.form.Add(ControlKind::text, "txbFa(0)");
  Control& control = bench.form.Add(ControlKind::label, "lblFchannel(0)", "CO2");
  QLineEdit& edit = bench.Put<QLineEdit>();
  PopupLabel& label =
      Make<PopupLabel>(bench.window, bench.views, control, Always("Function 1, channel"), true);
};

TEST_F(PopupLabelTest, SaysWhatItIsAndWhatIsChosen) {
  EXPECT_EQ(label.text(), "CO2");
  EXPECT_EQ(label.accessibleName(), "Function 1, channel: CO2");
}

TEST_F(PopupLabelTest, AClickLeavesTheEditedFieldAlone) {
  bool left = false;
  field.onLeave = [&] { left = true; };
  Press(edit);
  bench.Pass();
  Press(label);
  bench.Pass();
  EXPECT_EQ(clicks, 1);
  EXPECT_FALSE(left);
}

TEST_F(PopupLabelTest, OpensByKey) {
  label.setFocus(Qt::TabFocusReason);
  for (const auto key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Down}) QTest::keyClick(&label, key);
  bench.Pass();
  EXPECT_EQ(clicks, 3);
}

TEST_F(PopupLabelTest, DisabledItIsAPlainText) {
  control.SetEnabled(false);
  bench.Pass();
  Press(label);
  bench.Pass();
  EXPECT_EQ(clicks, 0);
  EXPECT_EQ(label.focusPolicy(), Qt::NoFocus);
}

}  // namespace
}  // namespace brelant::test
