// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/virtual_pump.h"

#include <algorithm>
#include <iostream>

namespace brelant::test {

using std::chrono::microseconds;

/// Lives as long as the timer that the program holds and, in the pump's queue, one tick longer.
struct VirtualPump::Ticking {
  VirtualPump& pump;
  microseconds period;
  std::function<void()> tick;

  static void Schedule(const std::weak_ptr<Ticking>& weak) {
    const auto ticking = weak.lock();
    if (!ticking) return;
    ticking->pump.After(ticking->period, [weak] {
      const auto due = weak.lock();
      if (!due) return;
      Schedule(weak);
      due->tick();
    });
  }
};

void VirtualPump::DoEvents() {
  BeginPass();
  RunDue();
}

void VirtualPump::Wait(microseconds until) {
  const bool acted = BeginPass();
  if (RunDue() || acted || clock_.Now() >= until) return;
  const auto next = events_.empty() ? microseconds::max() : events_.begin()->first.first;
  const auto wake = std::min(next, until);
  if (wake == microseconds::max()) Hang("waits for ever, and nothing is due");
  if (wake > limit) Hang("waits past the test's limit of virtual time");
  clock_.AdvanceTo(wake);
  RunDue();
}

std::unique_ptr<Pump::Timer> VirtualPump::Every(std::chrono::milliseconds period,
                                                std::function<void()> tick) {
  struct Handle : Timer {
    std::shared_ptr<Ticking> ticking;
  };
  auto handle = std::make_unique<Handle>();
  handle->ticking = std::make_shared<Ticking>(Ticking{*this, period, std::move(tick)});
  Ticking::Schedule(handle->ticking);
  return handle;
}

void VirtualPump::At(microseconds when, std::function<void()> act) {
  events_.emplace(Moment{when, sequence_++}, std::move(act));
}

void VirtualPump::After(microseconds delay, std::function<void()> act) {
  At(clock_.Now() + delay, std::move(act));
}

void VirtualPump::InPass(int n, std::function<void()> act) {
  passEvents_.emplace(passes_ + n, std::move(act));
}

bool VirtualPump::BeginPass() {
  ++passes_;
  clock_.Advance(passCost);
  GuardAgainstSpin();
  bool acted = false;
  while (!passEvents_.empty() && passEvents_.begin()->first <= passes_) {
    const auto act = std::move(passEvents_.begin()->second);
    passEvents_.erase(passEvents_.begin());
    act();
    acted = true;
  }
  const auto hooks = hooks_;
  for (const auto& hook : hooks) acted = hook() || acted;
  return acted;
}

/// What is scheduled while it runs waits for the next pass.
bool VirtualPump::RunDue() {
  const int before = sequence_;
  bool ran = false;
  for (auto next = events_.begin(); next != events_.end() && next->first.first <= clock_.Now();) {
    if (next->first.second >= before) {
      ++next;
      continue;
    }
    const auto act = std::move(next->second);
    events_.erase(next);
    act();
    ran = true;
    next = events_.begin();
  }
  return ran;
}

void VirtualPump::GuardAgainstSpin() {
  constexpr int kTooMany = 100'000;
  passesAtOnce_ = clock_.Now() == lastPass_ ? passesAtOnce_ + 1 : 0;
  lastPass_ = clock_.Now();
  if (passesAtOnce_ > kTooMany) Hang("spins on the pump without waiting");
}

void VirtualPump::Hang(const std::string& why) const {
  std::cerr << "The program " << why << ".\n";
  throw WouldHang{why};
}

}  // namespace brelant::test
