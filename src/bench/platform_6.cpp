// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/platform_6.h"

#include <stdexcept>

#include "bench/gas_path.h"
#include "bench/platform_6x.h"
#include "bench/platforms.h"

namespace brelant::bench {
namespace {

using platform6::kGas;
using platform6::kHumidity1;
using platform6::kMonoxideOrOutput;
using platform6::kTemperature1;
using platform6::kTemperature2;
using platform6::kThreeOutputs;
using platform6::LiveAt;

// docs/memory-maps.md names the fields.
constexpr std::size_t kCalibrationBase = 36;
constexpr std::size_t kBackground = 38;
constexpr std::size_t kGasStride = 5;
constexpr std::size_t kZeroWords = 46;
constexpr std::size_t kDisplay = 50;
constexpr std::size_t kGasCurve = 58;
constexpr std::size_t kInputLevel = 96;
constexpr std::size_t kInstalled = 98;
constexpr std::size_t kTemperatureCoefficients = 104;
constexpr std::size_t kAbsent = 158;
constexpr std::size_t kOptions = 165;
constexpr std::size_t kSignal = 72;  // in RAM, as the next
constexpr std::size_t kTemperatureDeviation = 254;

constexpr std::size_t kHumidityTable = 2;
constexpr std::size_t kGasTable = 4;
constexpr int kNewSpread = 2;  // and so says the option bit
constexpr std::uint8_t kSpreadOption = 2;
constexpr std::uint8_t kNoSecondGas = 4;

int SpreadOf(const Memory& memory) {
  return (memory.eeprom[kOptions] & kSpreadOption) != 0 ? 2 : 1;
}

void FillChannelKinds(const Product& product, Bytes eeprom) {
  for (const std::size_t channel : {0U, 1U, 9U, 10U}) PutChannelKind(eeprom, channel, kKindOutput);
  for (const std::size_t channel : {2U, 3U, 8U}) PutChannelKind(eeprom, channel, kKindCelsius);
  for (const std::size_t channel : {4U, 5U}) PutChannelKind(eeprom, channel, kKindGramsTenths);
  for (const std::size_t channel : {6U, 7U}) PutChannelKind(eeprom, channel, kKindPercentTenths);
  for (const std::size_t channel : {11U, 12U}) PutChannelKind(eeprom, channel, kKindPpm);
  if (product.variant == kThreeOutputs) PutChannelKind(eeprom, kMonoxideOrOutput, kKindPpm);
}

}  // namespace

void FillPlatform6(const Product& product, Memory& memory) {
  if (product.variant > 5) throw std::invalid_argument("Platform 6 has the variants 0 to 5.");
  Bytes eeprom = memory.eeprom;
  FillIdentity6x(product, memory);
  eeprom[kOptions] |= kSpreadOption;
  const GasWords gas = GasWordsOf(kCurveA, kNewSpread);
  for (const std::size_t index : {0U, 1U}) {
    PutWord(eeprom, kCalibrationBase + kGasStride * index, gas.calibration_base);
    PutWord(eeprom, kBackground + kGasStride * index, gas.background);
    PutWord(eeprom, kZeroWords + 2 * index, kNewZeroWord);
    eeprom[kTemperatureCoefficients + index] = 127;
    eeprom[kDisplay + index] = kTemperature1 << 4 | kGas;
    PutTable(eeprom, TableAt6x(kGasTable + index), gas.table);
  }
  eeprom[kGasCurve] = 1;
  eeprom[kInputLevel] = 64;
  eeprom[kInstalled] = 1 | 2 | 16;
  eeprom[kAbsent] = kNoSecondGas;
  platform6::FillFace(product, eeprom);
  FillChannelKinds(product, eeprom);
  PutTable(eeprom, TableAt6x(0), TemperatureTable6x());
  PutTable(eeprom, TableAt6x(1), EvenTable(kRawOffset, 20));
  PutTable(eeprom, TableAt6x(kHumidityTable), EvenTable(kRawOffset, 70));
  PutTable(eeprom, TableAt6x(3), TemperatureTable6x());
  memory.ram[kTemperatureDeviation] = 127;
}

void MovePlatform6(const Product& product, Memory& memory, const Moment& moment) {
  Bytes ram = memory.ram;
  const int signal = SignalAt(kCurveA.Transmission(kRoomGas.At(moment.seconds)) * kZeroGas);
  PutWord(ram, kSignal, signal);
  const double position = PositionBy(Word(memory.eeprom, kZeroWords), signal, SpreadOf(memory));
  const double celsius = kTemperature.At(moment.seconds);
  const double humid = PositionOf(EvenTable(kRawOffset, 70), kRawOffset + kHumidity.At(moment.seconds) * 10);
  PutWord(ram, LiveAt(kTemperature1), TemperatureThrough6x(memory, celsius));
  PutWord(ram, LiveAt(kTemperature2), TemperatureThrough6x(memory, celsius - 1.5));
  PutWord(ram, LiveAt(kHumidity1), ThroughTable6x(memory, kHumidityTable, humid));
  PutWord(ram, LiveAt(kGas), ThroughTable6x(memory, kGasTable, position));
  if (product.variant == kThreeOutputs) {
    PutWord(ram, LiveAt(kMonoxideOrOutput), kRawOffset + Nearest(kMonoxide.At(moment.seconds)));
  }
  platform6::MoveOutputs(product, memory);
}

}  // namespace brelant::bench
