// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <deque>
#include <functional>

#include "platform/clock.h"
#include "platform/pump.h"
#include "qt/WakeTimer.h"

namespace brelant {

/// The pump on Qt's event loop. Needs a QCoreApplication, and no exec() anywhere.
class QtPump : public Pump {
 public:
  explicit QtPump(const Clock& clock);

  /// Every hook is called once at the start of each pass, nested passes too. If one returns true there is
  /// more to do at once, and a waiting pass does not sleep.
  void OnPass(std::function<bool()> hook);

  void DoEvents() override;
  void Wait(std::chrono::microseconds until) override;
  std::unique_ptr<Timer> Every(std::chrono::milliseconds period, std::function<void()> tick) override;

 private:
  bool RunHooks();

  const Clock& clock_;
  // A hook may add another while it runs; a deque leaves the running one where it is.
  std::deque<std::function<bool()>> hooks_;
  WakeTimer wake_;
};

}  // namespace brelant
