// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>

#include "comm/SensorImage.h"

namespace brelant::test {

using RamBytes = std::array<std::uint8_t, 256>;

inline void Put(RamBytes& ram, std::size_t address, std::initializer_list<std::uint8_t> bytes) {
  for (const auto byte : bytes) ram.at(address++) = byte;
}

/// The RAM of an image that holds whole bytes.
inline RamBytes RamOf(const SensorImage& image) {
  RamBytes ram{};
  for (std::size_t i = 0; i < ram.size(); ++i) ram[i] = static_cast<std::uint8_t>(image.RamImage.at(i));
  return ram;
}

/// The RAM of a platform 5 sensor of part 104 whose settings all lie on the grain of their fields, so that a
/// form that is filled and taken back leaves every byte as it is. Bytes without a meaning here differ from
/// their neighbours.
inline RamBytes SampleRam() {
  RamBytes ram{};
  for (std::size_t i = 0; i < ram.size(); ++i) ram[i] = static_cast<std::uint8_t>(i * 7 + 3);
  Put(ram, 20, {27, 238, 22, 180, 21, 77, 0, 0});  // 5000 + 2150, 5000 + 812, 5000 + 453, nothing
  Put(ram, 31, {2});                               // display mode
  Put(ram, 32, {49});                              // channel 1, amount 17: (17 - 15) x 250 = 500
  Put(ram, 57, {0xF0 | 4});                        // output 1 is 20-100%
  Put(ram, 65, {104, 4, 18});                      // part, serial number 4 x 256 + 18 = 1042
  Put(ram, 162, {1, 149, 24, 153, 0});             // CO2, 5000 + 400 to 5000 + 1400, + sign, + slope
  Put(ram, 167, {0, 154, 144, 29, 176});           // TEMP, 5000 + 1800 to 5000 + 2600, + sign, - slope
  Put(ram, 172, {2, 21, 24, 149, 224});            // RH, 5000 + 400 to 5000 + 600, - sign, + slope
  Put(ram, 177, {1, 22, 168, 23, 112});            // CO2, 5000 + 800 to 5000 + 1000, - sign, - slope
  Put(ram, 182, {0, 143, 160, 147, 136});          // TEMP, 5000 - 1000 to 5000, + sign, + slope
  Put(ram, 187, {10});                             // 10 quarters of a second
  Put(ram, 188, {37});                             // 37 / 127 = 29.1 %
  Put(ram, 189, {1 | 2 | 32, 128, 0, 3});          // functions 0 and 1, trigger; base line 0; 2 x 2^3 s
  Put(ram, 193, {4, 192, 0, 0});                   // function 2; base line 100; 2 s
  Put(ram, 197, {32, 0, 64, 0});                   // 8192 and 16384 of 16384
  Put(ram, 205, {0, 65});                          // channel 0 has type 0, channel 1 type 4
  Put(ram, 207, {129});                            // type 4 x 32 + channel 1
  Put(ram, 208, {7});                              // bus ID
  Put(ram, 226, {0});                              // variant
  return ram;
}

}  // namespace brelant::test
