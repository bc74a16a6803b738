// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/platform5/FlowBoard.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>

#include "desktop/Appearance.h"
#include "desktop/kit/PopupLabel.h"
#include "desktop/kit/bind.h"
#include "desktop/kit/fields.h"
#include "desktop/kit/make.h"
#include "desktop/kit/text.h"

namespace brelant::platform5 {

namespace {

constexpr int kSpacing = 8;
constexpr double kWire = 2;
constexpr double kBus = 3;
constexpr double kHalo = 4;
constexpr double kArrow = 7;

QLabel& AddHeading(const QString& text, QWidget& parent, QBoxLayout& layout) {
  auto& heading = AddCaption(text, parent, layout);
  ScaleFont(heading, 1, QFont::DemiBold);
  return heading;
}

QVBoxLayout& AddColumn(QWidget& parent, QBoxLayout& layout) {
  auto& column = Make<QWidget>(parent);
  layout.addWidget(&column);
  return LayOut<QVBoxLayout>(column, kSpacing);
}

/// An arrow head whose tip is there, pointing right.
QPainterPath ArrowAt(double x, double y) {
  QPainterPath head(QPointF(x, y));
  head.lineTo(x - kArrow, y - kArrow * 0.6);
  head.lineTo(x - kArrow, y + kArrow * 0.6);
  return head;
}

/// Lines that cross others without touching them: a rim of the ground's colour sets them apart.
void PaintLines(QPainter& painter, const QPainterPath& lines, const QColor& colour, double width,
                const QColor& ground) {
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(ground, width + kHalo, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin));
  painter.drawPath(lines);
  painter.setPen(QPen(colour, width, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin));
  painter.drawPath(lines);
}

}  // namespace

FlowBoard::FlowBoard(Views& views, const QString& unitOfLast, QWidget* parent)
    : QWidget(parent), views_(views) {
  auto& layout = LayOut<QHBoxLayout>(*this, 0);
  AddInputs(unitOfLast, AddColumn(*this, layout));
  layout.addSpacing(Digits(*this, 8));
  AddSignals(AddColumn(*this, layout));
  layout.addSpacing(Digits(*this, 4));
  AddOutputs(AddColumn(*this, layout));
  views_.OnRefresh([this] {
    const auto wiring = CurrentWiring();
    if (wiring == wiring_) return;
    wiring_ = wiring;
    update();
  });
}

void FlowBoard::AddInputs(const QString& unitOfLast, QBoxLayout& layout) {
  auto& column = *layout.parentWidget();
  AddHeading("Inputs", column, layout);
  for (int k = 0; k < kInputs; ++k) {
    auto* unit = views_.Model().Find("lblCH_Type(" + std::to_string(k) + ")");
    const LiveTile::Controls controls{views_("lblCH_Name", k), views_("txbCHact", k), views_("pctChannel", k),
                                      unit};
    auto& tile = Make<LiveTile>(column, views_, controls, unitOfLast, LiveTile::kUsualNumber);
    tile.setFixedWidth(Digits(tile, 28));
    tile.setMaximumHeight(Digits(tile, 16));
    tiles_.at(static_cast<std::size_t>(k)) = &tile;
    layout.addWidget(&tile, 1000);
  }
  layout.addStretch(1);
  AddShift(layout);
}

void FlowBoard::AddShift(QBoxLayout& layout) {
  auto& card = Make<Card>(*layout.parentWidget());
  layout.addWidget(&card);
  auto& inside = LayOut<QVBoxLayout>(card, 4);
  inside.setContentsMargins(10, 6, 10, 8);
  AddHeading("Shift button", card, inside);
  auto& row = AddRow(inside, kSpacing);
  auto& unit = views_("lblShiftb_Type");
  row.addWidget(
      &Make<PopupLabel>(card, views_, views_("lblShiftb"), Always("Channel of the shift button"), true), 1);
  const auto spoken = [&unit] { return "Shift amount, " + TextOf(unit); };
  row.addWidget(&MakeNumber(views_, views_("txbShiftBamount"), Digits(card, 8), spoken, card));
  AddLabel(views_, unit, 4, card, row);
}

void FlowBoard::AddSignals(QBoxLayout& layout) {
  auto& column = *layout.parentWidget();
  layout.addWidget(&AddHeadings(column));
  for (int i = 0; i < kFunctions; ++i) signals_.push_back(&AddFunction(views_, i, column));
  signals_.push_back(&AddTrigger(views_, column));
  for (auto* row : signals_) layout.addWidget(row);
}

void FlowBoard::AddOutputs(QBoxLayout& layout) {
  auto& column = *layout.parentWidget();
  AddHeading("Outputs", column, layout);
  for (std::size_t j = 0; j < kOutputs; ++j) {
    outputs_.at(j) = &Make<OutputBlock>(column, views_, static_cast<int>(j));
    layout.addWidget(outputs_.at(j));
  }
}

FlowBoard::Wiring FlowBoard::CurrentWiring() const {
  Wiring wiring;
  for (int i = 0; i < kFunctions; ++i) wiring.input.at(static_cast<std::size_t>(i)) = InputOf(i);
  for (std::size_t i = 0; i < signals_.size(); ++i) {
    for (std::size_t j = 0; j < kOutputs; ++j) wiring.feeds.at(i).at(j) = signals_[i]->FeedsOutput(j);
  }
  return wiring;
}

/// The channel of that name that there is.
std::optional<int> FlowBoard::InputOf(int function) const {
  const auto& channel = views_("lblFchannel", function).Text();
  for (int k = 0; k < kInputs; ++k) {
    if (views_("pctChannel", k).Visible() && views_("lblCH_Name", k).Text() == channel) return k;
  }
  return {};
}

void FlowBoard::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  PaintGrid(painter);
  for (const bool active : {false, true}) {
    for (int k = 0; k < kInputs; ++k) PaintInputWires(painter, k, active);
  }
  PaintSignals(painter);
  for (std::size_t j = 0; j < kOutputs; ++j) PaintBus(painter, j);
}

QRectF FlowBoard::Place(const QWidget& widget) const {
  return {widget.mapTo(this, QPoint(0, 0)), QSizeF(widget.size())};
}

/// The upright line of an input in the gutter. The topmost input has the lane farthest to the right, so that
/// no wire runs along another one.
double FlowBoard::LaneOf(int input) const {
  const double left = Place(*tiles_[0]).right();
  const double right = Place(signals_[0]->Source()).left() - kArrow;
  return right - (right - left) * (input + 1) / (kInputs + 1);
}

void FlowBoard::PaintInputWires(QPainter& painter, int input, bool active) const {
  const auto ink = InkOf(palette());
  const auto tile = Place(*tiles_.at(static_cast<std::size_t>(input)));
  const double lane = LaneOf(input);
  QPainterPath lines;
  QPainterPath heads;
  for (std::size_t i = 0; i < kFunctions; ++i) {
    if (wiring_.input.at(i) != input || signals_[i]->FeedsAny() != active) continue;
    const auto card = Place(signals_[i]->Source());
    lines.moveTo(tile.right(), tile.center().y());
    lines.lineTo(lane, tile.center().y());
    lines.lineTo(lane, card.center().y());
    lines.lineTo(card.left() - kArrow / 2, card.center().y());
    heads.addPath(ArrowAt(card.left(), card.center().y()));
  }
  const auto colour = active ? ink.wire : ink.faint;
  PaintLines(painter, lines, colour, kWire, palette().color(QPalette::Window));
  painter.fillPath(heads, colour);
}

/// Where ticks could lead.
void FlowBoard::PaintGrid(QPainter& painter) const {
  painter.setPen(QPen(InkOf(palette()).faint, 1));
  for (const auto* row : signals_) {
    const auto last = Place(row->Tick(kOutputs - 1)).center();
    painter.drawLine(QPointF(Place(row->Source()).right(), last.y()), last);
  }
  for (std::size_t j = 0; j < kOutputs; ++j) {
    painter.drawLine(Place(signals_.front()->Tick(j)).center(), Place(signals_.back()->Tick(j)).center());
  }
}

/// From each source to the last of its ticks.
void FlowBoard::PaintSignals(QPainter& painter) const {
  QPainterPath lines;
  for (const auto* row : signals_) {
    if (!row->FeedsAny()) continue;
    const auto card = Place(row->Source());
    const auto tick = Place(row->Tick(row->FeedsOutput(1) ? 1 : 0));
    lines.moveTo(card.right(), card.center().y());
    lines.lineTo(tick.center().x(), card.center().y());
  }
  PaintLines(painter, lines, InkOf(palette()).wire, kWire, palette().color(QPalette::Window));
}

/// From the ticks of an output to its block. It turns between two rows, where it touches no tick.
void FlowBoard::PaintBus(QPainter& painter, std::size_t output) const {
  const auto block = Place(*outputs_.at(output));
  const auto above = Place(*signals_[3 * output]);
  const auto below = Place(*signals_[3 * output + 1]);
  const double turn = (above.bottom() + below.top()) / 2;
  QPainterPath lines;
  for (const auto* row : signals_) {
    if (!row->FeedsOutput(output)) continue;
    const auto tick = Place(row->Tick(output)).center();
    lines.moveTo(tick);
    lines.lineTo(tick.x(), turn);
    lines.lineTo(block.left() - kArrow / 2, turn);
  }
  if (lines.isEmpty()) return;
  const auto colour = InkOf(palette()).output.at(output);
  PaintLines(painter, lines, colour, kBus, palette().color(QPalette::Window));
  painter.fillPath(ArrowAt(block.left(), turn), colour);
}

}  // namespace brelant::platform5
