// SPDX-License-Identifier: GPL-3.0-or-later
#include "qt/QtClock.h"

#include <QTime>

#include <gtest/gtest.h>

namespace brelant {
namespace {

TEST(QtClockTest, StartsAtItsConstruction) {
  const QtClock clock;
  EXPECT_GE(clock.Now().count(), 0);
  EXPECT_LT(clock.Now(), std::chrono::seconds(10));
}

TEST(QtClockTest, TheTickIsTheTimeInMilliseconds) {
  const QtClock clock;
  const auto before = std::chrono::floor<std::chrono::milliseconds>(clock.Now()).count();
  const auto tick = clock.GetTickCount();
  const auto after = std::chrono::floor<std::chrono::milliseconds>(clock.Now()).count();
  EXPECT_LE(before, tick);
  EXPECT_GE(after, tick);
}

TEST(QtClockTest, TheTimerCountsSecondsOfTheDay) {
  const QtClock clock;
  const auto before = QTime::currentTime();
  const double timer = clock.Timer();
  const auto after = QTime::currentTime();
  if (after < before) GTEST_SKIP() << "midnight passed";
  EXPECT_GE(timer, before.msecsSinceStartOfDay() / 1000.0);
  EXPECT_LE(timer, after.msecsSinceStartOfDay() / 1000.0);
}

}  // namespace
}  // namespace brelant
