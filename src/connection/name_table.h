// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "connection/Road.h"

namespace brelant {

/// Where a value lies in the cells of a unit, and how it is made of them: the cells are joined, the highest
/// first, and `width` bits from bit `shift` on are the value.
struct Target {
  Space space;
  int first;
  int count;
  int shift;
  int width;
  bool isSigned;
  bool operator==(const Target&) const = default;
};

/// A place in one of the memories of a unit. Words are high byte first.
struct Place {
  /// ram or eeprom.
  Space memory;
  int address;
  /// Bytes, 1 or 2.
  int width;
  bool isSigned = false;
  /// Of a byte that holds several values: the bits of this one. 0: all.
  int mask = 0;
};

/// A Modbus register that holds a value, whole or as one of its bytes.
struct Register {
  enum class Part { whole, high, low };
  /// input or holding.
  Space bank;
  int number;
  Part part = Part::whole;
};

/// A row of the table.
struct NamedParameter {
  std::string name;
  Place place;
  std::optional<Register> modbus = {};
};

/// The names under which the parameters of a unit are asked for, and where they lie (docs/names.md).
class NameTable {
 public:
  /// The table that comes with the program.
  static NameTable Standard();

  const std::vector<NamedParameter>& Rows() const { return rows_; }
  /// Puts the row in place of the one of that name, or adds it.
  void Replace(const NamedParameter& row);

  /// Throw ConnectionError for an unknown name. On Modbus "miIR_" and "mhHR_" with a number name a register;
  /// a name that has no register lies in a window of holding registers.
  Target OnKiBus(std::string_view name) const;
  Target OnModbus(std::string_view name) const;
  /// Where a parameter is written on Modbus: a stored one that has an input register, which nobody can write,
  /// through the window.
  Target ForWritingOnModbus(std::string_view name) const;

  static Target OnKiBus(const Place& place);
  static Target OnModbus(const Place& place);

 private:
  const NamedParameter& Find(std::string_view name) const;
  bool IsSigned(Space bank, int number) const;

  std::vector<NamedParameter> rows_;
};

/// The first holding register of the windows through which Modbus reaches both memories, two bytes to a
/// register (docs/names.md).
inline constexpr int kRamWindow = 4096;
inline constexpr int kEepromWindow = 8192;

/// Bytes of each of the memories; the windows have room for no more.
inline constexpr int kMemoryBytes = 2 * (kEepromWindow - kRamWindow);
/// A run of at least one byte, `width` is its length.
constexpr bool IsInMemory(const Place& place) {
  return place.address >= 0 && place.width > 0 && place.width <= kMemoryBytes - place.address;
}

}  // namespace brelant
