// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <string>

#include "connection/BRECOM.h"
#include "safety/snsZ7731.h"

namespace brelant {

/// The model code of the units whose display sequence lies in the second list.
inline constexpr int kSecondListModel = 7;

/// What a unit has read of itself, beside its record.
struct UnitIdentity {
  int modelCode = 0;
  std::string serialNumber;
};

/// The value that a channel shows that is not there.
inline constexpr std::int32_t kNoChannel = 9999;

/// The names of the four positions of the display sequence.
std::array<std::string, snsZ7731::kPositions> DisplaySequenceNames(int modelCode);

/// Reads all parameters of a safety unit, in the told order (docs/architecture.md, The safety panel). Throws
/// ConnectionError; what was read until then is in `unit`.
UnitIdentity ReadUnit(BRECOM& connection, snsZ7731& unit, bool fromSensor);

/// Writes a parameter, rounded to a whole number, and reads it back, up to five times. False: the unit has
/// not taken it. `onFailure` is told of each attempt that the connection gave up; true ends the attempts.
bool WriteVerified(BRECOM& connection, const std::string& name, double value, bool toSensor,
                   const std::function<bool()>& onFailure);

}  // namespace brelant
