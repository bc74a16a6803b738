// SPDX-License-Identifier: GPL-3.0-or-later
#include "qt/WakeTimer.h"

#ifdef Q_OS_LINUX
#include <sys/timerfd.h>
#include <unistd.h>
#endif

#include <algorithm>
#include <cstdint>

namespace brelant {

using std::chrono::duration_cast;
using std::chrono::microseconds;

#ifdef Q_OS_LINUX

WakeTimer::WakeTimer() : descriptor_(timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC)) {
  if (descriptor_ < 0) return;
  notifier_ = std::make_unique<QSocketNotifier>(descriptor_, QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] {
    std::uint64_t expirations = 0;
    [[maybe_unused]] const auto taken = read(descriptor_, &expirations, sizeof expirations);
  });
}

WakeTimer::~WakeTimer() {
  notifier_.reset();
  if (descriptor_ >= 0) close(descriptor_);
}

#else

WakeTimer::WakeTimer() = default;
WakeTimer::~WakeTimer() = default;

#endif

void WakeTimer::Arm(microseconds after) {
  // Zero would mean no timer at all.
  const auto delay = std::max(after, microseconds(1));
#ifdef Q_OS_LINUX
  if (descriptor_ >= 0) {
    const auto seconds = duration_cast<std::chrono::seconds>(delay);
    itimerspec order{};
    order.it_value.tv_sec = seconds.count();
    order.it_value.tv_nsec = std::chrono::nanoseconds(delay - seconds).count();
    timerfd_settime(descriptor_, 0, &order, nullptr);
    return;
  }
#endif
  coarse_.setSingleShot(true);
  coarse_.setTimerType(Qt::PreciseTimer);
  coarse_.start(std::chrono::ceil<std::chrono::milliseconds>(delay));
}

}  // namespace brelant
