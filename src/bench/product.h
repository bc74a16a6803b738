// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

namespace brelant::bench {

/// How an EEPROM address travels: halved in one byte, or whole in two. In the last form an address in RAM can
/// travel whole in two bytes as well.
enum class AddressForm { kWords, kLong, kLongAndWideRam };

/// Settings that a sensor runs on in RAM and keeps in EEPROM.
struct SettingsWindow {
  std::size_t eeprom;
  std::size_t ram;
  std::size_t size;
};

/// What a part number says about a sensor (docs/memory-maps.md).
struct Product {
  int part;
  int platform;    ///< 5, 6, 61, 7, 8 or 9
  int generation;  ///< 1 or 2; 0: there are no command frames
  int variant;
  std::size_t ram_size;
  std::size_t eeprom_size;
  AddressForm address_form;
  std::size_t id_in_ram;
  std::size_t id_in_eeprom;
  std::vector<SettingsWindow> settings;

  /// Lock, save and the other operations of command frames. Without them settings are in EEPROM at once, and
  /// count from the next start.
  bool HasCommands() const { return generation != 0; }
};

/// The platform number of a part number, 0 if it has none.
int PlatformOfPart(int part);

/// Without `variant` it is the usual one. Throws std::invalid_argument, with a text for people, for a part
/// number that no virtual sensor speaks.
Product MakeProduct(int part, std::optional<int> variant);

}  // namespace brelant::bench
