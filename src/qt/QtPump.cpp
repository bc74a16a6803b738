// SPDX-License-Identifier: GPL-3.0-or-later
#include "qt/QtPump.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QTimer>
#include <utility>

namespace brelant {

namespace {

class QtTimer : public Pump::Timer {
 public:
  QtTimer(std::chrono::milliseconds period, std::function<void()> tick) {
    timer_.setTimerType(Qt::PreciseTimer);
    timer_.callOnTimeout(std::move(tick));
    timer_.start(period);
  }

 private:
  QTimer timer_;
};

void ProcessEvents(QEventLoop::ProcessEventsFlags flags) {
  QAbstractEventDispatcher::instance()->processEvents(flags);
  // What was posted while the pass ran may have used up its wake-up call: without this, the next pass would
  // deliver it and then sleep as if nothing had happened.
  QCoreApplication::sendPostedEvents();
}

}  // namespace

QtPump::QtPump(const Clock& clock) : clock_(clock) {}

void QtPump::OnPass(std::function<bool()> hook) {
  hooks_.push_back(std::move(hook));
}

void QtPump::DoEvents() {
  RunHooks();
  ProcessEvents(QEventLoop::AllEvents);
}

void QtPump::Wait(std::chrono::microseconds until) {
  const bool busy = RunHooks();
  if (until != std::chrono::microseconds::max()) {
    const auto left = until - clock_.Now();
    if (busy || left <= std::chrono::microseconds::zero()) return ProcessEvents(QEventLoop::AllEvents);
    wake_.Arm(left);
  } else if (busy) {
    return ProcessEvents(QEventLoop::AllEvents);
  }
  ProcessEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
}

std::unique_ptr<Pump::Timer> QtPump::Every(std::chrono::milliseconds period, std::function<void()> tick) {
  return std::make_unique<QtTimer>(period, std::move(tick));
}

bool QtPump::RunHooks() {
  bool busy = false;
  for (std::size_t i = 0; i < hooks_.size(); ++i) busy = hooks_[i]() || busy;
  return busy;
}

}  // namespace brelant
