// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

#include "panels/sample_ram.h"

namespace brelant::test {

struct SettingsBlock {
  int type;
  std::vector<std::uint8_t> payload;
};

/// A settings file (docs/memory-maps.md, Settings files), put together here and nowhere else.
inline std::vector<std::uint8_t> SettingsFile(const std::vector<SettingsBlock>& blocks) {
  std::vector<std::uint8_t> file(17);
  const auto low = [](std::size_t value) { return static_cast<std::uint8_t>(value % 256); };
  const auto high = [](std::size_t value) { return static_cast<std::uint8_t>(value / 256 % 256); };
  for (const auto& [type, payload] : blocks) {
    file.push_back(static_cast<std::uint8_t>(type));
    file.push_back(0);
    file.push_back(low(payload.size()));
    file.push_back(high(payload.size()));
    file.insert(file.end(), payload.begin(), payload.end());
  }
  std::size_t sum = 0;
  for (std::size_t i = 17; i < file.size(); ++i) sum += file[i];
  file[0] = 1;
  file[1] = low(sum);
  file[2] = high(sum);
  file[3] = low(file.size() - 17);
  file[4] = high(file.size() - 17);
  file[5] = static_cast<std::uint8_t>(blocks.size());
  return file;
}
inline std::vector<std::uint8_t> SettingsFile(int type, const std::vector<std::uint8_t>& payload) {
  return SettingsFile({{type, payload}});
}

/// The settings of a platform 5 sensor: RAM 0 to 111 and 128 to 255.
inline std::vector<std::uint8_t> SettingsFile5(const RamBytes& ram) {
  std::vector<std::uint8_t> payload(ram.begin(), ram.begin() + 112);
  payload.insert(payload.end(), ram.begin() + 128, ram.end());
  return SettingsFile(1, payload);
}

/// The settings of a sensor that keeps them, and its part number, in EEPROM.
inline std::vector<std::uint8_t> SettingsFileEeprom(std::uint8_t part) {
  std::vector<std::uint8_t> payload(512);
  payload[164] = part;
  return SettingsFile(10, payload);
}

}  // namespace brelant::test
