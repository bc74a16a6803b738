// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>

#include "desktop/kit/Card.h"
#include "desktop/kit/EditBinding.h"
#include "desktop/kit/Views.h"

namespace brelant::alarms {

/// What the alarms of all panels are made of: letters that are read from a ladder.
QLabel& MakeCaption(Views& views, Control& caption, QWidget& parent);
QLineEdit& MakeLevel(Views& views, Control& level, SpokenName name, QWidget& parent);
QLabel& MakeUnit(Views& views, Control& unit, QWidget& parent);

/// The alarms of a sensor, one a row: what it is, its state and its level. What else a panel tells of an
/// alarm stands in columns of its own behind them.
class AlarmGrid : public Card {
 public:
  struct Controls {
    Control& caption;
    Control& state;
    Control& level;
    Control& unit;
  };

  explicit AlarmGrid(QWidget* parent);

 protected:
  /// The first column behind those that all alarms have.
  static constexpr int kFurther = 4;

  void AddAlarm(Views& views, const Controls& alarm, int row);
  QCheckBox& MakeTick(Views& views, Control& tick);
  QGridLayout& Grid() { return *grid_; }

 private:
  QGridLayout* grid_;
};

}  // namespace brelant::alarms
