// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/platforms.h"

#include <algorithm>

namespace brelant::bench {
namespace {

void Copy(ConstBytes from, std::size_t at, Bytes to, std::size_t onto, std::size_t size) {
  std::ranges::copy(from.subspan(at, size), to.subspan(onto, size).begin());
}

}  // namespace

void SettingsToRam(const Product& product, Memory& memory) {
  for (const SettingsWindow& w : product.settings) Copy(memory.eeprom, w.eeprom, memory.ram, w.ram, w.size);
}

void SettingsToEeprom(const Product& product, Memory& memory) {
  for (const SettingsWindow& w : product.settings) Copy(memory.ram, w.ram, memory.eeprom, w.eeprom, w.size);
}

void FillMemory(const Product& product, int id, Memory& memory) {
  constexpr std::size_t kPart = 65;
  memory.ram[kPart] = static_cast<std::uint8_t>(product.part);
  switch (product.platform) {
    case 5:
      FillPlatform5(product, memory);
      SettingsToEeprom(product, memory);
      break;
    case 6:
      FillPlatform6(product, memory);
      SettingsToRam(product, memory);
      break;
    case 61:
      FillPlatform61(product, memory);
      SettingsToRam(product, memory);
      break;
    case 8:
      FillPlatform8(product, memory);
      break;
    case 9:
      FillPlatform9(product, memory);
      break;
    default:
      FillPlatform7(product, memory);
      SettingsToRam(product, memory);
  }
  memory.ram[product.id_in_ram] = static_cast<std::uint8_t>(id);
  memory.eeprom[product.id_in_eeprom] = static_cast<std::uint8_t>(id);
}

void MoveLiveValues(const Product& product, Memory& memory, const Moment& moment) {
  switch (product.platform) {
    case 5:
      return MovePlatform5(product, memory, moment);
    case 6:
      return MovePlatform6(product, memory, moment);
    case 61:
      return MovePlatform61(product, memory, moment);
    case 8:
      return MovePlatform8(product, memory, moment);
    case 9:
      return MovePlatform9(product, memory, moment);
    default:
      return MovePlatform7(product, memory, moment);
  }
}

}  // namespace brelant::bench
