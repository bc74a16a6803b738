// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>

#include "bench/gas_curve.h"
#include "bench/memory.h"
#include "bench/product.h"

namespace brelant::bench {

// What platforms 6 and 61 have in common.

/// Configuration bytes of channels: an offset of 5000, a unit and its decimals.
inline constexpr std::uint8_t kKindCelsius = 128 | 1 << 2 | 2;
inline constexpr std::uint8_t kKindPpm = 128 | 4 << 2;
inline constexpr std::uint8_t kKindPercentThousandths = 128 | 5 << 2 | 1;
inline constexpr std::uint8_t kKindPercentHundredths = 128 | 5 << 2 | 2;
inline constexpr std::uint8_t kKindPercentTenths = 128 | 5 << 2 | 3;
inline constexpr std::uint8_t kKindGramsTenths = 128 | 6 << 2 | 3;
/// An output: no offset, 16384 stands for 100 %.
inline constexpr std::uint8_t kKindOutput = 3 << 5 | 5 << 2;

void PutChannelKind(Bytes eeprom, std::size_t channel, std::uint8_t kind);

/// Part number, serial number and what the variant is told from.
void FillIdentity6x(const Product& product, Memory& memory);

/// The stored words of a gas, for fresh air of 400 ppm, and its table.
struct GasWords {
  Table table;
  int background;
  int calibration_base;
};
GasWords GasWordsOf(const GasCurve& curve, int spread);

std::size_t TableAt6x(std::size_t table);
Table TemperatureTable6x();

/// The raw word that table `table` gives at a position.
int ThroughTable6x(const Memory& memory, std::size_t table, double position);
/// The raw word that the sensor's own temperature table gives at this true temperature.
int TemperatureThrough6x(const Memory& memory, double celsius);

}  // namespace brelant::bench
