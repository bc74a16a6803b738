// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <vector>

#include "bench/faults.h"
#include "bench/line_time.h"

namespace brelant::bench {

struct TimedByte {
  std::chrono::microseconds at;
  std::uint8_t value;
  bool operator==(const TimedByte&) const = default;
};

/// When the bytes of a unit's line arrive and leave. One byte at a time gets through in either direction.
class LineClock {
 public:
  /// How the unit meets a byte from the host.
  struct Arrival {
    bool after_silence;  ///< what came before it belongs to something else
    bool listening;      ///< a unit that is late with a reply does not listen meanwhile
  };

  /// `paced`: each byte takes 10/9600 s. Otherwise the line takes no time.
  explicit LineClock(bool paced) : byte_time_(paced ? kByteAt9600 : LineTime::zero()) {}

  /// The host put a byte on the line at `now`; `now` must not fall from call to call.
  Arrival Hear(std::chrono::microseconds now);

  /// Sends a reply, `pause` after the last bit of the newest byte from the host.
  void Send(const SpoiltReply& reply, LineTime pause = LineTime::zero());

  /// What was sent since the last call, each byte with the moment its last bit reaches the host, in order of
  /// time. A moment may lie ahead of the last `now`.
  std::vector<TimedByte> TakeReply();

  LineTime ByteTime() const { return byte_time_; }
  bool HungUp() const { return hung_up_; }

 private:
  LineTime byte_time_;
  bool hung_up_ = false;
  std::vector<TimedByte> outgoing_;
  LineTime heard_{};       // the last bit of the newest byte from the host
  LineTime sent_{};        // the last bit of the newest byte to the host
  LineTime busy_until_{};  // until a late reply is out
};

}  // namespace brelant::bench
