// SPDX-License-Identifier: GPL-3.0-or-later
#include <stdexcept>

#include "bench/modbus_unit.h"

namespace brelant::bench {

std::unique_ptr<LineEnd> MakeModbusUnit(VirtualSensor&, const SensorSetup&) {
  throw std::invalid_argument("This virtual sensor does not speak Modbus: it was built without libmodbus.");
}

}  // namespace brelant::bench
