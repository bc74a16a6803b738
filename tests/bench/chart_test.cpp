// SPDX-License-Identifier: GPL-3.0-or-later
// Platform 5 with alarm levels, the variants 1, 2 and 3 (docs/memory-maps.md, Platform 5).
#include <cstdint>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arithmetic.h"
#include "bench/virtual_sensor.h"

namespace brelant::bench {
namespace {

using std::chrono::seconds;

/// Words of a function block without their flags.
struct Band {
  int a;
  int b;
};

Band BandOf(VirtualSensor& sensor, std::size_t level) {
  const std::size_t block = 162 + 5 * level;
  return {WordAt(sensor.Ram(), block + 1) & 32767, WordAt(sensor.Ram(), block + 3) & 32767};
}

TEST(ChartVariant, HasTheBandOfEachLevel) {
  for (const int part : {112, 231}) {
    for (const int variant : {1, 2, 3}) {
      VirtualSensor sensor({.part = part, .variant = variant});
      EXPECT_EQ(sensor.Ram()[226], variant);
      for (const std::size_t level : {0U, 1U}) {
        EXPECT_EQ(BandOf(sensor, level).a, BandOf(sensor, level).b - 10) << part << ' ' << level;
      }
      EXPECT_EQ(BandOf(sensor, 2).a, BandOf(sensor, 2).b) << part;
      EXPECT_EQ(BandOf(sensor, 3).b, BandOf(sensor, 3).a + 100) << part;
      EXPECT_EQ(BandOf(sensor, 4).a, BandOf(sensor, 4).b - 100) << part;
    }
  }
}

TEST(ChartVariant, WithAnAverageDrivesP0ByIt) {
  VirtualSensor sensor({.part = 231, .variant = 3});
  EXPECT_EQ(sensor.Ram()[162], 3);
  EXPECT_EQ(sensor.Ram()[205], 243);
  EXPECT_EQ(sensor.Ram()[207], 16);
}

TEST(ChartVariant, WithoutAnAverageDrivesP0ByCo2) {
  VirtualSensor sensor({.part = 112, .variant = 3});
  EXPECT_EQ(sensor.Ram()[162], 1);
  EXPECT_EQ(sensor.Ram()[205], 16);
  EXPECT_EQ(sensor.Ram()[207], 16);
}

// The panel shows temperature in whole degrees and CO2 in thousandths of a percent; a level that it cannot
// show would move when it is sent back.
TEST(ChartVariant, HasLevelsThatThePanelCanShow) {
  VirtualSensor sensor({.part = 231, .variant = 3});
  EXPECT_EQ(BandOf(sensor, 0).b, 5000 + 1500);
  EXPECT_EQ(BandOf(sensor, 1).b, 5000 + 3000);
  EXPECT_EQ(BandOf(sensor, 2).b, 5000 + 1900);
  EXPECT_EQ(BandOf(sensor, 3).a, 5000 + 2000);
  EXPECT_EQ(BandOf(sensor, 4).b, 5000 + 2400);
}

TEST(ChartVariant, EnablesTheTemperatureAlarmOfTheCentralUnit) {
  VirtualSensor sensor({.part = 231, .variant = 3});
  EXPECT_EQ(sensor.Ram()[14] & 128, 128);
}

TEST(ChartVariant, HasARelayForEachOfTwoLevels) {
  VirtualSensor sensor({.part = 231, .variant = 3});
  EXPECT_EQ(sensor.Ram()[189] & 31, 1 | 2);
}

struct Level {
  int bit;
  std::size_t word;     ///< the level's own word
  std::size_t channel;  ///< the live word that it watches
  int step;             ///< from the value into the alarm
};

// 231 with the average on P0: levels 0 and 2 watch the average, 1 the CO2 itself, 3 and 4 the temperature.
const std::vector<Level> kLevels{
    {1, 165, 26, -1}, {2, 170, 22, -1}, {4, 175, 26, -1}, {8, 178, 20, 1}, {16, 185, 20, -1}};

TEST(ChartAlarm, ComesAtItsLevelAndBeyond) {
  for (const Level& level : kLevels) {
    VirtualSensor sensor({.part = 231, .variant = 3});
    const int value = WordAt(sensor.Ram(), level.channel);
    for (const auto& [away, alarm] : {std::pair{-1, false}, {0, true}, {1, true}}) {
      const int flag = WordAt(sensor.Ram(), level.word) & 32768;
      SetWord(sensor.Ram(), level.word, (value + away * level.step) | flag);
      sensor.Advance(seconds(0));
      EXPECT_EQ((sensor.Ram()[255] & level.bit) != 0, alarm) << level.bit << ' ' << away;
    }
  }
}

TEST(ChartAlarm, OfLevel0WatchesCo2WhenTheAverageDoesNotDriveP0) {
  VirtualSensor sensor({.part = 231, .variant = 3});
  sensor.Advance(seconds(13));  // the average lies far behind
  const int co2 = WordAt(sensor.Ram(), 22);
  const int average = WordAt(sensor.Ram(), 26);
  ASSERT_GT(co2, average + 2);
  SetWord(sensor.Ram(), 165, (co2 + average) / 2 | 32768);
  sensor.Advance(seconds(13));
  EXPECT_EQ(sensor.Ram()[255] & 1, 0);
  sensor.Ram()[162] = 1;
  sensor.Advance(seconds(13));
  EXPECT_EQ(sensor.Ram()[255] & 1, 1);
}

}  // namespace
}  // namespace brelant::bench
