// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPainter>
#include <QRectF>

#include "panels/FunctionBlocks.h"

namespace brelant {

/// The colours that a picture is drawn with.
struct ShapeInk {
  QColor axis;
  QColor curve;
  QColor area;
};

/// Draws what a function makes of its input: the ramp from a to b above or below the axis at zero, or, where
/// it feeds a digital output, the two ways between off and on. Sharp at any size.
void PaintShape(QPainter& painter, const QRectF& rect, FunctionBlocks::Type type, const ShapeInk& ink);

/// The same in words.
QString ShapeInWords(FunctionBlocks::Type type);

}  // namespace brelant
