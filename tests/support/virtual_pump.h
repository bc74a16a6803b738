// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/pump.h"
#include "support/virtual_clock.h"

namespace brelant::test {

/// Thrown by a wait that would never end. Not a std::exception: nothing in the program may take it for a
/// failure of the machine and go on.
struct WouldHang {
  std::string why;
};

/// A pump whose waits jump to the next due event, so that minutes pass at once and in the same order every
/// time.
class VirtualPump : public Pump {
 public:
  explicit VirtualPump(VirtualClock& clock) : clock_(clock) {}

  void DoEvents() override;
  void Wait(std::chrono::microseconds until) override;
  std::unique_ptr<Timer> Every(std::chrono::milliseconds period, std::function<void()> tick) override;

  /// Runs `act` inside the pass in which that moment is reached.
  void At(std::chrono::microseconds when, std::function<void()> act);
  void After(std::chrono::microseconds delay, std::function<void()> act);
  /// Runs `act` at the start of the n-th pass from now; 1 is the next one.
  void InPass(int n, std::function<void()> act);
  /// Called at the start of every pass; if one returns true, a wait does not sleep in that pass.
  void OnPass(std::function<bool()> hook) { hooks_.push_back(std::move(hook)); }

  int Passes() const { return passes_; }

  /// What a pass takes of the clock.
  std::chrono::microseconds passCost{0};
  /// A wait that runs past this moment would hang.
  std::chrono::microseconds limit = std::chrono::hours(24);

 private:
  struct Ticking;
  using Moment = std::pair<std::chrono::microseconds, int>;

  bool BeginPass();
  bool RunDue();
  void GuardAgainstSpin();
  [[noreturn]] void Hang(const std::string& why) const;

  VirtualClock& clock_;
  std::map<Moment, std::function<void()>> events_;
  std::multimap<int, std::function<void()>> passEvents_;
  std::vector<std::function<bool()>> hooks_;
  int sequence_ = 0;
  int passes_ = 0;
  int passesAtOnce_ = 0;
  std::chrono::microseconds lastPass_{-1};
};

}  // namespace brelant::test
