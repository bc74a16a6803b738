// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/sensor_port.h"

#include <algorithm>

namespace brelant::test {

SensorPort::SensorPort(VirtualClock& clock, VirtualPump& pump, const bench::SensorSetup& setup)
    : ScriptedPort(clock, pump), sensor(setup) {
  onOutput = [this, &clock](const Bytes& bytes) {
    for (const auto byte : bytes) sensor.Receive(byte, clock.Now());
    for (const auto& reply : sensor.TakeReply()) {
      Arrive({reply.value}, std::max(reply.at - clock.Now(), std::chrono::microseconds(0)));
    }
    if (sensor.HungUp()) {
      failAt = Operations();
      staysBroken = true;
    }
  };
}

}  // namespace brelant::test
