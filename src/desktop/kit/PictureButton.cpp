// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/kit/PictureButton.h"

#include <algorithm>
#include <utility>

namespace brelant {

PictureButton::PictureButton(Views& views, std::vector<Control*> pictures, Face face, QWidget* parent)
    : QAbstractButton(parent), pictures_(std::move(pictures)), face_(std::move(face)) {
  setFocusPolicy(Qt::TabFocus);
  setCursor(Qt::PointingHandCursor);
  setAttribute(Qt::WA_Hover);
  connect(this, &QAbstractButton::clicked, this, [this, &views] {
    if (shown_ >= 0) views.ReportClick(*this, *pictures_.at(static_cast<std::size_t>(shown_)));
  });
  views.OnRefresh([this] { Refresh(); });
}

void PictureButton::Refresh() {
  const auto visible = std::find_if(pictures_.begin(), pictures_.end(),
                                    [](const Control* picture) { return picture->Visible(); });
  const int shown = visible == pictures_.end() ? -1 : static_cast<int>(visible - pictures_.begin());
  if (shown == shown_) return;
  shown_ = shown;
  setObjectName(shown < 0 ? QString() : QString::fromStdString((*visible)->Name()));
  setAccessibleName(shown < 0 ? QString() : face_.inWords(shown));
  setToolTip(accessibleName());
  update();
}

void PictureButton::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QRectF frame = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
  const bool isHot = hasFocus() || underMouse();
  painter.setPen(QPen(palette().color(isHot ? QPalette::Highlight : QPalette::Mid), hasFocus() ? 2 : 1));
  painter.setBrush(palette().color(isDown() ? QPalette::AlternateBase : QPalette::Base));
  painter.drawRoundedRect(frame, 3, 3);
  painter.setBrush(Qt::NoBrush);
  if (shown_ >= 0) face_.paint(painter, frame.adjusted(3, 3, -3, -3), shown_);
}

}  // namespace brelant
