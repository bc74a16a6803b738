// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <cmath>

#include "bench/channel_plan.h"
#include "bench/function_block.h"
#include "bench/gas_path.h"
#include "bench/platforms.h"

namespace brelant::bench {
namespace {

// All of it lies in RAM; docs/memory-maps.md names the fields.
constexpr std::size_t kCentralUnitFlags = 14;
constexpr std::size_t kLive = 20;
constexpr std::size_t kDisplayMode = 31;
constexpr std::size_t kShift = 32;
constexpr std::size_t kOutputKinds = 57;
constexpr std::size_t kSerial = 66;
constexpr std::size_t kSignals = 68;
constexpr std::size_t kZeroWords = 128;
constexpr std::size_t kSpanWords = 136;
constexpr std::size_t kFunctions = 162;
constexpr std::size_t kTriggerTime = 187;
constexpr std::size_t kTriggerLevel = 188;
constexpr std::size_t kOutputs = 189;
constexpr std::size_t kOutputWords = 197;
constexpr std::size_t kTemperatureCoefficient = 202;
constexpr std::size_t kTypeOfChannel0 = 205;
constexpr std::size_t kTypeOfChannel1 = 206;
constexpr std::size_t kShiftChannel = 207;
constexpr std::size_t kCalibrationBase = 214;
constexpr std::size_t kBackground = 216;
constexpr std::size_t kGasStride = 7;
constexpr std::size_t kVariant = 226;
constexpr std::size_t kTemperatureDeviation = 234;
constexpr std::size_t kAlarms = 255;

constexpr std::size_t kFunctionCount = 5;
constexpr std::size_t kFunctionSize = 5;
constexpr std::size_t kOutputCount = 2;
constexpr std::size_t kOutputSize = 4;
constexpr int kBaseLineZero = 32768;
constexpr int kDigital = 64;
constexpr int kMiddle = 127;  // stands for 0 in the temperature words
constexpr int kFreshAirPpm = 400;
constexpr int kSerialNumber = 1042;

const Wave& WaveOf(const GasCurve& curve) {
  return curve.ppm_per_unit > 1 ? kCellarGas : kRoomGas;
}

struct RawRange {
  int low;
  int high;
};

RawRange UsualRange(const ChannelPlan& plan) {
  switch (plan.quantity) {
    case Quantity::kTemperature:
      return {kRawOffset + 2000, kRawOffset + 2600};
    case Quantity::kHumidity:
      return {kRawOffset + 400, kRawOffset + 600};
    default:
      if (!plan.curve || plan.curve->ppm_per_unit == 1) return {kRawOffset + 800, kRawOffset + 1200};
      return {kRawOffset + 500, kRawOffset + 2500};
  }
}

void PutFunction(Memory& memory, std::size_t index, const FunctionBlock& block) {
  PutBlock(memory.ram, kFunctions + kFunctionSize * index, block);
}

void PutOutput(Memory& memory, std::size_t index, int feeds, int exponent) {
  const std::size_t at = kOutputs + kOutputSize * index;
  memory.ram[at] = static_cast<std::uint8_t>(feeds);
  PutWord(memory.ram, at + 1, kBaseLineZero);
  memory.ram[at + 3] = static_cast<std::uint8_t>(exponent);
}

// Channel 1 drives output 0 and channel 0 drives output 1; three more functions stand ready.
void FillFunctions(Memory& memory, const ChannelPlans& plans) {
  const RawRange first = UsualRange(plans[0]);
  const RawRange second = UsualRange(plans[1]);
  PutFunction(memory, 0, {1, second.low, second.high, true, true});
  PutFunction(memory, 1, {0, first.low, first.high, true, true});
  PutFunction(memory, 2, {1, second.low, second.high, true, false});
  PutFunction(memory, 3, {0, first.low, first.high, false, true});
  PutFunction(memory, 4, {0, first.low, first.high, false, false});
  PutOutput(memory, 0, 1, 3);
  PutOutput(memory, 1, 2, 4);
}

// The functions as alarm levels: CO2 pre, CO2 main, CO2 average, temperature low, temperature high.
void FillAlarmLevels(Memory& memory, const ChannelPlans& plans) {
  const bool cellar = plans[1].curve->ppm_per_unit > 1;
  const int pre = kRawOffset + (cellar ? 1500 : 1000);
  const int main = kRawOffset + (cellar ? 3000 : 1400);
  const int average = kRawOffset + (cellar ? 1900 : 1100);
  const bool has_average = plans[3].quantity == Quantity::kAverageGas;
  // Whole degrees, as the chart panel shows no others.
  constexpr int kCold = kRawOffset + 2000;
  constexpr int kHot = kRawOffset + 2400;
  PutFunction(memory, 0, {has_average ? 3 : 1, pre - 10, pre, true, true});
  PutFunction(memory, 1, {1, main - 10, main, true, true});
  PutFunction(memory, 2, {has_average ? 3 : 1, average, average, true, true});
  PutFunction(memory, 3, {0, kCold, kCold + 100, true, false});
  PutFunction(memory, 4, {0, kHot - 100, kHot, true, true});
  PutOutput(memory, 0, 1 | 2, 0);
  PutOutput(memory, 1, 8 | 16, 0);
  memory.ram[kTypeOfChannel0] = has_average ? 0xF3 : 0x10;
  memory.ram[kShiftChannel] = 0x10;
}

int FreshAirWord(const ChannelPlan& plan) {
  return Nearest(PositionOf(plan.table, kRawOffset + kFreshAirPpm / plan.curve->ppm_per_unit));
}

// The host reads the second gas one byte behind the place at which it writes it back (docs/memory-maps.md,
// Platform 5). A word of two equal bytes, with the same byte in front of it, is not changed by that.
int WordOfEqualBytes(const ChannelPlan& plan, int wanted) {
  const auto stays = [&](int word) {
    return word == Nearest(PositionOf(plan.table, Nearest(ValueAt(plan.table, word))));
  };
  int best = 0;
  for (int word = 0; word < kZeroGas; word += 257) {
    if (stays(word) && std::abs(word - wanted) < std::abs(best - wanted)) best = word;
  }
  return best;
}

// A background is the position of a whole value in the sensor's table, so that settings which go through a
// file come back as they were.
void FillGasWords(Memory& memory, const ChannelPlans& plans) {
  const int first = FreshAirWord(plans[1]);
  PutWord(memory.ram, kBackground, first);
  PutWord(memory.ram, kCalibrationBase, BaseOf(first));
  if (!plans[2].curve) return;
  const int second = WordOfEqualBytes(plans[2], FreshAirWord(plans[2]));
  PutWord(memory.ram, kBackground + kGasStride, second);
  PutWord(memory.ram, kCalibrationBase + kGasStride, (BaseOf(second) & ~255) | (second & 255));
}

int RawOf(const Memory& memory, std::size_t channel) {
  return Word(memory.ram, kLive + 2 * channel);
}

FunctionBlock FunctionOf(const Memory& memory, std::size_t index) {
  return ReadBlock(memory.ram, kFunctions + kFunctionSize * index);
}

double AveragePpm(const Wave& wave, const Moment& moment) {
  // A minute stands for the hours of a shift, so that one sees the average move.
  constexpr double kWindow = 60;
  return wave.MeanOver(std::max(moment.average_since, moment.seconds - kWindow), moment.seconds);
}

int MoveGas(Memory& memory, std::size_t channel, const ChannelPlan& plan, const Moment& moment) {
  const Wave& wave = WaveOf(*plan.curve);
  const bool average = plan.quantity == Quantity::kAverageGas;
  const double ppm = average ? AveragePpm(wave, moment) : wave.At(moment.seconds);
  const int signal = SignalAt(PositionOf(plan.table, kRawOffset + ppm / plan.curve->ppm_per_unit));
  PutWord(memory.ram, kSignals + 2 * channel, signal);
  const double spread = static_cast<double>(Word(memory.ram, kSpanWords + 2 * channel)) / kOne;
  const double position = PositionBy(Word(memory.ram, kZeroWords + 2 * channel), signal, spread);
  return Nearest(ValueAt(plan.table, position));
}

// The zero word of a temperature is an addend.
int MoveTemperature(const Memory& memory, std::size_t channel, const Moment& moment) {
  const int correction = Word(memory.ram, kZeroWords + 2 * channel) - kNewZeroWord;
  return kRawOffset + static_cast<int>(std::lround(kTemperature.At(moment.seconds) * 100)) + correction;
}

int MoveChannel(Memory& memory, std::size_t channel, const ChannelPlan& plan, const Moment& moment) {
  switch (plan.quantity) {
    case Quantity::kNone:
      return 0;
    case Quantity::kTemperature:
      return MoveTemperature(memory, channel, moment);
    case Quantity::kHumidity:
      return kRawOffset + static_cast<int>(std::lround(kHumidity.At(moment.seconds) * 10));
    default:
      return MoveGas(memory, channel, plan, moment);
  }
}

void MoveOutput(Memory& memory, std::size_t index) {
  const std::size_t record = kOutputs + kOutputSize * index;
  const std::size_t word = kOutputWords + 2 * index;
  const int feeds = memory.ram[record];
  const bool digital = (feeds & kDigital) != 0;
  double percent = digital ? 0 : (Word(memory.ram, record + 1) - kBaseLineZero) / 16384.0 * 100;
  for (std::size_t i = 0; i < kFunctionCount; ++i) {
    const FunctionBlock block = FunctionOf(memory, i);
    if ((feeds >> i & 1) == 0 || block.channel > 3) continue;
    percent += Contribution(block, RawOf(memory, static_cast<std::size_t>(block.channel)));
    percent = std::clamp(percent, -100.0, 100.0);
  }
  if (digital) percent = Switched(percent, Word(memory.ram, word) / 16384.0 * 100);
  PutWord(memory.ram, word, OutputWord(std::clamp(percent, 0.0, 100.0)));
}

// Each function is an alarm level of its channel: low temperature at its a from above, the others at
// their b from below.
bool InAlarm(const Memory& memory, std::size_t index) {
  constexpr std::size_t kLowTemperature = 3;
  const FunctionBlock level = FunctionOf(memory, index);
  const int value = RawOf(memory, static_cast<std::size_t>(level.channel & 3));
  return index == kLowTemperature ? value <= level.a : value >= level.b;
}

void MoveAlarms(Memory& memory) {
  int alarms = 0;
  for (std::size_t i = 0; i < kFunctionCount; ++i) alarms |= InAlarm(memory, i) ? 1 << i : 0;
  memory.ram[kAlarms] = static_cast<std::uint8_t>(alarms);
}

}  // namespace

void FillPlatform5(const Product& product, Memory& memory) {
  const ChannelPlans& plans = PlanOf(product.part);
  Bytes ram = memory.ram;
  ram[kCentralUnitFlags] = 128;
  ram[kDisplayMode] = 2;
  ram[kShift] = 1 << 5 | 17;
  ram[kOutputKinds] = 4;
  PutWord(ram, kSerial, kSerialNumber);
  for (std::size_t channel = 0; channel < plans.size(); ++channel) {
    PutWord(ram, kZeroWords + 2 * channel, kNewZeroWord);
    PutWord(ram, kSpanWords + 2 * channel, kOne);
  }
  ram[kTriggerTime] = 128 | 10 * 4;
  ram[kTriggerLevel] = 38;
  ram[kTemperatureCoefficient] = kMiddle;
  ram[kTypeOfChannel0] = static_cast<std::uint8_t>(plans[0].type << 4);
  ram[kTypeOfChannel1] = static_cast<std::uint8_t>(plans[1].type << 4 | 1);
  ram[kShiftChannel] = static_cast<std::uint8_t>(plans[1].type << 4 | 1);
  ram[kVariant] = static_cast<std::uint8_t>(product.variant);
  ram[kTemperatureDeviation] = kMiddle;
  FillGasWords(memory, plans);
  if (product.variant == 0) {
    FillFunctions(memory, plans);
  } else {
    FillAlarmLevels(memory, plans);
  }
}

void MovePlatform5(const Product& product, Memory& memory, const Moment& moment) {
  const ChannelPlans& plans = PlanOf(product.part);
  for (std::size_t channel = 0; channel < plans.size(); ++channel) {
    PutWord(memory.ram, kLive + 2 * channel, MoveChannel(memory, channel, plans[channel], moment));
  }
  for (std::size_t output = 0; output < kOutputCount; ++output) MoveOutput(memory, output);
  MoveAlarms(memory);
}

}  // namespace brelant::bench
