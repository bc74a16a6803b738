// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>

#include "comm/SensorImage.h"

namespace brelant::test {

using EepromBytes = std::array<std::uint8_t, 512>;

inline void Put(EepromBytes& eeprom, std::size_t address, std::initializer_list<std::uint8_t> bytes) {
  for (const auto byte : bytes) eeprom.at(address++) = byte;
}

/// The EEPROM of an image that holds whole bytes.
inline EepromBytes EepromOf(const SensorImage& image) {
  EepromBytes eeprom{};
  for (std::size_t i = 0; i < eeprom.size(); ++i) {
    eeprom[i] = static_cast<std::uint8_t>(image.EepromImage.at(i));
  }
  return eeprom;
}

/// The EEPROM of a platform 6 sensor (docs/memory-maps.md, Platform 6) whose settings all lie on the grain of
/// the generic face, so that a form that is filled and taken back leaves every byte as it is. Bytes without a
/// meaning here differ from their neighbours. Channels in use: both temperatures, RH 1, CO2.
inline EepromBytes SampleEeprom(std::uint8_t part) {
  EepromBytes eeprom{};
  for (std::size_t i = 0; i < eeprom.size(); ++i) eeprom[i] = static_cast<std::uint8_t>(i * 7 + 3);
  Put(eeprom, 0, {26, 244});                        // 5000 + 1900
  Put(eeprom, 6, {28, 32});                         // 5000 + 2200
  Put(eeprom, 18, {22, 168});                       // 5000 + 800
  Put(eeprom, 32, {7});                             // bus ID
  Put(eeprom, 50, {0xB2, 0x63});                    // channels 2, 11, 3, 6
  Put(eeprom, 90, {0});                             // no variant 2
  Put(eeprom, 96, {0x80 | 38});                     // - 38 / 127 = - 29.9 %
  Put(eeprom, 98, {1 | 2 | 16});                    // channels 2, 3, 6
  Put(eeprom, 106, {9, 149, 24, 153, 0});           // CO2, 5000 + 400 to 5000 + 1400, + sign, + slope
  Put(eeprom, 111, {0, 26, 144, 29, 176});          // Temp 1, 5000 + 1800 to 5000 + 2600, - sign, - slope
  Put(eeprom, 116, {4, 21, 24, 149, 224});          // RH 1, 5000 + 400 to 5000 + 600, - sign, + slope
  Put(eeprom, 121, {9, 150, 168, 23, 112});         // CO2, 5000 + 800 to 5000 + 1000, + sign, - slope
  Put(eeprom, 126, {1, 15, 160, 147, 136});         // Temp 2, 5000 - 1000 to 5000, - sign, + slope
  Put(eeprom, 131, {9, 155, 88, 159, 64});          // CO2, 5000 + 2000 to 5000 + 3000, + sign, + slope
  Put(eeprom, 136, {37});                           // 37 / 127 = 29.1 %
  Put(eeprom, 137, {0x80 | 10});                    // 10 minutes
  Put(eeprom, 138, {1 | 8 | 32, 128, 3});           // functions 0 and 3, trigger; base line 0; 16 s
  Put(eeprom, 141, {2, 192, 16});                   // function 1; base line 100; 2 s; invert
  Put(eeprom, 144, {64 | 16, 64, 32 | 7});          // digital, function 4; base line -100; input; 256 s
  Put(eeprom, 147, {0x80, 129, 128 | 64 | 8 | 1});  // unknown bits; function 5; TMO; 4 s; base line 1
  Put(eeprom, 158, {4});                            // CO2, no CO
  Put(eeprom, 164, {part, 1 | 2});                  // part; not sequential, scale factor 2
  Put(eeprom, 170, {4, 18, 0, 0});                  // serial number 4 x 256 + 18 = 1042, variant 0
  for (const std::size_t output : {0U, 1U, 9U, 10U}) Put(eeprom, 218 + output, {0x14 | 0x60});  // % of 163
  Put(eeprom, 220, {0x86, 0x86});  // C, two decimals, offset
  Put(eeprom, 222, {0x9B, 0x9B});  // g/kg, one decimal, offset
  Put(eeprom, 224, {0x97, 0x97});  // %, one decimal, offset
  Put(eeprom, 226, {0x86});        // C
  Put(eeprom, 229, {0x90, 0x90});  // ppm, offset
  return eeprom;
}

}  // namespace brelant::test
