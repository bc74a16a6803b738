// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/kit/Shape.h"

#include <QPainterPath>
#include <QPolygonF>
#include <array>

namespace brelant {

namespace {

/// Where 0 is: below the curve, above it (the function takes away), or half way up.
enum class Zero { below, above, between };

struct Shape {
  bool isDigital;
  Zero zero;
  bool rises;
  const char* words;
};

/// In the order of FunctionBlocks::Type.
constexpr std::array<Shape, FunctionBlocks::kTypes> kShapes{{
    {true, Zero::below, true, "positive, rising: on from b up, off from a down"},
    {true, Zero::below, false, "positive, falling: on from a down, off from b up"},
    {true, Zero::above, true, "negative, rising: holds back from a down, no longer from b up"},
    {true, Zero::above, false, "negative, falling: holds back from b up, no longer from a down"},
    {false, Zero::above, false, "negative, falling: 0 at a, -100 at b"},
    {false, Zero::above, true, "negative, rising: -100 at a, 0 at b"},
    {false, Zero::below, false, "positive, falling: 100 at a, 0 at b"},
    {false, Zero::below, true, "positive, rising: 0 at a, 100 at b"},
    {false, Zero::between, true, "rising: -100 at a, 100 at b"},
    {false, Zero::between, false, "falling: 100 at a, -100 at b"},
    {true, Zero::between, true, "rising: on from b up, off from a down"},
    {true, Zero::between, false, "falling: on from a down, off from b up"},
}};

/// The places in a picture that every shape is made of.
struct Frame {
  explicit Frame(const QRectF& rect)
      : left(rect.left()),
        right(rect.right()),
        a(rect.left() + rect.width() * 0.3),
        b(rect.left() + rect.width() * 0.7),
        top(rect.top()),
        bottom(rect.bottom()) {}

  double left, right, a, b, top, bottom;
};

QPolygonF Ramp(const Frame& frame, bool rises) {
  const double from = rises ? frame.bottom : frame.top;
  const double to = rises ? frame.top : frame.bottom;
  return {{{frame.left, from}, {frame.a, from}, {frame.b, to}, {frame.right, to}}};
}

double AxisOf(const Frame& frame, const Shape& shape) {
  switch (shape.zero) {
    case Zero::below:
      return frame.bottom;
    case Zero::above:
      return frame.top;
    default:
      return (frame.top + frame.bottom) / 2;
  }
}

/// What lies between the ramp and the axis.
QPolygonF Area(const Frame& frame, const Shape& shape) {
  const double axis = AxisOf(frame, shape);
  if (shape.zero == Zero::between) {
    return Ramp(frame, shape.rises) << QPointF(frame.right, axis) << QPointF(frame.left, axis);
  }
  const bool isOnAxisAtFirst = shape.rises == (shape.zero == Zero::below);
  const double level = shape.zero == Zero::above ? frame.bottom : frame.top;
  if (isOnAxisAtFirst)
    return {{{frame.a, axis}, {frame.b, level}, {frame.right, level}, {frame.right, axis}}};
  return {{{frame.left, axis}, {frame.left, level}, {frame.a, level}, {frame.b, axis}}};
}

void PaintArea(QPainter& painter, const Frame& frame, const Shape& shape, const QColor& colour) {
  if (shape.isDigital) {
    painter.fillRect(QRectF(QPointF(frame.a, frame.top), QPointF(frame.b, frame.bottom)), colour);
    return;
  }
  QPainterPath area;
  area.addPolygon(Area(frame, shape));
  painter.fillPath(area, colour);
}

/// An arrow head half way up or down an upright line.
void PaintDirection(QPainter& painter, const Frame& frame, double x, bool up, const QColor& colour) {
  const double size = (frame.bottom - frame.top) * 0.14;
  const QPointF tip(x, (frame.top + frame.bottom) / 2 + (up ? -size : size));
  const double back = up ? 2 * size : -2 * size;
  QPainterPath head(tip);
  head.lineTo(tip + QPointF(size, back));
  head.lineTo(tip + QPointF(-size, back));
  painter.fillPath(head, colour);
}

void PaintLoop(QPainter& painter, const Frame& frame, const Shape& shape, const ShapeInk& ink) {
  const double from = shape.rises ? frame.bottom : frame.top;
  const double to = shape.rises ? frame.top : frame.bottom;
  QPainterPath path(QPointF(frame.left, from));
  path.lineTo(frame.b, from);
  path.lineTo(frame.b, to);
  path.moveTo(frame.a, from);
  path.lineTo(frame.a, to);
  path.lineTo(frame.right, to);
  painter.drawPath(path);
  PaintDirection(painter, frame, frame.b, shape.rises, ink.curve);
  PaintDirection(painter, frame, frame.a, !shape.rises, ink.curve);
}

void PaintAxis(QPainter& painter, const Frame& frame, const Shape& shape, double tick) {
  const double y = AxisOf(frame, shape);
  painter.drawLine(QPointF(frame.left, y), QPointF(frame.right, y));
  for (const double x : {frame.a, frame.b}) painter.drawLine(QPointF(x, y - tick), QPointF(x, y + tick));
}

}  // namespace

void PaintShape(QPainter& painter, const QRectF& rect, FunctionBlocks::Type type, const ShapeInk& ink) {
  const auto& shape = kShapes.at(type);
  const double unit = rect.height() / 40;
  const Frame frame(rect.adjusted(2 * unit, 5 * unit, -2 * unit, -5 * unit));
  painter.setRenderHint(QPainter::Antialiasing);
  PaintArea(painter, frame, shape, ink.area);
  painter.setPen(QPen(ink.axis, unit));
  PaintAxis(painter, frame, shape, 3 * unit);
  painter.setPen(QPen(ink.curve, 2 * unit, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
  if (shape.isDigital) {
    PaintLoop(painter, frame, shape, ink);
  } else {
    painter.drawPolyline(Ramp(frame, shape.rises));
  }
}

QString ShapeInWords(FunctionBlocks::Type type) {
  return kShapes.at(type).words;
}

}  // namespace brelant
