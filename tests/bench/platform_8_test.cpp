// SPDX-License-Identifier: GPL-3.0-or-later
// The units of platform 8 (docs/memory-maps.md, The units of platform 8).
#include <array>
#include <cmath>
#include <map>
#include <numbers>
#include <stdexcept>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "unit_host.h"

namespace brelant::bench {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kUnit = 40;

// Words in RAM.
constexpr std::size_t kTemperature = 20;
constexpr std::size_t kGas = 22;
constexpr std::size_t kAverage = 28;
constexpr std::size_t kTemperature2 = 30;
constexpr std::size_t kWeight = 34;
constexpr std::size_t kTankCommand = 304;
constexpr std::size_t kProcedure = 306;
constexpr std::size_t kState = 383;

constexpr int kAbsent = 9999;

// Words in EEPROM: the first level of regulators 5, 7, 6, 4, 8.
constexpr std::size_t kGasPre = 4244;
constexpr std::size_t kGasMain = 4252;
constexpr std::size_t kAverageLevel = 4248;
constexpr std::size_t kLow = 4240;
constexpr std::size_t kHigh = 4256;

double Sine(double t, double period) {
  return std::sin(2 * std::numbers::pi * t / period);
}

double GasPpm(double t) {
  return 18300 + 15500 * Sine(t, 53) + 2200 * Sine(t, 187);
}

TEST(Platform8Memory, HasItsSizes) {
  for (const int part : {40, 47, 168, 175}) {
    VirtualSensor unit({.part = part});
    EXPECT_EQ(unit.Platform(), 8);
    EXPECT_EQ(unit.Generation(), 0);
    EXPECT_EQ(unit.Ram().size(), 512U);
    EXPECT_EQ(unit.Eeprom().size(), 8192U);
    EXPECT_EQ(unit.Ram()[65], part);
  }
}

TEST(Platform8Memory, HoldsThePlanOfANewUnit) {
  VirtualSensor unit({.part = kUnit, .id = 7});
  const auto e = unit.Eeprom();
  EXPECT_EQ(e[4124], 117);
  EXPECT_EQ(e[4125], 2);
  EXPECT_EQ(e[4160], 7);
  EXPECT_EQ(e[8166] + e[8167] * 256 + e[8168] * 65536, 1042);
  EXPECT_THAT(Peek(e, 4401, 4), ElementsAre(5, 4, 8, 5));
  const std::map<std::size_t, int> words{
      {kGasPre, 1500}, {kGasMain, 2500}, {kAverageLevel, 18000}, {kLow, 2100}, {kHigh, 2300},
      {4246, 1500},    {4254, 2500},     {4250, 18000},          {4242, 2100}, {4258, 2300},
      {4436, 0x0759},  {4438, 0x8469},   {4580, 37302}};
  for (const auto& [address, word] : words) EXPECT_EQ(WordAt(e, address), word) << address;
}

// Bits 1 and 0 the decimals (2: two), bits 4 to 2 the unit (1 C, 5 %, 4 ppm), bits 6 and 5 a divisor (1: 10).
TEST(Platform8Memory, TellsHowItsChannelsRead) {
  VirtualSensor unit({.part = kUnit});
  const std::map<std::size_t, int> kinds{{7964, 6}, {7965, 54}, {7968, 16}, {7971, 0}};
  for (const auto& [address, kind] : kinds) EXPECT_EQ(unit.Eeprom()[address], kind) << address;
}

TEST(Platform8Memory, KnowsItsVariants) {
  for (const int variant : {1, 2}) {
    VirtualSensor unit({.part = kUnit, .variant = variant});
    EXPECT_EQ(unit.Eeprom()[4125], variant);
  }
  for (const int variant : {0, 3, 5}) {
    EXPECT_THROW(VirtualSensor({.part = kUnit, .variant = variant}), std::invalid_argument) << variant;
  }
}

// Hundredths of a degree, thousandths of a percent, ppm, kilograms.
TEST(Platform8Live, FollowsTheWaves) {
  VirtualSensor unit({.part = kUnit});
  for (int t = 0; t < 300; t += 7) {
    unit.Advance(seconds(t));
    const auto ram = unit.Ram();
    ASSERT_NEAR(SignedAt(ram, kTemperature), 2200 + 220 * Sine(t, 61) + 80 * Sine(t, 211), 1);
    ASSERT_NEAR(SignedAt(ram, kGas), GasPpm(t) / 10, 1);
    double sum = 0;
    for (int i = 0; i < 4000; ++i) sum += GasPpm(t - (i + 0.5) / 100);
    ASSERT_NEAR(SignedAt(ram, kAverage), sum / 4000, 2);
    const double used = t % 60 < 54 ? t % 60 / 54.0 : (60 - t % 60) / 6.0;
    ASSERT_NEAR(SignedAt(ram, kWeight), 50 - 45 * used, 1);
    ASSERT_EQ(SignedAt(ram, kTemperature2), kAbsent);
  }
}

TEST(Platform8Live, Variant1HasNoTank) {
  UnitHost host({.part = kUnit, .variant = 1});
  EXPECT_EQ(host.LiveWord(kWeight), kAbsent);
  ASSERT_TRUE(host.WriteRam(kTankCommand, 1));
  host.Pass(seconds(5));
  EXPECT_EQ(host.RamWord(kTankCommand), 100);
}

/// Bit, live word, level and whether the alarm lies below it.
struct Rule {
  int bit;
  std::size_t live;
  std::size_t level;
  bool low;
};
const std::vector<Rule> kRules{{0, kGas, kGasPre, false},
                               {1, kGas, kGasMain, false},
                               {2, kAverage, kAverageLevel, false},
                               {3, kTemperature, kLow, true},
                               {4, kTemperature, kHigh, false}};

TEST(Platform8Alarms, FollowTheLevels) {
  VirtualSensor unit({.part = kUnit});
  for (int t = 0; t < 600; ++t) {
    unit.Advance(seconds(t));
    int state = 128;
    for (const Rule& rule : kRules) {
      const int value = SignedAt(unit.Ram(), rule.live);
      const int level = SignedAt(unit.Eeprom(), rule.level);
      if (rule.low ? value <= level : value >= level) state += 1 << rule.bit;
    }
    ASSERT_EQ(unit.Ram()[kState], state) << t;
  }
}

TEST(Platform8Alarms, ComeAndGo) {
  VirtualSensor unit({.part = kUnit});
  for (const Rule& rule : kRules) {
    int changes = 0;
    int before = 0;
    for (int t = 0; t < 600; ++t) {
      unit.Advance(seconds(t));
      const int bit = unit.Ram()[kState] >> rule.bit & 1;
      changes += bit != before ? 1 : 0;
      before = bit;
    }
    EXPECT_GE(changes, 10) << rule.bit;
  }
}

TEST(Platform8Alarms, EachHasALevelOfItsOwnAndCountsFromIt) {
  for (const Rule& rule : kRules) {
    VirtualSensor unit({.part = kUnit});
    unit.Advance(seconds(3));
    for (const Rule& other : kRules) SetWord(unit.Eeprom(), other.level, other.low ? 0x8000 : 0x7FFF);
    unit.Advance(seconds(3));
    EXPECT_EQ(unit.Ram()[kState], 128);
    SetWord(unit.Eeprom(), rule.level, SignedAt(unit.Ram(), rule.live));
    unit.Advance(seconds(3));
    EXPECT_EQ(unit.Ram()[kState], 128 + (1 << rule.bit));
    SetWord(unit.Eeprom(), rule.level, SignedAt(unit.Ram(), rule.live) + (rule.low ? -1 : 1));
    unit.Advance(seconds(3));
    EXPECT_EQ(unit.Ram()[kState], 128);
    SetWord(unit.Eeprom(), rule.level + 2, SignedAt(unit.Ram(), rule.live));
    unit.Advance(seconds(3));
    EXPECT_EQ(unit.Ram()[kState], 128);  // the copy is watched by nothing
  }
}

TEST(Platform8Alarms, StateByteKeepsWhatIsNoAlarm) {
  VirtualSensor unit({.part = kUnit});
  unit.Ram()[kState] = 96;
  unit.Advance(seconds(0));
  EXPECT_EQ(unit.Ram()[kState] & 224, 96);
}

TEST(Platform8Frames, ReachBothMemories) {
  Host host({.part = kUnit});
  EXPECT_THAT(host.Exchange({129, 65, 194}), ElementsAre(6, 40, 46));
  host.sensor.Ram()[kState] = 133;
  EXPECT_THAT(host.Exchange({177, 1, 127, 49}), ElementsAre(6, 133, 139));
  host.sensor.Ram()[511] = 9;
  EXPECT_THAT(host.Exchange(LongFrame(177, 511)), ElementsAre(6, 9, 15));
  EXPECT_THAT(host.Exchange(LongFrame(177, 512)), IsEmpty());
  EXPECT_THAT(host.Exchange({137, 16, 28, 181}), ElementsAre(6, 117, 123));
  EXPECT_THAT(host.Exchange(LongFrame(12, 7006, {1, 2, 3, 4})), ElementsAre(6));
  EXPECT_THAT(Peek(host.sensor.Eeprom(), 7006, 2), ElementsAre(1, 2));
  EXPECT_THAT(Peek(host.sensor.Eeprom(), 6992, 2), ElementsAre(3, 4));
  EXPECT_THAT(host.Exchange(LongFrame(137, 8191)), ElementsAre(6, 0, 6));
  EXPECT_THAT(host.Exchange(LongFrame(137, 8192)), IsEmpty());
}

TEST(Platform8Frames, KnowNoCommands) {
  Host host({.part = kUnit});
  EXPECT_FALSE(host.sensor.Locked());
  EXPECT_THAT(host.Exchange({185, 1, 186}), IsEmpty());
  EXPECT_THAT(host.Exchange({147, 0, 147}), IsEmpty());
  EXPECT_EQ(host.sensor.Count().twa_resets, 0);
}

TEST(Platform8Id, CountsFromTheNextStart) {
  Host host({.part = kUnit, .id = 3});
  EXPECT_THAT(host.Exchange(LongFrame(9, 4160, {29})), ElementsAre(6));
  EXPECT_THAT(host.Send({227}), ElementsAre(223));
  Host next({.part = kUnit});
  ASSERT_TRUE(next.sensor.Restore(host.sensor.Image()));
  EXPECT_THAT(next.Send({253}), ElementsAre(223));
  EXPECT_THAT(next.Send({227}), IsEmpty());
}

TEST(Platform8Tank, EmptyAndFullAreTakenOver) {
  UnitHost host({.part = kUnit});
  host.Pass(seconds(40));
  ASSERT_TRUE(host.WriteRam(kTankCommand, 1));
  host.Pass(seconds(1));
  EXPECT_EQ(host.RamWord(kTankCommand), 0);
  EXPECT_EQ(host.LiveWord(kWeight), 0);
  host.now = seconds(119);
  ASSERT_TRUE(host.WriteRam(kTankCommand, 2));
  host.Pass(seconds(1));
  EXPECT_EQ(host.RamWord(kTankCommand), 0);
  EXPECT_EQ(host.LiveWord(kWeight), 50);
}

TEST(Platform8Procedures, ReallyMoveTheChannels) {
  const auto run = [](int command, int value, std::size_t live) {
    UnitHost host({.part = kUnit});
    host.Pass(seconds(12));
    EXPECT_TRUE(host.WriteRam(320, value));
    EXPECT_TRUE(host.WriteRam(kProcedure, command));
    host.Pass(seconds(1));
    EXPECT_EQ(host.RamWord(kProcedure), 0) << command;
    return host.LiveWord(live);
  };
  EXPECT_NEAR(run(1, 1950, kTemperature), 1950, 1);
  EXPECT_EQ(run(2, 0, kGas), 0);
  EXPECT_EQ(run(3, 0, kGas), 40);  // 400 ppm
  EXPECT_NEAR(run(4, 1234, kGas), 1234, 1);
  EXPECT_NEAR(run(5, 5000, kGas), 5000, 1);
}

// A thousandth of a percent of CO2 is 10 ppm of the average.
TEST(Platform8Procedures, MoveTheAverageWithTheGas) {
  UnitHost host({.part = kUnit});
  host.Pass(seconds(12));
  ASSERT_TRUE(host.WriteRam(kProcedure, 2));
  host.Pass(seconds(1));
  ASSERT_EQ(host.RamWord(kProcedure), 0);
  VirtualSensor fresh({.part = kUnit});
  fresh.Advance(host.now);
  const int shift = SignedAt(fresh.Ram(), kGas);
  EXPECT_NEAR(host.LiveWord(kAverage), SignedAt(fresh.Ram(), kAverage) - 10 * shift, 6);
}

TEST(Platform8Procedures, RefuseWhatMakesNoSense) {
  UnitHost host({.part = kUnit});
  const std::vector<std::array<int, 2>> all{{1, 4300}, {4, 20001}, {4, 65535}, {5, 0}, {5, 20001}, {6, 0}};
  for (const auto& [command, value] : all) {
    ASSERT_TRUE(host.WriteRam(320, value));
    ASSERT_TRUE(host.WriteRam(kProcedure, command));
    host.Pass(milliseconds(999));
    EXPECT_EQ(host.RamWord(kProcedure), command);
    host.Pass(milliseconds(1));
    EXPECT_EQ(host.RamWord(kProcedure), 100) << command << ' ' << value;
  }
}

// No loggers: nothing beyond the state byte moves by itself.
TEST(Platform8, LogsNothing) {
  UnitHost host({.part = kUnit});
  ASSERT_TRUE(host.WriteEeprom(4444, 0x8000));
  host.Pass(seconds(100));
  EXPECT_EQ(host.RamWord(336), 0);
  EXPECT_EQ(host.RamWord(344), 0);
}

}  // namespace
}  // namespace brelant::bench
