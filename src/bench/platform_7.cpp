// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <cmath>
#include <cstdint>

#include "bench/gas_path.h"
#include "bench/platforms.h"

namespace brelant::bench {
namespace {

// docs/memory-maps.md names the fields.
constexpr std::size_t kOxygenSpan = 0;
constexpr std::size_t kZeroWord = 14;
constexpr std::size_t kDisplay = 385;
constexpr std::size_t kTables = 512;
constexpr std::size_t kTableSize = 34;
constexpr std::size_t kOxygenZero = 760;
constexpr std::size_t kSpread = 762;
constexpr std::size_t kChannelKinds = 792;
constexpr std::size_t kAlarmRows = 834;
constexpr std::size_t kAlarmRowSize = 6;
constexpr std::size_t kAlarmChannels = 925;
constexpr std::size_t kBackground = 976;
constexpr std::size_t kSerial = 998;
constexpr std::size_t kCurve = 1003;
constexpr std::size_t kVariant = 1023;
constexpr std::size_t kLive = 12;  // in RAM, as all that follow
constexpr std::size_t kOxygenSignal = 38;
constexpr std::size_t kGasSignal = 40;
constexpr std::size_t kAlarms = 210;

constexpr std::size_t kTemperatureChannel = 4;
constexpr std::size_t kGasChannel = 5;
constexpr std::size_t kOxygenChannel = 6;
constexpr std::size_t kTemperatureTable = 0;
constexpr std::size_t kGasTable = 2;
constexpr std::size_t kOxygenTable = 4;
constexpr std::size_t kBackgroundTable = 5;

constexpr std::uint8_t kKindCelsius = 1 << 2 | 2;
constexpr std::uint8_t kKindPercentThousandths = 5 << 2 | 1;
constexpr std::uint8_t kKindPercentHundredths = 5 << 2 | 2;
constexpr std::uint8_t kCurveNumberD = 3 << 4;
constexpr std::uint8_t kBelow = 128;
constexpr int kAlarmConstant = 16383;
constexpr int kFreshAirPpm = 400;
constexpr int kSerialNumber = 1042;

int SpreadOf(const Memory& memory) {
  return Word(memory.eeprom, kSpread) == kOne ? 1 : 2;
}

std::size_t TableAt(std::size_t table) {
  return kTables + kTableSize * table;
}

Table TemperatureTable() {
  return EvenTable(0, 400);
}
Table OxygenTable() {
  return EvenTable(0, 160);
}

void PutAlarmRow(Bytes eeprom, std::size_t row, std::size_t channel, int level, std::uint8_t slope) {
  const std::size_t at = kAlarmRows + kAlarmRowSize * row;
  PutWord(eeprom, at, level);
  eeprom[at + 2] = slope;
  PutWord(eeprom, at + 4, kAlarmConstant);
  eeprom[kAlarmChannels + 2 * row] = static_cast<std::uint8_t>(channel);
}

// A temperature, and an entry that a calibration has moved, may lie below zero.
int Signed(int word) {
  return static_cast<std::int16_t>(word);
}

bool InAlarm(const Memory& memory, std::size_t row) {
  const std::size_t at = kAlarmRows + kAlarmRowSize * row;
  const int level = Word(memory.eeprom, at) & 0x7FFF;
  const std::size_t channel = memory.eeprom[kAlarmChannels + 2 * row] & 15U;
  const int value = Signed(Word(memory.ram, kLive + 2 * channel));
  return (memory.eeprom[at + 2] & kBelow) != 0 ? value < level : value > level;
}

int ThroughTable(const Memory& memory, std::size_t table, double position) {
  Table entries = ReadTable(memory.eeprom, TableAt(table));
  std::ranges::transform(entries, entries.begin(), Signed);
  return static_cast<int>(std::lround(ValueAt(entries, position)));
}

void MoveGas(Memory& memory, double seconds) {
  const double units = kCellarGas.At(seconds) / kCurveD.ppm_per_unit;
  const int signal = SignalAt(kCurveD.Transmission(units) * kZeroGas);
  PutWord(memory.ram, kGasSignal, signal);
  const double position = PositionBy(Word(memory.eeprom, kZeroWord), signal, SpreadOf(memory));
  PutWord(memory.ram, kLive + 2 * kGasChannel, ThroughTable(memory, kGasTable, position));
}

void MoveOxygen(Memory& memory, double seconds) {
  const auto signal = static_cast<int>(std::lround(PositionOf(OxygenTable(), kOxygen.At(seconds) * 100)));
  PutWord(memory.ram, kOxygenSignal, signal);
  const int above_zero = std::max(0, signal - Word(memory.eeprom, kOxygenZero));
  const double position = static_cast<double>(above_zero) * Word(memory.eeprom, kOxygenSpan) / kOne;
  PutWord(memory.ram, kLive + 2 * kOxygenChannel, ThroughTable(memory, kOxygenTable, position));
}

}  // namespace

void FillPlatform7(const Product& product, Memory& memory) {
  Bytes eeprom = memory.eeprom;
  PutWord(eeprom, kOxygenSpan, kOne);
  PutWord(eeprom, kZeroWord, kNewZeroWord);
  const std::array<std::size_t, 4> shown{kTemperatureChannel, kGasChannel, kOxygenChannel, kGasChannel};
  std::ranges::copy(shown, eeprom.subspan(kDisplay).begin());
  const Table gas = GasTable(kCurveD, 0, 0);
  PutTable(eeprom, TableAt(kTemperatureTable), TemperatureTable());
  PutTable(eeprom, TableAt(kGasTable), gas);
  PutTable(eeprom, TableAt(kOxygenTable), OxygenTable());
  PutTable(eeprom, TableAt(kBackgroundTable), gas);
  PutWord(eeprom, kSpread, kOne);
  eeprom[kChannelKinds + kTemperatureChannel] = kKindCelsius;
  eeprom[kChannelKinds + kGasChannel] = kKindPercentThousandths;
  eeprom[kChannelKinds + kOxygenChannel] = kKindPercentHundredths;
  PutAlarmRow(eeprom, 0, kGasChannel, 1500, 0);
  PutAlarmRow(eeprom, 1, kGasChannel, 3000, 0);
  PutAlarmRow(eeprom, 2, kOxygenChannel, 1900, kBelow);
  const int fresh = Nearest(PositionOf(gas, kFreshAirPpm / kCurveD.ppm_per_unit));
  PutWord(eeprom, kBackground, fresh);
  PutWord(eeprom, kBackground + 2, fresh);
  // The serial number lies least significant byte first.
  eeprom[kSerial] = kSerialNumber & 255;
  eeprom[kSerial + 1] = kSerialNumber >> 8;
  eeprom[kCurve] = kCurveNumberD;
  eeprom[kVariant] = static_cast<std::uint8_t>(product.variant);
}

void MovePlatform7(const Product&, Memory& memory, const Moment& moment) {
  const double position = PositionOf(TemperatureTable(), kTemperature.At(moment.seconds) * 100);
  PutWord(memory.ram, kLive + 2 * kTemperatureChannel, ThroughTable(memory, kTemperatureTable, position));
  MoveGas(memory, moment.seconds);
  MoveOxygen(memory, moment.seconds);
  const bool pre = InAlarm(memory, 0) || InAlarm(memory, 2);
  const bool main = InAlarm(memory, 1);
  memory.ram[kAlarms] = static_cast<std::uint8_t>((pre ? 1 : 0) | (main ? 2 : 0));
}

}  // namespace brelant::bench
