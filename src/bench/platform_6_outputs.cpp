// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <cmath>

#include "bench/function_block.h"
#include "bench/gas_path.h"
#include "bench/platform_6.h"

namespace brelant::bench::platform6 {
namespace {

constexpr std::size_t kLastInput = 12;
constexpr std::size_t kTwoSided = 3;  // the functions before this one have no sign

/// What a function counts from, where that is not 0.
int SetPointOf(const Memory& memory, std::size_t channel) {
  switch (channel) {
    case kTemperature1:
      return Word(memory.eeprom, kTemperatureSetPoint1);
    case kTemperature2:
      return Word(memory.eeprom, kTemperatureSetPoint2);
    case kGas:
      return Word(memory.eeprom, kGasSetPoint);
    default:
      return kRawOffset;
  }
}

bool HasSign(const Product& product, std::size_t index) {
  return index >= kTwoSided && product.variant != kVav && product.variant != kJumper;
}

bool IsTwoSided(const Product& product, std::size_t index) {
  return index < kTwoSided && product.variant != kSequential;
}

FunctionBlock BlockOf(const Product& product, const Memory& memory, std::size_t index) {
  FunctionBlock block = ReadBlock(memory.eeprom, kFunctions + kFunctionSize * index);
  if (!HasSign(product, index)) block.positive = true;
  // Here the second word is the width of the band.
  if (product.variant == kSequential && index < kTwoSided) block.b = block.a + block.b - kRawOffset;
  return block;
}

double ResultOf(const Product& product, const Memory& memory, std::size_t index);

int InputOf(const Product& product, const Memory& memory, std::size_t index, std::size_t channel) {
  if (product.variant == kJumper && index >= kTwoSided) {
    return kRawOffset + Nearest(ResultOf(product, memory, 0) * 10);
  }
  const int raw = Word(memory.ram, LiveAt(channel));
  return product.variant == kVav ? raw - SetPointOf(memory, channel) + kRawOffset : raw;
}

double ResultOf(const Product& product, const Memory& memory, std::size_t index) {
  const FunctionBlock block = BlockOf(product, memory, index);
  const std::size_t channel = static_cast<std::size_t>(block.channel) + kFirstInput;
  if (channel > kLastInput) return 0;
  const int input = InputOf(product, memory, index, channel);
  if (!IsTwoSided(product, index)) return Contribution(block, input);
  const double climb = block.Ramp(input) * 200 - 100;
  return block.rising ? climb : -climb;
}

bool Feeds(const Memory& memory, std::size_t output, std::size_t function) {
  const std::size_t at = kOutputs + kOutputSize * output;
  if (function == 5) return (memory.eeprom[at + 2] & 128) != 0;
  return (memory.eeprom[at] >> function & 1) != 0;
}

double SumOfFunctions(const Product& product, const Memory& memory, std::size_t output) {
  double percent = memory.eeprom[kOutputs + kOutputSize * output + 1] / 256.0 * 400 - 200;
  for (std::size_t i = 0; i < kFunctionCount; ++i) {
    if (!Feeds(memory, output, i)) continue;
    percent = std::clamp(percent + ResultOf(product, memory, i), -100.0, 100.0);
  }
  return percent;
}

void MoveOutput(const Product& product, Memory& memory, std::size_t output) {
  const std::size_t at = kOutputs + kOutputSize * output;
  const bool inverted = (memory.eeprom[at + 2] & 16) != 0;
  const double sum = SumOfFunctions(product, memory, output);
  double percent = std::clamp(inverted ? std::abs(sum) : sum, 0.0, 100.0);
  if ((memory.eeprom[at] & kDigital) != 0) {
    percent = Switched(percent, Word(memory.ram, kOutputWords[output]) / 16384.0 * 100);
  }
  PutWord(memory.ram, kOutputWords[output], OutputWord(percent));
}

}  // namespace

// The last one first: a VAV unit has functions that take the fourth output as their input.
void MoveOutputs(const Product& product, Memory& memory) {
  const std::size_t count = kOutputWords.size() - (product.variant == kThreeOutputs ? 1 : 0);
  for (std::size_t output = count; output-- > 0;) MoveOutput(product, memory, output);
}

}  // namespace brelant::bench::platform6
