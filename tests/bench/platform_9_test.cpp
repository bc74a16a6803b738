// SPDX-License-Identifier: GPL-3.0-or-later
// The central unit of platform 9 on KiBus (docs/memory-maps.md, Platforms 8 and 9; docs/protocol.md, Memory
// frames).
#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <numbers>
#include <random>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "bench/modbus_registers.h"
#include "unit_host.h"

namespace brelant::bench {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kUnit = 154;
constexpr int kAbsent = 9999;

// Words of channels in RAM.
constexpr std::size_t kTemperature1 = 20;
constexpr std::size_t kGas = 22;
constexpr std::size_t kAverage = 28;
constexpr std::size_t kTemperature2 = 30;
constexpr std::size_t kWeight = 34;

/// A channel's status byte and its live word.
const std::map<std::size_t, std::size_t> kChannels{
    {260, kTemperature1}, {261, kGas}, {264, kAverage}, {265, kTemperature2}, {267, kWeight}};
/// Temperature 1, gas, average, temperature 2, weight.
const std::vector<std::size_t> kRegulators{276, 277, 278, 279, 285};

TEST(Platform9Memory, HasItsSizes) {
  VirtualSensor unit({.part = kUnit});
  EXPECT_EQ(unit.Platform(), 9);
  EXPECT_EQ(unit.Ram().size(), 7168U);
  EXPECT_EQ(unit.Eeprom().size(), 8192U);
  EXPECT_EQ(unit.Image().size(), 15360U);
  EXPECT_EQ(unit.Ram()[65], 154);
}

TEST(Platform9Memory, HoldsThePlanOfANewUnit) {
  VirtualSensor unit({.part = kUnit, .id = 7});
  const auto e = unit.Eeprom();
  EXPECT_EQ(e[4124], 117);
  EXPECT_EQ(e[4125], 3);
  EXPECT_EQ(e[4160], 7);
  EXPECT_EQ(e[8166] + e[8167] * 256 + e[8168] * 65536, 1042);
  // Levels, hundredths: temperature 1 high and low, gas main and pre, average twice, temperature 2 low, high.
  const std::map<std::size_t, int> words{
      {4240, 2300},   {4242, 2100},   {4244, 250},    {4246, 150},   {4248, 180}, {4250, 180},
      {4252, 600},    {4254, 800},    {4354, 1550},   {4356, 850},   {4358, 50},  {4434, 0x8690},
      {4436, 0x8690}, {4438, 0x5E00}, {4444, 0xC105}, {4602, 37302}, {4640, 1500}};
  for (const auto& [address, word] : words) EXPECT_EQ(WordAt(e, address), word) << address;
  EXPECT_EQ(WordAt(e, 4564) % 16, 5);
  EXPECT_EQ(WordAt(e, 4568) % 16, 4);
  EXPECT_THAT(Peek(e, 4401, 4), ElementsAre(5, 4, 8, 11));
  EXPECT_THAT(Peek(e, 4409, 4), ElementsAre(4, 5, 9, 11));
  for (std::size_t i = 0; i < 16; ++i) {
    EXPECT_EQ(SignedAt(e, 4704 + 2 * i), -2000 + 500 * static_cast<int>(i));
  }
}

// Bits 1 and 0 the decimals (2: two), bits 4 to 2 the unit (1 C, 5 %, 6 none).
TEST(Platform9Memory, TellsHowItsChannelsRead) {
  VirtualSensor unit({.part = kUnit});
  const std::map<std::size_t, int> kinds{{7964, 6}, {7965, 22}, {7968, 22}, {7969, 6}, {7971, 26}};
  for (const auto& [address, kind] : kinds) EXPECT_EQ(unit.Eeprom()[address], kind) << address;
}

// The pointer counts from the high window, 57344. A period is 1800 x 2 s, 192 of them are 8 days.
TEST(Platform9Memory, PointsToItsBackgroundInterval) {
  VirtualSensor unit({.part = kUnit});
  const auto base = static_cast<std::size_t>(WordAt(unit.Eeprom(), 7868) - 57344);
  ASSERT_LT(base, 8192U);
  const int tick = WordAt(unit.Eeprom(), base + 8);
  const int count = WordAt(unit.Eeprom(), base + 4);
  EXPECT_EQ(tick * 2 / 3600.0 * count / 24, 8);
}

TEST(Platform9Memory, KnowsItsModels) {
  for (const int variant : {1, 3, 5, 6, 7}) {
    VirtualSensor unit({.part = kUnit, .variant = variant});
    EXPECT_EQ(unit.Eeprom()[4125], variant);
  }
  for (const int variant : {0, 2, 4, 8}) {
    EXPECT_THROW(VirtualSensor({.part = kUnit, .variant = variant}), std::invalid_argument) << variant;
  }
}

// The waves of the page: 22 C, 1.83 % and a full tank at time 0; temperature 2 lies 15 C lower, 20 s ahead.
TEST(Platform9Live, StartsWhereTheWavesDo) {
  VirtualSensor unit({.part = kUnit});
  const auto sine = [](double t, double period) { return std::sin(2 * std::numbers::pi * t / period); };
  EXPECT_EQ(WordAt(unit.Ram(), kTemperature1), 2200);
  EXPECT_EQ(WordAt(unit.Ram(), kGas), 183);
  EXPECT_EQ(WordAt(unit.Ram(), kWeight), 5000);
  EXPECT_NEAR(WordAt(unit.Ram(), kTemperature2), 700 + 220 * sine(20, 61) + 80 * sine(20, 211), 1);
  double sum = 0;
  for (int i = 0; i < 4000; ++i) {
    const double t = -(i + 0.5) / 100;
    sum += 18300 + 15500 * sine(t, 53) + 2200 * sine(t, 187);
  }
  EXPECT_NEAR(WordAt(unit.Ram(), kAverage), sum / 4000 / 100, 1);
}

TEST(Platform9Live, MovesFromPollToPoll) {
  for (const std::size_t address : {kTemperature1, kGas, kAverage, kTemperature2, kWeight}) {
    VirtualSensor unit({.part = kUnit});
    int changes = 0;
    int before = -1;
    for (int t = 0; t < 600; t += 2) {
      unit.Advance(seconds(t));
      const int word = WordAt(unit.Ram(), address);
      if (word != before) ++changes;
      before = word;
    }
    EXPECT_GT(changes, 200) << address;
  }
}

TEST(Platform9Live, WeightFallsSlowlyAndIsFilledUp) {
  VirtualSensor unit({.part = kUnit});
  int falls = 0;
  int rises = 0;
  int before = 5000;
  for (int t = 1; t <= 600; ++t) {
    unit.Advance(seconds(t));
    const int weight = WordAt(unit.Ram(), kWeight);
    ASSERT_GE(weight, 500);
    ASSERT_LE(weight, 5000);
    if (weight < before) {
      ++falls;
      ASSERT_LE(before - weight, 100);
    }
    if (weight > before) ++rises;
    before = weight;
  }
  EXPECT_EQ(falls, 540);
  EXPECT_EQ(rises, 60);
}

/// The alarms that the levels in the unit's own EEPROM make of its live words.
struct Alarms {
  bool temperature1_low, temperature1_high, gas_pre, gas_main, average;
  bool temperature2_low, temperature2_high, weight_pre, weight_main;
};

Alarms AlarmsOf(VirtualSensor& unit) {
  const auto live = [&](std::size_t address) { return SignedAt(unit.Ram(), address); };
  const auto level = [&](std::size_t address) { return SignedAt(unit.Eeprom(), address); };
  return {.temperature1_low = live(kTemperature1) <= level(4242),
          .temperature1_high = live(kTemperature1) >= level(4240),
          .gas_pre = live(kGas) >= level(4246),
          .gas_main = live(kGas) >= level(4244),
          .average = live(kAverage) >= level(4248),
          .temperature2_low = live(kTemperature2) <= level(4252),
          .temperature2_high = live(kTemperature2) >= level(4254),
          .weight_pre = live(kWeight) <= level(4354) - level(4358),
          .weight_main = live(kWeight) <= level(4356) - level(4358)};
}

void ExpectAlarms(VirtualSensor& unit, int when) {
  const Alarms a = AlarmsOf(unit);
  const auto ram = unit.Ram();
  EXPECT_EQ(ram[276], (a.temperature1_low ? 8 : 0) + (a.temperature1_high ? 1 : 0)) << when;
  EXPECT_EQ(ram[277], (a.gas_pre ? 4 : 0) + (a.gas_main ? 1 : 0)) << when;
  EXPECT_EQ(ram[278], a.average ? 1 : 0) << when;
  EXPECT_EQ(ram[279], (a.temperature2_low ? 8 : 0) + (a.temperature2_high ? 1 : 0)) << when;
  EXPECT_EQ(ram[285], (a.weight_pre ? 2 : 0) + (a.weight_main ? 8 : 0)) << when;
  const bool low = a.temperature1_low || a.temperature2_low;
  const bool high = a.temperature1_high || a.temperature2_high;
  EXPECT_EQ(ram[383], 128 + (a.gas_pre ? 1 : 0) + (a.gas_main ? 2 : 0) + (a.average ? 4 : 0) + (low ? 8 : 0) +
                          (high ? 16 : 0))
      << when;
}

TEST(Platform9Alarms, FollowTheLevels) {
  VirtualSensor unit({.part = kUnit});
  for (int t = 0; t < 600; ++t) {
    unit.Advance(seconds(t));
    ExpectAlarms(unit, t);
  }
}

TEST(Platform9Alarms, FollowLevelsThatWereChanged) {
  Host host({.part = kUnit});
  // Temperature 1: low at 22.00 C, which it has, high at -1.00 C. Weight: pre alarm at 50 kg and 0.5 on top.
  EXPECT_THAT(host.Exchange(LongFrame(8 + 4, 4240, {255, 156, 8, 152})), ElementsAre(6));
  EXPECT_THAT(host.Exchange(LongFrame(8 + 2, 4354, {5050 / 256, 5050 % 256})), ElementsAre(6));
  EXPECT_EQ(host.sensor.Ram()[276], 0);
  host.sensor.Advance(seconds(0));
  EXPECT_EQ(host.sensor.Ram()[276], 9);
  EXPECT_EQ(host.sensor.Ram()[285], 2);
  ExpectAlarms(host.sensor, 0);
}

TEST(Platform9Alarms, CountFromTheLevelItself) {
  VirtualSensor unit({.part = kUnit});
  for (const auto& [above, high, low] : {std::array{0, 1, 0}, {1, 0, 0}, {0, 1, 0}, {1, 0, 0}}) {
    SetWord(unit.Eeprom(), 4240, 2200 + above);
    unit.Advance(seconds(0));
    EXPECT_EQ(unit.Ram()[276], high + 8 * low) << above;
  }
  SetWord(unit.Eeprom(), 4242, 2200);
  unit.Advance(seconds(0));
  EXPECT_EQ(unit.Ram()[276], 8);
  SetWord(unit.Eeprom(), 4242, 2199);
  unit.Advance(seconds(0));
  EXPECT_EQ(unit.Ram()[276], 0);
}

TEST(Platform9Alarms, ComeAndGoWithinAMinute) {
  VirtualSensor unit({.part = kUnit});
  const std::vector<std::pair<std::size_t, int>> bits{{276, 1}, {276, 8}, {277, 1}, {277, 4}, {278, 1},
                                                      {279, 1}, {279, 8}, {285, 2}, {285, 8}};
  for (const auto& [address, bit] : bits) {
    int minutes = 0;
    for (int minute = 0; minute < 10; ++minute) {
      int on = 0;
      for (int t = 60 * minute; t < 60 * minute + 60; ++t) {
        unit.Advance(seconds(t));
        on += (unit.Ram()[address] & bit) != 0 ? 1 : 0;
      }
      minutes += on > 0 && on < 60 ? 1 : 0;
    }
    EXPECT_GE(minutes, 7) << address << " bit " << bit;
  }
}

TEST(Platform9Alarms, StateByteKeepsWhatIsNoAlarm) {
  VirtualSensor unit({.part = kUnit});
  unit.Ram()[383] = 96;
  unit.Advance(seconds(0));
  EXPECT_EQ(unit.Ram()[383] & 224, 96);
}

TEST(Platform9Status, EachChannelFailsNowAndThenForAWhile) {
  VirtualSensor unit({.part = kUnit});
  std::map<std::size_t, int> failures;
  for (int t = 0; t < 1000; ++t) {
    unit.Advance(seconds(t));
    int failing = 0;
    for (const auto& [address, word] : kChannels) {
      if (unit.Ram()[address] == 0) continue;
      ASSERT_EQ(unit.Ram()[address], 1);
      ++failing;
      ++failures[address];
    }
    ASSERT_LE(failing, 1);
    if (t < 96) {
      ASSERT_EQ(failing, 0) << t;
    }
  }
  EXPECT_EQ(failures.size(), 5U);
  for (const auto& [address, count] : failures) EXPECT_EQ(count, 8) << address;
}

TEST(Platform9WithoutSecondTemperatureAndWeight, ShowsThemAsAbsent) {
  VirtualSensor unit({.part = kUnit, .variant = 5});
  for (int t = 0; t < 1000; ++t) {
    unit.Advance(seconds(t));
    ASSERT_EQ(WordAt(unit.Ram(), kTemperature2), kAbsent);
    ASSERT_EQ(WordAt(unit.Ram(), kWeight), kAbsent);
    for (const std::size_t address : {265U, 267U, 279U, 285U}) ASSERT_EQ(unit.Ram()[address], 0) << address;
  }
  for (const std::size_t list : {4401U, 4409U}) {
    for (const std::uint8_t shown : Peek(unit.Eeprom(), list, 4)) {
      EXPECT_THAT(shown, testing::AnyOf(4, 5, 8));
    }
  }
}

TEST(Platform9WithoutSecondTemperatureAndWeight, HasNoTankToCalibrate) {
  Host host({.part = kUnit, .variant = 5});
  host.Exchange(LongFrame(48 + 2, 304, {0, 1}));
  host.Pass(seconds(5));
  EXPECT_THAT(host.Exchange(LongFrame(128 + 48 + 2, 304)), ElementsAre(6, 0, 100, 106));
}

TEST(Platform9WithAllChannels, ShowsNoneAsAbsent) {
  for (const int variant : {1, 3, 6, 7}) {
    VirtualSensor unit({.part = kUnit, .variant = variant});
    // A table that would put temperature 2 at just what stands for absent.
    for (std::size_t i = 0; i < 16; ++i) SetWord(unit.Eeprom(), 4704 + 2 * i, kAbsent);
    unit.Advance(seconds(0));
    EXPECT_NE(WordAt(unit.Ram(), kTemperature2), kAbsent);
    EXPECT_NE(WordAt(unit.Ram(), kWeight), kAbsent);
  }
}

// A host that calibrates temperature 2 adds its error to all words of the table.
TEST(Platform9Table, MovesTemperature2) {
  VirtualSensor unit({.part = kUnit});
  const int before = SignedAt(unit.Ram(), kTemperature2);
  for (const int error : {150, -430}) {
    for (std::size_t i = 0; i < 16; ++i) {
      const int entry = -2000 + 500 * static_cast<int>(i) + error;
      SetWord(unit.Eeprom(), 4704 + 2 * i, entry < 0 ? entry + 65536 : entry);
    }
    unit.Advance(seconds(0));
    EXPECT_NEAR(SignedAt(unit.Ram(), kTemperature2), before + error, 1);
  }
}

TEST(WideFrame, ReadsBeyond255) {
  Host host({.part = kUnit});
  host.sensor.Ram()[383] = 133;
  EXPECT_THAT(host.Exchange({177, 1, 127, 49}), ElementsAre(6, 133, 139));
}

TEST(WideFrame, ReadsAnyFourBytesOfRam) {
  Host host({.part = kUnit});
  for (std::size_t i = 0; i < 7168; ++i) host.sensor.Ram()[i] = static_cast<std::uint8_t>(i * 7 + 1);
  for (const std::size_t count : {1U, 2U, 3U, 4U}) {
    for (const std::size_t address : {0U, 100U, 126U, 127U, 128U, 254U, 255U, 256U, 508U, 510U, 7164U}) {
      ByteList expected{6};
      for (std::size_t i = 0; i < count; ++i) {
        expected.push_back(static_cast<std::uint8_t>((address + i) * 7 + 1));
      }
      EXPECT_EQ(host.Exchange(LongFrame(176 + static_cast<int>(count), address)), Summed(expected))
          << address << ' ' << count;
    }
  }
}

TEST(WideFrame, WritesWithoutPages) {
  Host host({.part = kUnit});
  EXPECT_THAT(host.Exchange({52, 1, 14, 1, 2, 3, 4, 77}), ElementsAre(6));
  EXPECT_THAT(Peek(host.sensor.Ram(), 270, 4), ElementsAre(1, 2, 3, 4));
  EXPECT_THAT(host.Exchange({51, 0, 254, 9, 8, 7, 73}), ElementsAre(6));
  EXPECT_THAT(Peek(host.sensor.Ram(), 254, 3), ElementsAre(9, 8, 7));
}

TEST(WideFrame, DoesNotGoPastTheEnd) {
  Host host({.part = kUnit});
  EXPECT_THAT(host.Exchange(LongFrame(177, 7167)), testing::SizeIs(3));
  EXPECT_THAT(host.Exchange(LongFrame(177, 7168)), IsEmpty());
  EXPECT_THAT(host.Exchange(LongFrame(180, 7165)), IsEmpty());
  EXPECT_THAT(host.Exchange(LongFrame(50, 7167, {1, 2})), IsEmpty());
  EXPECT_THAT(host.Exchange(LongFrame(177, 65535)), IsEmpty());
  EXPECT_EQ(host.sensor.Count().refused, 4);
}

TEST(WideFrame, HasAtMostFourBytes) {
  Host host({.part = kUnit});
  for (const int count : {5, 6, 7}) EXPECT_THAT(host.Exchange(LongFrame(176 + count, 256)), IsEmpty());
  EXPECT_THAT(host.Exchange(LongFrame(48 + 5, 300, {1, 2, 3, 4, 5})), IsEmpty());
  EXPECT_EQ(host.sensor.Count().refused, 4);
  EXPECT_THAT(Peek(host.sensor.Ram(), 300, 5), ElementsAre(0, 0, 0, 0, 0));
}

TEST(WideFrame, WithAWrongChecksumGetsNoReply) {
  Host host({.part = kUnit});
  EXPECT_THAT(host.Exchange({177, 1, 127, 50}), IsEmpty());
  EXPECT_EQ(host.sensor.Count().wrong_checksums, 1);
}

TEST(WideFrame, IsUnknownToOtherPlatforms) {
  for (const int part : {231, 217, 215, 50}) {
    Host host({.part = part});
    EXPECT_THAT(host.Exchange({177, 1, 178}), IsEmpty());
    EXPECT_EQ(host.sensor.Count().refused, 1) << part;
  }
}

TEST(Platform9Frames, ReachTheLowerRamInTheShortFormToo) {
  Host host({.part = kUnit});
  EXPECT_THAT(host.Exchange({129, 65, 194}), ElementsAre(6, 154, 160));
  host.sensor.Ram()[255] = 9;
  EXPECT_THAT(host.Exchange({193, 127, 64}), ElementsAre(6, 9, 15));
  EXPECT_THAT(host.Exchange({66, 127, 1, 2, 196}), IsEmpty());
}

TEST(Platform9Frames, ReachAllOfTheEeprom) {
  Host host({.part = kUnit});
  EXPECT_THAT(host.Exchange({137, 16, 28, 181}), ElementsAre(6, 117, 123));
  host.sensor.Eeprom()[8191] = 77;
  EXPECT_THAT(host.Exchange(LongFrame(137, 8191)), ElementsAre(6, 77, 83));
  EXPECT_THAT(host.Exchange(LongFrame(137, 8192)), IsEmpty());
  EXPECT_THAT(host.Exchange(LongFrame(138, 8191)), IsEmpty());
}

TEST(Platform9Frames, WriteTheEepromUnlockedByPages) {
  Host host({.part = kUnit});
  EXPECT_FALSE(host.sensor.Locked());
  EXPECT_THAT(host.Exchange(LongFrame(12, 7006, {1, 2, 3, 4})), ElementsAre(6));
  // 7006 is the last but one of its page, which begins at 6992.
  EXPECT_THAT(Peek(host.sensor.Eeprom(), 7006, 4), ElementsAre(1, 2, 0, 0));
  EXPECT_THAT(Peek(host.sensor.Eeprom(), 6992, 3), ElementsAre(3, 4, 0));
}

TEST(Platform9Frames, KnowNoCommands) {
  Host host({.part = kUnit});
  const std::vector<ByteList> commands{{32, 0, 32},   {161, 0, 161},  {16, 0, 16},   {147, 0, 147},
                                       {145, 0, 145}, {153, 173, 70}, {185, 1, 186}, {169, 171, 84}};
  for (const ByteList& command : commands) {
    EXPECT_THAT(host.Exchange(command), IsEmpty()) << testing::PrintToString(command);
  }
  EXPECT_EQ(host.sensor.Count().refused, 8);
  EXPECT_EQ(host.sensor.Count().saves, 0);
  // Without commands this is a read like any other.
  EXPECT_THAT(host.Exchange({197, 55, 252}), ElementsAre(6, 0, 0, 0, 0, 0, 6));
}

TEST(Platform9Id, CountsFromTheNextStart) {
  Host host({.part = kUnit, .id = 3});
  EXPECT_THAT(host.Exchange(LongFrame(9, 4160, {7})), ElementsAre(6));
  EXPECT_THAT(host.Send({231}), IsEmpty());
  EXPECT_THAT(host.Send({227}), ElementsAre(223));
  Host next({.part = kUnit});
  ASSERT_TRUE(next.sensor.Restore(host.sensor.Image()));
  EXPECT_THAT(next.Send({231}), ElementsAre(223));
  EXPECT_FALSE(next.sensor.Locked());
}

/// A unit whose tank is being calibrated.
class TankTest : public testing::Test {
 protected:
  void Ask(int command) { EXPECT_THAT(host.Exchange(LongFrame(50, 304, {0, command})), ElementsAre(6)); }

  int Result() {
    const ByteList reply = host.Exchange(LongFrame(178, 304));
    return reply.size() == 4 ? reply[1] * 256 + reply[2] : -1;
  }

  int Weight() {
    host.sensor.Advance(host.now);
    return SignedAt(host.sensor.Ram(), kWeight);
  }

  Host host{{.part = kUnit}};
};

TEST_F(TankTest, TakesASecond) {
  host.Pass(seconds(20));
  Ask(1);
  EXPECT_EQ(Result(), 1);
  host.Pass(milliseconds(999));
  EXPECT_EQ(Result(), 1);
  host.Pass(milliseconds(1));
  EXPECT_EQ(Result(), 0);
}

TEST_F(TankTest, IsDoneWhenTheHostLooksAfterFiveSeconds) {
  Ask(2);
  host.Pass(seconds(5));
  EXPECT_EQ(Result(), 0);
  Ask(1);
  host.Pass(seconds(5));
  EXPECT_EQ(Result(), 0);
}

// The weight of the moment counts, a second after the command, whenever somebody looks.
TEST_F(TankTest, EmptyMakesThisWeightZeroAndMovesAllOthersAlike) {
  host.Pass(seconds(30));
  Ask(1);
  host.Pass(seconds(1));
  Result();
  EXPECT_NEAR(Weight(), 0, 1);
  host.now = seconds(120);
  EXPECT_NEAR(Weight(), 4500 * 31 / 54, 2);  // full again: as much more as had been used in 31 s
}

TEST_F(TankTest, FullMakesThisWeightFiftyKilograms) {
  host.Pass(seconds(26));
  Ask(2);
  host.Pass(seconds(5));
  Result();
  host.now = seconds(60 + 27);
  EXPECT_NEAR(Weight(), 5000, 2);
  host.now = seconds(120);
  EXPECT_NEAR(Weight(), 5000 * 50 / (50 - 45 * 27 / 54.0), 3);
}

TEST_F(TankTest, FullOnAnEmptyTankFailsAndChangesNothing) {
  host.Pass(seconds(10));
  Ask(1);
  host.Pass(seconds(20));
  EXPECT_EQ(Result(), 0);
  const ByteList before = Peek(host.sensor.Eeprom(), 4736, 4);
  Ask(2);
  host.Pass(seconds(5));
  EXPECT_EQ(Result(), 100);
  EXPECT_EQ(Peek(host.sensor.Eeprom(), 4736, 4), before);
}

TEST_F(TankTest, UnknownCommandStaysAsItIs) {
  Ask(3);
  host.Pass(seconds(5));
  EXPECT_EQ(Result(), 3);
}

TEST_F(TankTest, AnotherCommandBeginsAnew) {
  host.Pass(seconds(20));
  Ask(1);
  host.Pass(milliseconds(600));
  Ask(0);
  Ask(1);
  host.Pass(milliseconds(600));
  EXPECT_EQ(Result(), 1);
  host.Pass(milliseconds(400));
  EXPECT_EQ(Result(), 0);
}

TEST_F(TankTest, CommandThatWasPokedIsCarriedOutToo) {
  host.sensor.Ram()[305] = 1;
  host.sensor.Advance(seconds(1));
  host.sensor.Advance(seconds(2));
  EXPECT_EQ(host.sensor.Ram()[305], 0);
}

TEST(Platform9Registers, GatherEachAlarmBit) {
  const std::vector<std::array<int, 4>> all{{285, 2, 1, 1},  {285, 8, 1, 2},   {277, 4, 2, 1},
                                            {277, 1, 2, 2},  {278, 1, 2, 4},   {276, 1, 2, 32},
                                            {276, 8, 2, 64}, {279, 1, 2, 128}, {279, 8, 2, 256}};
  for (const auto& [address, byte, number, word] : all) {
    VirtualSensor unit({.part = kUnit});
    for (const std::size_t regulator : kRegulators) unit.Ram()[regulator] = 0;
    unit.Ram()[static_cast<std::size_t>(address)] = static_cast<std::uint8_t>(byte);
    EXPECT_EQ(InputRegister(unit.Ram(), unit.Eeprom(), number), word) << address << ' ' << byte;
    EXPECT_EQ(InputRegister(unit.Ram(), unit.Eeprom(), 3 - number), 0) << address << ' ' << byte;
  }
}

TEST(Platform9Registers, GatherEachStatusNibble) {
  const std::vector<std::array<int, 3>> all{
      {261, 10, 13}, {260, 10, 13 * 16}, {265, 10, 13 * 4096}, {267, 15, 13}, {264, 15, 13 * 256}};
  for (const auto& [address, number, word] : all) {
    VirtualSensor unit({.part = kUnit});
    unit.Ram()[static_cast<std::size_t>(address)] = 13;
    EXPECT_EQ(InputRegister(unit.Ram(), unit.Eeprom(), number), word) << address;
    EXPECT_EQ(InputRegister(unit.Ram(), unit.Eeprom(), 25 - number), 0) << address;
  }
}

// Whatever comes in, the unit stays within its memories (the sanitizers look) and can be asked again.
TEST(Platform9Frames, OfAnyBytesLeaveAUnitThatAnswers) {
  Host host({.part = kUnit});
  std::mt19937 random(1);
  for (int i = 0; i < 20000; ++i) {
    ByteList frame(1 + random() % 8);
    for (std::uint8_t& byte : frame) byte = static_cast<std::uint8_t>(random());
    if (frame.size() > 1 && i % 2 == 0) frame[1] = static_cast<std::uint8_t>(frame[1] % 33);
    host.Exchange(Summed(frame));
    if (i % 100 == 0) host.sensor.Advance(host.now);
    host.Pass(milliseconds(60));
  }
  EXPECT_GT(host.sensor.Count().frames, 1000);
  EXPECT_THAT(host.Send({254}), ElementsAre(223));
}

}  // namespace
}  // namespace brelant::bench
