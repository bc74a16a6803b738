// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>
#include <QWidget>
#include <functional>
#include <string>
#include <vector>

#include "desktop/kit/Card.h"
#include "desktop/kit/Views.h"
#include "desktop/panels/flow/plan.h"

namespace brelant::flow {

/// Something that makes a signal, on a card, and behind it the ticks that lead the signal to the outputs.
/// Ticks are asked for by the place of their output.
class SignalRow : public QWidget {
 public:
  /// By output.
  using Feeds = std::vector<Control*>;
  /// Puts the fields on the card.
  using Fill = std::function<void(Card& card, QHBoxLayout& layout)>;

  SignalRow(Views& views, const QString& name, const Feeds& feeds, bool dense, const Fill& fill,
            QWidget* parent);

  /// Puts the ticks into that order.
  void Arrange(const Order& order);

  const QWidget& Source() const { return *card_; }
  const QWidget& Tick(std::size_t place) const { return *ticks_.at(order_.at(place)); }
  bool HasTick(std::size_t place) const { return FeedOf(place).Visible(); }
  bool FeedsOutput(std::size_t place) const { return HasTick(place) && FeedOf(place).Value() == 1; }
  bool FeedsAny() const;

 private:
  void AddTick(Views& views, std::size_t output, int width);
  const Control& FeedOf(std::size_t place) const { return *feeds_.at(order_.at(place)); }

  QString name_;
  Feeds feeds_;
  Order order_;
  Card* card_;
  std::vector<QWidget*> ticks_;
};

/// Function `index` of the panel.
SignalRow& AddFunction(Views& views, int index, int outputs, bool dense, QWidget& parent);

/// The digital trigger.
SignalRow& AddTrigger(Views& views, int outputs, bool dense, QWidget& parent);

/// The digital input.
SignalRow& AddDigitalInput(Views& views, int outputs, bool dense, QWidget& parent);

/// The headings over the functions. `nameOf`: an output's name by place, empty where there is no such output.
QWidget& AddHeadings(Views& views, int outputs, bool dense, const std::function<QString(std::size_t)>& nameOf,
                     QWidget& parent);

/// The ticks of that name, one an output.
SignalRow::Feeds TicksOf(const Views& views, const std::string& name, int outputs,
                         const std::string& index = {});

}  // namespace brelant::flow
