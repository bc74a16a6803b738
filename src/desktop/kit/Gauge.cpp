// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/kit/Gauge.h"

#include <QPainter>
#include <algorithm>

#include "desktop/Appearance.h"
#include "shell/Common.h"

namespace brelant {

Gauge::Gauge(Views& views, const Control& control, std::size_t output, QWidget* parent)
    : QWidget(parent), output_(output) {
  setFixedHeight(fontMetrics().height() / 2);
  views.OnRefresh([this, &control] {
    const double percent = std::clamp(double{ParseNumber(control.Text())}, 0.0, 100.0);
    if (percent == percent_) return;
    percent_ = percent;
    update();
  });
}

void Gauge::SetOutput(std::size_t output) {
  if (output == output_) return;
  output_ = output;
  update();
}

void Gauge::paintEvent(QPaintEvent* /*event*/) {
  const auto ink = InkOf(palette());
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QRectF whole = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
  painter.setPen(QPen(ink.wire, 1));
  painter.setBrush(palette().color(QPalette::Base));
  painter.drawRect(whole);
  auto filled = whole.adjusted(1.5, 1.5, -1.5, -1.5);
  filled.setWidth(filled.width() * percent_ / 100);
  painter.fillRect(filled, ink.output.at(output_));
}

}  // namespace brelant
