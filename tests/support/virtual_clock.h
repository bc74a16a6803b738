// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/clock.h"

namespace brelant::test {

/// Time that passes only when a test, or its pump, says so. It starts at an uneven moment, so that a pause
/// counted in whole milliseconds of the tick comes out too short.
class VirtualClock : public Clock {
 public:
  std::chrono::microseconds Now() const override { return now_; }
  std::int32_t GetTickCount() const override;
  double Timer() const override;
  /// Some day, at the time of Timer.
  std::int64_t LocalTime() const override;

  void Advance(std::chrono::microseconds by) { now_ += by; }
  /// Never back: an earlier moment changes nothing.
  void AdvanceTo(std::chrono::microseconds when);

  /// What the tick counter would show at this moment, to bring its overflow near.
  void SetTickCount(std::int32_t tick);
  /// The time of the day at this moment, in seconds since midnight.
  void SetTimer(double seconds);

 private:
  std::int64_t Milliseconds() const { return now_.count() / 1000; }

  std::chrono::microseconds now_{1800};
  std::int64_t tickOffset_ = 0;
  double dayOffset_ = 10 * 3600;
};

}  // namespace brelant::test
