// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSocketNotifier>
#include <functional>
#include <memory>

namespace brelant {

/// While it lives, Ctrl-C and a request to terminate call a function inside a pump pass instead of ending the
/// process. Where the system has no such thing the process ends as usual.
class Interrupt {
 public:
  explicit Interrupt(std::function<void()> onInterrupt);
  ~Interrupt();
  Interrupt(const Interrupt&) = delete;
  Interrupt& operator=(const Interrupt&) = delete;

 private:
  std::function<void()> onInterrupt_;
  int descriptor_ = -1;
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace brelant
