// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>

namespace brelant {

inline constexpr int kEepromSize = 8195;
inline constexpr int kRamSize = 258;
inline constexpr int kSetBufferSize = 551;

/// The copy of a sensor's memory on which the whole program works (docs/architecture.md, State). One byte of
/// the sensor is one element; a transfer refuses an element that is not a whole number from 0 to 255.
struct SensorImage {
  /// Working copies, by byte address.
  std::array<float, kEepromSize> EepromImage{};
  std::array<float, kRamSize> RamImage{};
  /// The bytes as last read from, or last written to, the sensor.
  std::array<float, kEepromSize> EepromRead{};
  std::array<float, kRamSize> RamRead{};
  /// The byte has been read or loaded.
  std::array<bool, kEepromSize> EepromValid{};
  std::array<bool, kRamSize> RamValid{};
  /// Selection of a transfer: 255 selected, 0 not; in a settings file's selection also masks of bits.
  std::array<std::uint8_t, kEepromSize> ReadRequest{};
  /// Payload of the settings file block that was read last.
  std::array<std::uint8_t, kSetBufferSize> SetBuffer{};

  /// Everything to zero, but for RAM above address 255.
  void Clear();

  /// The big-endian word at an address.
  float RamWord(int address) const { return Word(RamImage, address); }
  float EepromWord(int address) const { return Word(EepromImage, address); }
  void SetRamWord(int address, float value) { SetWord(RamImage, address, value); }
  void SetEepromWord(int address, float value) { SetWord(EepromImage, address, value); }

 private:
  template <std::size_t size>
  static float Word(const std::array<float, size>& image, int address) {
    const auto at = static_cast<std::size_t>(address);
    return image.at(at) * 256 + image.at(at + 1);
  }
  template <std::size_t size>
  static void SetWord(std::array<float, size>& image, int address, float value);
};

}  // namespace brelant
