// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/product.h"

#include <stdexcept>
#include <string>

namespace brelant::bench {
namespace {

constexpr int Group(int part) {
  return part >> 5 & 3;
}
constexpr int Subgroup(int part) {
  return part >> 3 & 3;
}

constexpr bool IsCentralUnit(int platform) {
  return platform == 8 || platform == 9;
}

int UsualVariant(int part, int platform) {
  if (platform == 7 || platform == 8) return 2;
  if (platform == 9) return 3;
  if (platform != 6) return 0;
  if (part == 221) return 5;
  return part == 222 || part == 223 ? 1 : 0;
}

int GenerationOf(int part, int platform) {
  if (platform == 5) return Subgroup(part) == 0 ? 2 : 1;
  if (IsCentralUnit(platform)) return 0;
  return platform == 6 ? 1 : 2;
}

std::vector<SettingsWindow> SettingsOf(int platform) {
  switch (platform) {
    case 5:  // between them lie the live values
      return {{28, 28, 40}, {128, 128, 69}, {201, 201, 33}};
    case 7:
      return {{16, 192, 16}};
    case 8:
    case 9:
      return {{4160, 208, 1}};
    default:
      return {{32, 208, 14}};
  }
}

}  // namespace

int PlatformOfPart(int part) {
  if (part == 154) return 9;
  switch (Group(part)) {
    case 3:
      return 5;
    case 2:
      if (Subgroup(part) < 2) return 0;
      return Subgroup(part) == 3 ? 6 : 61;
    case 1:
      return Subgroup(part) == 1 ? 8 : 7;
    default:
      return 0;
  }
}

Product MakeProduct(int part, std::optional<int> variant) {
  if (part < 0 || part > 255) throw std::invalid_argument("A part number lies between 0 and 255.");
  if (variant && (*variant < 0 || *variant > 255)) {
    throw std::invalid_argument("A variant lies between 0 and 255.");
  }
  const int platform = PlatformOfPart(part);
  if (platform == 0) {
    throw std::invalid_argument("Part number " + std::to_string(part) + " belongs to no platform.");
  }
  Product product{.part = part,
                  .platform = platform,
                  .generation = GenerationOf(part, platform),
                  .variant = variant.value_or(UsualVariant(part, platform)),
                  .ram_size = 256,
                  .eeprom_size = 512,
                  .address_form = AddressForm::kWords,
                  .id_in_ram = 208,
                  .id_in_eeprom = 32,
                  .settings = SettingsOf(platform)};
  if (platform == 5) product.id_in_eeprom = 208;
  if (platform == 7) {
    product.eeprom_size = 1024;
    product.address_form = AddressForm::kLong;
    product.id_in_ram = 192;
    product.id_in_eeprom = 16;
  }
  if (IsCentralUnit(platform)) {
    product.ram_size = platform == 9 ? 7168 : 512;
    product.eeprom_size = 8192;
    product.address_form = AddressForm::kLongAndWideRam;
    product.id_in_eeprom = 4160;
  }
  return product;
}

}  // namespace brelant::bench
