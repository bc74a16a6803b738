// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSocketNotifier>
#include <QTimer>
#include <chrono>
#include <memory>

namespace brelant {

/// Wakes Qt's event loop at a moment, to some tens of microseconds where the system can: the loop's own
/// timers count in milliseconds, which is too coarse for the pauses on the line.
class WakeTimer {
 public:
  WakeTimer();
  ~WakeTimer();
  WakeTimer(const WakeTimer&) = delete;
  WakeTimer& operator=(const WakeTimer&) = delete;

  /// Wakes once after that time. An earlier order is forgotten.
  void Arm(std::chrono::microseconds after);

 private:
  int descriptor_ = -1;
  std::unique_ptr<QSocketNotifier> notifier_;
  QTimer coarse_;
};

}  // namespace brelant
