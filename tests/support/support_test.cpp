// SPDX-License-Identifier: GPL-3.0-or-later
#include <array>
#include <limits>
#include <optional>

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

class VirtualModbusTest : public SupportTest {
 protected:
  using Failure = ModbusMaster::Failure;
  using Bank = ModbusMaster::Bank;

  VirtualModbusTest() {
    modbus.units[3] = {{{7, 70}, {8, 80}}, {{20, 5}}};
    modbus.Open("port", {});
  }
  /// Why the read of a register fails; nothing if it does not.
  std::optional<Failure::Kind> FailureOfRead(int unit, Bank bank, int first, int count = 1) {
    try {
      modbus.Read(unit, bank, first, count);
    } catch (const Failure& failure) {
      return failure.kind;
    }
    return {};
  }

  VirtualModbus& modbus = machine.modbus;
};

TEST_F(VirtualModbusTest, ReadsAndWritesAUnit) {
  EXPECT_THAT(modbus.Read(3, Bank::input, 7, 2), ElementsAre(70, 80));
  modbus.Write(3, 20, std::array<std::uint16_t, 1>{6});
  EXPECT_THAT(modbus.Read(3, Bank::holding, 20, 1), ElementsAre(6));
  EXPECT_THAT(modbus.Story(), ElementsAre("3 input 7+2", "3 holding 20 = 6", "3 holding 20"));
}

TEST_F(VirtualModbusTest, RequestsTakeTheirTimeAndThePumpRunsMeanwhile) {
  const auto start = clock.Now();
  bool ran = false;
  pump.After(milliseconds(5), [&] { ran = true; });
  modbus.Read(3, Bank::input, 7, 1);
  EXPECT_TRUE(ran);
  EXPECT_EQ(clock.Now() - start, modbus.replyTime);
  EXPECT_EQ(FailureOfRead(4, Bank::input, 7), Failure::Kind::silence);
  EXPECT_EQ(clock.Now() - start, modbus.replyTime + modbus.limit);
}

TEST_F(VirtualModbusTest, RefusesWhatTheUnitDoesNotHave) {
  EXPECT_EQ(FailureOfRead(3, Bank::input, 9), Failure::Kind::exception);
  EXPECT_EQ(FailureOfRead(3, Bank::input, 8, 2), Failure::Kind::exception);
  EXPECT_EQ(FailureOfRead(3, Bank::holding, 7), Failure::Kind::exception);
  EXPECT_THROW(modbus.Write(3, 7, std::array<std::uint16_t, 1>{6}), Failure);
}

TEST_F(VirtualModbusTest, FailsAsItIsToldAndInThatOrder) {
  modbus.Fail({Failure::Kind::broken, {}, Failure::Kind::exception});
  EXPECT_EQ(FailureOfRead(3, Bank::input, 7), Failure::Kind::broken);
  EXPECT_EQ(FailureOfRead(3, Bank::input, 7), std::nullopt);
  EXPECT_EQ(FailureOfRead(3, Bank::input, 7), Failure::Kind::exception);
  EXPECT_EQ(FailureOfRead(3, Bank::input, 7), std::nullopt);
}

TEST_F(VirtualModbusTest, ARequestEndsWithItsOpening) {
  pump.After(milliseconds(5), [&] { modbus.Close(); });
  EXPECT_EQ(FailureOfRead(3, Bank::input, 7), Failure::Kind::cancelled);
  EXPECT_EQ(FailureOfRead(3, Bank::input, 7), Failure::Kind::port);
  modbus.Open("port", {});
  pump.After(milliseconds(5), [&] { modbus.Open("other", {}); });
  EXPECT_EQ(FailureOfRead(3, Bank::input, 7), Failure::Kind::cancelled);
  EXPECT_EQ(modbus.port, "other");
}

}  // namespace
}  // namespace brelant::test
