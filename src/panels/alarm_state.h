// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "panels/PanelFrame.h"
#include "shell/form.h"
#include "shell/panel.h"

namespace brelant {

/// Shows whether an alarm is active.
inline void ShowAlarm(Control& field, bool active) {
  field.SetText(active ? "ALARM" : "OK");
  field.SetBack(active ? colours::kFault : colours::kLive);
}

/// Shows that it is not known.
inline void ForgetAlarm(Control& field) {
  field.SetText("");
  field.SetBack(kStyleColour);
}

/// What a panel tells of its alarms: the captions less their colons, and the states that are shown.
inline std::vector<Panel::Alarm> AlarmsOf(const ControlArray& captions, const ControlArray& states) {
  std::vector<Panel::Alarm> alarms;
  for (int i = 0; i < captions.Count(); ++i) {
    const auto& caption = captions[i].Text();
    alarms.push_back({caption.substr(0, caption.find(':')), states[i].Text()});
  }
  return alarms;
}

}  // namespace brelant
