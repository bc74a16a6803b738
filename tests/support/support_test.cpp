// SPDX-License-Identifier: GPL-3.0-or-later
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/machine_error.h"
#include "support/dialogue.h"
#include "support/virtual_machine.h"

namespace brelant::test {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;
using testing::ElementsAre;

class SupportTest : public testing::Test {
 protected:
  VirtualMachine<ScriptedPort> machine;
  VirtualClock& clock = machine.clock;
  VirtualPump& pump = machine.pump;
  ScriptedPort& port = machine.port;
};

TEST_F(SupportTest, AWaitJumpsToTheNextEventAndNoFarther) {
  const auto start = clock.Now();
  std::vector<int> order;
  pump.After(milliseconds(20), [&] { order.push_back(2); });
  pump.After(milliseconds(10), [&] { order.push_back(1); });
  pump.Wait(start + milliseconds(100));
  EXPECT_EQ(clock.Now(), start + milliseconds(10));
  pump.Wait(start + milliseconds(15));
  EXPECT_EQ(clock.Now(), start + milliseconds(15));
  pump.Wait(start + milliseconds(100));
  EXPECT_EQ(clock.Now(), start + milliseconds(20));
  EXPECT_THAT(order, ElementsAre(1, 2));
}

TEST_F(SupportTest, AWaitForNothingIsAHang) {
  EXPECT_THROW(pump.Wait(microseconds::max()), WouldHang);
}

TEST_F(SupportTest, AWaitThatOnlyATimerWakesIsAHangInTheEnd) {
  const auto timer = pump.Every(std::chrono::minutes(1), [] {});
  const auto waitForEver = [&] {
    while (true) pump.Wait(microseconds::max());
  };
  EXPECT_THROW(waitForEver(), WouldHang);
}

TEST_F(SupportTest, ASpinIsAHang) {
  const auto spin = [&] {
    while (true) pump.DoEvents();
  };
  EXPECT_THROW(spin(), WouldHang);
}

TEST_F(SupportTest, ATimerTicksUntilItIsGone) {
  int ticks = 0;
  auto timer = pump.Every(milliseconds(10), [&] { ++ticks; });
  for (int i = 0; i < 3; ++i) pump.Wait(clock.Now() + milliseconds(10));
  EXPECT_EQ(ticks, 3);
  timer.reset();
  for (int i = 0; i < 3; ++i) pump.Wait(clock.Now() + milliseconds(10));
  EXPECT_EQ(ticks, 3);
}

TEST_F(SupportTest, AHookThatActsKeepsAWaitFromSleeping) {
  int calls = 0;
  pump.OnPass([&] { return ++calls == 1; });
  const auto start = clock.Now();
  pump.Wait(start + milliseconds(5));
  EXPECT_EQ(clock.Now(), start);
  pump.Wait(start + milliseconds(5));
  EXPECT_EQ(clock.Now(), start + milliseconds(5));
}

TEST_F(SupportTest, APassEventComesInItsPass) {
  int inPass = 0;
  pump.InPass(3, [&] { inPass = pump.Passes(); });
  for (int i = 0; i < 5; ++i) pump.DoEvents();
  EXPECT_EQ(inPass, 3);
}

TEST_F(SupportTest, TheTickWrapsAndTheDayEnds) {
  clock.SetTickCount(std::numeric_limits<std::int32_t>::max());
  clock.Advance(milliseconds(1));
  EXPECT_EQ(clock.GetTickCount(), std::numeric_limits<std::int32_t>::min());
  clock.SetTimer(86399.5);
  clock.Advance(std::chrono::seconds(1));
  EXPECT_NEAR(clock.Timer(), 0.5, 1e-6);
}

TEST_F(SupportTest, BytesArriveInsideAPassAndAreLostWhileClosed) {
  port.SetPortOpen(true);
  port.Arrive({1, 2}, milliseconds(3));
  EXPECT_EQ(port.InBufferCount(), 0);
  pump.Wait(clock.Now() + milliseconds(10));
  EXPECT_EQ(port.InBufferCount(), 2);
  EXPECT_THAT(port.Input(), ElementsAre(1, 2));
  port.Arrive({3}, milliseconds(1));
  port.SetPortOpen(false);
  pump.Wait(clock.Now() + milliseconds(10));
  port.SetPortOpen(true);
  EXPECT_EQ(port.InBufferCount(), 0);
}

TEST_F(SupportTest, ThePortFailsWhereItIsTold) {
  port.failAt = 2;
  port.SetPortOpen(true);
  EXPECT_THROW(port.InBufferCount(), MachineError);
  EXPECT_EQ(port.InBufferCount(), 0);
  EXPECT_THAT(port.Story(), ElementsAre("open"));
}

TEST_F(SupportTest, ADialogueTellsWhatWentWrong) {
  Dialogue line(port);
  line.Expect({1, 2}).Reply({3}).Expect({4});
  port.SetPortOpen(true);
  EXPECT_NE(line.Trouble(), "");
  port.Output(Bytes{1});
  port.Output(Bytes{2});
  pump.Wait(clock.Now() + milliseconds(10));
  EXPECT_THAT(port.Input(), ElementsAre(3));
  EXPECT_NE(line.Trouble(), "");
  port.Output(Bytes{4});
  EXPECT_EQ(line.Trouble(), "");
  port.Output(Bytes{5});
  EXPECT_NE(line.Trouble(), "");
}

}  // namespace
}  // namespace brelant::test
