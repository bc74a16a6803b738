// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <array>
#include <cmath>
#include <initializer_list>
#include <stdexcept>

#include "bench/central_unit.h"
#include "bench/platforms.h"

namespace brelant::bench {
namespace {

using central::ChannelKindAt;
using central::ChannelStatusAt;
using central::FirstLevelAt;
using central::kAbsent;
using central::kAverage;
using central::kAverageBit;
using central::kGas;
using central::kGasMainBit;
using central::kGasPreBit;
using central::kHighBit;
using central::kLowBit;
using central::kTemperature1;
using central::kTemperature2;
using central::kWatchAverage;
using central::kWatchGas;
using central::kWatchTemperature1;
using central::kWatchTemperature2;
using central::kWatchWeight;
using central::kWeight;
using central::kWeightMainBit;
using central::kWeightPreBit;
using central::LiveAt;
using central::RegulatorStatusAt;
using central::SecondLevelAt;
using central::SignedWord;
using central::WeightLevelAt;

constexpr std::size_t kDisplay = 4401;
constexpr std::size_t kDisplaySize = 8;
constexpr std::size_t kAlarmOutput = 4602;
constexpr std::size_t kBackgroundPointer = 7868;
constexpr std::size_t kBackgroundBlock = 7900;
constexpr int kHighWindow = 57344;  // the pointer counts from there

constexpr int kModelOfTwo = 5;
constexpr std::uint8_t kKindCelsiusHundredths = 1 << 2 | 2;
constexpr std::uint8_t kKindPercentHundredths = 5 << 2 | 2;
constexpr std::uint8_t kKindKilogramHundredths = 6 << 2 | 2;

constexpr std::array kChannels{kGas, kTemperature1, kTemperature2, kWeight, kAverage};

int Live(const Memory& memory, std::size_t channel) {
  return SignedWord(memory.ram, LiveAt(channel));
}

int Level(const Memory& memory, std::size_t address) {
  return SignedWord(memory.eeprom, address);
}

void PutLevels(Bytes eeprom, std::size_t regulator, int first, int second) {
  PutWord(eeprom, FirstLevelAt(regulator), first);
  PutWord(eeprom, SecondLevelAt(regulator), second);
}

void FillLevels(Bytes eeprom) {
  PutLevels(eeprom, kWatchTemperature1, 2300, 2100);  // high, low
  PutLevels(eeprom, kWatchGas, 250, 150);             // main, pre
  PutLevels(eeprom, kWatchAverage, 180, 180);
  PutLevels(eeprom, kWatchTemperature2, 600, 800);  // low, high
  PutWord(eeprom, WeightLevelAt(1), 1550);
  PutWord(eeprom, WeightLevelAt(2), 850);
  PutWord(eeprom, WeightLevelAt(3), 50);
}

void PutDisplay(Bytes eeprom, std::size_t list, std::initializer_list<std::size_t> channels) {
  std::ranges::copy(channels, eeprom.subspan(kDisplay + kDisplaySize * list).begin());
}

void FillDisplays(Bytes eeprom, bool all) {
  if (all) {
    PutDisplay(eeprom, 0, {kGas, kTemperature1, kAverage, kWeight});
    PutDisplay(eeprom, 1, {kTemperature1, kGas, kTemperature2, kWeight});
  } else {
    PutDisplay(eeprom, 0, {kGas, kTemperature1, kAverage, kGas});
    PutDisplay(eeprom, 1, {kTemperature1, kGas, kAverage, kGas});
  }
}

void FillLogger(Bytes eeprom) {
  PutWord(eeprom, central::LoggerChannelAt(0), 0x5150 | static_cast<int>(kGas));
  PutWord(eeprom, central::LoggerChannelAt(1), 0x5150 | static_cast<int>(kTemperature1));
  PutWord(eeprom, central::kLoggerTiming, 0xC105);  // 576 s; the low byte is the unit's own
  PutWord(eeprom, central::kLoggerSize, 1500);
}

void FillBackground(Bytes eeprom) {
  PutWord(eeprom, kBackgroundPointer, kHighWindow + static_cast<int>(kBackgroundBlock));
  PutWord(eeprom, kBackgroundBlock + 4, 192);   // periods: 8 days
  PutWord(eeprom, kBackgroundBlock + 8, 1800);  // a period, in units of 2 s
}

// Every 100 s one channel after the other has no reading for 4 s.
void MoveStatus(Memory& memory, double seconds) {
  constexpr double kCycle = 100;
  constexpr double kGood = 96;
  const auto turn = static_cast<std::size_t>(seconds / kCycle) % kChannels.size();
  const bool failing = std::fmod(seconds, kCycle) >= kGood;
  for (const std::size_t channel : kChannels) {
    const bool absent = Word(memory.ram, LiveAt(channel)) == kAbsent;
    memory.ram[ChannelStatusAt(channel)] = failing && !absent && channel == kChannels[turn] ? 1 : 0;
  }
}

std::uint8_t Bits(bool first, int first_bit, bool second = false, int second_bit = 0) {
  return static_cast<std::uint8_t>((first ? 1 << first_bit : 0) | (second ? 1 << second_bit : 0));
}

void WatchWeight(Memory& memory) {
  const int value = Live(memory, kWeight);
  const int on_top = Level(memory, WeightLevelAt(3));
  const bool there = value != kAbsent;
  const bool pre = there && value <= Level(memory, WeightLevelAt(1)) - on_top;
  const bool main = there && value <= Level(memory, WeightLevelAt(2)) - on_top;
  memory.ram[RegulatorStatusAt(kWatchWeight)] = Bits(pre, kWeightPreBit, main, kWeightMainBit);
}

void WatchTemperature(Memory& memory, std::size_t channel, std::size_t regulator, std::size_t low_at,
                      std::size_t high_at) {
  const int value = Live(memory, channel);
  const bool there = value != kAbsent;
  const bool low = there && value <= Level(memory, low_at);
  const bool high = there && value >= Level(memory, high_at);
  memory.ram[RegulatorStatusAt(regulator)] = Bits(low, kLowBit, high, kHighBit);
}

void WatchGas(Memory& memory) {
  const int gas = Live(memory, kGas);
  const bool main = gas >= Level(memory, FirstLevelAt(kWatchGas));
  const bool pre = gas >= Level(memory, SecondLevelAt(kWatchGas));
  const bool average = Live(memory, kAverage) >= Level(memory, FirstLevelAt(kWatchAverage));
  memory.ram[RegulatorStatusAt(kWatchGas)] = Bits(main, kGasMainBit, pre, kGasPreBit);
  memory.ram[RegulatorStatusAt(kWatchAverage)] = Bits(average, kAverageBit);
}

void MoveState(Memory& memory) {
  const auto is_set = [&](std::size_t regulator, int bit) {
    return memory.ram[RegulatorStatusAt(regulator)] >> bit & 1;
  };
  const int low = is_set(kWatchTemperature1, kLowBit) | is_set(kWatchTemperature2, kLowBit);
  const int high = is_set(kWatchTemperature1, kHighBit) | is_set(kWatchTemperature2, kHighBit);
  const int alarms = is_set(kWatchGas, kGasPreBit) | is_set(kWatchGas, kGasMainBit) << 1 |
                     is_set(kWatchAverage, kAverageBit) << 2 | low << 3 | high << 4;
  central::PutAlarms(memory, alarms);
}

}  // namespace

void FillPlatform9(const Product& product, Memory& memory) {
  constexpr std::array kModels{1, 3, 5, 6, 7};
  if (std::ranges::find(kModels, product.variant) == kModels.end()) {
    throw std::invalid_argument("Platform 9 has the variants 1, 3, 5, 6 and 7.");
  }
  Bytes eeprom = memory.eeprom;
  central::FillCommon(product, memory);
  FillLevels(eeprom);
  FillDisplays(eeprom, product.variant != kModelOfTwo);
  FillLogger(eeprom);
  FillBackground(eeprom);
  for (const std::size_t relay_1 : {central::kRelays, central::kRelays + 2}) PutWord(eeprom, relay_1, 0x8690);
  PutWord(eeprom, central::kRelays + 4, 0x5E00);
  PutWord(eeprom, kAlarmOutput, 37302);  // the TWA
  for (std::size_t i = 0; i < central::kProbeEntries; ++i) {
    const int entry = central::kFirstProbeEntry + central::kProbeStep * static_cast<int>(i);
    PutWord(eeprom, central::kProbeTable + 2 * i, entry);
  }
  for (const std::size_t channel : {kTemperature1, kTemperature2}) {
    eeprom[ChannelKindAt(channel)] = kKindCelsiusHundredths;
  }
  for (const std::size_t channel : {kGas, kAverage}) {
    eeprom[ChannelKindAt(channel)] = kKindPercentHundredths;
  }
  eeprom[ChannelKindAt(kWeight)] = kKindKilogramHundredths;
}

void MovePlatform9(const Product& product, Memory& memory, const Moment& moment) {
  central::MoveChannels(product, memory, moment.seconds);
  MoveStatus(memory, moment.seconds);
  WatchTemperature(memory, kTemperature1, kWatchTemperature1, SecondLevelAt(kWatchTemperature1),
                   FirstLevelAt(kWatchTemperature1));
  WatchTemperature(memory, kTemperature2, kWatchTemperature2, FirstLevelAt(kWatchTemperature2),
                   SecondLevelAt(kWatchTemperature2));
  WatchGas(memory);
  WatchWeight(memory);
  MoveState(memory);
}

}  // namespace brelant::bench
