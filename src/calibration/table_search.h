// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <optional>

#include "knowledge/gas_curve.h"

namespace brelant {

/// A response curve of the sensors, with what belongs to it (docs/memory-maps.md, Calibration).
struct SpanCurve {
  GasCurve curve;
  /// 1, or 2 where the table covers the upper half of the transmission.
  float scale = 1;
};

/// The curve of a GetCurveType selector 1, 2 or 9, without its scale; nothing for any other.
std::optional<GasCurve> CurveOfType(std::uint8_t type);
/// The curve of platform 7 by the high nibble of its curve byte; all zeros for one above 3.
SpanCurve CurveOfNibble(int nibble);

/// What the sensor measures at the span gas, and the words with which it does.
struct Measurement {
  float zeroWord = 0;
  float signal = 0;
  float tempDeviation = 0;
  float tempCoefficient = 0;
  /// 1 or 2.
  float scale = 1;
};

/// Transmission at which the sensor sees the span gas. Throws NoResult.
float MeasuredTransmission(const Measurement& measured);

/// The table from a curve that is bent by an exponent so that it passes through `transmission` at `span`, the
/// concentration without offset. `offset` is added to each entry. `pass` is called at every step of the
/// search. Throws NoResult.
GasTable SpanTable(const SpanCurve& curve, float transmission, float span, float offset,
                   const std::function<void()>& pass);

}  // namespace brelant
