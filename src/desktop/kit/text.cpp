// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/kit/text.h"

#include <QGuiApplication>
#include <QPalette>
#include <cmath>

namespace brelant {

namespace {

/// Relative luminance as the contrast rules for accessible pages define it, 0 to 1.
double Luminance(const QColor& colour) {
  const auto linear = [](double part) {
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}

}  // namespace

QString WithMnemonic(const QString& caption, QChar letter) {
  QString text = caption;
  text.replace('&', "&&");
  const auto at = letter.isNull() ? -1 : text.indexOf(letter, 0, Qt::CaseInsensitive);
  return at < 0 ? text : text.insert(at, '&');
}

QColor ToQColor(Colour colour) {
  constexpr auto kButtonFace = static_cast<Colour>(0x8000000FU);
  if (colour == kStyleColour) return {};
  if (colour == kButtonFace) return QGuiApplication::palette().color(QPalette::Button);
  return {colour & 255, colour >> 8 & 255, colour >> 16 & 255};
}

QColor InkOn(const QColor& back) {
  constexpr double kGlare = 0.05;
  const double luminance = Luminance(back) + kGlare;
  const bool whiteIsBetter = (1 + kGlare) / luminance > luminance / kGlare;
  return whiteIsBetter ? Qt::white : Qt::black;
}

void ScaleFont(QWidget& widget, double factor, QFont::Weight weight) {
  auto font = widget.font();
  font.setPointSizeF(font.pointSizeF() * factor);
  font.setWeight(weight);
  widget.setFont(font);
}

QMargins ToBaseLineOf(const QWidget& large, const QWidget& small) {
  return {0, 0, 0, large.fontMetrics().descent() - small.fontMetrics().descent()};
}

int Digits(const QWidget& widget, int count) {
  return widget.fontMetrics().horizontalAdvance('0') * count;
}

}  // namespace brelant
