// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/clock.h"
#include "platform/pump.h"

namespace brelant::benchmark {

/// A pump that notes the longest time spent outside of it.
class MeasuredPump : public Pump {
 public:
  MeasuredPump(Pump& pump, const Clock& clock) : pump_(pump), clock_(clock) {}

  void DoEvents() override;
  void Wait(std::chrono::microseconds until) override;
  std::unique_ptr<Timer> Every(std::chrono::milliseconds period, std::function<void()> tick) override;

  void Begin();
  std::chrono::microseconds LongestGap() const { return longest_; }

 private:
  void NoteGap();

  Pump& pump_;
  const Clock& clock_;
  std::chrono::microseconds left_{0};
  std::chrono::microseconds longest_{0};
};

}  // namespace brelant::benchmark
