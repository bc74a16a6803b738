// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <vector>

#include "knowledge/gas_curve.h"

namespace brelant {

/// One point of what a sensor makes of a signal.
struct ResponsePoint {
  /// Raw signal word; the position in the table where the quantity has none.
  float signal = 0;
  /// Raw value of the channel.
  float value = 0;
};

/// What a calibration did to a channel, for a view of it.
struct CalibrationChange {
  float channel = 0;
  /// The quantity has no signal: the response is told over the positions in its table.
  bool overPosition = false;
  /// From high signals to low ones; empty if it is not known or cannot be computed.
  std::vector<ResponsePoint> before;
  std::vector<ResponsePoint> after;
  /// What the sensor measured, and the value that it was told.
  ResponsePoint measured;
};

/// The entries 15 to 0 of a table over the signals that reach them: `zeroWord` and `spread` as in
/// docs/memory-maps.md, Calibration words. Signals below 0 are left out.
std::vector<ResponsePoint> ResponseOf(const GasTable& table, double zeroWord, double spread);
/// The same over the positions.
std::vector<ResponsePoint> ResponseOf(const GasTable& table);

}  // namespace brelant
