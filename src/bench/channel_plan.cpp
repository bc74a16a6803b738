// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/channel_plan.h"

namespace brelant::bench {
namespace {

constexpr int kCelsiusTenths = 0;
constexpr int kPpm = 4;
constexpr int kPercentTenths = 6;
constexpr int kPercentThousandths = 15;

ChannelPlan Temperature() {
  return {Quantity::kTemperature, "TEMP", kCelsiusTenths, std::nullopt, 0};
}
ChannelPlan Humidity() {
  return {Quantity::kHumidity, "RH", kPercentTenths, std::nullopt, 0};
}

ChannelPlan Gas(Quantity quantity, std::string_view name, const GasCurve& curve, int full_scale) {
  return {quantity, name, curve.ppm_per_unit > 1 ? kPercentThousandths : kPpm, curve, full_scale};
}

}  // namespace

ChannelPlans PlanOf(int part) {
  switch (part) {
    case 104:
      return {Gas(Quantity::kGas, "CO2 A", kCurveA, 2000), Gas(Quantity::kGas, "CO2 B", kCurveB, 5000),
              Gas(Quantity::kGas, "CO2 C", kCurveC, 5000), Gas(Quantity::kGas, "CO2 D", kCurveD, 5000)};
    case 112:
      return {Temperature(), Gas(Quantity::kGas, "CO2", kCurveC, 5000), ChannelPlan{}, ChannelPlan{}};
    case 231:
      return {Temperature(), Gas(Quantity::kGas, "CO2", kCurveD, 5000), Humidity(),
              Gas(Quantity::kAverageGas, "CO2 TWA", kCurveD, 5000)};
    default:
      return {Temperature(), Gas(Quantity::kGas, "CO2", kCurveA, 2000), Humidity(), ChannelPlan{}};
  }
}

}  // namespace brelant::bench
