// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/kit/Card.h"

#include <QPainter>

#include "desktop/Appearance.h"

namespace brelant {

void Card::SetLit(bool lit) {
  if (lit == lit_) return;
  lit_ = lit;
  update();
}

void Card::paintEvent(QPaintEvent* /*event*/) {
  const auto ink = InkOf(palette());
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(lit_ ? ink.wire : ink.cardEdge, 1));
  painter.setBrush(ink.card);
  painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 5, 5);
}

}  // namespace brelant
