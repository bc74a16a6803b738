// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/transfer_curve.h"

#include <algorithm>

namespace brelant {

namespace {

/// Part of the width that is free at either side.
constexpr double kFree = 0.15;

std::vector<double> ValuesOf(const TransferCurve& range, const Transfer::Input& input) {
  auto values = input.ends;
  for (int i = 0; i <= kTransferSteps; ++i) {
    values.push_back(range.least + (range.greatest - range.least) * i / kTransferSteps);
  }
  std::sort(values.begin(), values.end());
  values.erase(std::unique(values.begin(), values.end()), values.end());
  return values;
}

/// `shown`: what the output shows before the first value. A digital one jumps where it changes.
template <typename Iterator, typename PercentAt>
std::optional<std::vector<TransferPoint>> Sweep(Iterator first, Iterator last, double shown, bool jumps,
                                                PercentAt percentAt) {
  std::vector<TransferPoint> points;
  for (; first != last; ++first) {
    const auto percent = percentAt(*first, shown);
    if (!percent) return {};
    if (jumps && !points.empty() && *percent != shown) points.push_back({*first, shown});
    points.push_back({*first, *percent});
    shown = *percent;
  }
  return points;
}

TransferCurve RangeOf(const Transfer::Input& input) {
  const double least = std::min(input.ends.front(), input.value.value_or(input.ends.front()));
  const double greatest = std::max(input.ends.back(), input.value.value_or(input.ends.back()));
  const double room = greatest > least ? (greatest - least) * kFree : 1;
  return {least - room, greatest + room, {}, {}};
}

}  // namespace

std::optional<TransferCurve> TransferCurveOf(const Transfer& transfer, int output,
                                             const Transfer::Input& input) {
  constexpr double kOff = 0;
  constexpr double kOn = 100;
  auto curve = RangeOf(input);
  const bool digital = transfer.IsDigital(output);
  const auto values = ValuesOf(curve, input);
  const auto percentAt = [&](double value, double shown) {
    return transfer.PercentAt(output, input.name, value, shown);
  };
  const auto rising = Sweep(values.begin(), values.end(), kOff, digital, percentAt);
  const auto falling = Sweep(values.rbegin(), values.rend(), kOn, digital, percentAt);
  if (!rising || !falling) return {};
  curve.rising = *rising;
  if (digital) curve.falling = *falling;
  return curve;
}

}  // namespace brelant
