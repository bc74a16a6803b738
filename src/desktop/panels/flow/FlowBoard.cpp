// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/flow/FlowBoard.h"

#include <QEvent>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <numeric>
#include <utility>

#include "desktop/Appearance.h"
#include "desktop/kit/arrow.h"
#include "desktop/kit/fields.h"
#include "desktop/kit/make.h"
#include "desktop/kit/text.h"

namespace brelant::flow {

namespace {

constexpr int kSpacing = 8;
constexpr int kDenseSpacing = 6;
/// More than these, and their numbers get smaller.
constexpr int kUsualInputs = 5;
constexpr double kSmallNumber = 2.2;
constexpr int kTileDigits = 28;
constexpr double kWire = 2;
constexpr double kBus = 3;
constexpr double kHalo = 4;

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

QPainterPath ArrowAt(double x, double y) {
  return ArrowHead({x, y}, {1, 0});
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

FlowBoard::FlowBoard(Views& views, BoardPlan plan, QWidget* parent)
    : QWidget(parent), views_(views), plan_(std::move(plan)) {
  auto& layout = LayOut<QHBoxLayout>(*this, 0);
  AddInputs(AddColumn(*this, layout));
  network_ = &Make<QWidget>(*this);
  layout.addWidget(network_, 1);
  auto& inside = LayOut<QHBoxLayout>(*network_, 0);
  inside.addSpacing(Digits(*this, 8));
  AddSignals(AddColumn(*network_, inside));
  inside.addSpacing(Digits(*this, 4));
  AddOutputs(AddColumn(*network_, inside));
  wiring_.order.resize(plan_.outputs.size());
  std::iota(wiring_.order.begin(), wiring_.order.end(), 0);
  views_.OnRefresh([this] { Refresh(); });
}

void FlowBoard::AddInputs(QBoxLayout& layout) {
  inputs_ = layout.parentWidget();
  AddHeading("Inputs", *inputs_, layout);
  tileRow_ = std::make_unique<QBoxLayout>(QBoxLayout::TopToBottom).release();
  tileRow_->setSpacing(Spacing());
  layout.addLayout(tileRow_, 1);
  const double size = CountInputs() > kUsualInputs ? kSmallNumber : LiveTile::kUsualNumber;
  for (int k = 0; k < plan_.inputs; ++k) {
    auto* unit = views_.Model().Find("lblCH_Type(" + std::to_string(k) + ")");
    const LiveTile::Controls controls{views_("lblCH_Name", k), views_("txbCHact", k), views_("pctChannel", k),
                                      unit};
    auto& tile = Make<LiveTile>(*inputs_, views_, controls, plan_.unitOfLast, size);
    tile.setFixedWidth(Digits(tile, kTileDigits));
    tile.setMaximumHeight(Digits(tile, 16));
    tiles_.push_back(&tile);
    tileRow_->addWidget(&tile, 1000);
  }
  tileRow_->addStretch(1);
  if (plan_.belowInputs) plan_.belowInputs(layout);
}

void FlowBoard::SpreadInputs(bool spread) {
  const auto direction = spread ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom;
  if (tileRow_->direction() == direction) return;
  tileRow_->setDirection(direction);
  for (auto* tile : tiles_) {
    tile->setMaximumWidth(spread ? QWIDGETSIZE_MAX : tile->minimumWidth());
  }
}

void FlowBoard::AddSignals(QBoxLayout& layout) {
  auto& column = *layout.parentWidget();
  layout.setSpacing(Spacing());
  layout.addWidget(&AddHeadings(
      views_, CountOutputs(), plan_.dense, [this](std::size_t place) { return NameAt(place); }, column));
  for (int i = 0; i < plan_.functions; ++i) {
    signals_.push_back(&AddFunction(views_, i, CountOutputs(), plan_.dense, column));
  }
  for (const auto& make : plan_.others) signals_.push_back(&make(column));
  for (auto* row : signals_) layout.addWidget(row);
}

void FlowBoard::AddOutputs(QBoxLayout& layout) {
  auto& column = *layout.parentWidget();
  layout.setSpacing(Spacing());
  AddHeading("Outputs", column, layout);
  for (std::size_t j = 0; j < plan_.outputs.size(); ++j) {
    outputs_.push_back(&Make<OutputBlock>(column, views_, plan_.outputs[j], j, plan_.transfer, plan_.dense));
    layout.addWidget(outputs_.back());
  }
}

void FlowBoard::Refresh() {
  auto wiring = CurrentWiring();
  if (wiring == wiring_) return;
  if (wiring.order != wiring_.order) Arrange(wiring.order);
  // What feeds what is asked by place.
  wiring_ = CurrentWiring();
  update();
}

/// Outputs stand in the order of their names.
void FlowBoard::Arrange(const Order& order) {
  auto& column = *outputs_.front()->parentWidget()->layout();
  for (std::size_t place = 0; place < order.size(); ++place) {
    auto& block = *outputs_.at(order[place]);
    block.SetPlace(place);
    column.removeWidget(&block);
    column.addWidget(&block);
  }
  for (auto* row : signals_) row->Arrange(order);
}

FlowBoard::Wiring FlowBoard::CurrentWiring() const {
  Wiring wiring;
  for (int i = 0; i < plan_.functions; ++i) wiring.input.push_back(InputOf(i));
  for (const auto* row : signals_) wiring.feeds.push_back(FeedsOf(*row));
  wiring.order = CurrentOrder();
  for (std::size_t j = 0; j < outputs_.size(); ++j) wiring.outputs += HasOutput(j) ? 1 : 0;
  return wiring;
}

Order FlowBoard::CurrentOrder() const {
  Order order(plan_.outputs.size());
  std::iota(order.begin(), order.end(), 0);
  const auto name = [this](std::size_t output) {
    const auto* label = plan_.outputs[output].name;
    return label == nullptr ? std::string() : label->Text();
  };
  std::stable_sort(order.begin(), order.end(),
                   [&](std::size_t one, std::size_t other) { return name(one) < name(other); });
  return order;
}

std::vector<bool> FlowBoard::FeedsOf(const SignalRow& row) const {
  std::vector<bool> feeds;
  for (std::size_t place = 0; place < plan_.outputs.size(); ++place) feeds.push_back(row.FeedsOutput(place));
  return feeds;
}

/// The channel of that name that there is.
std::optional<int> FlowBoard::InputOf(int function) const {
  const auto& channel = views_("lblFchannel", function).Text();
  for (int k = 0; k < plan_.inputs; ++k) {
    if (views_("pctChannel", k).Visible() && views_("lblCH_Name", k).Text() == channel) return k;
  }
  return {};
}

int FlowBoard::Spacing() const {
  return plan_.dense ? kDenseSpacing : kSpacing;
}

int FlowBoard::CountInputs() const {
  int count = 0;
  for (int k = 0; k < plan_.inputs; ++k) count += views_("pctChannel", k).Visible() ? 1 : 0;
  return count;
}

bool FlowBoard::HasOutput(std::size_t output) const {
  const auto* presence = plan_.outputs.at(output).presence;
  return presence == nullptr || presence->Visible();
}

QString FlowBoard::NameAt(std::size_t place) const {
  const auto output = CurrentOrder().at(place);
  if (!HasOutput(output)) return {};
  const auto* label = plan_.outputs[output].name;
  return label == nullptr ? QString("Out %1").arg(place + 1) : TextOf(*label);
}

bool FlowBoard::event(QEvent* event) {
  // What has moved is drawn to where it was.
  if (event->type() == QEvent::LayoutRequest) update();
  return QWidget::event(event);
}

void FlowBoard::paintEvent(QPaintEvent* /*event*/) {
  if (network_->isHidden()) return;
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  PaintGrid(painter);
  for (const bool active : {false, true}) {
    for (int k = 0; k < plan_.inputs; ++k) PaintInputWires(painter, k, active);
  }
  PaintSignals(painter);
  for (std::size_t place = 0; place < wiring_.outputs; ++place) PaintBus(painter, place);
}

QRectF FlowBoard::Place(const QWidget& widget) const {
  return {widget.mapTo(this, QPoint(0, 0)), QSizeF(widget.size())};
}

/// The upright line of an input in the gutter. The topmost input has the lane farthest to the right, so that
/// no wire runs along another one.
double FlowBoard::LaneOf(int input) const {
  const double left = Place(*inputs_).right();
  const double right = Place(signals_.front()->Source()).left() - kArrow;
  return right - (right - left) * (input + 1) / (plan_.inputs + 1);
}

void FlowBoard::PaintInputWires(QPainter& painter, int input, bool active) const {
  const auto ink = InkOf(palette());
  const auto tile = Place(*tiles_.at(static_cast<std::size_t>(input)));
  const double lane = LaneOf(input);
  QPainterPath lines;
  QPainterPath heads;
  for (std::size_t i = 0; i < wiring_.input.size(); ++i) {
    if (wiring_.input[i] != input || signals_[i]->FeedsAny() != active) continue;
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
  if (wiring_.outputs == 0) return;
  for (const auto* row : signals_) {
    const auto last = Place(row->Tick(wiring_.outputs - 1)).center();
    painter.drawLine(QPointF(Place(row->Source()).right(), last.y()), last);
  }
  for (std::size_t place = 0; place < wiring_.outputs; ++place) {
    painter.drawLine(Place(signals_.front()->Tick(place)).center(),
                     Place(signals_.back()->Tick(place)).center());
  }
}

/// From each source to the last of its ticks.
void FlowBoard::PaintSignals(QPainter& painter) const {
  QPainterPath lines;
  for (const auto* row : signals_) {
    if (!row->FeedsAny()) continue;
    std::size_t last = plan_.outputs.size() - 1;
    while (!row->FeedsOutput(last)) --last;
    const auto card = Place(row->Source());
    lines.moveTo(card.right(), card.center().y());
    lines.lineTo(Place(row->Tick(last)).center().x(), card.center().y());
  }
  PaintLines(painter, lines, InkOf(palette()).wire, kWire, palette().color(QPalette::Window));
}

/// The height at which a bus turns to its block: between two rows, where it touches no tick, and as close to
/// the block's middle as that allows.
double FlowBoard::TurnOf(std::size_t place) const {
  const std::size_t below = signals_.size() * (2 * place + 1) / (2 * wiring_.outputs);
  return (Place(*signals_.at(below - 1)).bottom() + Place(*signals_.at(below)).top()) / 2;
}

/// From the ticks of an output to its block.
void FlowBoard::PaintBus(QPainter& painter, std::size_t place) const {
  const auto block = Place(*outputs_.at(wiring_.order.at(place)));
  const double turn = TurnOf(place);
  QPainterPath lines;
  for (const auto* row : signals_) {
    if (!row->FeedsOutput(place)) continue;
    const auto tick = Place(row->Tick(place)).center();
    lines.moveTo(tick);
    lines.lineTo(tick.x(), turn);
    lines.lineTo(block.left() - kArrow / 2, turn);
  }
  if (lines.isEmpty()) return;
  const auto colour = InkOf(palette()).output.at(place);
  PaintLines(painter, lines, colour, kBus, palette().color(QPalette::Window));
  painter.fillPath(ArrowAt(block.left(), turn), colour);
}

}  // namespace brelant::flow
