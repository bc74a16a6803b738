// SPDX-License-Identifier: GPL-3.0-or-later
#include <cmath>
#include <stdexcept>

#include "bench/gas_path.h"
#include "bench/platform_6x.h"
#include "bench/platforms.h"

namespace brelant::bench {
namespace {

// docs/memory-maps.md names the fields.
constexpr std::size_t kOxygenSpan = 0;
constexpr std::size_t kCalibrationBase = 34;
constexpr std::size_t kZeroWord = 46;
constexpr std::size_t kDisplay = 50;
constexpr std::size_t kBackground = 58;
constexpr std::size_t kPreAlarm = 76;
constexpr std::size_t kMainAlarm = 78;
constexpr std::size_t kOxygenPreAlarm = 80;
constexpr std::size_t kOxygenMainAlarm = 84;
constexpr std::size_t kTemperatureCoefficient = 83;
constexpr std::size_t kLive = 12;  // in RAM, as the next two
constexpr std::size_t kOxygenSignal = 38;
constexpr std::size_t kSignal = 40;

constexpr std::size_t kTemperatureChannel = 4;
constexpr std::size_t kGasChannel = 5;
constexpr std::size_t kOxygenChannel = 6;
constexpr std::size_t kTemperatureTable = 0;
constexpr std::size_t kGasTable = 4;

constexpr int kMeasuresOxygen = 0;  // a variant; the other measures CO2 in ppm

const GasCurve& CurveOf(const Product& product) {
  return product.variant == kMeasuresOxygen ? kCurveB : kCurveC;
}

// Only one product spreads the scale: part 215 in its ppm variant.
int SpreadOf(const Product& product) {
  return product.part == 215 && product.variant != kMeasuresOxygen ? 2 : 1;
}

// The signal is told as a position in the table that a host takes for it, which is that of CO2. As long as
// the span is 1, a new CO2 table therefore leaves the reading alone.
void MoveOxygen(Memory& memory, double seconds) {
  const Table table = ReadTable(memory.eeprom, TableAt6x(kGasTable));
  const auto signal =
      static_cast<int>(std::lround(PositionOf(table, kRawOffset + kOxygen.At(seconds) * 100)));
  PutWord(memory.ram, kOxygenSignal, signal);
  const double position = static_cast<double>(signal) * Word(memory.eeprom, kOxygenSpan) / kOne;
  PutWord(memory.ram, kLive + 2 * kOxygenChannel, ThroughTable6x(memory, kGasTable, position));
}

}  // namespace

void FillPlatform61(const Product& product, Memory& memory) {
  if (product.variant > 1) throw std::invalid_argument("Platform 61 has the variants 0 and 1.");
  Bytes eeprom = memory.eeprom;
  const bool oxygen = product.variant == kMeasuresOxygen;
  FillIdentity6x(product, memory);
  if (oxygen) PutWord(eeprom, kOxygenSpan, kOne);
  const GasWords gas = GasWordsOf(CurveOf(product), SpreadOf(product));
  PutWord(eeprom, kZeroWord, kNewZeroWord);
  PutWord(eeprom, kCalibrationBase, gas.calibration_base);
  PutWord(eeprom, kBackground, gas.background);
  // There is no second gas; a host takes its background through table 0, and only zero gas comes back as it
  // was with every scale.
  PutWord(eeprom, kBackground + 2, static_cast<int>(kZeroGas));
  eeprom[kDisplay] = kGasChannel << 4 | kTemperatureChannel;
  eeprom[kDisplay + 1] =
      static_cast<std::uint8_t>(kGasChannel << 4 | (oxygen ? kOxygenChannel : kTemperatureChannel));
  PutWord(eeprom, kPreAlarm, kRawOffset + (oxygen ? 1500 : 1000));
  PutWord(eeprom, kMainAlarm, kRawOffset + (oxygen ? 3000 : 1400));
  PutWord(eeprom, kOxygenPreAlarm, kRawOffset + 1900);
  PutWord(eeprom, kOxygenMainAlarm, kRawOffset + 1800);
  eeprom[kTemperatureCoefficient] = 127;
  PutChannelKind(eeprom, kTemperatureChannel, kKindCelsius);
  PutChannelKind(eeprom, kGasChannel, oxygen ? kKindPercentThousandths : kKindPpm);
  PutChannelKind(eeprom, kOxygenChannel, kKindPercentHundredths);
  PutTable(eeprom, TableAt6x(kTemperatureTable), TemperatureTable6x());
  PutTable(eeprom, TableAt6x(kGasTable), gas.table);
}

void MovePlatform61(const Product& product, Memory& memory, const Moment& moment) {
  Bytes ram = memory.ram;
  const bool oxygen = product.variant == kMeasuresOxygen;
  const GasCurve& curve = CurveOf(product);
  const double ppm = (oxygen ? kCellarGas : kRoomGas).At(moment.seconds);
  const int signal = SignalAt(curve.Transmission(ppm / curve.ppm_per_unit) * kZeroGas);
  PutWord(ram, kSignal, signal);
  const double position = PositionBy(Word(memory.eeprom, kZeroWord), signal, SpreadOf(product));
  PutWord(ram, kLive + 2 * kTemperatureChannel,
          TemperatureThrough6x(memory, kTemperature.At(moment.seconds)));
  PutWord(ram, kLive + 2 * kGasChannel, ThroughTable6x(memory, kGasTable, position));
  if (oxygen) MoveOxygen(memory, moment.seconds);
}

}  // namespace brelant::bench
