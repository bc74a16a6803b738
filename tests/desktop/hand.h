// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAction>
#include <QWidget>

namespace brelant::test {

/// What a hand does to widgets. Each goes the way of real events.

/// Makes the window of the widget the active one, as a window manager does.
void Activate(QWidget& widget);
void Press(QWidget& widget);
void PressKey(QWidget& widget, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
/// A click into the field, and the text in place of what is there.
void Type(QWidget& field, const QString& text);

/// Clicks an entry of a menu bar or of an open menu. A menu below it is then open.
void ClickAction(QWidget& menu, QAction& action);

/// The open window of that name, nullptr if there is none.
QWidget* FindWindow(const QString& name);

}  // namespace brelant::test
