// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "bench/line_end.h"
#include "bench/virtual_sensor.h"

namespace brelant::bench {

/// The same unit at the far end of a Modbus RTU line (docs/protocol.md, Modbus): `sensor` stays what its
/// memories and live values are. It answers to its own ID only. Throws std::invalid_argument, with a text for
/// people, for a sensor that does not speak Modbus, and where libmodbus was missing at the build.
std::unique_ptr<LineEnd> MakeModbusUnit(VirtualSensor& sensor, const SensorSetup& setup);

}  // namespace brelant::bench
