// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "desktop/panels/alarms/AlarmGrid.h"

namespace brelant::platform61 {

/// The four alarms of a sensor with fixed alarms, and what each of two outputs is made of: ticks, joined by
/// OR or AND. The latter stays on the panel, and the table says so.
class FixedAlarmTable : public alarms::AlarmGrid {
 public:
  FixedAlarmTable(Views& views, QWidget* parent);

 private:
  /// The names of the controls of an output.
  struct Output {
    const char* caption;
    const char* tick;
    const char* logic;
  };

  void AddOutput(Views& views, const Output& output, int column);
  void AddLogic(Views& views, const Control& caption, Control& logic, int index, int column);
  void AddNote();
};

}  // namespace brelant::platform61
