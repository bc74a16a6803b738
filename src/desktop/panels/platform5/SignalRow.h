// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHBoxLayout>
#include <QWidget>
#include <array>
#include <functional>

#include "desktop/kit/Card.h"
#include "desktop/kit/Views.h"

namespace brelant::platform5 {

/// Something that makes a signal, on a card, and behind it the ticks that lead the signal to the two outputs.
class SignalRow : public QWidget {
 public:
  using Feeds = std::array<Control*, 2>;
  /// Puts the fields on the card.
  using Fill = std::function<void(Card& card, QHBoxLayout& layout)>;

  SignalRow(Views& views, const QString& name, const Feeds& feeds, const Fill& fill, QWidget* parent);

  const QWidget& Source() const { return *card_; }
  const QWidget& Tick(std::size_t output) const { return *ticks_.at(output); }
  bool FeedsOutput(std::size_t output) const { return feeds_.at(output)->Value() == 1; }
  bool FeedsAny() const { return FeedsOutput(0) || FeedsOutput(1); }

 private:
  Feeds feeds_;
  Card* card_;
  std::array<QWidget*, 2> ticks_{};
};

/// Function `index` of the panel.
SignalRow& AddFunction(Views& views, int index, QWidget& parent);

/// The digital trigger.
SignalRow& AddTrigger(Views& views, QWidget& parent);

/// The headings over the functions.
QWidget& AddHeadings(QWidget& parent);

}  // namespace brelant::platform5
