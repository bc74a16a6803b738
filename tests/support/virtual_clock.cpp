// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/virtual_clock.h"

#include <algorithm>
#include <cmath>

namespace brelant::test {

namespace {

constexpr double kDay = 86400;

double Seconds(std::chrono::microseconds time) {
  return std::chrono::duration<double>(time).count();
}

}  // namespace

std::int32_t VirtualClock::GetTickCount() const {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(Milliseconds() + tickOffset_));
}

double VirtualClock::Timer() const {
  return std::fmod(dayOffset_ + Seconds(now_), kDay);
}

std::int64_t VirtualClock::LocalTime() const {
  constexpr std::int64_t kSomeDay = 20000 * 86400LL;
  return kSomeDay + static_cast<std::int64_t>(dayOffset_ + Seconds(now_));
}

void VirtualClock::AdvanceTo(std::chrono::microseconds when) {
  now_ = std::max(now_, when);
}

void VirtualClock::SetTickCount(std::int32_t tick) {
  tickOffset_ = tick - Milliseconds();
}

void VirtualClock::SetTimer(double seconds) {
  dayOffset_ = std::fmod(seconds - Seconds(now_) + kDay, kDay);
}

}  // namespace brelant::test
