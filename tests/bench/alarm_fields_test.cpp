// SPDX-License-Identifier: GPL-3.0-or-later
// The fields of platforms 61 and 7 (docs/memory-maps.md) in a new sensor, and on the line.
#include <array>
#include <cstdint>
#include <initializer_list>
#include <numeric>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arithmetic.h"
#include "host.h"

namespace brelant::bench {
namespace {

using std::chrono::seconds;
using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::Ge;
using testing::Le;

/// A frame with its checksum behind it.
ByteList Summed(ByteList frame) {
  frame.push_back(static_cast<std::uint8_t>(std::accumulate(frame.begin(), frame.end(), 0)));
  return frame;
}

/// Every write is taken.
void Write(Host& host, std::initializer_list<ByteList> frames) {
  host.Exchange({197, 55, 252});
  for (const ByteList& frame : frames) EXPECT_THAT(host.Exchange(Summed(frame)), ElementsAre(6));
  host.Exchange({169, 171, 84});
  host.sensor.Advance(seconds(0));
}

TEST(Platform61, DisplayShowsChannelsThatItHas) {
  for (const int variant : {0, 1}) {
    VirtualSensor sensor({.part = 215, .variant = variant});
    const std::array nibbles{sensor.Eeprom()[50] & 15, sensor.Eeprom()[50] >> 4, sensor.Eeprom()[51] & 15,
                             sensor.Eeprom()[51] >> 4};
    EXPECT_THAT(nibbles, Each(AllOf(Ge(4), Le(variant == 0 ? 6 : 5)))) << variant;
  }
}

// CO2 in thousandths, O2 in hundredths of a percent, each with 5000 on top; 82 and 83 belong to no level.
TEST(Platform61, LevelsOfANewSensor) {
  VirtualSensor sensor({.part = 215});
  EXPECT_EQ(WordAt(sensor.Eeprom(), 76), 5000 + 1500);
  EXPECT_EQ(WordAt(sensor.Eeprom(), 78), 5000 + 3000);
  EXPECT_EQ(WordAt(sensor.Eeprom(), 80), 5000 + 1900);
  EXPECT_EQ(WordAt(sensor.Eeprom(), 84), 5000 + 1800);
  EXPECT_EQ(sensor.Eeprom()[218 + 5], 128 | 5 << 2 | 1);
  EXPECT_EQ(sensor.Eeprom()[218 + 6], 128 | 5 << 2 | 2);
  EXPECT_EQ(sensor.Eeprom()[83], 127);
}

// The CO2 main level and the O2 main level, by words 39 and 42.
TEST(Platform61, TakesLevelsFromTheLine) {
  Host host({.part = 215});
  Write(host, {{10, 39, 26, 10}, {10, 42, 27, 58}});
  EXPECT_EQ(WordAt(host.sensor.Eeprom(), 78), 6666);
  EXPECT_EQ(WordAt(host.sensor.Eeprom(), 84), 6970);
}

// What a panel polls: three live values, signal and temperature deviation, status.
TEST(Platform61, AnswersThePoll) {
  Host host({.part = 215});
  const auto ram = host.sensor.Ram();
  EXPECT_THAT(host.Exchange({134, 20, 154}),
              ElementsAre(6, ram[20], ram[21], ram[22], ram[23], ram[24], ram[25], testing::_));
  EXPECT_THAT(host.Exchange({132, 40, 172}), ElementsAre(6, ram[40], ram[41], 0, 0, testing::_));
  EXPECT_THAT(host.Exchange({129, 67, 196}), ElementsAre(6, 0, 6));
}

TEST(Platform7, DisplayShowsChannelsThatItHas) {
  for (const int variant : {1, 2}) {
    VirtualSensor sensor({.part = 50, .variant = variant});
    for (const std::size_t at : {385U, 386U, 387U, 388U}) {
      EXPECT_THAT(sensor.Eeprom()[at], AllOf(Ge(4), Le(6))) << at;
    }
  }
}

TEST(Platform7, AlarmRowsOfANewSensor) {
  VirtualSensor sensor({.part = 50});
  const auto row = [&](std::size_t at) {
    const auto bytes = sensor.Eeprom().subspan(at, 6);
    return ByteList(bytes.begin(), bytes.end());
  };
  EXPECT_THAT(row(834), ElementsAre(5, 220, 0, 0, 63, 255));    // 1500, ">"
  EXPECT_THAT(row(840), ElementsAre(11, 184, 0, 0, 63, 255));   // 3000, ">"
  EXPECT_THAT(row(846), ElementsAre(7, 108, 128, 0, 63, 255));  // 1900, "<"
  EXPECT_EQ(sensor.Eeprom()[925], 5);
  EXPECT_EQ(sensor.Eeprom()[927], 5);
  EXPECT_EQ(sensor.Eeprom()[929], 6);
}

// The level of row 2 lies on the last two bytes of a page, its slope on the first of the next one.
TEST(Platform7, TakesAnAlarmRowFromTheLine) {
  Host host({.part = 50});
  ASSERT_EQ(host.sensor.Ram()[210], 1);  // 1.83 % CO2 is above 1.5 %, 19.3 % O2 not below 19 %
  Write(host, {{10, 3, 66, 39, 16}, {10, 3, 78, 7, 238}, {9, 3, 80, 0}, {9, 3, 161, 6}});
  EXPECT_EQ(WordAt(host.sensor.Eeprom(), 834), 10000);
  EXPECT_EQ(WordAt(host.sensor.Eeprom(), 846), 2030);
  EXPECT_EQ(host.sensor.Eeprom()[848], 0);
  EXPECT_EQ(host.sensor.Ram()[210], 0);
  Write(host, {{9, 3, 80, 128}});
  EXPECT_EQ(host.sensor.Ram()[210], 1);
}

TEST(Platform7, RowIsQuietAtItsLevel) {
  VirtualSensor sensor({.part = 50});
  sensor.Eeprom()[925] = 6;
  for (const std::uint8_t slope : ByteList{0, 128}) {
    sensor.Eeprom()[836] = slope;
    SetWord(sensor.Eeprom(), 834, WordAt(sensor.Ram(), 24));
    sensor.Advance(seconds(0));
    EXPECT_EQ(sensor.Ram()[210], 0) << int{slope};
  }
}

// Rows 1 and 3 make the first alarm, row 2 the second.
TEST(Platform7, WhichRowMakesWhichAlarm) {
  VirtualSensor sensor({.part = 50});
  for (const auto& [row, alarm] : {std::pair{0U, 1}, std::pair{1U, 2}, std::pair{2U, 1}}) {
    for (const std::size_t k : {0U, 1U, 2U}) {
      sensor.Eeprom()[925 + 2 * k] = 0x90 | 6;  // the high nibble says nothing
      sensor.Eeprom()[836 + 6 * k] = 0;
      SetWord(sensor.Eeprom(), 834 + 6 * k, k == row ? 0x8000 | 1000 : 9000);
    }
    sensor.Advance(seconds(0));
    EXPECT_EQ(sensor.Ram()[210], alarm) << row;
  }
}

TEST(Platform7, AnswersThePoll) {
  Host host({.part = 50});
  EXPECT_EQ(host.Exchange({134, 20, 154}).size(), 8U);
  EXPECT_THAT(host.Exchange({129, 67, 196}), ElementsAre(6, 0, 6));
  EXPECT_THAT(host.Exchange({193, 82, 19}), ElementsAre(6, 1, 7));
}

// So a fault can be shown: what is put there stays.
TEST(StatusByte, IsLeftAlone) {
  for (const int part : {215, 50}) {
    VirtualSensor sensor({.part = part});
    EXPECT_EQ(sensor.Ram()[67], 0);
    sensor.Ram()[67] = 5;
    sensor.Advance(seconds(10));
    EXPECT_EQ(sensor.Ram()[67], 5) << part;
  }
}

}  // namespace
}  // namespace brelant::bench
