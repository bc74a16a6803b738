// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/CurvePlot.h"

#include <QChart>
#include <QChartView>
#include <QGraphicsRectItem>
#include <QGraphicsSimpleTextItem>
#include <QLegend>
#include <QLegendMarker>
#include <QLineSeries>
#include <QScatterSeries>
#include <QVBoxLayout>
#include <QValueAxis>
#include <algorithm>
#include <cmath>
#include <memory>

namespace brelant {

namespace {

constexpr double kThin = 1.5;
constexpr double kStrong = 3;
constexpr double kMarker = 14;
constexpr double kMarkerEdge = 2;
/// Between a note and its point, and around the text of the note.
constexpr double kNoteGap = 12;
constexpr double kNoteMargin = 5;
constexpr double kNoteSize = 1.2;
/// Part of the range that stays free at each end.
constexpr double kFree = 0.03;
/// At most.
constexpr int kTicks = 8;

/// From the least to the greatest, and room around.
void FitRange(QValueAxis& axis, double least, double greatest) {
  const double room = greatest > least ? (greatest - least) * kFree : 1;
  axis.setTickType(QValueAxis::TicksFixed);
  axis.setRange(least - (least == 0 ? 0 : room), greatest + room);
  axis.setTickCount(kTicks);
  axis.applyNiceNumbers();
}

/// 1, 2 or 5 of a power of ten, so that no more than the usual number of ticks stand on the width.
double NiceInterval(double width) {
  const double least = width / kTicks;
  const double power = std::pow(10, std::floor(std::log10(least)));
  for (const double step : {1, 2, 5}) {
    if (step * power >= least) return step * power;
  }
  return 10 * power;
}

void SetRange(QValueAxis& axis, const CurvePlot::Range& range) {
  axis.setTickType(QValueAxis::TicksDynamic);
  axis.setTickAnchor(0);
  axis.setTickInterval(NiceInterval(range.greatest - range.least));
  axis.setRange(range.least, range.greatest);
}

template <typename Coordinate>
void Scale(QValueAxis& axis, const CurvePlot::Axis& told, const QList<QPointF>& points,
           Coordinate coordinate) {
  axis.setTitleText(told.title);
  if (told.range) {
    SetRange(axis, *told.range);
  } else if (!points.isEmpty()) {
    const auto before = [&](const QPointF& a, const QPointF& b) { return coordinate(a) < coordinate(b); };
    const auto [least, greatest] = std::minmax_element(points.begin(), points.end(), before);
    FitRange(axis, coordinate(*least), coordinate(*greatest));
  }
}

}  // namespace

CurvePlot::CurvePlot(const Colours& colours, QWidget* parent)
    : QWidget(parent),
      colours_(colours),
      view_(std::make_unique<QChartView>(this).release()),
      chart_(view_->chart()),
      x_(std::make_unique<QValueAxis>(chart_).release()),
      y_(std::make_unique<QValueAxis>(chart_).release()),
      point_(std::make_unique<QScatterSeries>(chart_).release()),
      note_(std::make_unique<QGraphicsRectItem>(chart_).release()),
      noteText_(std::make_unique<QGraphicsSimpleTextItem>(note_).release()) {
  auto& layout = *std::make_unique<QVBoxLayout>(this).release();
  layout.setContentsMargins({});
  layout.addWidget(view_);
  view_->setRenderHint(QPainter::Antialiasing);
  view_->setFrameShape(QFrame::NoFrame);
  view_->setBackgroundBrush(colours.ground);
  view_->setFocusPolicy(Qt::NoFocus);
  chart_->setBackgroundBrush(colours.ground);
  chart_->setBackgroundRoundness(0);
  chart_->setMargins({});
  chart_->setPlotAreaBackgroundBrush(colours.area);
  chart_->setPlotAreaBackgroundVisible();
  DressLegend();
  AddAxis(*x_, Qt::AlignBottom);
  AddAxis(*y_, Qt::AlignLeft);
  AddPoint();
  AddNote();
}

void CurvePlot::DressLegend() {
  auto& legend = *chart_->legend();
  legend.setAlignment(Qt::AlignTop);
  legend.setFont(font());
  legend.setLabelColor(colours_.text);
  legend.setMarkerShape(QLegend::MarkerShapeFromSeries);
}

void CurvePlot::AddAxis(QValueAxis& axis, Qt::Alignment side) {
  auto strong = font();
  strong.setWeight(QFont::DemiBold);
  axis.setTitleFont(strong);
  axis.setTitleBrush(colours_.text);
  axis.setLabelsFont(font());
  axis.setLabelsColor(colours_.text);
  axis.setLabelFormat("%g");
  axis.setLinePen(QPen(colours_.text, 1));
  axis.setGridLinePen(QPen(colours_.grid, 1));
  chart_->addAxis(&axis, side);
}

void CurvePlot::Attach(QAbstractSeries& series) {
  chart_->addSeries(&series);
  series.attachAxis(x_);
  series.attachAxis(y_);
}

QLineSeries& CurvePlot::AddSeries() {
  auto& series = *std::make_unique<QLineSeries>(chart_).release();
  // The point lies above all curves: what is added last does.
  chart_->removeSeries(point_);
  Attach(series);
  Attach(*point_);
  series_.push_back(&series);
  return series;
}

void CurvePlot::AddPoint() {
  point_->setMarkerSize(kMarker);
  point_->setColor(colours_.point);
  point_->setPen(QPen(colours_.area, kMarkerEdge));
  Attach(*point_);
}

/// Above the lines, on a ground of its own.
void CurvePlot::AddNote() {
  auto strong = font();
  strong.setWeight(QFont::DemiBold);
  strong.setPointSizeF(strong.pointSizeF() * kNoteSize);
  noteText_->setFont(strong);
  noteText_->setBrush(colours_.text);
  noteText_->setPos(kNoteMargin, kNoteMargin);
  note_->setBrush(colours_.ground);
  note_->setPen(QPen(colours_.point, 1));
  note_->setZValue(100);
  connect(chart_, &QChart::plotAreaChanged, this, [this] { PlaceNote(); });
}

void CurvePlot::Draw(const Curves& curves) {
  DrawCurves(curves.curves);
  auto points = curves.point ? QList<QPointF>{*curves.point} : QList<QPointF>{};
  point_->setName(curves.pointName);
  point_->replace(points);
  point_->setVisible(curves.point.has_value());
  for (const auto& curve : curves.curves) points.append(curve.points);
  Scale(*x_, curves.x, points, [](const QPointF& point) { return point.x(); });
  Scale(*y_, curves.y, points, [](const QPointF& point) { return point.y(); });
  noteText_->setText(curves.note);
  const double margins = 2 * kNoteMargin;
  note_->setRect(QRectF(QPointF(0, 0), noteText_->boundingRect().size() + QSizeF(margins, margins)));
  PlaceNote();
}

void CurvePlot::DrawCurves(const std::vector<Curve>& curves) {
  while (series_.size() < curves.size()) AddSeries();
  for (std::size_t i = 0; i < series_.size(); ++i) {
    auto& series = *series_[i];
    const auto curve = i < curves.size() ? curves[i] : Curve{};
    series.setName(curve.name);
    QPen pen(curve.colour, curve.strong ? kStrong : kThin);
    // Short enough to be seen in the legend too.
    if (curve.dashed) pen.setDashPattern({2, 1.5});
    series.setPen(pen);
    series.replace(curve.points);
    // What is hidden is not in the legend either.
    series.setVisible(!curve.points.isEmpty());
  }
}

/// Beside its point, where it covers the least of the curves, and never out of the plot.
void CurvePlot::PlaceNote() {
  note_->setVisible(point_->count() > 0);
  if (point_->count() == 0) return;
  const auto point = chart_->mapToPosition(point_->at(0), point_);
  const auto size = note_->rect().size();
  const auto area = chart_->plotArea().adjusted(1, 1, -1 - size.width(), -1 - size.height());
  const double above = point.y() - kNoteGap - size.height();
  const double below = point.y() + kNoteGap;
  const double right = std::clamp(point.x() + kNoteGap, area.left(), std::max(area.left(), area.right()));
  const double left = std::max(point.x() - kNoteGap - size.width(), area.left());
  std::optional<int> least;
  for (const auto& place :
       {QPointF(right, above), QPointF(left, above), QPointF(right, below), QPointF(left, below)}) {
    const bool isInside = place.y() >= area.top() && place.y() <= area.bottom();
    const int covered = CountPointsIn({place, size});
    if (!isInside || (least && covered >= *least)) continue;
    least = covered;
    note_->setPos(place);
  }
}

int CurvePlot::CountPointsIn(const QRectF& place) const {
  int count = 0;
  for (auto* series : series_) {
    const auto points = series->points();
    count += static_cast<int>(std::count_if(points.begin(), points.end(), [&](const QPointF& point) {
      return place.contains(chart_->mapToPosition(point, series));
    }));
  }
  return count;
}

}  // namespace brelant
