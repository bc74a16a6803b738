// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <vector>

#include "bench/line_clock.h"

namespace brelant::bench {

/// A unit at the far end of a serial line, in whatever protocol, on whatever clock its user has.
class LineEnd {
 public:
  virtual ~LineEnd() = default;

  /// The host put `byte` on the line at `now`; `now` must not fall from call to call.
  virtual void Receive(std::uint8_t byte, std::chrono::microseconds now) = 0;

  /// What the unit sends since the last call, each byte with the moment its last bit reaches the host, in
  /// order of time. A moment may lie ahead of the last `now`.
  virtual std::vector<TimedByte> TakeReply() = 0;

  /// The device was pulled off on purpose (the fault `hang_up`); from then on nothing is heard or sent.
  virtual bool HungUp() const = 0;

  /// Moves the live values to what they are at `now`. Receive leaves them as they are.
  virtual void Advance(std::chrono::microseconds now) = 0;

  /// How often a command that stores or fetches settings, or stores the ID, was carried out.
  virtual int Saves() const = 0;
};

}  // namespace brelant::bench
