// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/windows/CalCurveWindow.h"

#include <QApplication>
#include <QHeaderView>
#include <QPushButton>
#include <array>

#include "desktop/Appearance.h"
#include "desktop/kit/bind.h"
#include "desktop/kit/fields.h"
#include "desktop/kit/make.h"
#include "desktop/kit/plot.h"
#include "desktop/kit/text.h"
#include "shell/Common.h"

namespace brelant {

namespace {

constexpr double kTitleSize = 1.5;
constexpr double kMeasuredSize = 1.3;
constexpr int kPlotWidth = 72;
constexpr int kPlotHeight = 48;
/// Places of the outputs whose colours are used.
constexpr std::size_t kAfterPlace = 0;
constexpr std::size_t kPointPlace = 1;

/// No text, no point.
std::optional<QPointF> PointOf(const Control& signal, const Control& value) {
  if (signal.Text().empty() || value.Text().empty()) return {};
  return QPointF(ParseNumber(signal.Text()), ParseNumber(value.Text()));
}

QList<QPointF> PointsOf(const ControlArray& signals, const ControlArray& values) {
  QList<QPointF> points;
  for (int i = 0; i < signals.Count(); ++i) {
    if (const auto point = PointOf(signals[i], values[i])) points.append(*point);
  }
  return points;
}

}  // namespace

CalCurveWindow::CalCurveWindow(frmCalCurve& curve, Acts& acts)
    : DialogWindow(curve.form, acts), curve_(curve) {
  auto& layout = LayOut<QVBoxLayout>(*this, 12);
  layout.setContentsMargins(20, 16, 20, 16);
  auto& head = AddRow(layout, 12);
  auto& channel = AddLabel(views_, curve.lblChannel, 0, *this, head);
  ScaleFont(channel, kTitleSize, QFont::DemiBold);
  head.addStretch();
  AddMeasured(head);
  auto& body = AddRow(layout, 16);
  layout.setStretchFactor(&body, 1);
  AddPlot(body);
  AddTable(body);
  AddClose(AddRow(layout, 8));
}

void CalCurveWindow::AddMeasured(QBoxLayout& layout) {
  const auto add = [&](QLabel& label) {
    ScaleFont(label, kMeasuredSize, QFont::DemiBold);
    layout.setAlignment(&label, Qt::AlignBaseline);
  };
  AddCaption("Measured at", *this, layout);
  add(AddLabel(views_, curve_.lblMeasuredSignal, 0, *this, layout));
  AddCaption("calibrated to", *this, layout);
  add(AddLabel(views_, curve_.lblMeasuredValue, 0, *this, layout));
}

void CalCurveWindow::AddPlot(QBoxLayout& layout) {
  const auto palette = QApplication::palette();
  auto& plot = Make<CurvePlot>(*this, PlotColours(palette, InkOf(palette).output[kPointPlace]));
  plot.setMinimumSize(Digits(plot, kPlotWidth), Digits(plot, kPlotHeight));
  plot.setAccessibleName("Response before and after the calibration; the table holds its numbers");
  layout.addWidget(&plot, 1);
  views_.OnRefresh([this, &plot] { plot.Draw(Curves()); });
}

void CalCurveWindow::AddTable(QBoxLayout& layout) {
  auto& table = Make<QTableWidget>(*this, frmCalCurve::kPoints, 4);
  table.setAccessibleName("Points of the response, high signals first");
  table.setHorizontalHeaderLabels({"Before:\nat", "Before:\nvalue", "After:\nat", "After:\nvalue"});
  table.verticalHeader()->hide();
  table.setEditTriggers(QAbstractItemView::NoEditTriggers);
  table.setAlternatingRowColors(true);
  table.setTabKeyNavigation(false);
  table.horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
  table.verticalHeader()->setSectionResizeMode(QHeaderView::Stretch);
  table.setMinimumWidth(Digits(table, 44));
  table.setMinimumHeight(table.horizontalHeader()->sizeHint().height() +
                         frmCalCurve::kPoints * table.fontMetrics().height() * 5 / 4);
  layout.addWidget(&table);
  views_.OnRefresh([this, &table] { FillTable(table); });
}

void CalCurveWindow::FillTable(QTableWidget& table) const {
  const std::array<const ControlArray*, 4> columns{&curve_.lblBeforeSignal, &curve_.lblBeforeValue,
                                                   &curve_.lblAfterSignal, &curve_.lblAfterValue};
  for (int column = 0; column < table.columnCount(); ++column) {
    const auto& texts = *columns.at(static_cast<std::size_t>(column));
    for (int row = 0; row < table.rowCount(); ++row) {
      if (table.item(row, column) == nullptr) {
        auto item = std::make_unique<QTableWidgetItem>();
        item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
        table.setItem(row, column, item.release());
      }
      table.item(row, column)->setText(TextOf(texts[row]));
    }
  }
}

void CalCurveWindow::AddClose(QBoxLayout& layout) {
  layout.addStretch();
  auto& close = Make<QPushButton>(*this);
  close.setDefault(true);
  Bind(views_, curve_.btnClose, close, {'C'});
  layout.addWidget(&close);
  close_ = &close;
}

CurvePlot::Curves CalCurveWindow::Curves() const {
  const auto& value = curve_.lblMeasuredValue;
  const auto ink = InkOf(QApplication::palette());
  return {
      {TextOf(curve_.lblSignal), {}},
      {TextOf(curve_.lblChannel), {}},
      {{"Before", ink.wire, false, false, PointsOf(curve_.lblBeforeSignal, curve_.lblBeforeValue)},
       {"After", ink.output[kAfterPlace], true, false,
        PointsOf(curve_.lblAfterSignal, curve_.lblAfterValue)}},
      PointOf(curve_.lblMeasuredSignal, value),
      "Measured",
      TextOf(value) + " at " + TextOf(curve_.lblSignal).toLower() + " " + TextOf(curve_.lblMeasuredSignal)};
}

}  // namespace brelant
