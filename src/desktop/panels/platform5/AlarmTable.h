// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "desktop/panels/alarms/AlarmGrid.h"

namespace brelant::platform5 {

/// The alarms of the sensor, and whether each drives its relay.
class AlarmTable : public alarms::AlarmGrid {
 public:
  AlarmTable(Views& views, QWidget* parent);

 private:
  void AddRelay(Views& views, int index);
};

}  // namespace brelant::platform5
