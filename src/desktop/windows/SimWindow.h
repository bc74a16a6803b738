// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "desktop/windows/DialogWindow.h"
#include "shell/frmSim.h"

namespace brelant {

/// The chooser of what to simulate.
class SimWindow : public DialogWindow {
 public:
  SimWindow(frmSim& chooser, Acts& acts);

 protected:
  QWidget* PreferredFocus() override { return list_; }

 private:
  QWidget* list_ = nullptr;
};

}  // namespace brelant
