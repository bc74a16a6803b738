// SPDX-License-Identifier: GPL-3.0-or-later
#include "qt/interrupt.h"

#ifdef Q_OS_LINUX
#include <csignal>

#include <sys/signalfd.h>
#include <unistd.h>
#endif

#include <utility>

namespace brelant {

#ifdef Q_OS_LINUX

namespace {

sigset_t EndingSignals() {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGINT);
  sigaddset(&set, SIGTERM);
  return set;
}

}  // namespace

Interrupt::Interrupt(std::function<void()> onInterrupt) : onInterrupt_(std::move(onInterrupt)) {
  const auto ending = EndingSignals();
  pthread_sigmask(SIG_BLOCK, &ending, nullptr);
  descriptor_ = signalfd(-1, &ending, SFD_NONBLOCK | SFD_CLOEXEC);
  notifier_ = std::make_unique<QSocketNotifier>(descriptor_, QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] {
    signalfd_siginfo taken{};
    if (read(descriptor_, &taken, sizeof taken) == sizeof taken) onInterrupt_();
  });
}

Interrupt::~Interrupt() {
  notifier_.reset();
  close(descriptor_);
  const auto ending = EndingSignals();
  pthread_sigmask(SIG_UNBLOCK, &ending, nullptr);
}

#else

Interrupt::Interrupt(std::function<void()> onInterrupt) : onInterrupt_(std::move(onInterrupt)) {}
Interrupt::~Interrupt() = default;

#endif

}  // namespace brelant
