// SPDX-License-Identifier: GPL-3.0-or-later
#include "qt/interrupt.h"

#include <csignal>

#include <gtest/gtest.h>

#include "qt/QtClock.h"
#include "qt/QtPump.h"

namespace brelant {
namespace {

#ifdef Q_OS_LINUX
TEST(InterruptTest, CallsInsideAPass) {
  const QtClock clock;
  QtPump pump(clock);
  for (const int signal : {SIGINT, SIGTERM}) {
    int calls = 0;
    const Interrupt interrupt([&] { ++calls; });
    ASSERT_EQ(raise(signal), 0);
    EXPECT_EQ(calls, 0);
    while (calls == 0) pump.Wait(std::chrono::microseconds::max());
    EXPECT_EQ(calls, 1);
  }
}
#endif

}  // namespace
}  // namespace brelant
