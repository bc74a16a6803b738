// SPDX-License-Identifier: GPL-3.0-or-later
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "bench_form.h"
#include "desktop/kit/bind.h"
#include "desktop/kit/fields.h"

namespace brelant::test {
namespace {

using testing::ElementsAre;

class FieldTest : public testing::Test {
 protected:
  FieldTest() {
    control.SetText("800");
    Bind(bench.views, control, edit, [this] { return QString::fromStdString("a, " + unit.Text()); });
    Bind(bench.views, other, otherEdit, Always("Other"));
    unit.SetText("ppm");
    bench.Open();
    // Nothing has the focus but the ground.
    bench.window.setFocus();
    bench.Pass();
  }

  QColor Shown(QPalette::ColorRole role) const { return edit.palette().color(role); }

  BenchForm bench;
  Control& control = bench.form.Add(ControlKind::text, "txbFa(0)");
  Control& other = bench.form.Add(ControlKind::text, "txbFb(0)");
  Control& unit = bench.form.Add(ControlKind::label, "lblFaUnit(0)");
  QLineEdit& edit = bench.Put<QLineEdit>();
  QLineEdit& otherEdit = bench.Put<QLineEdit>();
};

TEST_F(FieldTest, HasTheNameAndTheTextOfItsControl) {
  EXPECT_EQ(edit.objectName(), "txbFa(0)");
  EXPECT_EQ(edit.text(), "800");
  control.SetText("900");
  bench.Pass();
  EXPECT_EQ(edit.text(), "900");
}

TEST_F(FieldTest, IsCalledByItsUnitAlsoWhenThatChanges) {
  EXPECT_EQ(edit.accessibleName(), "a, ppm");
  unit.SetText("%");
  bench.Pass();
  EXPECT_EQ(edit.accessibleName(), "a, %");
}

TEST_F(FieldTest, TakesTheColoursOfTheFormWithRedLowest) {
  control.SetBack(9268308);
  control.SetFore(65535);
  bench.Pass();
  EXPECT_EQ(Shown(QPalette::Base), QColor(0x54, 0x6C, 0x8D));
  EXPECT_EQ(Shown(QPalette::Text), QColor(255, 255, 0));
  control.SetFore(65280);
  bench.Pass();
  EXPECT_EQ(Shown(QPalette::Text), QColor(0, 255, 0));
}

TEST_F(FieldTest, LeavesTheStylesColoursAlone) {
  const auto styles = QApplication::palette();
  EXPECT_EQ(Shown(QPalette::Base), styles.color(QPalette::Base));
  control.SetBack(255);
  bench.Pass();
  EXPECT_EQ(Shown(QPalette::Base), QColor(255, 0, 0));
  EXPECT_EQ(Shown(QPalette::Text), styles.color(QPalette::Text));
  control.SetBack(kStyleColour);
  bench.Pass();
  EXPECT_EQ(Shown(QPalette::Base), styles.color(QPalette::Base));
}

TEST_F(FieldTest, ReportsTheFocusAndShowsWhatTheFormMakesOfIt) {
  std::vector<std::string> acts;
  control.onFocus = [&] {
    acts.emplace_back("enter");
    control.SetBack(16777215);
  };
  control.onLeave = [&] {
    acts.emplace_back("leave");
    control.SetBack(9268308);
  };
  Press(edit);
  bench.Pass();
  EXPECT_THAT(acts, ElementsAre("enter"));
  EXPECT_EQ(bench.form.Focused(), &control);
  EXPECT_EQ(Shown(QPalette::Base), QColor(Qt::white));
  Press(otherEdit);
  bench.Pass();
  EXPECT_THAT(acts, ElementsAre("enter", "leave"));
  EXPECT_EQ(bench.form.Focused(), &other);
  EXPECT_EQ(Shown(QPalette::Base), QColor(0x54, 0x6C, 0x8D));
}

TEST_F(FieldTest, ActsAreCarriedOutInThePassAndNotInTheEventHandler) {
  bool entered = false;
  control.onFocus = [&] { entered = true; };
  Press(edit);
  EXPECT_FALSE(entered);
  bench.Pass();
  EXPECT_TRUE(entered);
}

TEST_F(FieldTest, SelectsAllOfItsTextWhenItIsEntered) {
  Press(edit);
  EXPECT_EQ(edit.selectedText(), "800");
  Press(otherEdit);
  bench.Pass();
  QTest::keyClick(&otherEdit, Qt::Key_Backtab, Qt::ShiftModifier);
  EXPECT_EQ(edit.selectedText(), "800");
}

TEST_F(FieldTest, ASecondClickPutsTheCursorDown) {
  Press(edit);
  Press(edit);
  EXPECT_FALSE(edit.hasSelectedText());
}

TEST_F(FieldTest, ReportsEveryChangeOfTheText) {
  std::vector<std::string> texts;
  control.onChange = [&] { texts.push_back(control.Text()); };
  Type(edit, "95");
  bench.Pass();
  EXPECT_THAT(texts, ElementsAre("9", "95"));
}

TEST_F(FieldTest, ShowsACorrectedValueCorrected) {
  control.onLeave = [&] { control.SetText("512"); };
  Type(edit, "1000");
  Press(otherEdit);
  bench.Pass();
  EXPECT_EQ(edit.text(), "512");
}

TEST_F(FieldTest, ShowsAValueThatTheFormPutBackAlthoughNothingChangedForTheForm) {
  // The form refuses: typed on a field that was disabled before the act's turn.
  Type(edit, "1000");
  control.SetEnabled(false);
  bench.Pass();
  EXPECT_EQ(control.Text(), "800");
  EXPECT_EQ(edit.text(), "800");
}

TEST_F(FieldTest, EnterIsReportedAndSwallowed) {
  int key = 0;
  control.onKey = [&](int code) {
    key = code;
    control.SetText("2.5");
    return true;
  };
  bool defaultPressed = false;
  auto& button = bench.Put<QPushButton>();
  button.setDefault(true);
  QObject::connect(&button, &QPushButton::clicked, &button, [&] { defaultPressed = true; });
  Type(edit, "2.6");
  for (const auto enter : {Qt::Key_Return, Qt::Key_Enter}) {
    key = 0;
    QTest::keyClick(&edit, enter);
    bench.Pass();
    EXPECT_EQ(key, 13);
  }
  EXPECT_EQ(edit.text(), "2.5");
  EXPECT_TRUE(edit.hasFocus());
  EXPECT_FALSE(defaultPressed);
}

TEST_F(FieldTest, EnterThatTheFormHasNoUseForPressesTheDefaultButton) {
  bool pressed = false;
  auto& button = bench.Put<QPushButton>();
  button.setDefault(true);
  QObject::connect(&button, &QPushButton::clicked, &button, [&] { pressed = true; });
  Press(edit);
  QTest::keyClick(&edit, Qt::Key_Return);
  EXPECT_TRUE(pressed);
}

TEST_F(FieldTest, EnterWithAModifierIsNoEnter) {
  int keys = 0;
  control.onKey = [&](int) {
    ++keys;
    return true;
  };
  Press(edit);
  QTest::keyClick(&edit, Qt::Key_Return, Qt::ControlModifier);
  bench.Pass();
  EXPECT_EQ(keys, 0);
}

TEST_F(FieldTest, TakesNoEditWhereTheFormTakesNone) {
  bool open = false;
  control.editable = [&] { return open; };
  control.SetText("23.4");
  bench.Pass();
  EXPECT_TRUE(edit.isReadOnly());
  Type(edit, "9");
  bench.Pass();
  EXPECT_EQ(edit.text(), "23.4");
  EXPECT_FALSE(edit.hasSelectedText());
  open = true;
  control.SetText("23.5");
  bench.Pass();
  EXPECT_FALSE(edit.isReadOnly());
}

TEST_F(FieldTest, TheTabKeyPassesOverWhatTakesNoEdit) {
  other.editable = [] { return false; };
  other.SetText("x");
  auto& third = bench.form.Add(ControlKind::text, "txbOutBaseLine(0)");
  auto& thirdEdit = bench.Put<QLineEdit>();
  Bind(bench.views, third, thirdEdit, Always("Third"));
  bench.Pass();
  Press(edit);
  QTest::keyClick(&edit, Qt::Key_Tab);
  EXPECT_TRUE(thirdEdit.hasFocus());
}

TEST_F(FieldTest, IsHiddenAndDisabledAndHasTheTipOfItsControl) {
  control.SetVisible(false);
  bench.Pass();
  EXPECT_FALSE(edit.isVisible());
  control.SetVisible(true);
  control.SetEnabled(false);
  control.SetTip("Warming up ");
  bench.Pass();
  EXPECT_TRUE(edit.isVisible());
  EXPECT_FALSE(edit.isEnabled());
  EXPECT_EQ(edit.toolTip(), "Warming up ");
}

TEST_F(FieldTest, AMenuThatOpensDoesNotEndTheEdit) {
  bool left = false;
  control.onLeave = [&] { left = true; };
  Press(edit);
  bench.Pass();
  QMenu menu;
  menu.addAction("CO2");
  menu.popup(QPoint(0, 0));
  bench.Pass();
  menu.close();
  bench.Pass();
  EXPECT_FALSE(left);
  EXPECT_EQ(bench.form.Focused(), &control);
}

TEST_F(FieldTest, HasTheHourglassWhileItsFormIsBusy) {
  bench.form.SetBusy(true);
  bench.Pass();
  EXPECT_EQ(edit.cursor().shape(), Qt::WaitCursor);
  bench.form.SetBusy(false);
  bench.Pass();
  EXPECT_EQ(edit.cursor().shape(), Qt::IBeamCursor);
}

TEST(ActsTest, AnActWhoseWidgetIsGoneIsDropped) {
  Acts acts;
  bool happened = false;
  {
    QWidget widget;
    acts.Report(widget, [&] { happened = true; });
  }
  EXPECT_TRUE(acts.CarryOut());
  EXPECT_FALSE(happened);
}

TEST(ActsTest, AnActMayWaitWhileLaterOnesAreCarriedOut) {
  Acts acts;
  QWidget widget;
  std::vector<int> order;
  acts.Report(widget, [&] {
    order.push_back(1);
    acts.CarryOut();
    order.push_back(3);
  });
  acts.Report(widget, [&] { order.push_back(2); });
  EXPECT_TRUE(acts.CarryOut());
  EXPECT_THAT(order, ElementsAre(1, 2, 3));
  EXPECT_FALSE(acts.CarryOut());
}

TEST(ActsTest, TheSourceIsTheWidgetOfTheActThatRuns) {
  Acts acts;
  QWidget outer;
  QWidget inner;
  acts.Report(outer, [&] {
    EXPECT_EQ(acts.Source(), &outer);
    acts.Report(inner, [&] { EXPECT_EQ(acts.Source(), &inner); });
    acts.CarryOut();
    EXPECT_EQ(acts.Source(), &outer);
  });
  acts.CarryOut();
  EXPECT_EQ(acts.Source(), nullptr);
}

}  // namespace
}  // namespace brelant::test
