// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractButton>
#include <QColor>
#include <QLineEdit>
#include <QMenu>
#include <QTest>
#include <memory>
#include <utility>

#include <gtest/gtest.h>

#include "desk.h"

namespace brelant::test {

/// Someone at the panel of a sensor on the line.
class PanelTest : public testing::Test {
 protected:
  void Start(int part, int variant) {
    desk = std::make_unique<Desk>(part, variant);
    desk->StartSession();
  }
  void OnPanel(Desk::Step step) { desk->OnPanel(std::move(step)); }
  void AfterPoll(Desk::Step step) {
    desk->When([this] { return desk->program.session.polls > 0; }, [] {});
    OnPanel(std::move(step));
  }
  QWidget& Widget(const QString& name) const { return desk->Panel(name); }
  QString Text(const QString& name) const { return desk->Panel<QLineEdit>(name).text(); }
  QString Caption(const QString& name) const { return desk->Panel<QAbstractButton>(name).text(); }
  QColor Back(const QString& name) const { return Widget(name).palette().color(QPalette::Base); }
  QColor Fore(const QString& name) const { return Widget(name).palette().color(QPalette::Text); }

  /// Clicks a label and chooses an entry of the menu that it pops up.
  void Choose(const QString& label, const QString& caption) {
    OnPanel([this, label] { Press(Widget(label)); });
    desk->When([] { return FindWindow("PopupMenu") != nullptr; },
               [caption] {
                 auto& menu = *static_cast<QMenu*>(FindWindow("PopupMenu"));
                 for (auto* action : menu.actions()) {
                   if (action->text() != caption) continue;
                   QTest::mouseClick(&menu, Qt::LeftButton, Qt::NoModifier,
                                     menu.actionGeometry(action).center());
                 }
               });
  }
  void Edit(const QString& field, const QString& text) {
    OnPanel([this, field, text] {
      Type(Widget(field), text);
      PressKey(Widget(field), Qt::Key_Return);
    });
  }

  /// Pixels of exactly that colour in an open window.
  static int PixelsOf(const QString& window, const QColor& colour) {
    const auto image = FindWindow(window)->grab().toImage();
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) count += image.pixelColor(x, y) == colour ? 1 : 0;
    }
    return count;
  }
  /// Expects that every button and field says what it is, and counts them.
  static int CountSpokenNames(const QString& window) {
    int seen = 0;
    for (const auto* widget : FindWindow(window)->findChildren<QWidget*>()) {
      if (!widget->isVisible() || widget->objectName().startsWith("qt_")) continue;
      const auto* button = qobject_cast<const QAbstractButton*>(widget);
      if (button == nullptr && qobject_cast<const QLineEdit*>(widget) == nullptr) continue;
      const auto name = widget->accessibleName() + (button == nullptr ? QString() : button->text());
      EXPECT_FALSE(name.isEmpty()) << widget->objectName().toStdString();
      ++seen;
    }
    return seen;
  }
  static void ExpectFitsASmallLaptop(const QString& window) {
    const auto size = FindWindow(window)->size();
    EXPECT_LE(size.width(), 1366);
    // Less than 768, for the frame of the window and the bar of the desktop.
    EXPECT_LE(size.height(), 690);
  }

  std::unique_ptr<Desk> desk;
};

}  // namespace brelant::test
