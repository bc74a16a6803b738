// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/flow/SignalRow.h"

#include <QCheckBox>
#include <numeric>

#include "desktop/kit/bind.h"
#include "desktop/kit/make.h"
#include "desktop/panels/flow/columns.h"

namespace brelant::flow {

SignalRow::SignalRow(Views& views, const QString& name, const Feeds& feeds, bool dense, const Fill& fill,
                     QWidget* parent)
    : QWidget(parent), name_(name), feeds_(feeds), order_(feeds.size()), card_(&Make<Card>(*this)) {
  std::iota(order_.begin(), order_.end(), 0);
  const Columns columns(*this, dense);
  auto& row = LayOut<QHBoxLayout>(*this, 0);
  auto& inside = LayOut<QHBoxLayout>(*card_, columns.gap);
  const int margin = dense ? 3 : 6;
  inside.setContentsMargins(columns.gap, margin, columns.gap, margin);
  fill(*card_, inside);
  row.addWidget(card_);
  for (std::size_t output = 0; output < feeds.size(); ++output) AddTick(views, output, columns.tick);
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding);
  views.OnRefresh([this] { card_->SetLit(FeedsAny()); });
}

void SignalRow::AddTick(Views& views, std::size_t output, int width) {
  auto& control = *feeds_.at(output);
  auto& cell = Make<QWidget>(*this);
  cell.setFixedWidth(width);
  auto& tick = Make<QCheckBox>(cell);
  Bind(views, control, tick, {{}, name_ + " feeds output " + QString::number(output + 1)});
  tick.setFixedSize(tick.sizeHint());
  LayOut<QHBoxLayout>(cell, 0).addWidget(&tick, 0, Qt::AlignCenter);
  ticks_.push_back(&tick);
  layout()->addWidget(&cell);
  views.OnRefresh([&cell, &control] { SetShown(cell, control.Visible()); });
}

void SignalRow::Arrange(const Order& order) {
  if (order == order_) return;
  order_ = order;
  for (std::size_t place = 0; place < order.size(); ++place) {
    auto& tick = *ticks_.at(order.at(place));
    tick.setAccessibleName(name_ + " feeds output " + QString::number(place + 1));
    layout()->removeWidget(tick.parentWidget());
    layout()->addWidget(tick.parentWidget());
    if (place > 0) setTabOrder(ticks_.at(order.at(place - 1)), &tick);
  }
}

bool SignalRow::FeedsAny() const {
  for (std::size_t place = 0; place < order_.size(); ++place) {
    if (FeedsOutput(place)) return true;
  }
  return false;
}

SignalRow::Feeds TicksOf(const Views& views, const std::string& name, int outputs, const std::string& index) {
  SignalRow::Feeds ticks;
  for (int j = 1; j <= outputs; ++j) {
    auto full = name + std::to_string(j);
    ticks.push_back(&views(full += index));
  }
  return ticks;
}

}  // namespace brelant::flow
