// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace brelant::bench {

using Bytes = std::span<std::uint8_t>;
using ConstBytes = std::span<const std::uint8_t>;

/// A sensor's memories.
struct Memory {
  std::vector<std::uint8_t> ram;
  std::vector<std::uint8_t> eeprom;
};

/// Words lie most significant byte first.
inline int Word(ConstBytes memory, std::size_t address) {
  return memory[address] * 256 + memory[address + 1];
}

inline void PutWord(Bytes memory, std::size_t address, int value) {
  memory[address] = static_cast<std::uint8_t>(value >> 8 & 255);
  memory[address + 1] = static_cast<std::uint8_t>(value & 255);
}

}  // namespace brelant::bench
