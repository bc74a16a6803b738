// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "bench/memory.h"

namespace brelant::bench {

/// A word of a memory that a register stands for.
struct RegisterPlace {
  bool in_eeprom;
  std::size_t address;
};

/// The word of an input register of platform 9 (docs/protocol.md, Modbus), if there is such a register.
std::optional<std::uint16_t> InputRegister(ConstBytes ram, ConstBytes eeprom, int number);

/// What a holding register of platform 9 stands for, if there is such a register.
std::optional<RegisterPlace> HoldingRegister(std::size_t ram_size, std::size_t eeprom_size, int number);

}  // namespace brelant::bench
