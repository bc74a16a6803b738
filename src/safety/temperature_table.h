// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "connection/BRECOM.h"
#include "safety/snsZ7731.h"

namespace brelant::Functions {

/// What the calibration of temperature 2 needs beside the unit.
struct TableTools {
  std::function<bool(const std::string& name, float value)> WriteToSensor;
  std::function<void(int milliseconds)> Sleep;
};

/// Moves the sixteen words of a unit's temperature 2 table by what its live value is off. `actual` is in the
/// unit of the Case word. False: a word was not taken; the earlier ones stay written. Throws ConnectionError.
bool CalibrateTemp2Table(BRECOM& connection, const snsZ7731& unit, double actual, std::int32_t caseWord,
                         const TableTools& tools);

}  // namespace brelant::Functions
