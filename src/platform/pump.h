// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace brelant {

/// The one way in which the core waits. Handlers of a user's acts, timers and the arrival of bytes happen
/// inside its calls and nowhere else (docs/architecture.md, One thread, one pump).
class Pump {
 public:
  class Timer {
   public:
    virtual ~Timer() = default;
  };

  virtual ~Pump() = default;

  /// Runs what is pending and returns.
  virtual void DoEvents() = 0;

  /// Runs what is pending; if nothing is, sleeps until an event, a received byte or the moment on Clock::Now.
  virtual void Wait(std::chrono::microseconds until) = 0;

  /// Calls `tick` inside a pump pass once every period, until the returned timer is destroyed.
  virtual std::unique_ptr<Timer> Every(std::chrono::milliseconds period, std::function<void()> tick) = 0;
};

}  // namespace brelant
