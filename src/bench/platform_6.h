// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>

#include "bench/memory.h"
#include "bench/product.h"

/// What the parts of a platform 6 sensor share; docs/memory-maps.md names the fields.
namespace brelant::bench::platform6 {

inline constexpr std::size_t kTemperatureSetPoint2 = 0;
inline constexpr std::size_t kTemperatureSetPoint1 = 6;
inline constexpr std::size_t kGasSetPoint = 18;
inline constexpr std::size_t kFunctions = 106;
inline constexpr std::size_t kTriggerLevel = 136;
inline constexpr std::size_t kTriggerTime = 137;
inline constexpr std::size_t kOutputs = 138;

inline constexpr std::size_t kFunctionCount = 6;
inline constexpr std::size_t kFunctionSize = 5;
inline constexpr std::size_t kOutputSize = 3;
inline constexpr std::array<std::size_t, 4> kOutputWords{236, 238, 26, 28};  // in RAM

inline constexpr std::size_t kTemperature1 = 2;
inline constexpr std::size_t kTemperature2 = 3;
inline constexpr std::size_t kHumidity1 = 6;
inline constexpr std::size_t kMonoxideOrOutput = 10;
inline constexpr std::size_t kGas = 11;
inline constexpr std::size_t kFirstInput = 2;  ///< the channel that input 0 of a function is

inline constexpr int kDigital = 64;

// Variants.
inline constexpr int kVav = 1;
inline constexpr int kThreeOutputs = 2;
inline constexpr int kJumper = 3;
inline constexpr int kSequential = 4;

inline constexpr int kExchangedPart = 223;

/// Where the live word of an input lies in RAM.
constexpr std::size_t LiveAt(std::size_t channel) {
  constexpr std::size_t kLive = 12;
  return kLive + 2 * (channel - kFirstInput);
}

/// Functions, trigger, outputs and set points of a new sensor.
void FillFace(const Product& product, Bytes eeprom);

/// Moves the outputs to where the inputs put them.
void MoveOutputs(const Product& product, Memory& memory);

}  // namespace brelant::bench::platform6
