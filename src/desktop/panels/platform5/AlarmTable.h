// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QGridLayout>

#include "desktop/kit/Card.h"
#include "desktop/kit/Views.h"

namespace brelant::platform5 {

/// The alarms of the sensor, one a row: what it is, its state, its level and whether it drives its relay.
class AlarmTable : public Card {
 public:
  AlarmTable(Views& views, QWidget* parent);

 private:
  void AddAlarm(Views& views, int index, QGridLayout& grid);
  void AddLevel(Views& views, int index, const Control& caption, QGridLayout& grid);
};

}  // namespace brelant::platform5
