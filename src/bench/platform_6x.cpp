// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/platform_6x.h"

#include <cmath>
#include <stdexcept>

#include "bench/gas_path.h"

namespace brelant::bench {
namespace {

constexpr std::size_t kVariantFlag = 90;
constexpr std::size_t kPart = 164;
constexpr std::size_t kOptions = 165;
constexpr std::size_t kSerial = 170;
constexpr std::size_t kVariant = 173;
constexpr std::size_t kChannelKinds = 218;
constexpr std::size_t kTables = 308;
constexpr std::size_t kTableSize = 34;
constexpr int kNotSequential = 1;
constexpr int kSerialNumber = 1042;
constexpr int kFreshAirPpm = 400;

void FillVariant(const Product& product, Bytes eeprom) {
  const int variant = product.variant;
  const bool compact = product.part == 221;
  if ((compact && variant != 4 && variant != 5) || variant == 6) {
    throw std::invalid_argument("This part number has no such variant.");
  }
  if (variant != 4) eeprom[kOptions] |= kNotSequential;
  if (variant == 2) eeprom[kVariantFlag] = 1;
  if (variant != 2 && variant != 4) eeprom[kVariant] = static_cast<std::uint8_t>(variant);
}

}  // namespace

void PutChannelKind(Bytes eeprom, std::size_t channel, std::uint8_t kind) {
  eeprom[kChannelKinds + channel] = kind;
}

void FillIdentity6x(const Product& product, Memory& memory) {
  memory.eeprom[kPart] = static_cast<std::uint8_t>(product.part);
  PutWord(memory.eeprom, kSerial, kSerialNumber);
  FillVariant(product, memory.eeprom);
}

GasWords GasWordsOf(const GasCurve& curve, int spread) {
  GasWords words{GasTable(curve, (spread - 1.0) / spread, kRawOffset), 0, 0};
  // The position of a whole value, so that it comes back from a settings file as it was.
  const int fresh = Nearest(PositionOf(words.table, kRawOffset + kFreshAirPpm / curve.ppm_per_unit));
  words.background = WordOfPosition(fresh, spread);
  words.calibration_base = BaseOf(words.background);
  return words;
}

std::size_t TableAt6x(std::size_t table) {
  return kTables + kTableSize * table;
}

Table TemperatureTable6x() {
  return EvenTable(kRawOffset - 2000, 500);
}

int ThroughTable6x(const Memory& memory, std::size_t table, double position) {
  return static_cast<int>(std::lround(ValueAt(ReadTable(memory.eeprom, TableAt6x(table)), position)));
}

int TemperatureThrough6x(const Memory& memory, double celsius) {
  return ThroughTable6x(memory, 0, PositionOf(TemperatureTable6x(), kRawOffset + celsius * 100));
}

}  // namespace brelant::bench
