// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/machine.h"
#include "qt/QtClock.h"
#include "qt/QtFiles.h"
#include "qt/QtModbusMaster.h"
#include "qt/QtPump.h"
#include "qt/QtSerialPort.h"
#include "qt/QtSettingsStore.h"
#include "qt/options.h"

namespace brelant {

/// The whole machine on Qt, one of each, but for the user interface, which the face brings.
class QtMachine {
 public:
  QtMachine(const Options& options, UserInterface& userInterface);

  Machine machine() {
    return {clock_, pump_, serialPort_, modbusMaster_, files_, settingsStore_, userInterface_};
  }
  QtPump& pump() { return pump_; }

 private:
  QtClock clock_;
  QtPump pump_;
  QtSerialPort serialPort_;
  QtModbusMaster modbusMaster_;
  QtFiles files_;
  QtSettingsStore settingsStore_;
  UserInterface& userInterface_;
};

}  // namespace brelant
