// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/channel_plan.h"

#include "bench/gas_path.h"

namespace brelant::bench {
namespace {

constexpr int kCelsiusTenths = 0;
constexpr int kPpm = 4;
constexpr int kPercentTenths = 6;
constexpr int kPercentThousandths = 15;

ChannelPlan Temperature() {
  return {.quantity = Quantity::kTemperature, .name = "TEMP", .type = kCelsiusTenths};
}
ChannelPlan Humidity() {
  return {.quantity = Quantity::kHumidity, .name = "RH", .type = kPercentTenths};
}

ChannelPlan Gas(Quantity quantity, std::string_view name, const GasCurve& curve, int full_scale) {
  return {.quantity = quantity,
          .name = name,
          .type = curve.ppm_per_unit > 1 ? kPercentThousandths : kPpm,
          .curve = curve,
          .full_scale = full_scale,
          .table = DefinitionTable(curve, full_scale, kRawOffset)};
}

ChannelPlans FourGases() {
  return {Gas(Quantity::kGas, "CO2 A", kCurveA, 2000), Gas(Quantity::kGas, "CO2 B", kCurveB, 5000),
          Gas(Quantity::kGas, "CO2 C", kCurveC, 5000), Gas(Quantity::kGas, "CO2 D", kCurveD, 5000)};
}

ChannelPlans TwoChannels() {
  return {Temperature(), Gas(Quantity::kGas, "CO2", kCurveC, 5000), ChannelPlan{}, ChannelPlan{}};
}

ChannelPlans WithAverage() {
  return {Temperature(), Gas(Quantity::kGas, "CO2", kCurveD, 5000), Humidity(),
          Gas(Quantity::kAverageGas, "CO2 TWA", kCurveD, 5000)};
}

ChannelPlans Room() {
  return {Temperature(), Gas(Quantity::kGas, "CO2", kCurveA, 2000), Humidity(), ChannelPlan{}};
}

}  // namespace

// Computed once each: live values are asked for many times a second.
const ChannelPlans& PlanOf(int part) {
  static const ChannelPlans four_gases = FourGases();
  static const ChannelPlans two_channels = TwoChannels();
  static const ChannelPlans with_average = WithAverage();
  static const ChannelPlans room = Room();
  switch (part) {
    case 104:
      return four_gases;
    case 112:
      return two_channels;
    case 231:
      return with_average;
    default:
      return room;
  }
}

}  // namespace brelant::bench
