// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/platform_9.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <initializer_list>
#include <stdexcept>

#include "bench/platforms.h"

namespace brelant::bench {
namespace {

using platform9::ChannelKindAt;
using platform9::ChannelStatusAt;
using platform9::FirstLevelAt;
using platform9::kAverage;
using platform9::kAverageBit;
using platform9::kGas;
using platform9::kGasMainBit;
using platform9::kGasPreBit;
using platform9::kHighBit;
using platform9::kLowBit;
using platform9::kStateByte;
using platform9::kTankCommand;
using platform9::kTemperature1;
using platform9::kTemperature2;
using platform9::kWatchAverage;
using platform9::kWatchGas;
using platform9::kWatchTemperature1;
using platform9::kWatchTemperature2;
using platform9::kWatchWeight;
using platform9::kWeight;
using platform9::kWeightMainBit;
using platform9::kWeightPreBit;
using platform9::LiveAt;
using platform9::RegulatorStatusAt;
using platform9::SecondLevelAt;
using platform9::WeightLevelAt;

constexpr std::size_t kIdentification = 4124;
constexpr std::size_t kModel = 4125;
constexpr std::size_t kDisplay = 4401;
constexpr std::size_t kDisplaySize = 8;
constexpr std::size_t kRelays = 4434;
constexpr std::size_t kLoggerTiming = 4444;
constexpr std::size_t kLoggers = 4564;
constexpr std::size_t kLoggerStride = 4;
constexpr std::size_t kAlarmOutput = 4602;
constexpr std::size_t kLoggerSize = 4640;
constexpr std::size_t kProbeTable = 4704;
constexpr std::size_t kProbeEntries = 16;
constexpr std::size_t kTankEmpty = 4736;
constexpr std::size_t kTankFull = 4738;
constexpr std::size_t kBackgroundPointer = 7868;
constexpr std::size_t kBackgroundBlock = 7900;
constexpr int kHighWindow = 57344;  // the pointer counts from there
constexpr std::size_t kSerial = 8166;
constexpr int kSerialNumber = 1042;

constexpr std::uint8_t kUsualIdentification = 117;
constexpr std::uint8_t kModelOfTwo = 5;
constexpr int kAbsent = 9999;
constexpr std::uint8_t kKindCelsiusHundredths = 1 << 2 | 2;
constexpr std::uint8_t kKindPercentHundredths = 5 << 2 | 2;
constexpr std::uint8_t kKindKilogramHundredths = 6 << 2 | 2;
constexpr std::uint8_t kTemperatureAlarmOn = 128;
constexpr int kStateAlarms = 31;

constexpr int kPpmPerUnit = 100;  // hundredths of a percent
constexpr int kCellarToColdRoom = -15;
constexpr double kColdRoomLag = 20;
// The mean of a day's work would not move while one looks.
constexpr double kAverageSpan = 40;

constexpr int kFirstProbeEntry = -2000;
constexpr int kProbeStep = 500;

constexpr int kFullTank = 5000;  // hundredths of a kilogram
constexpr int kSignalWhenEmpty = 2000;
constexpr int kSignalWhenFull = 22000;
constexpr int kLeastTankSpan = 100;

constexpr int kCalibrateEmpty = 1;
constexpr int kCalibrateFull = 2;
constexpr int kDone = 0;
constexpr int kFailed = 100;
constexpr double kCalibrationTime = 1;

constexpr std::array kChannels{kGas, kTemperature1, kTemperature2, kWeight, kAverage};

int Signed(int word) {
  return word < 32768 ? word : word - 65536;
}

bool HasAll(const Memory& memory) {
  return memory.eeprom[kModel] != kModelOfTwo;
}

// A channel that is there never reads as one that is not.
void PutLive(Memory& memory, std::size_t channel, double raw) {
  const double limit = kAbsent - 1;
  PutWord(memory.ram, LiveAt(channel), static_cast<int>(std::lround(std::clamp(raw, -limit, limit))));
}

int Live(const Memory& memory, std::size_t channel) {
  return Signed(Word(memory.ram, LiveAt(channel)));
}

int Level(const Memory& memory, std::size_t address) {
  return Signed(Word(memory.eeprom, address));
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
  PutWord(eeprom, kLoggers, 0x5150 | static_cast<int>(kGas));
  PutWord(eeprom, kLoggers + kLoggerStride, 0x5150 | static_cast<int>(kTemperature1));
  PutWord(eeprom, kLoggerTiming, 0xC105);  // 576 s; the low byte is the unit's own
  PutWord(eeprom, kLoggerSize, 4096);
}

void FillBackground(Bytes eeprom) {
  PutWord(eeprom, kBackgroundPointer, kHighWindow + static_cast<int>(kBackgroundBlock));
  PutWord(eeprom, kBackgroundBlock + 4, 192);   // periods: 8 days
  PutWord(eeprom, kBackgroundBlock + 8, 1800);  // a period, in units of 2 s
}

void FillIdentity(const Product& product, Bytes eeprom) {
  eeprom[kIdentification] = kUsualIdentification;
  eeprom[kModel] = static_cast<std::uint8_t>(product.variant);
  eeprom[kSerial] = kSerialNumber & 255;  // least significant byte first
  eeprom[kSerial + 1] = kSerialNumber >> 8;
}

// What the probe of temperature 2 shows, by the unit's own table. The probe reads at entry i what the table
// of a new unit has there.
double ThroughProbe(const Memory& memory, double celsius) {
  const double last = kProbeEntries - 1;
  const double place = std::clamp((celsius * 100 - kFirstProbeEntry) / kProbeStep, 0.0, last);
  const std::size_t i = std::min(static_cast<std::size_t>(place), kProbeEntries - 2);
  const int below = Level(memory, kProbeTable + 2 * i);
  const int above = Level(memory, kProbeTable + 2 * i + 2);
  return below + (place - static_cast<double>(i)) * (above - below);
}

// From full down to a tenth in 54 s, then 6 s of filling, a minute in all.
double TankKilograms(double seconds) {
  constexpr double kEmptying = 54;
  constexpr double kCycle = 60;
  constexpr double kUsed = 45;
  const double t = std::fmod(seconds, kCycle);
  return 50 - kUsed * (t < kEmptying ? t / kEmptying : (kCycle - t) / (kCycle - kEmptying));
}

int TankSignal(double seconds) {
  constexpr double kPerKilogram = (kSignalWhenFull - kSignalWhenEmpty) / 50.0;
  return kSignalWhenEmpty + static_cast<int>(std::lround(TankKilograms(seconds) * kPerKilogram));
}

double TankRaw(const Memory& memory, double seconds) {
  const int empty = Word(memory.eeprom, kTankEmpty);
  const int span = std::max(1, Word(memory.eeprom, kTankFull) - empty);
  return static_cast<double>(TankSignal(seconds) - empty) * kFullTank / span;
}

void MoveChannels(Memory& memory, double seconds) {
  PutLive(memory, kTemperature1, kTemperature.At(seconds) * 100);
  PutLive(memory, kGas, kCellarGas.At(seconds) / kPpmPerUnit);
  PutLive(memory, kAverage, kCellarGas.MeanOver(seconds - kAverageSpan, seconds) / kPpmPerUnit);
  if (HasAll(memory)) {
    const double celsius = kTemperature.At(seconds + kColdRoomLag) + kCellarToColdRoom;
    PutLive(memory, kTemperature2, ThroughProbe(memory, celsius));
    PutLive(memory, kWeight, TankRaw(memory, seconds));
  } else {
    PutWord(memory.ram, LiveAt(kTemperature2), kAbsent);
    PutWord(memory.ram, LiveAt(kWeight), kAbsent);
  }
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
  std::uint8_t& state = memory.ram[kStateByte];
  state = static_cast<std::uint8_t>((state & ~kStateAlarms) | alarms);
}

// Tares the scale, or stretches it.
int Calibrate(Memory& memory, int command, int signal) {
  if (!HasAll(memory)) return kFailed;
  const int empty = Word(memory.eeprom, kTankEmpty);
  const int full = Word(memory.eeprom, kTankFull);
  const bool tare = command == kCalibrateEmpty;
  const int new_empty = tare ? signal : empty;
  const int new_full = tare ? full - empty + signal : signal;
  if (new_full - new_empty < kLeastTankSpan || new_full > 65535) return kFailed;
  PutWord(memory.eeprom, kTankEmpty, new_empty);
  PutWord(memory.eeprom, kTankFull, new_full);
  return kDone;
}

}  // namespace

void FillPlatform9(const Product& product, Memory& memory) {
  constexpr std::array kModels{1, 3, 5, 6, 7};
  if (std::ranges::find(kModels, product.variant) == kModels.end()) {
    throw std::invalid_argument("Platform 9 has the variants 1, 3, 5, 6 and 7.");
  }
  Bytes eeprom = memory.eeprom;
  FillIdentity(product, eeprom);
  FillLevels(eeprom);
  FillDisplays(eeprom, HasAll(memory));
  FillLogger(eeprom);
  FillBackground(eeprom);
  for (const std::size_t relay_1 : {kRelays, kRelays + 2}) PutWord(eeprom, relay_1, 0x8690);
  PutWord(eeprom, kRelays + 4, 0x5E00);
  PutWord(eeprom, kAlarmOutput, 37302);  // the TWA
  for (std::size_t i = 0; i < kProbeEntries; ++i) {
    PutWord(eeprom, kProbeTable + 2 * i, kFirstProbeEntry + kProbeStep * static_cast<int>(i));
  }
  PutWord(eeprom, kTankEmpty, kSignalWhenEmpty);
  PutWord(eeprom, kTankFull, kSignalWhenFull);
  for (const std::size_t channel : {kTemperature1, kTemperature2}) {
    eeprom[ChannelKindAt(channel)] = kKindCelsiusHundredths;
  }
  for (const std::size_t channel : {kGas, kAverage}) {
    eeprom[ChannelKindAt(channel)] = kKindPercentHundredths;
  }
  eeprom[ChannelKindAt(kWeight)] = kKindKilogramHundredths;
  memory.ram[kStateByte] = kTemperatureAlarmOn;
}

void MovePlatform9(const Product&, Memory& memory, const Moment& moment) {
  MoveChannels(memory, moment.seconds);
  MoveStatus(memory, moment.seconds);
  WatchTemperature(memory, kTemperature1, kWatchTemperature1, SecondLevelAt(kWatchTemperature1),
                   FirstLevelAt(kWatchTemperature1));
  WatchTemperature(memory, kTemperature2, kWatchTemperature2, FirstLevelAt(kWatchTemperature2),
                   SecondLevelAt(kWatchTemperature2));
  WatchGas(memory);
  WatchWeight(memory);
  MoveState(memory);
}

void TankCalibration::Mind(Memory& memory, double seconds) {
  const int command = Word(memory.ram, kTankCommand);
  if (command != kCalibrateEmpty && command != kCalibrateFull) {
    asked_.reset();
    return;
  }
  if (!asked_) asked_ = seconds;
  const double due = *asked_ + kCalibrationTime;
  if (seconds < due) return;
  asked_.reset();
  PutWord(memory.ram, kTankCommand, Calibrate(memory, command, TankSignal(due)));
}

}  // namespace brelant::bench
