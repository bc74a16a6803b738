// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "desktop/panels/alarms/AlarmGrid.h"

namespace brelant::z7731 {

/// The alarms of a safety unit over its two relays: a row an alarm, with a tick where it drives the relay of
/// the column. The row of an alarm whose channel is not there vanishes.
class AlarmMatrix : public alarms::AlarmGrid {
 public:
  AlarmMatrix(Views& views, QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void AddHeads();
  void AddRow(Views& views, int index, int row);
  void AddNoAlarm(Views& views, int row);
  void AddTicks(Views& views, const QString& alarm, int box, int row);
};

}  // namespace brelant::z7731
