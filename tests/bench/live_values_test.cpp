// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <functional>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arithmetic.h"
#include "bench/function_block.h"
#include "bench/virtual_sensor.h"

namespace brelant::bench {
namespace {

using std::chrono::seconds;

// How many of the polls of ten minutes, two seconds apart, show another word than the poll before.
int Changes(VirtualSensor& sensor, std::size_t address) {
  int changes = 0;
  int before = -1;
  for (int t = 0; t < 600; t += 2) {
    sensor.Advance(seconds(t));
    const int word = WordAt(sensor.Ram(), address);
    if (word != before) ++changes;
    before = word;
  }
  return changes;
}

TEST(LiveValues, MoveFromPollToPoll) {
  struct Case {
    int part;
    std::size_t address;
  };
  for (const auto& [part, address] :
       {Case{231, 20}, Case{231, 22}, Case{231, 24}, Case{231, 26}, Case{104, 20}, Case{112, 22},
        Case{120, 24}, Case{217, 12}, Case{217, 14}, Case{217, 20}, Case{217, 30}, Case{215, 20},
        Case{215, 22}, Case{215, 24}, Case{50, 20}, Case{50, 22}, Case{50, 24}}) {
    VirtualSensor sensor({.part = part});
    EXPECT_GT(Changes(sensor, address), 250) << part << " at " << address;
  }
}

TEST(LiveValues, AreAFunctionOfTimeAlone) {
  VirtualSensor straight({.part = 231});
  VirtualSensor roundabout({.part = 231});
  for (int t = 0; t < 100; ++t) roundabout.Advance(seconds(t));
  straight.Advance(seconds(100));
  roundabout.Advance(seconds(100));
  EXPECT_EQ(straight.Image(), roundabout.Image());
}

TEST(LiveValues, ReceivingDoesNotMoveThem) {
  VirtualSensor sensor({.part = 231});
  const auto before = sensor.Image();
  sensor.Receive(254, seconds(1000));
  EXPECT_EQ(sensor.Image(), before);
}

// At time 0 every wave stands at its mean: 22 C, 45 % humidity, 18300 ppm in a cellar, 1050 ppm in a room.
TEST(LiveValues, OfPlatform5AtTheStart) {
  VirtualSensor sensor({.part = 231});
  EXPECT_EQ(WordAt(sensor.Ram(), 20), 5000 + 2200);
  EXPECT_EQ(WordAt(sensor.Ram(), 24), 5000 + 450);
  EXPECT_NEAR(WordAt(sensor.Ram(), 22), 5000 + 1830, 1);
  EXPECT_NEAR(WordAt(sensor.Ram(), 26), 5000 + 1830, 1);
}

TEST(LiveValues, OfEachCurveOnPlatform5AtTheStart) {
  VirtualSensor sensor({.part = 104});
  EXPECT_NEAR(WordAt(sensor.Ram(), 20), 5000 + 1050, 2);
  EXPECT_NEAR(WordAt(sensor.Ram(), 22), 5000 + 1830, 2);
  EXPECT_NEAR(WordAt(sensor.Ram(), 24), 5000 + 1050, 2);
  EXPECT_NEAR(WordAt(sensor.Ram(), 26), 5000 + 1830, 2);
}

TEST(LiveValues, OfPlatform6AtTheStart) {
  VirtualSensor sensor({.part = 217});
  EXPECT_EQ(WordAt(sensor.Ram(), 12), 5000 + 2200);
  EXPECT_EQ(WordAt(sensor.Ram(), 14), 5000 + 2050);
  EXPECT_EQ(WordAt(sensor.Ram(), 20), 5000 + 450);
  // The sensor interpolates in its table, the gas does not.
  EXPECT_NEAR(WordAt(sensor.Ram(), 30), 5000 + 1050, 25);
}

TEST(LiveValues, OfPlatform61AtTheStart) {
  VirtualSensor oxygen({.part = 215, .variant = 0});
  EXPECT_EQ(WordAt(oxygen.Ram(), 20), 5000 + 2200);
  EXPECT_NEAR(WordAt(oxygen.Ram(), 22), 5000 + 1830, 60);
  EXPECT_EQ(WordAt(oxygen.Ram(), 24), 5000 + 1930);
  VirtualSensor ppm({.part = 215, .variant = 1});
  EXPECT_NEAR(WordAt(ppm.Ram(), 22), 5000 + 1050, 25);
}

TEST(LiveValues, OfPlatform7AtTheStart) {
  VirtualSensor sensor({.part = 50});
  EXPECT_EQ(WordAt(sensor.Ram(), 20), 2200);
  EXPECT_NEAR(WordAt(sensor.Ram(), 22), 1830, 60);
  EXPECT_EQ(WordAt(sensor.Ram(), 24), 1930);
  EXPECT_EQ(sensor.Ram()[67], 0);
}

// Alarms come and go: in an hour, every bit is seen set and clear.
void EveryAlarmComesAndGoes(VirtualSensor& sensor, std::size_t address, int bits) {
  int seen_set = 0;
  int seen_clear = 0;
  for (int t = 0; t < 3600; t += 2) {
    sensor.Advance(seconds(t));
    seen_set |= sensor.Ram()[address];
    seen_clear |= ~sensor.Ram()[address];
  }
  EXPECT_EQ(seen_set & bits, bits);
  EXPECT_EQ(seen_clear & bits, bits);
}

TEST(Alarms, OfPlatform5ComeAndGo) {
  VirtualSensor with_average({.part = 231, .variant = 1});
  EveryAlarmComesAndGoes(with_average, 255, 31);
  VirtualSensor without({.part = 112, .variant = 1});
  EveryAlarmComesAndGoes(without, 255, 31);
}

TEST(Alarms, OfPlatform7ComeAndGo) {
  VirtualSensor sensor({.part = 50});
  EveryAlarmComesAndGoes(sensor, 210, 3);
}

// A temperature of -1 C is the word 65436 and lies below a level of 5 C, not above it.
TEST(Alarms, OfPlatform7TakeATemperatureBelowZeroAsSuch) {
  VirtualSensor sensor({.part = 50});
  for (const std::size_t row : {0U, 1U, 2U}) {
    sensor.Eeprom()[925 + 2 * row] = 4;
    SetWord(sensor.Eeprom(), 834 + 6 * row, 500);
    sensor.Eeprom()[836 + 6 * row] = row == 1 ? 128 : 0;
  }
  for (std::size_t entry = 0; entry < 17; ++entry) SetWord(sensor.Eeprom(), 512 + 2 * entry, 65436);
  sensor.Advance(seconds(0));
  EXPECT_EQ(WordAt(sensor.Ram(), 20), 65436);
  EXPECT_EQ(sensor.Ram()[210], 2);
}

// A person who watches the panel sees each alarm come and go: polled for an hour, no state lasts longer than
// the longer of the two waves, that of O2.
void ExpectNoStateLasts(VirtualSensor& sensor, const std::function<bool()>& in_alarm,
                        const std::string& what) {
  int since = 0;
  int longest = 0;
  bool before = false;
  for (int t = 0; t < 3600; t += 2) {
    sensor.Advance(seconds(t));
    if (in_alarm() != before) {
      before = !before;
      longest = std::max(longest, t - since);
      since = t;
    }
  }
  EXPECT_LE(std::max(longest, 3600 - since), 72) << what;
}

struct AlarmLevel {
  std::size_t value;
  std::size_t level;
  bool above;
};

// CO2 is in alarm above its levels, O2 below them.
TEST(Alarms, OfPlatform61ComeAndGoEachMinute) {
  VirtualSensor sensor({.part = 215});
  for (const AlarmLevel& alarm : {AlarmLevel{22, 76, true}, AlarmLevel{22, 78, true},
                                  AlarmLevel{24, 80, false}, AlarmLevel{24, 84, false}}) {
    const auto in_alarm = [&] {
      const int value = WordAt(sensor.Ram(), alarm.value);
      const int level = WordAt(sensor.Eeprom(), alarm.level);
      return alarm.above ? value > level : value < level;
    };
    ExpectNoStateLasts(sensor, in_alarm, "level at " + std::to_string(alarm.level));
  }
}

// A row is in alarm by its own slope; channels 4, 5 and 6 are the words at 20, 22 and 24.
TEST(Alarms, OfEachRowOfPlatform7ComeAndGoEachMinute) {
  for (const int variant : {1, 2}) {
    VirtualSensor sensor({.part = 50, .variant = variant});
    for (const std::size_t row : {0U, 1U, 2U}) {
      const auto in_alarm = [&] {
        const std::size_t channel = sensor.Eeprom()[925 + 2 * row] & 15U;
        const int value = WordAt(sensor.Ram(), 12 + 2 * channel);
        const int level = WordAt(sensor.Eeprom(), 834 + 6 * row) & 0x7FFF;
        return (sensor.Eeprom()[836 + 6 * row] & 128) != 0 ? level > value : level < value;
      };
      ExpectNoStateLasts(sensor, in_alarm, "row " + std::to_string(row));
    }
  }
}

TEST(Alarms, FollowALevelThatTheHostWrites) {
  VirtualSensor sensor({.part = 50});
  SetWord(sensor.Eeprom(), 840, 1);  // main alarm above 0.001 %
  sensor.Advance(seconds(0));
  EXPECT_EQ(sensor.Ram()[210] & 2, 2);
  SetWord(sensor.Eeprom(), 840, 9999);
  sensor.Advance(seconds(0));
  EXPECT_EQ(sensor.Ram()[210] & 2, 0);
}

// Function 1 of part 231 runs from 20 to 26 C and feeds output 1; at 22 C it stands at a third.
TEST(Outputs, OfPlatform5FollowTheirFunctions) {
  VirtualSensor sensor({.part = 231});
  EXPECT_EQ(WordAt(sensor.Ram(), 199), 5461);
  sensor.Ram()[168] = static_cast<std::uint8_t>(sensor.Ram()[168] | 128);
  sensor.Ram()[170] = static_cast<std::uint8_t>(sensor.Ram()[170] & 127);  // falling: two thirds
  sensor.Advance(seconds(0));
  EXPECT_EQ(WordAt(sensor.Ram(), 199), 10923);
}

TEST(Outputs, OfPlatform5AddTheirBaseLine) {
  VirtualSensor sensor({.part = 231});
  SetWord(sensor.Ram(), 194, 32768 + 8192);  // 50 % on top of a third
  sensor.Advance(seconds(0));
  EXPECT_EQ(WordAt(sensor.Ram(), 199), 13653);
  SetWord(sensor.Ram(), 194, 32768 - 8192);
  sensor.Advance(seconds(0));
  EXPECT_EQ(WordAt(sensor.Ram(), 199), 0);
}

TEST(Outputs, OfPlatform5SwitchWhenDigital) {
  VirtualSensor sensor({.part = 231});
  sensor.Ram()[193] = 64 | 2;
  SetWord(sensor.Ram(), 199, 16384);
  sensor.Advance(seconds(0));
  EXPECT_EQ(WordAt(sensor.Ram(), 199), 16384);  // in between it stays
  SetWord(sensor.Ram(), 168, 5000 + 2300 + 32768);
  sensor.Advance(seconds(0));
  EXPECT_EQ(WordAt(sensor.Ram(), 199), 0);
}

// Function 1 of platform 6 has no sign: 20 to 26 C are -100 to 100 %, so 22 C are -33 %.
TEST(Outputs, OfPlatform6FollowTheirFunctions) {
  VirtualSensor sensor({.part = 217});
  EXPECT_EQ(WordAt(sensor.Ram(), 238), 0);
  sensor.Eeprom()[143] = static_cast<std::uint8_t>(sensor.Eeprom()[143] | 16);  // inverted
  sensor.Advance(seconds(0));
  EXPECT_EQ(WordAt(sensor.Ram(), 238), 5461);
  sensor.Eeprom()[142] = 160;  // a base line of 50 %
  sensor.Advance(seconds(0));
  EXPECT_EQ(WordAt(sensor.Ram(), 238), 2731);
}

TEST(Outputs, StayBetween0And100Percent) {
  VirtualSensor sensor({.part = 217});
  for (int t = 0; t < 600; t += 2) {
    sensor.Advance(seconds(t));
    for (const std::size_t at : {236U, 238U, 26U, 28U}) ASSERT_LE(WordAt(sensor.Ram(), at), 16384);
  }
}

TEST(Contribution, BySignAndSlope) {
  const auto at_a_quarter = [](bool positive, bool rising) {
    return Contribution({.channel = 0, .a = 6000, .b = 6400, .positive = positive, .rising = rising}, 6100);
  };
  EXPECT_DOUBLE_EQ(at_a_quarter(true, true), 25);
  EXPECT_DOUBLE_EQ(at_a_quarter(true, false), 75);
  EXPECT_DOUBLE_EQ(at_a_quarter(false, false), -25);
  EXPECT_DOUBLE_EQ(at_a_quarter(false, true), -75);
}

TEST(Contribution, DoesNotGoBeyondTheEnds) {
  const FunctionBlock block{.channel = 0, .a = 6000, .b = 6400, .positive = true, .rising = true};
  EXPECT_DOUBLE_EQ(Contribution(block, 5000), 0);
  EXPECT_DOUBLE_EQ(Contribution(block, 9000), 100);
  const FunctionBlock step{.channel = 0, .a = 6000, .b = 6000, .positive = true, .rising = true};
  EXPECT_DOUBLE_EQ(Contribution(step, 5999), 0);
  EXPECT_DOUBLE_EQ(Contribution(step, 6000), 100);
}

}  // namespace
}  // namespace brelant::bench
