// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>

#include "bench/memory.h"
#include "bench/product.h"

/// What the central units of platforms 8 and 9, and the two protocols of the latter, share;
/// docs/memory-maps.md (Platforms 8 and 9) names the fields.
namespace brelant::bench::central {

inline constexpr std::size_t kTemperature1 = 4;
inline constexpr std::size_t kGas = 5;
inline constexpr std::size_t kAverage = 8;
inline constexpr std::size_t kTemperature2 = 9;
inline constexpr std::size_t kWeight = 11;

// Regulators, where platform 9 watches them.
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
inline constexpr std::size_t kStateByte = 383;

// EEPROM.
inline constexpr std::size_t kRelays = 4434;
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
inline constexpr std::size_t kLoggerTiming = 4444;  // the code in its high byte
constexpr std::size_t LoggerChannelAt(std::size_t logger) {
  return 4564 + 4 * logger;
}
inline constexpr std::size_t kLoggerSize = 4640;
inline constexpr std::size_t kProbeTable = 4704;
inline constexpr std::size_t kProbeEntries = 16;
inline constexpr int kFirstProbeEntry = -2000;
inline constexpr int kProbeStep = 500;

/// The word of a channel that is not there.
inline constexpr int kAbsent = 9999;

// The state byte.
inline constexpr int kStateAlarms = 31;
inline constexpr std::uint8_t kTemperatureAlarmOn = 128;

/// A word as the value or level that it holds.
int SignedWord(ConstBytes memory, std::size_t address);

/// What a new unit has on either platform: identity, ID apart, and a calibration that changes nothing.
void FillCommon(const Product& product, Memory& memory);

/// The live word of a channel at a moment, as the settings now in EEPROM make it.
int ChannelWord(const Product& product, const Memory& memory, std::size_t channel, double seconds);

/// Moves all live words.
void MoveChannels(const Product& product, Memory& memory, double seconds);

/// The bits of the state byte below 32; the others stay.
void PutAlarms(Memory& memory, int alarms);

/// Carries a command of the tank's calibration out at a moment; gives what the host finds in place of the
/// command.
int CalibrateTank(const Product& product, Memory& memory, int command, double seconds);

/// The same for the other procedures.
int CarryOutProcedure(const Product& product, Memory& memory, int command, double seconds);

}  // namespace brelant::bench::central
