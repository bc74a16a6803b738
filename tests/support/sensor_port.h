// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "bench/virtual_sensor.h"
#include "support/scripted_port.h"

namespace brelant::test {

/// A serial port with a virtual sensor at its far end, on the virtual clock.
class SensorPort : public ScriptedPort {
 public:
  SensorPort(VirtualClock& clock, VirtualPump& pump, const bench::SensorSetup& setup);

  bench::VirtualSensor sensor;
};

}  // namespace brelant::test
