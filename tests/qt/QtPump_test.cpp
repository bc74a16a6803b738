// SPDX-License-Identifier: GPL-3.0-or-later
#include "qt/QtPump.h"

#include <QCoreApplication>
#include <QEvent>
#include <QSocketNotifier>
#include <thread>

#include <gtest/gtest.h>

#include "qt/QtClock.h"

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace brelant {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;

constexpr auto kForEver = microseconds::max();

class QtPumpTest : public ::testing::Test {
 protected:
  void SetUp() override {
    // What the application itself posts at its start.
    pump_.DoEvents();
  }

  void PauseFor(microseconds pause) {
    const auto deadline = clock_.Now() + pause;
    while (clock_.Now() < deadline) pump_.Wait(deadline);
  }

  QtClock clock_;
  QtPump pump_{clock_};
};

/// Calls a function when an event is delivered to it.
class Receiver : public QObject {
 public:
  explicit Receiver(std::function<void()> act) : act_(std::move(act)) {}
  void Post() { QCoreApplication::postEvent(this, new QEvent(QEvent::User)); }
  bool event(QEvent* event) override {
    if (event->type() != QEvent::User) return QObject::event(event);
    act_();
    return true;
  }

 private:
  std::function<void()> act_;
};

TEST_F(QtPumpTest, AWaitEndsSoonAfterItsMoment) {
  // No whole number of milliseconds, which the event loop's own timers would meet by chance.
  constexpr microseconds kPause{5300};
  microseconds best = kForEver;
  for (int i = 0; i < 20; ++i) {
    const auto deadline = clock_.Now() + kPause;
    PauseFor(kPause);
    best = std::min(best, clock_.Now() - deadline);
  }
  // The best of many, since a busy machine may be late now and then.
  EXPECT_LT(best, microseconds(500));
}

TEST_F(QtPumpTest, AWaitIsOneSleep) {
  int passes = 0;
  pump_.OnPass([&] {
    ++passes;
    return false;
  });
  PauseFor(milliseconds(20));
  EXPECT_LE(passes, 3);
}

TEST_F(QtPumpTest, AMomentThatHasPassedIsNoWait) {
  const auto start = clock_.Now();
  pump_.Wait(microseconds(0));
  pump_.Wait(clock_.Now());
  EXPECT_LT(clock_.Now() - start, milliseconds(500));
}

TEST_F(QtPumpTest, APostedEventRunsInsideThePass) {
  int runs = 0;
  Receiver receiver([&] { ++runs; });
  receiver.Post();
  EXPECT_EQ(runs, 0);
  pump_.DoEvents();
  EXPECT_EQ(runs, 1);
}

TEST_F(QtPumpTest, AWaitForEverReturnsWhenSomethingHasRun) {
  int runs = 0;
  Receiver second([&] { ++runs; });
  Receiver first([&] {
    ++runs;
    second.Post();
  });
  first.Post();
  while (runs < 2) pump_.Wait(kForEver);
  EXPECT_EQ(runs, 2);
}

TEST_F(QtPumpTest, AnEventOfAnotherThreadEndsAWaitForEver) {
  for (int i = 0; i < 200; ++i) {
    bool arrived = false;
    Receiver receiver([&] { arrived = true; });
    std::thread poster([&] { receiver.Post(); });
    while (!arrived) pump_.Wait(kForEver);
    poster.join();
  }
}

TEST_F(QtPumpTest, ATimerTicksUntilItIsGone) {
  int ticks = 0;
  auto timer = pump_.Every(milliseconds(1), [&] { ++ticks; });
  while (ticks < 3) pump_.Wait(kForEver);
  timer.reset();
  PauseFor(milliseconds(5));
  EXPECT_EQ(ticks, 3);
}

#ifdef Q_OS_UNIX
TEST_F(QtPumpTest, AByteEndsAWait) {
  std::array<int, 2> ends{};
  ASSERT_EQ(pipe(ends.data()), 0);
  char byte = 0;
  QSocketNotifier notifier(ends[0], QSocketNotifier::Read);
  QObject::connect(&notifier, &QSocketNotifier::activated, [&] { EXPECT_EQ(read(ends[0], &byte, 1), 1); });
  ASSERT_EQ(write(ends[1], "x", 1), 1);
  while (byte == 0) pump_.Wait(kForEver);
  EXPECT_EQ(byte, 'x');
  close(ends[0]);
  close(ends[1]);
}
#endif

TEST_F(QtPumpTest, EveryHookRunsOnceAPass) {
  int first = 0;
  int second = 0;
  pump_.OnPass([&] {
    ++first;
    return true;
  });
  pump_.OnPass([&] {
    ++second;
    return false;
  });
  pump_.DoEvents();
  EXPECT_EQ(first, 1);
  EXPECT_EQ(second, 1);
  pump_.Wait(clock_.Now());
  EXPECT_EQ(first, 2);
  EXPECT_EQ(second, 2);
}

TEST_F(QtPumpTest, AHookWithMoreToDoKeepsAWaitFromSleeping) {
  pump_.OnPass([] { return true; });
  pump_.Wait(kForEver);
  const auto start = clock_.Now();
  pump_.Wait(start + std::chrono::minutes(1));
  EXPECT_LT(clock_.Now() - start, std::chrono::seconds(10));
}

TEST_F(QtPumpTest, HooksRunInNestedPassesAndMayAddOthers) {
  int depth = 0;
  int added = 0;
  pump_.OnPass([&] {
    if (++depth > 3) return false;
    for (int i = 0; i < 50; ++i) {
      pump_.OnPass([&] {
        ++added;
        return false;
      });
    }
    pump_.DoEvents();
    return true;
  });
  pump_.DoEvents();
  EXPECT_EQ(depth, 4);
  EXPECT_GT(added, 0);
}

}  // namespace
}  // namespace brelant
