// SPDX-License-Identifier: GPL-3.0-or-later
#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QInputDialog>
#include <QMenu>
#include <QMessageBox>
#include <QTest>

#include <gtest/gtest.h>

#include "desktop/DesktopUserInterface.h"
#include "hand.h"
#include "support/virtual_clock.h"
#include "support/virtual_pump.h"

namespace brelant::test {
namespace {

using Buttons = UserInterface::Buttons;
using Reply = UserInterface::Reply;
using Icon = UserInterface::Icon;

/// Questions, and a person who answers as soon as the box is there.
class BoxTest : public testing::Test {
 protected:
  BoxTest() {
    ui.Enter({&pump, [this] { return source; }, [] { return nullptr; }, [this] { return over; }});
    pump.OnPass([this] {
      QApplication::processEvents();
      auto* box = FindWindow(expected);
      if (box == nullptr || !answer) return false;
      std::exchange(answer, nullptr)(*box);
      QApplication::processEvents();
      return true;
    });
  }

  void When(const QString& box, std::function<void(QWidget&)> act) {
    expected = box;
    answer = std::move(act);
  }
  void WhenAsked(QMessageBox::StandardButton button) {
    When("MessageBox", [button](QWidget& box) { static_cast<QMessageBox&>(box).button(button)->click(); });
  }

  VirtualClock clock;
  VirtualPump pump{clock};
  DesktopUserInterface ui;
  QWidget* source = nullptr;
  bool over = false;
  QString expected;
  std::function<void(QWidget&)> answer;
};

TEST_F(BoxTest, AMessageShowsItsTextAndIsAcknowledged) {
  QString text;
  QString title;
  When("MessageBox", [&](QWidget& widget) {
    auto& box = static_cast<QMessageBox&>(widget);
    text = box.text();
    title = box.windowTitle();
    EXPECT_EQ(box.standardButtons(), QMessageBox::Ok);
    EXPECT_EQ(box.icon(), QMessageBox::NoIcon);
    box.button(QMessageBox::Ok)->click();
  });
  EXPECT_EQ(ui.MessageBox("Can't read from sensor", Buttons::ok, "T", Icon::none), Reply::ok);
  EXPECT_EQ(text, "Can't read from sensor");
  EXPECT_EQ(title, "T");
  EXPECT_EQ(FindWindow("MessageBox"), nullptr);
}

TEST_F(BoxTest, AMessageIsAnsweredByItsButtons) {
  WhenAsked(QMessageBox::Cancel);
  EXPECT_EQ(ui.MessageBox("?", Buttons::okCancel, "", Icon::none), Reply::cancel);
  WhenAsked(QMessageBox::Ok);
  EXPECT_EQ(ui.MessageBox("?", Buttons::okCancel, "", Icon::none), Reply::ok);
  WhenAsked(QMessageBox::Yes);
  EXPECT_EQ(ui.MessageBox("?", Buttons::yesNo, "", Icon::none), Reply::yes);
  WhenAsked(QMessageBox::No);
  EXPECT_EQ(ui.MessageBox("?", Buttons::yesNo, "", Icon::none), Reply::no);
}

TEST_F(BoxTest, AMessageThatIsLeftIsAnsweredCarefully) {
  const auto leave = [](QWidget& box) { box.close(); };
  When("MessageBox", leave);
  EXPECT_EQ(ui.MessageBox("!", Buttons::ok, "", Icon::none), Reply::ok);
  When("MessageBox", leave);
  EXPECT_EQ(ui.MessageBox("?", Buttons::okCancel, "", Icon::none), Reply::cancel);
  over = false;
  When("MessageBox", [this](QWidget&) { over = true; });
  EXPECT_EQ(ui.MessageBox("?", Buttons::yesNo, "", Icon::none), Reply::no);
}

TEST_F(BoxTest, AStopHasItsIcon) {
  When("MessageBox", [](QWidget& widget) {
    EXPECT_EQ(static_cast<QMessageBox&>(widget).icon(), QMessageBox::Critical);
    widget.close();
  });
  ui.MessageBox("!", Buttons::ok, "", Icon::stop);
}

TEST_F(BoxTest, AnInputIsTheTextOrNothing) {
  When("InputBox", [](QWidget& widget) {
    auto& box = static_cast<QInputDialog&>(widget);
    EXPECT_EQ(box.labelText(), "Please enter correct temperature");
    EXPECT_EQ(box.windowTitle(), QApplication::applicationName());
    box.setTextValue("21,5");
    box.accept();
  });
  EXPECT_EQ(ui.InputBox("Please enter correct temperature"), "21,5");
  When("InputBox", [](QWidget& widget) { static_cast<QInputDialog&>(widget).reject(); });
  EXPECT_EQ(ui.InputBox("?"), std::nullopt);
}

TEST_F(BoxTest, AMenuPopsUpUnderItsSourceAndGivesTheIndex) {
  QWidget window;
  window.setGeometry(100, 100, 300, 200);
  window.show();
  source = &window;
  QPoint place;
  When("PopupMenu", [&](QWidget& widget) {
    auto& menu = static_cast<QMenu&>(widget);
    place = menu.pos();
    ASSERT_EQ(menu.actions().size(), 3);
    EXPECT_EQ(menu.actions()[2]->text(), "CO2 && RH");
    QTest::mouseClick(&menu, Qt::LeftButton, Qt::NoModifier, menu.actionGeometry(menu.actions()[1]).center());
  });
  EXPECT_EQ(ui.PopupMenu({"TEMP", "CO2", "CO2 & RH"}), 1U);
  EXPECT_EQ(place, window.mapToGlobal(QPoint(0, 200)));
}

TEST_F(BoxTest, AMenuIsChosenFromByKey) {
  When("PopupMenu", [](QWidget& menu) {
    PressKey(menu, Qt::Key_Down);
    PressKey(menu, Qt::Key_Down);
    PressKey(menu, Qt::Key_Return);
  });
  EXPECT_EQ(ui.PopupMenu({"Min", "Sec"}), 1U);
}

TEST_F(BoxTest, AMenuThatIsLeftGivesNothing) {
  When("PopupMenu", [](QWidget& menu) { PressKey(menu, Qt::Key_Escape); });
  EXPECT_EQ(ui.PopupMenu({"Min", "Sec"}), std::nullopt);
  EXPECT_EQ(ui.PopupMenu({}), std::nullopt);
}

TEST_F(BoxTest, AFileDialogFiltersInAnyCase) {
  When("FileDialog", [](QWidget& widget) {
    auto& box = static_cast<QFileDialog&>(widget);
    EXPECT_EQ(box.nameFilters(), QStringList({"*.Set (*.Set *.set)"}));
    EXPECT_EQ(box.acceptMode(), QFileDialog::AcceptOpen);
    EXPECT_EQ(box.fileMode(), QFileDialog::ExistingFile);
    box.reject();
  });
  EXPECT_EQ(ui.FileDialog(UserInterface::FileUse::open, "(*.Set)|*.Set"), std::nullopt);
  When("FileDialog", [](QWidget& widget) {
    auto& box = static_cast<QFileDialog&>(widget);
    EXPECT_EQ(box.acceptMode(), QFileDialog::AcceptSave);
    EXPECT_EQ(box.defaultSuffix(), "Set");
    box.reject();
  });
  EXPECT_EQ(ui.FileDialog(UserInterface::FileUse::save, "(*.Set)|*.Set"), std::nullopt);
}

TEST_F(BoxTest, NoBoxOutlivesTheSession) {
  When("InputBox", [this](QWidget&) { over = true; });
  EXPECT_EQ(ui.InputBox("?"), std::nullopt);
  EXPECT_EQ(FindWindow("InputBox"), nullptr);
}

}  // namespace
}  // namespace brelant::test
