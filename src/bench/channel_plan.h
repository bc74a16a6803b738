// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <optional>
#include <string_view>

#include "bench/gas_curve.h"

namespace brelant::bench {

enum class Quantity { kNone, kTemperature, kGas, kAverageGas, kHumidity };

/// What one of the four channels of a platform 5 sensor measures. The sensor itself does not tell; the
/// definition file of its part number does.
struct ChannelPlan {
  Quantity quantity = Quantity::kNone;
  std::string_view name;
  int type = 0;                        ///< how its raw word reads (docs/memory-maps.md)
  std::optional<GasCurve> curve = {};  ///< of a gas
  int full_scale = 0;                  ///< units of the curve
  Table table = {};                    ///< what a host makes of the curve
};

using ChannelPlans = std::array<ChannelPlan, 4>;

/// The channels of a platform 5 part number; one that is not made gets those of part 120.
const ChannelPlans& PlanOf(int part);

}  // namespace brelant::bench
