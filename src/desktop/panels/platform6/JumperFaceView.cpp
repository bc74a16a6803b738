// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/platform6/JumperFaceView.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <vector>

#include "desktop/Appearance.h"
#include "desktop/kit/fields.h"
#include "desktop/kit/make.h"
#include "desktop/kit/text.h"
#include "desktop/panels/platform6/ChainView.h"
#include "desktop/panels/platform6/set_up.h"
#include "shell/Common.h"

namespace brelant::platform6 {

namespace {

constexpr int kSpacing = 10;
constexpr double kFull = 100;

Control& FieldOf(const Views& views, QChar letter, const QString& number = {}) {
  return views(("txb6v3" + QString(letter) + number).toStdString());
}

using Corner = std::array<double, 3>;

/// A curve through its corners: the value of the input, and percent.
struct Curve {
  std::vector<QPointF> corners;
  Qt::PenStyle style;
};

/// What an output does (docs/memory-maps.md, Jumper table): its curves, and where its corner points are.
struct Relation {
  std::vector<Curve> curves;
  std::array<QPointF, 3> points;
};

/// From 0 on to C, and from A on so much steeper that it is full at B.
Relation FirstOf(const Corner& corner) {
  const auto [a, b, c] = corner;
  const double atA = c == 0 ? 0 : std::clamp(a / c * kFull, 0.0, kFull);
  return {{{{{0, 0}, {c, kFull}}, Qt::DashLine}, {{{0, 0}, {a, atA}, {b, kFull}}, Qt::SolidLine}},
          {QPointF(a, atA), QPointF(b, kFull), QPointF(c, kFull)}};
}

/// From D on, to E with both of its functions, to F with one of them alone.
Relation SecondOf(const Corner& corner) {
  const auto [d, e, f] = corner;
  return {{{{{d, 0}, {f, kFull}}, Qt::DashLine}, {{{d, 0}, {e, kFull}}, Qt::SolidLine}},
          {QPointF(d, 0), QPointF(e, kFull), QPointF(f, kFull)}};
}

/// Full at G, and at I or, shifted, at K. The first one comes from -100 % as fast as the others from 0 %.
Relation ThirdOf(const Corner& corner) {
  constexpr double kWidth = 100;
  const auto [g, i, k] = corner;
  return {{{{{k - kWidth, 0}, {k, kFull}}, Qt::DashLine},
           {{{g - kWidth / 2, 0}, {g, kFull}}, Qt::SolidLine},
           {{{i - kWidth, 0}, {i, kFull}}, Qt::SolidLine}},
          {QPointF(g, kFull), QPointF(i, kFull), QPointF(k, kFull)}};
}

/// The curves and the corner points of an output, to scale: 0 % below, 100 % above.
class CornerDrawing : public QWidget {
 public:
  struct Face {
    std::array<QChar, 3> letters;
    std::array<const Control*, 3> fields;
    Relation (*relation)(const Corner&);
    /// Place of the output whose colour the curves have.
    std::size_t place;
  };

  CornerDrawing(Views& views, const Face& face, QWidget* parent) : QWidget(parent), face_(face) {
    setMinimumHeight(fontMetrics().height() * 10);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding);
    views.OnRefresh([this] { update(); });
  }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto ink = InkOf(palette());
    const Scale scale(*this, Now());
    painter.setPen(QPen(ink.wire, 1));
    painter.drawLine(scale.frame.bottomLeft(), scale.frame.bottomRight());
    painter.setPen(QPen(ink.faint, 1));
    painter.drawLine(scale.frame.topLeft(), scale.frame.topRight());
    for (const auto& curve : Now().curves) PaintCurve(painter, scale, curve);
    PaintPoints(painter, scale);
  }

 private:
  /// Where a value and a percentage lie in the widget.
  struct Scale {
    Scale(const QWidget& widget, const Relation& relation) {
      const double line = widget.fontMetrics().height();
      frame = QRectF(widget.rect()).adjusted(line, line * 1.3, -line, -line * 1.3);
      low = high = relation.points.front().x();
      const auto take = [this](const QPointF& corner) {
        low = std::min(low, corner.x());
        high = std::max(high, corner.x());
      };
      for (const auto& curve : relation.curves)
        std::for_each(curve.corners.begin(), curve.corners.end(), take);
      std::for_each(relation.points.begin(), relation.points.end(), take);
    }
    QPointF operator()(const QPointF& corner) const {
      constexpr double kMargin = 0.12;
      const double part = high > low ? (corner.x() - low) / (high - low) : 0.5;
      return {frame.left() + frame.width() * (kMargin + (1 - 2 * kMargin) * part),
              frame.bottom() - frame.height() * corner.y() / kFull};
    }

    QRectF frame;
    double low;
    double high;
  };

  Relation Now() const {
    Corner corner{};
    for (std::size_t i = 0; i < corner.size(); ++i) {
      const double value = ParseNumber(face_.fields[i]->Text());
      corner[i] = std::isfinite(value) ? value : 0;
    }
    return face_.relation(corner);
  }

  /// It stays before its first corner and behind its last one.
  void PaintCurve(QPainter& painter, const Scale& scale, const Curve& curve) const {
    const auto first = scale(curve.corners.front());
    QPainterPath path(QPointF(scale.frame.left(), first.y()));
    for (const auto& corner : curve.corners) path.lineTo(scale(corner));
    path.lineTo(scale.frame.right(), scale(curve.corners.back()).y());
    painter.setBrush(Qt::NoBrush);
    painter.setPen(
        QPen(InkOf(palette()).output.at(face_.place), 2.5, curve.style, Qt::FlatCap, Qt::RoundJoin));
    painter.drawPath(path);
  }

  void PaintPoints(QPainter& painter, const Scale& scale) const {
    const auto points = Now().points;
    const double line = fontMetrics().height();
    const auto ink = palette().color(QPalette::WindowText);
    QPointF before(-line, -line);
    double shift = 0;
    for (std::size_t i = 0; i < points.size(); ++i) {
      const auto at = scale(points[i]);
      painter.setPen(Qt::NoPen);
      painter.setBrush(ink);
      painter.drawEllipse(at, 4, 4);
      // Letters of points that fall together stand side by side.
      shift = std::hypot(at.x() - before.x(), at.y() - before.y()) < line ? shift + line : 0;
      before = at;
      const double top = points[i].y() > kFull / 2 ? at.y() - 4 - line : at.y() + 4;
      painter.setPen(ink);
      painter.drawText(QRectF(at.x() - line + shift, top, 2 * line, line), Qt::AlignCenter,
                       QString(face_.letters[i]));
    }
  }

  Face face_;
};

}  // namespace

JumperFaceView::JumperFaceView(Views& views, const JumperFace& jumper, QWidget* parent) : QWidget(parent) {
  auto& column = LayOut<QVBoxLayout>(*this, kSpacing);
  auto& layout = AddRow(column, kSpacing);
  column.setStretchFactor(&layout, 1);
  AddOutput(views, 0, {'A', 'B', 'C'}, layout);
  AddOutput(views, 1, {'D', 'E', 'F'}, layout);
  AddOutput(views, 2, {'G', 'I', 'K'}, layout);
  column.addWidget(&Make<ChainView>(*this, views, jumper));
}

void JumperFaceView::AddOutput(Views& views, int index, const Corners& corners, QBoxLayout& layout) {
  const auto title = QString("Out %1").arg(index + 1);
  const auto place = static_cast<std::size_t>(index);
  auto& inside = AddOutputCard(views, title, views("txb6v3AN", index), place, true, layout);
  auto& card = *inside.parentWidget();
  constexpr std::array kRelations{FirstOf, SecondOf, ThirdOf};
  const CornerDrawing::Face face{
      corners,
      {&FieldOf(views, corners[0], "1"), &FieldOf(views, corners[1]), &FieldOf(views, corners[2])},
      kRelations.at(place),
      place};
  auto& drawing = Make<CornerDrawing>(card, views, face);
  drawing.setObjectName(QString("pct6v3Settings") + corners[0]);
  inside.addWidget(&drawing, 1);
  auto& grid = *std::make_unique<QGridLayout>().release();
  grid.setVerticalSpacing(kSpacing);
  grid.setColumnStretch(2, 1);
  inside.addLayout(&grid);
  for (const int way : {0, 1}) AddCurve(views, corners, way, grid);
}

void JumperFaceView::AddCurve(Views& views, const Corners& corners, int way, QGridLayout& grid) {
  auto& card = *grid.parentWidget();
  const QString number = QString::number(way + 1);
  const QChar end = corners.at(static_cast<std::size_t>(way + 1));
  const auto add = [&](QChar letter, Control& field, int column) {
    auto& caption = Make<QLabel>(card, QString(letter));
    ScaleFont(caption, 1, QFont::DemiBold);
    grid.addWidget(&caption, way, column);
    const auto spoken = QString("Corner %1, curve %2").arg(letter).arg(number);
    grid.addWidget(&MakeNumber(views, field, Digits(card, 9), Always(spoken), card), way, column + 1);
  };
  add(corners[0], FieldOf(views, corners[0], number), 0);
  add(end, FieldOf(views, end), 3);
}

}  // namespace brelant::platform6
