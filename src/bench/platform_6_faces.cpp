// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <array>
#include <cstdint>

#include "bench/function_block.h"
#include "bench/gas_path.h"
#include "bench/platform_6.h"

namespace brelant::bench::platform6 {
namespace {

constexpr int kTemperature1Input = kTemperature1 - kFirstInput;
constexpr int kTemperature2Input = kTemperature2 - kFirstInput;
constexpr int kHumidityInput = kHumidity1 - kFirstInput;
constexpr int kMonoxideInput = kMonoxideOrOutput - kFirstInput;
constexpr int kGasInput = kGas - kFirstInput;

constexpr int kNoBaseLine = 128;
constexpr int kByTrigger = 32;       // in the first byte of an output
constexpr int kByDigitalInput = 32;  // in its last byte, as the next
constexpr int kByFunction5 = 128;

void PutFunction(Bytes eeprom, std::size_t index, const FunctionBlock& block) {
  PutBlock(eeprom, kFunctions + kFunctionSize * index, block);
}

/// A function over `from` to `to`, without the offset that raw words carry.
FunctionBlock Ramp(int input, int from, int to, bool positive, bool rising) {
  return {input, kRawOffset + from, kRawOffset + to, positive, rising};
}

void PutOutput(Bytes eeprom, std::size_t index, int feeds, int base_line, int flags) {
  const std::size_t at = kOutputs + kOutputSize * index;
  eeprom[at] = static_cast<std::uint8_t>(feeds);
  eeprom[at + 1] = static_cast<std::uint8_t>(base_line);
  eeprom[at + 2] = static_cast<std::uint8_t>(flags);
}

void FillGeneric(const Product& product, Bytes eeprom) {
  const bool three = product.variant == kThreeOutputs;
  const int temperature = three ? kTemperature2Input : kTemperature1Input;
  PutFunction(eeprom, 0, Ramp(kGasInput, 800, 1200, true, true));
  PutFunction(eeprom, 1, Ramp(temperature, 2000, 2600, true, true));
  PutFunction(eeprom, 2, Ramp(temperature, 2000, 2600, true, false));
  PutFunction(eeprom, 3, Ramp(kGasInput, 600, 1500, true, true));
  PutFunction(eeprom, 4, Ramp(temperature, 2200, 2600, false, false));
  constexpr int kBaseLineOf25 = 144;
  PutOutput(eeprom, 0, 1 | kByTrigger, kBaseLineOf25, 3);
  PutOutput(eeprom, 1, 2, kNoBaseLine, 4);
  if (three) {
    PutFunction(eeprom, 5, Ramp(kMonoxideInput, 5, 20, true, true));
    PutOutput(eeprom, 2, 0, kNoBaseLine, kByFunction5 | kByDigitalInput | 2);
    PutOutput(eeprom, 3, 0, kNoBaseLine, 0);
  } else {
    PutFunction(eeprom, 5, Ramp(kGasInput, 990, 1000, true, true));
    PutOutput(eeprom, 2, 8 | 16, kNoBaseLine, kByDigitalInput | 2);
    PutOutput(eeprom, 3, kDigital, kNoBaseLine, kByFunction5);
  }
  eeprom[kTriggerLevel] = 64;
  eeprom[kTriggerTime] = 10;
}

// The set-up of a VAV unit, which is the same in all of them but for what the second part number exchanges.
constexpr std::size_t kSetUpPoints = 3;
constexpr std::array<std::uint8_t, 29> kPointsOfVav{19,  0,   6,   28, 32, 127, 255, 0,   0,   19,
                                                    136, 127, 255, 0,  6,  22,  168, 127, 255, 0,
                                                    9,   0,   0,   0,  0,  0,   0,   0,   0};
constexpr std::array<std::uint8_t, 44> kFunctionsOfVav{
    8,   60,  125, 191, 172, 0, 19,  136, 147, 136, 0, 19,  136, 147, 136, 9, 19, 136, 148, 80, 0,   19,
    136, 147, 236, 8,   0,   0, 191, 172, 0,   0,   0, 128, 128, 16,  128, 0, 65, 192, 0,   8,  128, 0};
static_assert(kFunctions + kFunctionsOfVav.size() == kOutputs + 4 * kOutputSize);

void ExchangeOutputs(Bytes eeprom) {
  eeprom[5] = kTemperature2Input;
  PutWord(eeprom, kTemperatureSetPoint1, kRawOffset);
  eeprom[11] = 6;
  eeprom[126] = kTemperature2Input;
  PutOutput(eeprom, 0, 16, kNoBaseLine, 0);
  PutOutput(eeprom, 1, 0, kNoBaseLine, kByFunction5);
}

void FillVav(int part, Bytes eeprom) {
  std::ranges::copy(kPointsOfVav, eeprom.subspan(kSetUpPoints).begin());
  std::ranges::copy(kFunctionsOfVav, eeprom.subspan(kFunctions).begin());
  const bool exchanged = part == kExchangedPart;
  if (exchanged) ExchangeOutputs(eeprom);
  // The damper goes from 25 % to 75 %, both of which a byte can hold.
  const std::size_t damper = kOutputs + (exchanged ? kOutputSize : 0);
  const std::size_t other = kOutputs + (exchanged ? 0 : kOutputSize);
  eeprom[damper + 1] = 112;
  eeprom[damper + 2] |= 3;
  eeprom[other + 2] |= 2;
  eeprom[148] = 160;
  PutWord(eeprom, 124, (kRawOffset + 400) | 0x8000);
}

// Corner points in ppm: A 0, B and E 1500, C 3000, D 600, F 2050, G 900, I and K 1200. Functions 3 to 5 are
// in percent of C.
void FillJumper(Bytes eeprom) {
  PutFunction(eeprom, 0, Ramp(kGasInput, -3000, 3000, true, true));
  PutFunction(eeprom, 1, Ramp(kGasInput, -850, 2050, true, true));
  PutFunction(eeprom, 2, Ramp(kGasInput, 800, 900, true, true));
  PutFunction(eeprom, 3, Ramp(kHumidityInput, 0, 1000, true, true));
  PutFunction(eeprom, 4, Ramp(kHumidityInput, 200, 990, true, true));
  PutFunction(eeprom, 5, Ramp(kHumidityInput, 366, 400, true, true));
  PutOutput(eeprom, 0, 1 | 8, kNoBaseLine, 3);
  PutOutput(eeprom, 1, 2 | 16, kNoBaseLine, 3);
  PutOutput(eeprom, 2, 4, kNoBaseLine, kByFunction5 | 3);
  PutOutput(eeprom, 3, 0, kNoBaseLine, 0);
  eeprom[kTriggerLevel] = 64;
}

// Ventilation from 18 to 20 degrees or from 800 to 1200 ppm, then cooling from 20 to 22 degrees.
void FillSequential(Bytes eeprom) {
  constexpr int kMinVentOf20 = 141;
  PutWord(eeprom, kGasSetPoint, kRawOffset + 1200);
  PutFunction(eeprom, 1, Ramp(kTemperature2Input, 2200 - 200, 200, true, true));
  PutFunction(eeprom, 2, Ramp(kGasInput, 1200 - 400, 400, true, true));
  PutFunction(eeprom, 3, Ramp(kTemperature2Input, 1800, 2000, true, true));
  PutOutput(eeprom, 0, 2, kNoBaseLine, 3);
  PutOutput(eeprom, 1, 4 | 8, kMinVentOf20, 3);
  PutOutput(eeprom, 2, 0, kNoBaseLine, 0);
  PutOutput(eeprom, 3, 0, kNoBaseLine, 0);
}

}  // namespace

void FillFace(const Product& product, Bytes eeprom) {
  PutWord(eeprom, kTemperatureSetPoint1, kRawOffset + 2200);
  PutWord(eeprom, kTemperatureSetPoint2, kRawOffset + 2200);
  PutWord(eeprom, kGasSetPoint, kRawOffset + 800);
  switch (product.variant) {
    case kVav:
      return FillVav(product.part, eeprom);
    case kJumper:
      return FillJumper(eeprom);
    case kSequential:
      return FillSequential(eeprom);
    default:
      return FillGeneric(product, eeprom);
  }
}

}  // namespace brelant::bench::platform6
