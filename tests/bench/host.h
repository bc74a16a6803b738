// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <vector>

#include "bench/virtual_sensor.h"

namespace brelant::bench {

using ByteList = std::vector<std::uint8_t>;

/// The host's end of the line, on a clock of its own. Frames are sent as they are, checksum and all.
class Host {
 public:
  explicit Host(const SensorSetup& setup) : sensor(setup) {}

  void Pass(std::chrono::microseconds span) { now += span; }

  /// Puts bytes on the line and gives all that comes back, whenever it comes.
  std::vector<TimedByte> SendTimed(const ByteList& bytes) {
    for (const std::uint8_t byte : bytes) sensor.Receive(byte, now);
    return sensor.TakeReply();
  }

  ByteList Send(const ByteList& bytes) {
    ByteList reply;
    for (const TimedByte& byte : SendTimed(bytes)) reply.push_back(byte.value);
    return reply;
  }

  /// Asks to send by the broadcast form, drops the answer and sends a frame.
  ByteList Exchange(const ByteList& frame) {
    Send({254});
    return Send(frame);
  }

  VirtualSensor sensor;
  std::chrono::microseconds now{0};
};

}  // namespace brelant::bench
