// SPDX-License-Identifier: GPL-3.0-or-later
#include "line/measured_pump.h"

#include <algorithm>
#include <utility>

namespace brelant::benchmark {

void MeasuredPump::DoEvents() {
  NoteGap();
  pump_.DoEvents();
  left_ = clock_.Now();
}

void MeasuredPump::Wait(std::chrono::microseconds until) {
  NoteGap();
  pump_.Wait(until);
  left_ = clock_.Now();
}

std::unique_ptr<Pump::Timer> MeasuredPump::Every(std::chrono::milliseconds period,
                                                 std::function<void()> tick) {
  return pump_.Every(period, std::move(tick));
}

void MeasuredPump::Begin() {
  left_ = clock_.Now();
  longest_ = {};
}

void MeasuredPump::NoteGap() {
  longest_ = std::max(longest_, clock_.Now() - left_);
}

}  // namespace brelant::benchmark
