// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/platform5/SignalRow.h"

#include <QCheckBox>

#include "desktop/kit/bind.h"
#include "desktop/kit/make.h"
#include "desktop/panels/platform5/columns.h"

namespace brelant::platform5 {

SignalRow::SignalRow(Views& views, const QString& name, const Feeds& feeds, const Fill& fill, QWidget* parent)
    : QWidget(parent), feeds_(feeds), card_(&Make<Card>(*this)) {
  const Columns columns(*this);
  auto& row = LayOut<QHBoxLayout>(*this, 0);
  auto& inside = LayOut<QHBoxLayout>(*card_, columns.gap);
  inside.setContentsMargins(columns.gap, 6, columns.gap, 6);
  fill(*card_, inside);
  row.addWidget(card_);
  for (std::size_t output = 0; output < feeds.size(); ++output) {
    auto& cell = Make<QWidget>(*this);
    cell.setFixedWidth(columns.tick);
    auto& tick = Make<QCheckBox>(cell);
    Bind(views, *feeds.at(output), tick, {{}, name + " feeds output " + QString::number(output + 1)});
    tick.setFixedSize(tick.sizeHint());
    LayOut<QHBoxLayout>(cell, 0).addWidget(&tick, 0, Qt::AlignCenter);
    ticks_.at(output) = &tick;
    row.addWidget(&cell);
  }
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding);
  views.OnRefresh([this] { card_->SetLit(FeedsAny()); });
}

}  // namespace brelant::platform5
