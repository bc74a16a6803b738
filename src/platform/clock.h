// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>

namespace brelant {

class Clock {
 public:
  virtual ~Clock() = default;

  /// Monotonic time from an arbitrary start. All pauses are measured on it, because the tick's millisecond
  /// would let a pause of 5 ms end after 4.2 (docs/protocol.md, Waits and pauses).
  virtual std::chrono::microseconds Now() const = 0;

  /// The same time in milliseconds as a signed 32-bit counter that wraps after 24.8 days.
  virtual std::int32_t GetTickCount() const = 0;

  /// Seconds since local midnight, 0 to below 86400.
  virtual double Timer() const = 0;

  /// The local date and time, as seconds from 1970-01-01 00:00:00 of the same clock on the wall.
  virtual std::int64_t LocalTime() const = 0;
};

}  // namespace brelant
