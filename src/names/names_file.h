// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <stdexcept>
#include <string_view>

#include "connection/ModbusRoad.h"
#include "connection/name_table.h"

namespace brelant {

/// What is known of units that are reached by name.
struct UnitNames {
  NameTable names = NameTable::Standard();
  ModbusSettings modbus;
};

/// A names file that says what cannot be. The text names the row.
class NamesError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The table that comes with the program, corrected by the text of a names.json (docs/names.md). Throws
/// NamesError.
UnitNames ParseNames(std::string_view text);

}  // namespace brelant
