// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/kit/StatusLamp.h"

#include <QApplication>
#include <QPainter>
#include <utility>

#include "desktop/kit/bind.h"
#include "desktop/kit/text.h"

namespace brelant {

namespace {

constexpr double kSize = 2;
/// Wide enough for every state, so that the lamps of a column do not change their width.
constexpr int kWidth = 9;

}  // namespace

StatusLamp::StatusLamp(Views& views, Control& state, SpokenName name, QWidget* parent) : QLabel(parent) {
  ScaleFont(*this, kSize, QFont::Bold);
  setAlignment(Qt::AlignCenter);
  setMinimumSize(Digits(*this, kWidth), fontMetrics().height() * 3 / 2);
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding);
  Bind(views, state, *this);
  views.OnRefresh([this, &state, name = std::move(name)] {
    TakeColour(ToQColor(state.Back()));
    const auto spoken = name() + " " + TextOf(state);
    if (accessibleName() != spoken) setAccessibleName(spoken);
  });
}

void StatusLamp::TakeColour(const QColor& told) {
  const auto back = told.isValid() ? told : QApplication::palette().color(QPalette::Base);
  if (back == back_) return;
  back_ = back;
  QPalette onLamp;
  onLamp.setColor(QPalette::WindowText, InkOn(back));
  setPalette(onLamp);
}

void StatusLamp::paintEvent(QPaintEvent* event) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(back_.darker(160), 1));
  painter.setBrush(back_);
  painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 5, 5);
  painter.end();
  QLabel::paintEvent(event);
}

}  // namespace brelant
