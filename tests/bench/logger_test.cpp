// SPDX-License-Identifier: GPL-3.0-or-later
// The loggers of a platform 9 unit (docs/memory-maps.md, Loggers).
#include <map>

#include <gtest/gtest.h>

#include "unit_host.h"

namespace brelant::bench {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr int kUnit = 154;

// RAM: two words each but for the age, one for each logger.
constexpr std::size_t kTemperature1 = 20;
constexpr std::size_t kGas = 22;
constexpr std::size_t kTemperature2 = 30;
constexpr std::size_t kCount = 336;
constexpr std::size_t kNext = 340;
constexpr std::size_t kAge = 344;

// EEPROM.
constexpr std::size_t kTiming = 4444;
constexpr std::size_t kChannel1 = 4564;
constexpr std::size_t kChannel2 = 4568;
constexpr std::size_t kSize = 4640;
constexpr int kEveryTwoSeconds = 0x8005;

class LoggerTest : public testing::Test {
 protected:
  static std::size_t SampleAt(std::size_t logger, int index) {
    return 1024 + 3072 * logger + 2 * static_cast<std::size_t>(index);
  }

  /// Samples every 2 s, the first of them in 2 s.
  void LogFast() { ASSERT_TRUE(host.WriteEeprom(kTiming, kEveryTwoSeconds)); }

  int Sample(std::size_t logger, int index) { return host.RamWord(SampleAt(logger, index)); }

  /// The live word that a unit without a history has at a moment.
  static int LiveAt(std::size_t address, microseconds moment, std::optional<int> variant = {}) {
    VirtualSensor twin({.part = kUnit, .variant = variant});
    twin.Advance(moment);
    return WordAt(twin.Ram(), address);
  }

  void ExpectCounts(int first, int second) {
    EXPECT_EQ(host.RamWord(kCount), first);
    EXPECT_EQ(host.RamWord(kCount + 2), second);
  }
  void ExpectNext(int first, int second) {
    EXPECT_EQ(host.RamWord(kNext), first);
    EXPECT_EQ(host.RamWord(kNext + 2), second);
  }

  UnitHost host{{.part = kUnit}};
};

TEST_F(LoggerTest, BeginEmptyAndSampleEvery576Seconds) {
  ExpectCounts(0, 0);
  host.Pass(seconds(576) - microseconds(1));
  ExpectCounts(0, 0);
  EXPECT_EQ(host.RamWord(kAge), 575);
  host.Pass(microseconds(1));
  ExpectCounts(1, 1);
  ExpectNext(1, 1);
  EXPECT_EQ(host.RamWord(kAge), 0);
}

// The host was away all the time: every sample is that of its own moment.
TEST_F(LoggerTest, HoldTheLiveWordsOfTheirMoments) {
  host.Pass(seconds(5));
  LogFast();
  host.Pass(milliseconds(61900));
  ExpectCounts(30, 30);
  ExpectNext(30, 30);
  EXPECT_EQ(host.RamWord(kAge), 1);
  for (int i = 0; i < 30; ++i) {
    const seconds moment(7 + 2 * i);
    EXPECT_EQ(Sample(0, i), LiveAt(kGas, moment)) << i;
    EXPECT_EQ(Sample(1, i), LiveAt(kTemperature1, moment)) << i;
  }
  EXPECT_EQ(Sample(0, 30), 0);
}

TEST_F(LoggerTest, DoNotMindHowOftenOneLooks) {
  LogFast();
  UnitHost restless({.part = kUnit});
  ASSERT_TRUE(restless.WriteEeprom(kTiming, kEveryTwoSeconds));
  for (int i = 0; i < 7000; ++i) {
    restless.Pass(milliseconds(700));
    if (i % 2 == 0) {
      restless.sensor.Advance(restless.now);
    } else {
      restless.RamWord(kCount);
    }
  }
  host.now = restless.now;
  host.sensor.Advance(host.now);
  restless.sensor.Advance(host.now);
  EXPECT_EQ(host.sensor.Image(), restless.sensor.Image());
}

// 1600 samples: the last hundred lie over the first, and index 100 is the oldest.
TEST_F(LoggerTest, GoRoundInTheirRings) {
  LogFast();
  host.Pass(seconds(3200));
  ExpectCounts(1500, 1500);
  ExpectNext(100, 100);
  const std::map<int, int> numbers{{0, 1501}, {99, 1600}, {100, 101}, {1499, 1500}};
  for (const auto& [index, number] : numbers) {
    EXPECT_EQ(Sample(0, index), LiveAt(kGas, seconds(2 * number))) << index;
    EXPECT_EQ(Sample(1, index), LiveAt(kTemperature1, seconds(2 * number))) << index;
  }
  EXPECT_EQ(Sample(0, 1500), 0);
}

TEST_F(LoggerTest, SurviveYearsWithoutAHost) {
  LogFast();
  host.Pass(std::chrono::hours(24 * 3650));  // 157680000 samples, 105120 times round
  ExpectCounts(1500, 1500);
  ExpectNext(0, 0);
  EXPECT_EQ(Sample(0, 1499), LiveAt(kGas, host.now));
}

// Halves go to the even neighbour: 2.5 is 2, 4.5 is 4, 5.5 is 6, 6.5 is 6, 7.5 is 8.
TEST_F(LoggerTest, TakeTheirPeriodFromTheCode) {
  const std::map<int, int> periods{{0, 2},    {1, 2},     {2, 2},     {3, 3},        {4, 3},  {6, 4},
                                   {8, 4},    {9, 4},     {11, 6},    {13, 6},       {15, 8}, {0x10, 8},
                                   {0x11, 9}, {0x1F, 30}, {0x20, 32}, {0x7F, 122880}};
  for (const auto& [code, period] : periods) {
    for (const int flag : {0, 128}) {
      UnitHost unit({.part = kUnit});
      unit.Pass(seconds(1));
      ASSERT_TRUE(unit.WriteEeprom(kTiming, (flag + code) * 256));
      unit.Pass(seconds(period) - microseconds(1));
      EXPECT_EQ(unit.RamWord(kCount), 0) << code;
      unit.Pass(microseconds(1));
      EXPECT_EQ(unit.RamWord(kCount), 1) << code;
    }
  }
}

TEST_F(LoggerTest, StartBothAnewWithAnotherPeriod) {
  LogFast();
  host.Pass(seconds(21));
  ASSERT_TRUE(host.WriteEeprom(kTiming, 0x8805));  // 4 s
  ExpectCounts(0, 0);
  ExpectNext(0, 0);
  EXPECT_EQ(host.RamWord(kAge), 0);
  host.Pass(seconds(9));
  ExpectCounts(2, 2);
  ExpectNext(2, 2);
  EXPECT_EQ(Sample(0, 0), LiveAt(kGas, seconds(25)));
  EXPECT_EQ(Sample(0, 1), LiveAt(kGas, seconds(29)));
  EXPECT_EQ(host.RamWord(kAge), 1);
}

TEST_F(LoggerTest, GoOnWithTheSamePeriodWrittenAgain) {
  LogFast();
  host.Pass(seconds(21));
  ASSERT_TRUE(host.WriteEeprom(kTiming, 0x0077));  // the flag and the low byte are no part of it
  ExpectCounts(10, 10);
  host.Pass(seconds(1));
  ExpectCounts(11, 11);
}

// The moments stay common to both.
TEST_F(LoggerTest, StartAloneAnewWithAnotherChannel) {
  LogFast();
  host.Pass(seconds(21));
  ASSERT_TRUE(host.WriteEeprom(kChannel2, 0x5159));
  ExpectCounts(10, 0);
  ExpectNext(10, 0);
  EXPECT_EQ(host.RamWord(kAge), 1);
  host.Pass(seconds(4));
  ExpectCounts(12, 2);
  ExpectNext(12, 2);
  EXPECT_EQ(Sample(1, 0), LiveAt(kTemperature2, seconds(22)));
  EXPECT_EQ(Sample(1, 1), LiveAt(kTemperature2, seconds(24)));
  EXPECT_EQ(Sample(0, 11), LiveAt(kGas, seconds(24)));
  ASSERT_TRUE(host.WriteEeprom(kChannel1, 0x5158));
  ExpectCounts(0, 2);
}

TEST_F(LoggerTest, GoOnWhenOnlyTheUnitsOwnBitsChange) {
  LogFast();
  host.Pass(seconds(21));
  ASSERT_TRUE(host.WriteEeprom(kChannel1, 0xFFF5));
  ExpectCounts(10, 10);
}

TEST_F(LoggerTest, FollowSettingsThatWerePoked) {
  LogFast();
  host.Pass(seconds(21));
  host.sensor.Advance(host.now);
  SetWord(host.sensor.Eeprom(), kTiming, 0x8800);
  host.Pass(seconds(5));
  ExpectCounts(1, 1);
  EXPECT_EQ(Sample(0, 0), LiveAt(kGas, seconds(25)));
}

TEST_F(LoggerTest, HaveRingsAsLargeAsToldAndNoLargerThanTheirRoom) {
  const std::map<int, int> rings{{7, 7}, {1536, 1536}, {1537, 1536}, {65535, 1536}};
  for (const auto& [told, room] : rings) {
    UnitHost unit({.part = kUnit});
    ASSERT_TRUE(unit.WriteEeprom(kTiming, kEveryTwoSeconds));
    ASSERT_TRUE(unit.WriteEeprom(kSize, told));
    unit.Pass(seconds(2 * (room + 3)));
    EXPECT_EQ(unit.RamWord(kCount + 2), room) << told;
    EXPECT_EQ(unit.RamWord(kNext + 2), 3) << told;
    EXPECT_EQ(unit.RamWord(SampleAt(1, 2)), LiveAt(kTemperature1, unit.now)) << told;
  }
}

TEST_F(LoggerTest, StartBothAnewWithAnotherRing) {
  LogFast();
  host.Pass(seconds(21));
  ASSERT_TRUE(host.WriteEeprom(kSize, 8));
  ExpectCounts(0, 0);
  ExpectNext(0, 0);
  host.Pass(seconds(2));
  ExpectCounts(1, 1);
  EXPECT_EQ(Sample(0, 0), LiveAt(kGas, seconds(23)));
}

TEST_F(LoggerTest, WithoutARingRecordNothing) {
  LogFast();
  ASSERT_TRUE(host.WriteEeprom(kSize, 0));
  host.Pass(seconds(100));
  ExpectCounts(0, 0);
  ExpectNext(0, 0);
  EXPECT_EQ(Sample(0, 0), 0);
}

TEST_F(LoggerTest, KeepTheirCountsAgainstAHostThatWritesThem) {
  LogFast();
  host.Pass(seconds(20));
  for (const std::size_t address : {kCount, kNext, kAge}) ASSERT_TRUE(host.WriteRam(address, 60000));
  ExpectCounts(10, 10);
  ExpectNext(10, 10);
  EXPECT_EQ(host.RamWord(kAge), 0);
}

TEST_F(LoggerTest, TakeNoSampleBackWhenAClockGoesBack) {
  LogFast();
  host.sensor.Advance(seconds(101));
  host.sensor.Advance(seconds(40));
  host.now = seconds(40);
  ExpectCounts(50, 50);
  ExpectNext(50, 50);
  EXPECT_EQ(host.RamWord(kAge), 1);
  host.now = seconds(103);
  ExpectCounts(51, 51);
}

TEST_F(LoggerTest, AgeEndsAt65535) {
  ASSERT_TRUE(host.WriteEeprom(kTiming, 0x7F00));
  host.Pass(seconds(65535));
  EXPECT_EQ(host.RamWord(kAge), 65535);
  host.Pass(seconds(1));
  EXPECT_EQ(host.RamWord(kAge), 65535);
}

TEST_F(LoggerTest, LogAnAbsentChannelAsAbsent) {
  UnitHost unit({.part = kUnit, .variant = 5});
  ASSERT_TRUE(unit.WriteEeprom(kChannel1, 11));
  ASSERT_TRUE(unit.WriteEeprom(kTiming, kEveryTwoSeconds));
  unit.Pass(seconds(4));
  EXPECT_EQ(unit.RamWord(1024), 9999);
  EXPECT_EQ(unit.RamWord(1026), 9999);
}

TEST_F(LoggerTest, LogNothingOfAChannelThatIsNone) {
  ASSERT_TRUE(host.WriteEeprom(kChannel1, 15));
  LogFast();
  host.Pass(seconds(4));
  ExpectCounts(2, 2);
  EXPECT_EQ(Sample(0, 0), 0);
}

// A procedure is asked for at 12.5 s and the tank at 13.2 s, or the other way round; each is done a second
// later, while the host is away, and the sample of second 14 lies between the two.
TEST_F(LoggerTest, ACalibrationCountsFromItsOwnMoment) {
  for (const bool tank_first : {true, false}) {
    UnitHost unit({.part = kUnit});
    ASSERT_TRUE(unit.WriteEeprom(kChannel1, 11));
    ASSERT_TRUE(unit.WriteEeprom(kTiming, kEveryTwoSeconds));
    const microseconds procedure_done = milliseconds(tank_first ? 14200 : 13500);
    const microseconds tank_done = milliseconds(tank_first ? 13500 : 14200);
    ASSERT_TRUE(unit.WriteRam(320, LiveAt(kTemperature1, procedure_done) + 300));
    unit.now = milliseconds(12500);
    ASSERT_TRUE(unit.WriteRam(tank_first ? 304 : 306, 1));
    unit.now = milliseconds(13200);
    ASSERT_TRUE(unit.WriteRam(tank_first ? 306 : 304, 1));
    unit.now = seconds(60);
    ASSERT_EQ(unit.RamWord(306), 0);
    ASSERT_EQ(unit.RamWord(304), 0);
    const int tare = LiveAt(34, tank_done);
    for (int i = 0; i < 30; ++i) {
      const seconds moment(2 * i + 2);
      const int shift = moment > procedure_done ? 300 : 0;
      EXPECT_NEAR(unit.RamWord(SampleAt(1, i)), LiveAt(kTemperature1, moment) + shift, shift > 0 ? 1 : 0);
      const int empty = moment > tank_done ? tare : 0;
      EXPECT_NEAR(static_cast<std::int16_t>(unit.RamWord(SampleAt(0, i))), LiveAt(34, moment) - empty,
                  empty > 0 ? 1 : 0);
    }
  }
}

TEST_F(LoggerTest, SamplesBetweenCommandAndResultAreOfBefore) {
  LogFast();
  host.Pass(milliseconds(11500));
  ASSERT_TRUE(host.WriteRam(320, LiveAt(kTemperature1, milliseconds(12500)) + 300));
  ASSERT_TRUE(host.WriteRam(306, 1));
  host.Pass(seconds(60));
  ASSERT_EQ(host.RamWord(306), 0);
  EXPECT_EQ(Sample(1, 5), LiveAt(kTemperature1, seconds(12)));
  EXPECT_NEAR(Sample(1, 6), LiveAt(kTemperature1, seconds(14)) + 300, 1);
}

TEST_F(LoggerTest, GoOnAfterPowerOnWhereTheyWere) {
  LogFast();
  host.Pass(milliseconds(21500));
  host.RamWord(kAge);
  UnitHost next({.part = kUnit});
  ASSERT_TRUE(next.sensor.Restore(host.sensor.Image()));
  EXPECT_EQ(next.RamWord(kCount), 10);
  EXPECT_EQ(next.RamWord(kAge), 1);
  next.Pass(seconds(1));
  EXPECT_EQ(next.RamWord(kCount), 11);
  EXPECT_EQ(next.RamWord(kNext), 11);
  EXPECT_EQ(next.RamWord(SampleAt(0, 9)), Sample(0, 9));
  EXPECT_EQ(next.RamWord(SampleAt(0, 10)), LiveAt(kGas, seconds(1)));
}

TEST_F(LoggerTest, TakeNoHarmFromAnImageThatCannotBe) {
  for (const std::size_t address : {kCount, kCount + 2, kNext, kNext + 2, kAge}) {
    SetWord(host.sensor.Ram(), address, 65535);
  }
  UnitHost next({.part = kUnit});
  ASSERT_TRUE(next.sensor.Restore(host.sensor.Image()));
  EXPECT_EQ(next.RamWord(kCount), 1500);
  EXPECT_LT(next.RamWord(kNext), 1500);
}

}  // namespace
}  // namespace brelant::bench
