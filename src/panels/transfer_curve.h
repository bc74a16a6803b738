// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <vector>

#include "panels/Transfer.h"

namespace brelant {

struct TransferPoint {
  double input;
  double percent;
  bool operator==(const TransferPoint&) const = default;
};

/// The way of an output while its input goes through a range.
struct TransferCurve {
  double least = 0;
  double greatest = 0;
  /// With rising input; a digital output is off before.
  std::vector<TransferPoint> rising;
  /// With falling input; a digital output is on before. Empty for an output that has no memory.
  std::vector<TransferPoint> falling;
};

/// Points between least and greatest input, beside those at the ends of the functions.
inline constexpr int kTransferSteps = 400;

/// From below all ends of the functions and the present value to above them. Nothing if the transfer cannot
/// tell.
std::optional<TransferCurve> TransferCurveOf(const Transfer& transfer, int output,
                                             const Transfer::Input& input);

}  // namespace brelant
