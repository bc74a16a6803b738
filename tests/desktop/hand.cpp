// SPDX-License-Identifier: GPL-3.0-or-later
#include "hand.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QTest>
#include <stdexcept>

namespace brelant::test {

void Activate(QWidget& widget) {
  widget.window()->activateWindow();
  QApplication::processEvents();
}

void Press(QWidget& widget) {
  Activate(widget);
  const auto* button = qobject_cast<const QAbstractButton*>(&widget);
  auto place = widget.rect().center();
  // Boxes and options take a click on their mark and their text only.
  if (button != nullptr && button->isCheckable()) place.setX(widget.height() / 2);
  QTest::mouseClick(&widget, Qt::LeftButton, Qt::NoModifier, place);
}

void PressKey(QWidget& widget, Qt::Key key, Qt::KeyboardModifiers modifiers) {
  QTest::keyClick(&widget, key, modifiers);
}

void Type(QWidget& field, const QString& text) {
  Press(field);
  QTest::keyClicks(&field, text);
}

void ClickAction(QWidget& menu, QAction& action) {
  const auto* bar = qobject_cast<QMenuBar*>(&menu);
  const auto place =
      bar != nullptr ? bar->actionGeometry(&action) : static_cast<const QMenu&>(menu).actionGeometry(&action);
  QTest::mouseClick(&menu, Qt::LeftButton, Qt::NoModifier, place.center());
  // The style lets a menu below another wait for a moment.
  const auto* below = action.menu();
  if (below == nullptr || QTest::qWaitFor([below] { return below->isVisible(); })) return;
  throw std::runtime_error(action.objectName().toStdString() + " does not open");
}

QWidget* FindWindow(const QString& name) {
  for (auto* window : QApplication::topLevelWidgets()) {
    if (window->objectName() == name && window->isVisible()) return window;
  }
  return nullptr;
}

}  // namespace brelant::test
