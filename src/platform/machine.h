// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/clock.h"
#include "platform/files.h"
#include "platform/modbus_master.h"
#include "platform/pump.h"
#include "platform/serial_port.h"
#include "platform/settings_store.h"
#include "platform/user_interface.h"

namespace brelant {

/// Everything that the program asks of the machine, for handing on.
struct Machine {
  Clock& clock;
  Pump& pump;
  SerialPort& serialPort;
  ModbusMaster& modbusMaster;
  Files& files;
  SettingsStore& settingsStore;
  UserInterface& userInterface;
};

}  // namespace brelant
