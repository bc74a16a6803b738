// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "connection/ModbusRoad.h"
#include "connection/name_table.h"

namespace brelant {

/// What is known of units that are reached by name (docs/names.md).
struct UnitNames {
  NameTable names = NameTable::Standard();
  ModbusSettings modbus;
};

}  // namespace brelant
