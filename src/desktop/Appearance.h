// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QApplication>
#include <QColor>
#include <QPalette>
#include <array>

namespace brelant {

enum class Style { system, light, dark };

/// The style of all windows. `system` takes the light or the dark one by what the machine uses.
void ApplyStyle(QApplication& application, Style style);

/// Colours of what is drawn rather than built of widgets. All are told apart from the window's ground at 3 :
/// 1 or better but for `faint`, which says nothing that is not said by its absence.
struct Ink {
  QColor wire;
  QColor faint;
  QColor card;
  QColor cardEdge;
  QColor area;
  /// What runs and will end by itself.
  QColor running;
  /// Out 1 to Out 4: blue, orange, green and purple, in shades that most colour-blind people tell apart.
  std::array<QColor, 4> output;
};

Ink InkOf(const QPalette& palette);

}  // namespace brelant
