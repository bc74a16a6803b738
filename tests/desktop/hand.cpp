// SPDX-License-Identifier: GPL-3.0-or-later
#include "hand.h"

#include <QAbstractButton>
#include <QApplication>
#include <QTest>

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

QWidget* FindWindow(const QString& name) {
  for (auto* window : QApplication::topLevelWidgets()) {
    if (window->objectName() == name && window->isVisible()) return window;
  }
  return nullptr;
}

}  // namespace brelant::test
