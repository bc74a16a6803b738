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
/// Part of the range that stays free at each end.
constexpr double kFree = 0.03;
/// At most.
constexpr int kTicks = 8;

/// From the least to the greatest, and room around.
void SetRange(QValueAxis& axis, double least, double greatest) {
  const double room = greatest > least ? (greatest - least) * kFree : 1;
  axis.setRange(least - (least == 0 ? 0 : room), greatest + room);
  axis.setTickCount(kTicks);
  axis.applyNiceNumbers();
}

}  // namespace

CurvePlot::CurvePlot(const Colours& colours, QWidget* parent)
    : QWidget(parent),
      colours_(colours),
      view_(std::make_unique<QChartView>(this).release()),
      chart_(view_->chart()),
      signals_(std::make_unique<QValueAxis>(chart_).release()),
      values_(std::make_unique<QValueAxis>(chart_).release()),
      before_(std::make_unique<QLineSeries>(chart_).release()),
      after_(std::make_unique<QLineSeries>(chart_).release()),
      measured_(std::make_unique<QScatterSeries>(chart_).release()),
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
  DressSeries();
  AddAxis(*signals_, Qt::AlignBottom);
  AddAxis(*values_, Qt::AlignLeft);
  AddNote();
}

void CurvePlot::DressSeries() {
  before_->setName("Before");
  before_->setPen(QPen(colours_.before, kThin));
  after_->setName("After");
  after_->setPen(QPen(colours_.after, kStrong));
  measured_->setName("Measured");
  measured_->setMarkerSize(kMarker);
  measured_->setColor(colours_.measured);
  measured_->setPen(QPen(colours_.area, kMarkerEdge));
  for (auto* series : std::initializer_list<QXYSeries*>{before_, after_, measured_}) {
    series->setObjectName(series->name());
    chart_->addSeries(series);
  }
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
  for (auto* series : chart_->series()) series->attachAxis(&axis);
}

/// Above the lines, on a ground of its own.
void CurvePlot::AddNote() {
  auto strong = font();
  strong.setWeight(QFont::DemiBold);
  noteText_->setFont(strong);
  noteText_->setBrush(colours_.text);
  noteText_->setPos(kNoteMargin, kNoteMargin);
  note_->setBrush(colours_.ground);
  note_->setPen(QPen(colours_.measured, 1));
  note_->setZValue(100);
  connect(chart_, &QChart::plotAreaChanged, this, [this] { PlaceNote(); });
}

void CurvePlot::Draw(const Curves& curves) {
  signals_->setTitleText(curves.signalTitle);
  values_->setTitleText(curves.valueTitle);
  before_->replace(curves.before);
  after_->replace(curves.after);
  measured_->replace(curves.measured ? QList<QPointF>{*curves.measured} : QList<QPointF>{});
  // What is hidden is not in the legend either.
  for (auto* series : std::initializer_list<QXYSeries*>{before_, after_, measured_}) {
    series->setVisible(series->count() > 0);
  }
  Scale(curves);
  noteText_->setText(curves.measuredNote);
  const double margins = 2 * kNoteMargin;
  note_->setRect(QRectF(QPointF(0, 0), noteText_->boundingRect().size() + QSizeF(margins, margins)));
  PlaceNote();
}

void CurvePlot::Scale(const Curves& curves) {
  auto points = curves.before + curves.after;
  if (curves.measured) points.append(*curves.measured);
  if (points.isEmpty()) return;
  const auto bySignal = [](const QPointF& a, const QPointF& b) { return a.x() < b.x(); };
  const auto byValue = [](const QPointF& a, const QPointF& b) { return a.y() < b.y(); };
  const auto [left, right] = std::minmax_element(points.begin(), points.end(), bySignal);
  const auto [bottom, top] = std::minmax_element(points.begin(), points.end(), byValue);
  SetRange(*signals_, left->x(), right->x());
  SetRange(*values_, bottom->y(), top->y());
}

/// To the upper right of its point, where a falling curve leaves room, but never out of the plot.
void CurvePlot::PlaceNote() {
  note_->setVisible(measured_->count() > 0);
  if (measured_->count() == 0) return;
  const auto area = chart_->plotArea();
  const auto point = chart_->mapToPosition(measured_->at(0), measured_);
  const auto size = note_->rect().size();
  const double x = std::min(point.x() + kNoteGap, area.right() - size.width() - 1);
  const double above = point.y() - kNoteGap - size.height();
  note_->setPos(x, above < area.top() ? point.y() + kNoteGap : above);
}

}  // namespace brelant
