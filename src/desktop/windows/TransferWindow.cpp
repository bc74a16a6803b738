// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/windows/TransferWindow.h"

#include <QApplication>
#include <QPushButton>
#include <algorithm>
#include <utility>

#include "desktop/Appearance.h"
#include "desktop/kit/fields.h"
#include "desktop/kit/make.h"
#include "desktop/kit/plot.h"
#include "desktop/kit/text.h"
#include "panels/transfer_curve.h"
#include "shell/Common.h"

namespace brelant {

namespace {

constexpr double kTitleSize = 1.5;
constexpr double kReasonSize = 1.3;
constexpr int kPlotWidth = 84;
constexpr int kPlotHeight = 52;
/// Percent, with room for the lines at 0 and 100.
constexpr CurvePlot::Range kPercent{-4, 104};

QString NumberOf(double value) {
  return QString::fromStdString(NumberText(static_cast<float>(value)));
}

QList<QPointF> PointsOf(const std::vector<TransferPoint>& points) {
  QList<QPointF> list;
  for (const auto& [input, percent] : points) list.append({input, percent});
  return list;
}

QString WithUnit(const QString& text, const std::string& unit, const QString& form) {
  return unit.empty() ? text : text + form.arg(QString::fromStdString(unit));
}

}  // namespace

TransferWindow::TransferWindow(Views& views, const Transfer& transfer, int output,
                               std::function<std::size_t()> place, QWidget* panel)
    : QDialog(panel), transfer_(transfer), output_(output), place_(std::move(place)) {
  setObjectName(QString("Transfer(%1)").arg(output));
  auto& layout = LayOut<QVBoxLayout>(*this, 12);
  layout.setContentsMargins(20, 16, 20, 16);
  AddHead(AddRow(layout, 12));
  AddPlot(layout);
  AddClose(AddRow(layout, 8));
  views.OnRefresh([this] {
    if (isVisible()) Refresh();
  });
}

void TransferWindow::AddHead(QBoxLayout& layout) {
  title_ = &AddCaption({}, *this, layout);
  ScaleFont(*title_, kTitleSize, QFont::DemiBold);
  inputCaption_ = &AddCaption("with", *this, layout);
  input_ = &Make<QComboBox>(*this);
  input_->setObjectName("input");
  input_->setAccessibleName("Input on the axis");
  layout.addWidget(input_);
  connect(input_, &QComboBox::activated, this, [this] { Refresh(); });
  layout.addStretch();
  now_ = &AddCaption({}, *this, layout);
  now_->setObjectName("now");
  ScaleFont(*now_, kTitleSize, QFont::DemiBold);
}

void TransferWindow::AddPlot(QBoxLayout& layout) {
  const auto palette = QApplication::palette();
  plot_ =
      &Make<CurvePlot>(*this, PlotColours(palette, palette.color(QPalette::Active, QPalette::WindowText)));
  plot_->setMinimumSize(Digits(*plot_, kPlotWidth), Digits(*plot_, kPlotHeight));
  layout.addWidget(plot_, 1);
  reason_ = &AddCaption({}, *this, layout);
  reason_->setObjectName("reason");
  reason_->setMinimumSize(plot_->minimumSize());
  reason_->setWordWrap(true);
  reason_->setAlignment(Qt::AlignCenter);
  ScaleFont(*reason_, kReasonSize);
  layout.setStretchFactor(reason_, 1);
}

void TransferWindow::AddClose(QBoxLayout& layout) {
  layout.addStretch();
  auto& close = Make<QPushButton>(*this, "&Close");
  close.setObjectName("close");
  close.setDefault(true);
  connect(&close, &QPushButton::clicked, this, &QDialog::close);
  layout.addWidget(&close);
}

void TransferWindow::Open() {
  Refresh();
  show();
  raise();
  activateWindow();
}

void TransferWindow::Refresh() {
  // A read of the sensor may have brought a face without it.
  if (output_ >= transfer_.Outputs()) {
    close();
    return;
  }
  const auto title = "Transfer of " + Name();
  if (windowTitle() != title) {
    setWindowTitle(title);
    title_->setText(Name());
  }
  const auto inputs = transfer_.InputsOf(output_);
  OfferInputs(inputs);
  Draw(inputs);
}

/// The choice stays where it is, as long as it is among them.
void TransferWindow::OfferInputs(const Inputs& inputs) {
  QStringList names;
  for (const auto& input : inputs) names.append(QString::fromStdString(input.name));
  QStringList offered;
  for (int i = 0; i < input_->count(); ++i) offered.append(input_->itemText(i));
  if (offered != names) {
    const auto chosen = input_->currentText();
    input_->clear();
    input_->addItems(names);
    input_->setCurrentIndex(std::max(input_->findText(chosen), 0));
  }
  for (auto* widget : std::initializer_list<QWidget*>{inputCaption_, input_}) {
    SetShown(*widget, inputs.size() > 1);
  }
}

void TransferWindow::Draw(const Inputs& inputs) {
  std::optional<CurvePlot::Curves> curves;
  if (inputs.empty()) {
    reason_->setText("No function leads a live value to " + Name() + ", so there is no curve to draw.");
  } else {
    curves = CurvesOf(inputs.at(static_cast<std::size_t>(std::max(input_->currentIndex(), 0))));
    if (!curves) reason_->setText("a and b of a function are equal, so " + Name() + " cannot be computed.");
  }
  SetShown(*plot_, curves.has_value());
  SetShown(*reason_, !curves);
  now_->setText(curves && curves->point ? curves->x.title.section(" (", 0, 0) + " " + curves->note : "");
  if (!curves) return;
  plot_->Draw(*curves);
  plot_->setAccessibleName(windowTitle() + ", " + (now_->text().isEmpty() ? "no value" : now_->text()));
}

std::optional<CurvePlot::Curves> TransferWindow::CurvesOf(const Transfer::Input& input) const {
  const auto curve = TransferCurveOf(transfer_, output_, input);
  if (!curve) return {};
  const auto ink = InkOf(QApplication::palette());
  const auto colour = ink.output.at(place_());
  const auto name = QString::fromStdString(input.name);
  const bool hasMemory = !curve->falling.empty();
  CurvePlot::Curves curves{
      {WithUnit(name, input.unit, " (%1)"), CurvePlot::Range{curve->least, curve->greatest}},
      {Name() + " (%)", kPercent},
      {{hasMemory ? name + " rising" : Name(), colour, true, false, PointsOf(curve->rising)}},
      {},
      "Now",
      {}};
  if (hasMemory) {
    curves.curves.push_back({name + " falling", ink.wire, true, true, PointsOf(curve->falling)});
  }
  const auto shown = transfer_.ShownOf(output_);
  if (input.value && shown) {
    curves.point = QPointF(*input.value, *shown);
    curves.note = WithUnit(NumberOf(*input.value), input.unit, " %1") + ": " + NumberOf(*shown) + " %";
  }
  return curves;
}

}  // namespace brelant
