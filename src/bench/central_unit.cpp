// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/central_unit.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "bench/atmosphere.h"

namespace brelant::bench::central {
namespace {

constexpr std::size_t kIdentification = 4124;
constexpr std::size_t kModel = 4125;
constexpr std::size_t kTankEmpty = 4736;
constexpr std::size_t kTankFull = 4738;
constexpr std::size_t kTemperatureOffset = 4740;
constexpr std::size_t kGasOffset = 4742;
constexpr std::size_t kGasGain = 4744;
constexpr std::size_t kSerial = 8166;
constexpr std::size_t kGivenValue = 320;  // in RAM, as the next
constexpr std::size_t kGivenPressure = 322;

constexpr std::uint8_t kUsualIdentification = 117;
constexpr int kSerialNumber = 1042;
constexpr int kModelOfTwo = 5;  // of platform 9, which then lacks what not all units have
constexpr int kWithWeight = 2;  // of platform 8

constexpr int kCellarToColdRoom = -15;
constexpr double kColdRoomLag = 20;
// The mean of a day's work would not move while one looks.
constexpr double kAverageSpan = 40;

constexpr int kSignalWhenEmpty = 2000;
constexpr int kSignalWhenFull = 22000;
constexpr int kLeastTankSpan = 100;
constexpr int kCalibrateEmpty = 1;
constexpr int kCalibrateFull = 2;

constexpr int kOffsetTemperature = 1;
constexpr int kZeroGas = 2;
constexpr int kFreshAir = 3;
constexpr int kOtherGas = 4;
constexpr int kSpanGas = 5;
constexpr int kDone = 0;
constexpr int kRefused = 100;

constexpr int kGainOfOne = 4096;
constexpr int kLeastGain = kGainOfOne / 8;
constexpr int kMostGain = kGainOfOne * 8;
constexpr int kMostTemperatureOffset = 2000;
constexpr int kMostGasPpm = 200000;
constexpr int kFreshAirPpm = 400;
constexpr int kLeastPressure = 300;
constexpr int kMostPressure = 1200;

/// What a raw word of each quantity counts.
struct Scale {
  double gas_ppm;
  double average_ppm;
  int full_tank;
  int limit;  ///< no word of a channel that is there lies beyond it, on either side
};

Scale ScaleOf(const Product& product) {
  if (product.platform == 8) return {10, 1, 50, 32767};
  return {100, 100, 5000, kAbsent - 1};
}

bool HasWeight(const Product& product, const Memory& memory) {
  const int model = memory.eeprom[kModel];
  return product.platform == 8 ? model == kWithWeight : model != kModelOfTwo;
}

bool HasTemperature2(const Product& product, const Memory& memory) {
  return product.platform == 9 && memory.eeprom[kModel] != kModelOfTwo;
}

// What the probe of temperature 2 shows, by the unit's own table. The probe reads at entry i what the table
// of a new unit has there.
double ThroughProbe(const Memory& memory, double celsius) {
  const double last = kProbeEntries - 1;
  const double place = std::clamp((celsius * 100 - kFirstProbeEntry) / kProbeStep, 0.0, last);
  const std::size_t i = std::min(static_cast<std::size_t>(place), kProbeEntries - 2);
  const int below = SignedWord(memory.eeprom, kProbeTable + 2 * i);
  const int above = SignedWord(memory.eeprom, kProbeTable + 2 * i + 2);
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

double TankRaw(const Memory& memory, int full_tank, double seconds) {
  const int empty = Word(memory.eeprom, kTankEmpty);
  const int span = std::max(1, Word(memory.eeprom, kTankFull) - empty);
  return static_cast<double>(TankSignal(seconds) - empty) * full_tank / span;
}

double Gain(const Memory& memory) {
  return std::max(1.0, static_cast<double>(Word(memory.eeprom, kGasGain))) / kGainOfOne;
}

// What the unit makes of gas, in its raw unit.
double ThroughGasCalibration(const Memory& memory, double measured) {
  return (measured + SignedWord(memory.eeprom, kGasOffset)) * Gain(memory);
}

double MeasuredTemperature(double seconds) {
  return kTemperature.At(seconds) * 100;
}

double MeasuredGas(const Scale& scale, double seconds) {
  return kCellarGas.At(seconds) / scale.gas_ppm;
}

double AverageRaw(const Memory& memory, const Scale& scale, double seconds) {
  const double gas = kCellarGas.MeanOver(seconds - kAverageSpan, seconds) / scale.gas_ppm;
  return ThroughGasCalibration(memory, gas) * scale.gas_ppm / scale.average_ppm;
}

/// None: the channel is absent.
std::optional<double> RawOf(const Product& product, const Memory& memory, std::size_t channel,
                            double seconds) {
  const Scale scale = ScaleOf(product);
  switch (channel) {
    case kTemperature1:
      return MeasuredTemperature(seconds) + SignedWord(memory.eeprom, kTemperatureOffset);
    case kGas:
      return ThroughGasCalibration(memory, MeasuredGas(scale, seconds));
    case kAverage:
      return AverageRaw(memory, scale, seconds);
    case kTemperature2:
      if (!HasTemperature2(product, memory)) return std::nullopt;
      return ThroughProbe(memory, kTemperature.At(seconds + kColdRoomLag) + kCellarToColdRoom);
    default:
      if (!HasWeight(product, memory)) return std::nullopt;
      return TankRaw(memory, scale.full_tank, seconds);
  }
}

constexpr std::array kChannels{kTemperature1, kGas, kAverage, kTemperature2, kWeight};

int OffsetTemperature(Memory& memory, double seconds) {
  const int correct = SignedWord(memory.ram, kGivenValue);
  const auto offset = static_cast<int>(std::lround(correct - MeasuredTemperature(seconds)));
  if (std::abs(offset) > kMostTemperatureOffset) return kRefused;
  PutWord(memory.eeprom, kTemperatureOffset, offset);
  return kDone;
}

// Moves the curve until the gas of the moment reads as `value`.
int OffsetGas(const Scale& scale, Memory& memory, double value, double seconds) {
  const double offset = std::round(value / Gain(memory) - MeasuredGas(scale, seconds));
  if (std::abs(offset) > kMostGasPpm / scale.gas_ppm) return kRefused;
  PutWord(memory.eeprom, kGasOffset, static_cast<int>(offset));
  return kDone;
}

// Stretches the curve from its zero until the gas of the moment reads as `value`.
int SpanGas(const Scale& scale, Memory& memory, int value, double seconds) {
  const double above_zero = MeasuredGas(scale, seconds) + SignedWord(memory.eeprom, kGasOffset);
  if (above_zero <= 0) return kRefused;
  const double gain = std::round(value / above_zero * kGainOfOne);
  if (gain < kLeastGain || gain > kMostGain) return kRefused;
  PutWord(memory.eeprom, kGasGain, static_cast<int>(gain));
  return kDone;
}

bool IsGas(const Scale& scale, int value) {
  return value >= 0 && value <= kMostGasPpm / scale.gas_ppm;
}

bool IsPressure(int hectopascal) {
  return hectopascal == 0 || (hectopascal >= kLeastPressure && hectopascal <= kMostPressure);
}

// A known gas. The air of the virtual unit always has the same pressure.
int CalibrateToGas(const Scale& scale, Memory& memory, int command, double seconds) {
  const int value = SignedWord(memory.ram, kGivenValue);
  if (!IsGas(scale, value) || !IsPressure(Word(memory.ram, kGivenPressure))) return kRefused;
  return command == kOtherGas ? OffsetGas(scale, memory, value, seconds)
                              : SpanGas(scale, memory, value, seconds);
}

}  // namespace

int SignedWord(ConstBytes memory, std::size_t address) {
  const int word = Word(memory, address);
  return word < 32768 ? word : word - 65536;
}

void FillCommon(const Product& product, Memory& memory) {
  Bytes eeprom = memory.eeprom;
  eeprom[kIdentification] = kUsualIdentification;
  eeprom[kModel] = static_cast<std::uint8_t>(product.variant);
  eeprom[kSerial] = kSerialNumber & 255;  // least significant byte first
  eeprom[kSerial + 1] = kSerialNumber >> 8;
  PutWord(eeprom, kTankEmpty, kSignalWhenEmpty);
  PutWord(eeprom, kTankFull, kSignalWhenFull);
  PutWord(eeprom, kGasGain, kGainOfOne);
  memory.ram[kStateByte] = kTemperatureAlarmOn;
}

int ChannelWord(const Product& product, const Memory& memory, std::size_t channel, double seconds) {
  if (std::ranges::find(kChannels, channel) == kChannels.end()) return Word(memory.ram, LiveAt(channel));
  const auto raw = RawOf(product, memory, channel, seconds);
  if (!raw) return kAbsent;
  const double limit = ScaleOf(product).limit;
  return static_cast<int>(std::lround(std::clamp(*raw, -limit, limit)));
}

void MoveChannels(const Product& product, Memory& memory, double seconds) {
  for (const std::size_t channel : kChannels) {
    PutWord(memory.ram, LiveAt(channel), ChannelWord(product, memory, channel, seconds));
  }
}

void PutAlarms(Memory& memory, int alarms) {
  std::uint8_t& state = memory.ram[kStateByte];
  state = static_cast<std::uint8_t>((state & ~kStateAlarms) | alarms);
}

// Tares the scale, or stretches it.
int CalibrateTank(const Product& product, Memory& memory, int command, double seconds) {
  if (!HasWeight(product, memory)) return kRefused;
  if (command != kCalibrateEmpty && command != kCalibrateFull) return kRefused;
  const int signal = TankSignal(seconds);
  const int empty = Word(memory.eeprom, kTankEmpty);
  const int full = Word(memory.eeprom, kTankFull);
  const bool tare = command == kCalibrateEmpty;
  const int new_empty = tare ? signal : empty;
  const int new_full = tare ? full - empty + signal : signal;
  if (new_full - new_empty < kLeastTankSpan || new_full > 65535) return kRefused;
  PutWord(memory.eeprom, kTankEmpty, new_empty);
  PutWord(memory.eeprom, kTankFull, new_full);
  return kDone;
}

int CarryOutProcedure(const Product& product, Memory& memory, int command, double seconds) {
  const Scale scale = ScaleOf(product);
  switch (command) {
    case kOffsetTemperature:
      return OffsetTemperature(memory, seconds);
    case kZeroGas:
      return OffsetGas(scale, memory, 0, seconds);
    case kFreshAir:
      return OffsetGas(scale, memory, kFreshAirPpm / scale.gas_ppm, seconds);
    case kOtherGas:
    case kSpanGas:
      return CalibrateToGas(scale, memory, command, seconds);
    default:
      return kRefused;
  }
}

}  // namespace brelant::bench::central
