// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>

#include "desktop/panels/PanelWindow.h"

namespace brelant {

/// The panel of the safety system: five live values beside the matrix of their alarms and the relays. It is
/// read from a ladder: values and states are large.
class SafetyWindow : public PanelWindow {
 public:
  SafetyWindow(Panel& panel, Acts& acts);

 private:
  void AddTiles(QBoxLayout& layout);
  void AddOptions(QBoxLayout& layout);
};

}  // namespace brelant
