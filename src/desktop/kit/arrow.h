// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPainterPath>

namespace brelant {

/// Length of an arrow head.
inline constexpr double kArrow = 7;

/// An arrow head whose tip is there; `along` is the unit vector that it points to.
inline QPainterPath ArrowHead(const QPointF& tip, const QPointF& along) {
  const QPointF across(-along.y(), along.x());
  QPainterPath head(tip);
  head.lineTo(tip - kArrow * along + kArrow * 0.6 * across);
  head.lineTo(tip - kArrow * along - kArrow * 0.6 * across);
  return head;
}

}  // namespace brelant
