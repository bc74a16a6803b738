// SPDX-License-Identifier: GPL-3.0-or-later
#include "qt/QtMachine.h"

namespace brelant {

QtMachine::QtMachine(const Options& options, UserInterface& userInterface)
    : pump_(clock_),
      modbusMaster_(clock_, pump_),
      settingsStore_(options.settings),
      userInterface_(userInterface) {}

}  // namespace brelant
