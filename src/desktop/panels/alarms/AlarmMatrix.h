// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <vector>

#include "desktop/panels/alarms/AlarmGrid.h"

namespace brelant::alarms {

/// The alarms of a unit over its two relays: a row an alarm, with a tick where it drives the relay of the
/// column. The row of an alarm whose channel is not there vanishes.
class AlarmMatrix : public AlarmGrid {
 public:
  struct Row {
    /// Of state, level and unit.
    int index;
    Control& caption;
    /// In the column of each relay.
    int box;
  };
  struct Plan {
    /// From top to bottom.
    std::vector<Row> rows;
    /// Of the row that stands for the places of a relay's list that hold no alarm, if there is one.
    std::optional<int> noAlarmBox = {};
    /// Of all letters, as a multiple of what they are on other panels.
    double size = 1;
  };

  AlarmMatrix(Views& views, const Plan& plan, QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void AddHeads();
  void AddRow(Views& views, const Row& alarm, int row);
  void AddNoAlarm(Views& views, int box, int row);
  void AddTicks(Views& views, const QString& alarm, int box, int row);
};

}  // namespace brelant::alarms
