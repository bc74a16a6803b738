// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <optional>

#include "bench/memory.h"

/// What the two protocols of a platform 9 unit share; docs/memory-maps.md (Platforms 8 and 9) names the
/// fields.
namespace brelant::bench::platform9 {

inline constexpr std::size_t kTemperature1 = 4;
inline constexpr std::size_t kGas = 5;
inline constexpr std::size_t kAverage = 8;
inline constexpr std::size_t kTemperature2 = 9;
inline constexpr std::size_t kWeight = 11;

// Regulators, where they are watched.
inline constexpr std::size_t kWatchTemperature1 = 4;
inline constexpr std::size_t kWatchGas = 5;
inline constexpr std::size_t kWatchAverage = 6;
inline constexpr std::size_t kWatchTemperature2 = 7;
inline constexpr std::size_t kWatchWeight = 13;

// Bits of a regulator's status.
inline constexpr int kHighBit = 0;  // of a temperature
inline constexpr int kLowBit = 3;
inline constexpr int kGasMainBit = 0;
inline constexpr int kGasPreBit = 2;
inline constexpr int kAverageBit = 0;
inline constexpr int kWeightPreBit = 1;
inline constexpr int kWeightMainBit = 3;

// RAM.
constexpr std::size_t LiveAt(std::size_t channel) {
  return 12 + 2 * channel;
}
constexpr std::size_t ChannelStatusAt(std::size_t channel) {
  return 256 + channel;
}
constexpr std::size_t RegulatorStatusAt(std::size_t regulator) {
  return 272 + regulator;
}
inline constexpr std::size_t kTankCommand = 304;
inline constexpr std::size_t kStateByte = 383;

// EEPROM.
constexpr std::size_t FirstLevelAt(std::size_t regulator) {
  return 4224 + 4 * regulator;
}
constexpr std::size_t SecondLevelAt(std::size_t regulator) {
  return 4226 + 4 * regulator;
}
constexpr std::size_t WeightLevelAt(std::size_t which) {  // 1 pre, 2 main, 3 what both carry on top
  return 4352 + 2 * which;
}
constexpr std::size_t ChannelKindAt(std::size_t channel) {
  return 7960 + channel;
}

}  // namespace brelant::bench::platform9

namespace brelant::bench {

/// The calibration of a platform 9 unit's tank, which a host asks for by a word in RAM.
class TankCalibration {
 public:
  /// A second after a command has come into the word, carries it out and puts the result in its place.
  void Mind(Memory& memory, double seconds);

 private:
  std::optional<double> asked_;  // when the command that is being carried out was seen
};

}  // namespace brelant::bench
