// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QMainWindow>
#include <QMenuBar>
#include <QMessageBox>
#include <QSet>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "panel_fixture.h"

namespace brelant::test {

inline const QColor kRed(255, 0, 0);
inline const QColor kGreen(0, 255, 0);
inline const QColor kYellow(255, 255, 0);
inline const QColor kField(0x54, 0x6C, 0x8D);

inline QString At(const char* name, int index) {
  return QString("%1(%2)").arg(name).arg(index);
}

/// Someone at the panel of a unit that is reached by name.
class UnitPanelTest : public PanelTest {
 protected:
  /// `alarms`: what they are called, by the index of their state.
  explicit UnitPanelTest(std::vector<QString> alarms) : alarms_(std::move(alarms)) {}

  static QWidget& Window() {
    for (auto* window : QApplication::topLevelWidgets()) {
      if (window->isVisible() && qobject_cast<QMainWindow*>(window) != nullptr) return *window;
    }
    throw std::out_of_range("no panel is open");
  }
  static QAction& Entry(const QString& name) { return *Window().findChild<QAction*>(name); }

  void PutWord(std::span<std::uint8_t> memory, std::size_t address, int word) const {
    memory[address] = static_cast<std::uint8_t>(word >> 8 & 255);
    memory[address + 1] = static_cast<std::uint8_t>(word & 255);
  }
  void Live(std::size_t address, int word) { PutWord(desk->port.sensor.Ram(), address, word); }
  void Keep(std::size_t address, int word) { PutWord(desk->port.sensor.Eeprom(), address, word); }
  int Byte(std::size_t address) const { return desk->port.sensor.Eeprom()[address]; }
  int Kept(std::size_t address) const { return Byte(address) * 256 + Byte(address + 1); }

  /// When two polls have ended: of these the second began after what was done before, and after all that had
  /// to wait for the line.
  void Settled(Desk::Step step) {
    OnPanel([this] { polls_ = desk->program.session.polls; });
    desk->When([this] { return desk->program.session.polls > polls_ + 1; }, [] {});
    OnPanel(std::move(step));
  }
  /// The same without a unit: the model has run.
  void Computed(Desk::Step step) {
    for (int i = 0; i < 2; ++i) OnPanel([] {});
    OnPanel(std::move(step));
  }
  QString Label(const QString& name) const { return desk->Panel<QLabel>(name).text(); }
  bool Ticked(const QString& name) const { return desk->Panel<QAbstractButton>(name).isChecked(); }
  /// The boxes of a relay that are ticked.
  static std::vector<int> Ticks(const char* relay) {
    std::vector<int> ticked;
    for (int i = 0; const auto* box = Window().findChild<QAbstractButton*>(At(relay, i)); ++i) {
      if (box->isChecked()) ticked.push_back(i);
    }
    return ticked;
  }
  QColor Ground(const QString& name) const {
    const auto image = Widget(name).grab().toImage();
    return image.pixelColor(image.width() / 2, 4);
  }
  void ExpectLamp(int index, const QString& state, const QColor& ground) const {
    const auto name = At("txbStatus", index);
    EXPECT_EQ(Label(name), state) << index;
    EXPECT_EQ(Ground(name), ground) << index;
    EXPECT_EQ(Widget(name).accessibleName(), alarms_.at(static_cast<std::size_t>(index)) + " " + state);
  }
  void ExpectLamps(const std::set<int>& alarms) const {
    for (int i = 0; i < static_cast<int>(alarms_.size()); ++i) {
      const bool alarm = alarms.count(i) > 0;
      ExpectLamp(i, alarm ? "ALARM" : "OK", alarm ? kRed : kGreen);
    }
  }
  /// Reads the text of the message box and puts it away.
  void Acknowledge(QString& text) {
    desk->When([] { return FindWindow("MessageBox") != nullptr; },
               [&text] {
                 auto& box = *static_cast<QMessageBox*>(FindWindow("MessageBox"));
                 text = box.text();
                 box.button(QMessageBox::Ok)->click();
               });
  }
  /// Also where the field has the focus already, so that a click selects nothing.
  void Retype(const QString& field, const QString& text) {
    OnPanel([this, field, text] {
      Press(Widget(field));
      PressKey(Widget(field), Qt::Key_A, Qt::ControlModifier);
      QTest::keyClicks(&Widget(field), text);
      PressKey(Widget(field), Qt::Key_Return);
    });
  }
  static void ExpectALetterEach(const QWidget& menu) {
    QSet<QChar> letters;
    int count = 0;
    for (const auto* action : menu.actions()) {
      if (!action->isVisible()) continue;
      ++count;
      const auto at = action->text().indexOf('&');
      ASSERT_GE(at, 0) << action->text().toStdString();
      letters.insert(action->text()[at + 1].toUpper());
      if (action->menu() != nullptr) ExpectALetterEach(*action->menu());
    }
    EXPECT_EQ(letters.size(), count) << menu.objectName().toStdString();
  }
  /// The names of what the Tab key reaches.
  static std::vector<std::string> Order(const QString& from, int count) {
    Activate(Window());
    Window().findChild<QWidget*>(from)->setFocus();
    std::vector<std::string> order;
    for (int i = 0; i < count; ++i) {
      order.push_back(QApplication::focusWidget()->objectName().toStdString());
      PressKey(*QApplication::focusWidget(), Qt::Key_Tab);
    }
    return order;
  }

 private:
  std::vector<QString> alarms_;
  unsigned polls_ = 0;
};

}  // namespace brelant::test
