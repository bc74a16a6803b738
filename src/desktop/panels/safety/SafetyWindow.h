// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "desktop/panels/UnitWindow.h"

namespace brelant {

/// The panel of the safety system: five live values, nine alarms.
class SafetyWindow : public UnitWindow {
 public:
  SafetyWindow(Panel& panel, Acts& acts);

 private:
  Plan ThePlan() const;
};

}  // namespace brelant
