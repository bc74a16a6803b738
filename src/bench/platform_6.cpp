// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>

#include "bench/function_block.h"
#include "bench/gas_path.h"
#include "bench/platform_6x.h"
#include "bench/platforms.h"

namespace brelant::bench {
namespace {

// docs/memory-maps.md names the fields.
constexpr std::size_t kTemperatureSetPoint2 = 0;
constexpr std::size_t kTemperatureSetPoint1 = 6;
constexpr std::size_t kGasSetPoint = 18;
constexpr std::size_t kCalibrationBase = 36;
constexpr std::size_t kBackground = 38;
constexpr std::size_t kGasStride = 5;
constexpr std::size_t kZeroWords = 46;
constexpr std::size_t kDisplay = 50;
constexpr std::size_t kGasCurve = 58;
constexpr std::size_t kInputLevel = 96;
constexpr std::size_t kInstalled = 98;
constexpr std::size_t kTemperatureCoefficients = 104;
constexpr std::size_t kFunctions = 106;
constexpr std::size_t kTriggerLevel = 136;
constexpr std::size_t kTriggerTime = 137;
constexpr std::size_t kOutputs = 138;
constexpr std::size_t kAbsent = 158;
constexpr std::size_t kOptions = 165;
constexpr std::size_t kLive = 12;  // in RAM, as all that follow
constexpr std::size_t kSignal = 72;
constexpr std::size_t kTemperatureDeviation = 254;

constexpr std::size_t kFunctionCount = 6;
constexpr std::size_t kFunctionSize = 5;
constexpr std::size_t kOutputSize = 3;
constexpr std::array<std::size_t, 4> kOutputWords{236, 238, 26, 28};

constexpr std::size_t kTemperature1 = 2;
constexpr std::size_t kTemperature2 = 3;
constexpr std::size_t kHumidity1 = 6;
constexpr std::size_t kGas = 11;
constexpr std::size_t kFirstInput = 2;  // the channel that input 0 of a function is
constexpr std::size_t kLastInput = 12;

constexpr std::size_t kHumidityTable = 2;
constexpr std::size_t kGasTable = 4;
constexpr int kNewSpread = 2;  // and so says the option bit
constexpr std::uint8_t kSpreadOption = 2;
constexpr std::uint8_t kNoSecondGas = 4;
constexpr int kDigital = 64;
constexpr int kTwoSided = 3;  // the functions before this one have no sign
constexpr int kVav = 1;       // a variant

std::size_t LiveAt(std::size_t channel) {
  return kLive + 2 * (channel - kFirstInput);
}

int SpreadOf(const Memory& memory) {
  return (memory.eeprom[kOptions] & kSpreadOption) != 0 ? 2 : 1;
}

void PutFunction(Bytes eeprom, std::size_t index, const FunctionBlock& block) {
  PutBlock(eeprom, kFunctions + kFunctionSize * index, block);
}

void PutOutput(Bytes eeprom, std::size_t index, int feeds, int base_line, int flags) {
  const std::size_t at = kOutputs + kOutputSize * index;
  eeprom[at] = static_cast<std::uint8_t>(feeds);
  eeprom[at + 1] = static_cast<std::uint8_t>(base_line);
  eeprom[at + 2] = static_cast<std::uint8_t>(flags);
}

void FillFunctions(Bytes eeprom) {
  constexpr int kTemperatureInput = 0;
  constexpr int kGasInput = 9;
  PutFunction(eeprom, 0, {kGasInput, kRawOffset + 800, kRawOffset + 1200, true, true});
  PutFunction(eeprom, 1, {kTemperatureInput, kRawOffset + 2000, kRawOffset + 2600, true, true});
  PutFunction(eeprom, 2, {kTemperatureInput, kRawOffset + 2000, kRawOffset + 2600, true, false});
  PutFunction(eeprom, 3, {kGasInput, kRawOffset + 600, kRawOffset + 1500, true, true});
  PutFunction(eeprom, 4, {kTemperatureInput, kRawOffset + 1950, kRawOffset + 2450, true, false});
  PutFunction(eeprom, 5, {kGasInput, kRawOffset + 990, kRawOffset + 1000, true, true});
}

void FillOutputs(const Product& product, Bytes eeprom) {
  constexpr int kNoBaseLine = 128;
  constexpr int kByFunction5 = 128;
  PutOutput(eeprom, 0, 1, kNoBaseLine, 3);
  PutOutput(eeprom, 1, 2, kNoBaseLine, 4);
  PutOutput(eeprom, 2, 8, kNoBaseLine, 2);
  PutOutput(eeprom, 3, kDigital, kNoBaseLine, kByFunction5);
  if (product.variant != kVav) return;
  // The two ends of a damper: 80 % and 20 %.
  eeprom[kOutputs + (product.part == 223 ? 4 : 1)] = 116;
  eeprom[kOutputs + 10] = 154;
}

void FillChannelKinds(Bytes eeprom) {
  for (const std::size_t channel : {0U, 1U, 9U, 10U}) PutChannelKind(eeprom, channel, kKindOutput);
  for (const std::size_t channel : {2U, 3U, 8U}) PutChannelKind(eeprom, channel, kKindCelsius);
  for (const std::size_t channel : {4U, 5U}) PutChannelKind(eeprom, channel, kKindGramsTenths);
  for (const std::size_t channel : {6U, 7U}) PutChannelKind(eeprom, channel, kKindPercentTenths);
  for (const std::size_t channel : {11U, 12U}) PutChannelKind(eeprom, channel, kKindPpm);
}

double FunctionResult(const FunctionBlock& block, std::size_t index, int raw) {
  if (index >= kTwoSided) return Contribution(block, raw);
  const double climb = block.Ramp(raw) * 200 - 100;
  return block.rising ? climb : -climb;
}

bool Feeds(const Memory& memory, std::size_t output, std::size_t function) {
  const std::size_t at = kOutputs + kOutputSize * output;
  if (function == 5) return (memory.eeprom[at + 2] & 128) != 0;
  return (memory.eeprom[at] >> function & 1) != 0;
}

double SumOfFunctions(const Memory& memory, std::size_t output) {
  double percent = memory.eeprom[kOutputs + kOutputSize * output + 1] / 256.0 * 400 - 200;
  for (std::size_t i = 0; i < kFunctionCount; ++i) {
    const FunctionBlock block = ReadBlock(memory.eeprom, kFunctions + kFunctionSize * i);
    const std::size_t channel = static_cast<std::size_t>(block.channel) + kFirstInput;
    if (!Feeds(memory, output, i) || channel > kLastInput) continue;
    percent += FunctionResult(block, i, Word(memory.ram, LiveAt(channel)));
    percent = std::clamp(percent, -100.0, 100.0);
  }
  return percent;
}

void MoveOutput(Memory& memory, std::size_t output) {
  const std::size_t at = kOutputs + kOutputSize * output;
  const bool inverted = (memory.eeprom[at + 2] & 16) != 0;
  const double sum = SumOfFunctions(memory, output);
  double percent = std::clamp(inverted ? std::abs(sum) : sum, 0.0, 100.0);
  if ((memory.eeprom[at] & kDigital) != 0) {
    percent = Switched(percent, Word(memory.ram, kOutputWords[output]) / 16384.0 * 100);
  }
  PutWord(memory.ram, kOutputWords[output], OutputWord(percent));
}

}  // namespace

void FillPlatform6(const Product& product, Memory& memory) {
  if (product.variant > 5) throw std::invalid_argument("Platform 6 has the variants 0 to 5.");
  Bytes eeprom = memory.eeprom;
  FillIdentity6x(product, memory);
  eeprom[kOptions] |= kSpreadOption;
  PutWord(eeprom, kTemperatureSetPoint1, kRawOffset + 2200);
  PutWord(eeprom, kTemperatureSetPoint2, kRawOffset + 2200);
  PutWord(eeprom, kGasSetPoint, kRawOffset + 800);
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
  FillFunctions(eeprom);
  eeprom[kTriggerLevel] = 64;
  eeprom[kTriggerTime] = 128 | 10;
  FillOutputs(product, eeprom);
  FillChannelKinds(eeprom);
  PutTable(eeprom, TableAt6x(0), TemperatureTable6x());
  PutTable(eeprom, TableAt6x(1), EvenTable(kRawOffset, 20));
  PutTable(eeprom, TableAt6x(kHumidityTable), EvenTable(kRawOffset, 70));
  PutTable(eeprom, TableAt6x(3), TemperatureTable6x());
  memory.ram[kTemperatureDeviation] = 127;
}

void MovePlatform6(const Product&, Memory& memory, const Moment& moment) {
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
  for (std::size_t output = 0; output < kOutputWords.size(); ++output) MoveOutput(memory, output);
}

}  // namespace brelant::bench
