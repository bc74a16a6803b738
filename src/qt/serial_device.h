// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <string>
#include <vector>

#include "platform/serial_port.h"

namespace brelant {

/// The serial ports of the machine, in the order in which numbers count them.
std::vector<SerialPort::Description> SerialPorts();

/// The device that a port's number or name stands for, under its one true name, so that a second opening by
/// way of a link is seen as one. Throws MachineError for a number without a port.
QString SerialDevice(const std::string& port);

}  // namespace brelant
