// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <array>
#include <stdexcept>

#include "bench/central_unit.h"
#include "bench/platforms.h"

namespace brelant::bench {
namespace {

using central::ChannelKindAt;
using central::FirstLevelAt;
using central::kAverage;
using central::kGas;
using central::kTemperature1;
using central::SecondLevelAt;

constexpr std::size_t kDisplay = 4401;
constexpr std::size_t kRelay1 = 4436;
constexpr std::size_t kRelay2 = 4438;
constexpr std::size_t kAlarmOutput = 4580;

constexpr std::uint8_t kKindCelsiusHundredths = 1 << 2 | 2;
// Hundredths and a further divisor of 10, which reads alike in the coding of either platform.
constexpr std::uint8_t kKindPercentThousandths = 1 << 5 | 5 << 2 | 2;
constexpr std::uint8_t kKindPpm = 4 << 2;

/// An alarm, in the order of the state byte's bits.
struct Watch {
  std::size_t regulator;
  std::size_t channel;
  bool low;
  int level;  ///< of a new unit
};

constexpr std::array kWatches{
    Watch{5, kGas, false, 1500},          Watch{7, kGas, false, 2500},
    Watch{6, kAverage, false, 18000},     Watch{4, kTemperature1, true, 2100},
    Watch{8, kTemperature1, false, 2300},
};

bool InAlarm(const Memory& memory, const Watch& watch) {
  const int value = central::SignedWord(memory.ram, central::LiveAt(watch.channel));
  const int level = central::SignedWord(memory.eeprom, FirstLevelAt(watch.regulator));
  return watch.low ? value <= level : value >= level;
}

}  // namespace

void FillPlatform8(const Product& product, Memory& memory) {
  if (product.variant != 1 && product.variant != 2) {
    throw std::invalid_argument("Platform 8 has the variants 1 and 2.");
  }
  central::FillCommon(product, memory);
  Bytes eeprom = memory.eeprom;
  for (const Watch& watch : kWatches) {
    PutWord(eeprom, FirstLevelAt(watch.regulator), watch.level);
    PutWord(eeprom, SecondLevelAt(watch.regulator), watch.level);
  }
  constexpr std::array kShown{kGas, kTemperature1, kAverage, kGas};
  std::ranges::copy(kShown, eeprom.subspan(kDisplay).begin());
  // The low nibble is always 9.
  PutWord(eeprom, kRelay1, 0x0759);
  PutWord(eeprom, kRelay2, 0x8469);
  PutWord(eeprom, kAlarmOutput, 37302);  // the TWA
  eeprom[ChannelKindAt(kTemperature1)] = kKindCelsiusHundredths;
  eeprom[ChannelKindAt(kGas)] = kKindPercentThousandths;
  eeprom[ChannelKindAt(kAverage)] = kKindPpm;
}

void MovePlatform8(const Product& product, Memory& memory, const Moment& moment) {
  central::MoveChannels(product, memory, moment.seconds);
  int alarms = 0;
  for (std::size_t bit = 0; bit < kWatches.size(); ++bit) {
    if (InAlarm(memory, kWatches[bit])) alarms |= 1 << bit;
  }
  central::PutAlarms(memory, alarms);
}

}  // namespace brelant::bench
