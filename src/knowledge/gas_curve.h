// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <functional>
#include <optional>
#include <stdexcept>

namespace brelant {

/// A computation that the rules leave without a result: a division by zero, a number that is none.
class NoResult : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Transmission of the measuring path over the concentration (docs/memory-maps.md, Definition files).
struct GasCurve {
  float a1 = 0;
  float k = 0;
  float a2 = 0;
  float b = 0;
  float a3 = 0;

  /// No curve at all: such a channel has no table.
  bool Empty() const { return a1 == 0 && k == 0 && a2 == 0; }
  /// y(c), which is 1 at c = 0. Computed in double, held in single; throws NoResult if it is no number.
  float At(float concentration) const;
};

/// 17 table entries, offset 5000 included.
using GasTable = std::array<float, 17>;

/// Entry x / 4096 is the concentration at which the curve, normalised to its transmission at full scale,
/// reaches x. `pass` is called at every step of the search. Throws NoResult.
GasTable NormalisedTable(const GasCurve& curve, float fullScale, const std::function<void()>& pass);

/// The same over 15 equal steps of yFull; nothing if the search does not meet a step exactly.
std::optional<GasTable> SteppedTable(const GasCurve& curve, float yFull, const std::function<void()>& pass);

}  // namespace brelant
