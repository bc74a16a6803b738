// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QChar>
#include <QColor>
#include <QFont>
#include <QMargins>
#include <QString>
#include <QWidget>

#include "shell/form.h"

namespace brelant {

inline QString TextOf(const Control& control) {
  return QString::fromStdString(control.Text());
}

/// The caption for a widget that takes "&" for a mnemonic: the first such letter is underlined, if there is
/// one, and every "&" of the caption is kept as it stands.
QString WithMnemonic(const QString& caption, QChar letter);

/// The style's colour is an invalid one; the system's colour of a button's face is what the palette has for
/// it.
QColor ToQColor(Colour colour);

/// Black or white, whichever is read better on that colour.
QColor InkOn(const QColor& back);

/// The widget's text in another size, as a multiple of what it would be.
void ScaleFont(QWidget& widget, double factor, QFont::Weight weight = QFont::Normal);

/// Margins that put a text at the bottom of a row on the base line of the larger one beside it.
QMargins ToBaseLineOf(const QWidget& large, const QWidget& small);

/// Width of so many digits in the widget's font.
int Digits(const QWidget& widget, int count);

}  // namespace brelant
