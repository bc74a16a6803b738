// SPDX-License-Identifier: GPL-3.0-or-later
// The calibration procedures of a platform 9 unit (docs/memory-maps.md, Procedures).
#include <array>
#include <vector>

#include <gtest/gtest.h>

#include "unit_host.h"

namespace brelant::bench {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr int kUnit = 154;
constexpr std::size_t kTemperature1 = 20;
constexpr std::size_t kGas = 22;
constexpr std::size_t kAverage = 28;
constexpr std::size_t kTemperature2 = 30;
constexpr std::size_t kWeight = 34;

constexpr int kOffsetTemperature = 1;
constexpr int kZero = 2;
constexpr int kFreshAir = 3;
constexpr int kOther = 4;
constexpr int kSpan = 5;
constexpr int kRefused = 100;

class ProcedureTest : public testing::Test {
 protected:
  void Ask(int command, int value = 0, int pressure = 0) {
    ASSERT_TRUE(host.WriteRam(320, value));
    ASSERT_TRUE(host.WriteRam(322, pressure));
    ASSERT_TRUE(host.WriteRam(306, command));
  }
  int Result() { return host.RamWord(306); }

  /// The result, a second after asking.
  int Run(int command, int value = 0, int pressure = 0) {
    Ask(command, value, pressure);
    host.Pass(seconds(1));
    return Result();
  }

  /// A live word now, and what it would be in a unit that nobody has calibrated.
  std::array<int, 2> NowAndNew(std::size_t address) {
    VirtualSensor other({.part = kUnit});
    other.Advance(host.now);
    return {host.LiveWord(address), SignedAt(other.Ram(), address)};
  }

  /// A channel lies `by` off what it was in a new unit, at any time.
  void ExpectShift(std::size_t address, int by, int tolerance = 1) {
    for (int i = 0; i < 200; ++i) {
      host.Pass(milliseconds(1700));
      const auto [now, fresh] = NowAndNew(address);
      ASSERT_NEAR(now, fresh + by, tolerance) << address << ' ' << i;
    }
  }

  UnitHost host{{.part = kUnit}};
};

TEST_F(ProcedureTest, TakesASecond) {
  host.Pass(seconds(20));
  Ask(kOffsetTemperature, 2000);
  EXPECT_EQ(Result(), 1);
  host.Pass(milliseconds(999));
  EXPECT_EQ(Result(), 1);
  host.Pass(milliseconds(1));
  EXPECT_EQ(Result(), 0);
}

TEST_F(ProcedureTest, GivenTemperatureIsShownFromThenOn) {
  for (const int correct : {2500, 1850, 351}) {
    host.Pass(seconds(20));
    ASSERT_EQ(Run(kOffsetTemperature, correct), 0);
    const auto [now, fresh] = NowAndNew(kTemperature1);
    EXPECT_NEAR(now, correct, 1);
    ExpectShift(kTemperature1, correct - fresh);
    ExpectShift(kTemperature2, 0, 0);
    ExpectShift(kGas, 0, 0);
  }
}

TEST_F(ProcedureTest, GivenTemperatureMayLieBelowZero) {
  host.now = seconds(167);  // 19 degrees
  // What is in force already does not count twice.
  for (const int correct : {-50, -30}) {
    ASSERT_EQ(Run(kOffsetTemperature, correct), 0);
    EXPECT_NEAR(host.LiveWord(kTemperature1), correct, 1);
  }
}

TEST_F(ProcedureTest, AnOffsetBeyond20DegreesIsRefused) {
  for (const int sign : {1, -1}) {
    UnitHost fresh({.part = kUnit});
    fresh.Pass(seconds(1));
    const int measured = fresh.LiveWord(kTemperature1);
    EXPECT_EQ(Run(kOffsetTemperature, measured + sign * 2003), kRefused);
    EXPECT_EQ(host.LiveWord(kTemperature1), measured);
    host = UnitHost({.part = kUnit});
    EXPECT_EQ(Run(kOffsetTemperature, measured + sign * 1997), 0);
    host = UnitHost({.part = kUnit});
  }
  EXPECT_EQ(Run(kOffsetTemperature, 0x8000), kRefused);
}

TEST_F(ProcedureTest, ShiftedTemperatureMakesItsAlarms) {
  ASSERT_EQ(Run(kOffsetTemperature, 3500), 0);
  host.sensor.Advance(host.now);
  EXPECT_EQ(host.sensor.Ram()[276], 1);
  EXPECT_EQ(host.sensor.Ram()[383] & 16, 16);
}

TEST_F(ProcedureTest, ZeroMakesTheGasOfTheMomentZero) {
  host.Pass(seconds(10));
  ASSERT_EQ(Run(kZero, 777), 0);  // takes no value
  const auto [now, fresh] = NowAndNew(kGas);
  EXPECT_EQ(now, 0);
  EXPECT_GT(fresh, 100);
  ExpectShift(kGas, -fresh);
  ExpectShift(kAverage, -fresh);
}

// 400 ppm are 4 hundredths of a percent.
TEST_F(ProcedureTest, FreshAirMakesItFourHundredths) {
  host.Pass(seconds(10));
  ASSERT_EQ(Run(kFreshAir), 0);
  const auto [now, fresh] = NowAndNew(kGas);
  EXPECT_EQ(now, 4);
  ExpectShift(kGas, 4 - fresh);
}

TEST_F(ProcedureTest, OtherGasMakesItTheGivenValue) {
  for (const int value : {0, 150, 350, 2000}) {
    host.Pass(seconds(7));
    ASSERT_EQ(Run(kOther, value), 0);
    const auto [now, fresh] = NowAndNew(kGas);
    EXPECT_NEAR(now, value, 1);
    ExpectShift(kGas, value - fresh);
  }
}

TEST_F(ProcedureTest, SpanStretchesTheGasFromItsZero) {
  host.Pass(seconds(40));  // little gas
  ASSERT_EQ(Run(kZero), 0);
  const auto [zeroed, zero] = NowAndNew(kGas);
  ASSERT_EQ(zeroed, 0);
  host.Pass(seconds(26));  // much of it
  const int before = NowAndNew(kGas)[1] - zero;
  ASSERT_GT(before, 200);
  host.now -= seconds(1);
  ASSERT_EQ(Run(kSpan, 2 * before), 0);
  EXPECT_NEAR(host.LiveWord(kGas), 2 * before, 1);
  for (int i = 0; i < 100; ++i) {
    host.Pass(milliseconds(1700));
    const auto [now, fresh] = NowAndNew(kGas);
    ASSERT_NEAR(now, 2 * (fresh - zero), 0.02 * std::abs(now) + 3);
    const auto [mean, fresh_mean] = NowAndNew(kAverage);
    ASSERT_NEAR(mean, 2 * (fresh_mean - zero), 0.02 * std::abs(mean) + 3);
  }
}

TEST_F(ProcedureTest, ZeroStaysZeroThroughASpan) {
  host.Pass(seconds(20));
  ASSERT_EQ(Run(kSpan, 300), 0);
  host.Pass(seconds(20));
  ASSERT_EQ(Run(kZero), 0);
  EXPECT_NEAR(host.LiveWord(kGas), 0, 1);
  host.Pass(seconds(20));
  ASSERT_EQ(Run(kOther, 123), 0);
  EXPECT_NEAR(host.LiveWord(kGas), 123, 1);
}

TEST_F(ProcedureTest, WhatMakesNoSenseIsRefusedAndChangesNothing) {
  const std::vector<std::array<int, 3>> all{
      {6, 0, 0},        {7, 1, 0},         {99, 0, 0},          {101, 0, 0},
      {65535, 0, 0},    {256, 0, 0},       {kOther, -1, 0},     {kOther, 2001, 0},
      {kOther, 5, 299}, {kOther, 5, 1201}, {kSpan, 0, 0},       {kSpan, -5, 0},
      {kSpan, 2001, 0}, {kSpan, 5, 1},     {kSpan, 200, 65535}, {kSpan, 1990, 1013}};
  host.Pass(seconds(10));
  const ByteList before = Peek(host.sensor.Eeprom(), 0, 8192);
  for (const auto& [command, value, pressure] : all) {
    EXPECT_EQ(Run(command, value, pressure), kRefused) << command << ' ' << value << ' ' << pressure;
    EXPECT_EQ(Peek(host.sensor.Eeprom(), 0, 8192), before);
  }
}

TEST_F(ProcedureTest, PressuresThatCanBeAreTaken) {
  for (const int pressure : {0, 300, 1013, 1200}) {
    EXPECT_EQ(Run(kOther, 200, pressure), 0) << pressure;
    EXPECT_NEAR(host.LiveWord(kGas), 200, 1);
  }
}

// The gas of second 10 is above 2.5 %; a tenth of it, or ten times as much, is no span gas.
TEST_F(ProcedureTest, ASpanBeyondEightTimesIsRefused) {
  host.now = seconds(9);
  const int measured = [] {
    UnitHost unit({.part = kUnit});
    unit.now = seconds(10);
    return unit.LiveWord(kGas);
  }();
  ASSERT_GT(measured, 200);
  EXPECT_EQ(Run(kSpan, measured / 9), kRefused);
  host.now = seconds(11);
  host = UnitHost({.part = kUnit});
  host.now = seconds(9);
  EXPECT_EQ(Run(kSpan, measured / 7), 0);
  EXPECT_EQ(Run(kOther, 2000), kRefused);  // at that gain an offset of 140 %
}

TEST_F(ProcedureTest, ResultStaysUntilTheNextCommand) {
  EXPECT_EQ(Run(42), kRefused);
  host.Pass(seconds(60));
  EXPECT_EQ(Result(), kRefused);
  EXPECT_EQ(Run(kZero), 0);
  ASSERT_TRUE(host.WriteRam(306, 100));
  host.Pass(seconds(60));
  EXPECT_EQ(Result(), kRefused);
}

TEST_F(ProcedureTest, AnotherCommandBeginsAnew) {
  Ask(kZero);
  host.Pass(milliseconds(600));
  Ask(kFreshAir);
  host.Pass(milliseconds(999));
  EXPECT_EQ(Result(), kFreshAir);
  host.Pass(milliseconds(1));
  EXPECT_EQ(Result(), 0);
  EXPECT_EQ(host.LiveWord(kGas), 4);
}

TEST_F(ProcedureTest, TakenBackIsNotCarriedOut) {
  Ask(kZero);
  host.Pass(milliseconds(500));
  ASSERT_TRUE(host.WriteRam(306, 0));
  host.Pass(seconds(2));
  EXPECT_EQ(Result(), 0);
  ExpectShift(kGas, 0, 0);
}

TEST_F(ProcedureTest, CountsTheMomentItIsDoneNotTheMomentSomebodyLooks) {
  VirtualSensor twin({.part = kUnit});
  twin.Advance(seconds(11));
  const int then = SignedAt(twin.Ram(), kGas);
  host.Pass(seconds(10));
  Ask(kZero);
  host.Pass(seconds(30));
  EXPECT_EQ(Result(), 0);
  ExpectShift(kGas, -then);
}

TEST_F(ProcedureTest, RunsBesideTheTanks) {
  host.Pass(seconds(20));
  Ask(kFreshAir);
  ASSERT_TRUE(host.WriteRam(304, 1));
  host.Pass(seconds(1));
  EXPECT_EQ(Result(), 0);
  EXPECT_EQ(host.RamWord(304), 0);
  EXPECT_EQ(host.LiveWord(kGas), 4);
  EXPECT_NEAR(host.LiveWord(kWeight), 0, 1);
}

TEST_F(ProcedureTest, IsKeptByThePowerOff) {
  ASSERT_EQ(Run(kOffsetTemperature, 2500), 0);
  ASSERT_EQ(Run(kSpan, 400), 0);
  ASSERT_EQ(Run(kFreshAir), 0);
  UnitHost next({.part = kUnit});
  ASSERT_TRUE(next.sensor.Restore(host.sensor.Image()));
  next.now = host.now;
  for (int i = 0; i < 50; ++i) {
    next.Pass(seconds(2));
    host.Pass(seconds(2));
    EXPECT_EQ(next.LiveWord(kTemperature1), host.LiveWord(kTemperature1));
    EXPECT_EQ(next.LiveWord(kGas), host.LiveWord(kGas));
    EXPECT_NE(next.LiveWord(kGas), NowAndNew(kGas)[1]);
  }
}

}  // namespace
}  // namespace brelant::bench
