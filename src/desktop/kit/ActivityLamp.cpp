// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/kit/ActivityLamp.h"

#include <QPainter>

#include "desktop/Appearance.h"
#include "desktop/kit/text.h"

namespace brelant {

ActivityLamp::ActivityLamp(Views& views, const Control& lamp, QWidget* parent) : QWidget(parent) {
  setObjectName(QString::fromStdString(lamp.Name()));
  setFixedSize(fontMetrics().height(), fontMetrics().height());
  setAccessibleName("Activity on the line");
  setToolTip(accessibleName());
  views.OnRefresh([this, &lamp] {
    const auto told = ToQColor(lamp.Back());
    if (told == back_) return;
    back_ = told;
    update();
  });
}

void ActivityLamp::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(InkOf(palette()).wire, 1));
  painter.setBrush(back_);
  painter.drawEllipse(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
}

}  // namespace brelant
