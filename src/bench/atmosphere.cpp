// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/atmosphere.h"

#include <cmath>
#include <numbers>

namespace brelant::bench {
namespace {

constexpr double Turn(double period) {
  return 2 * std::numbers::pi / period;
}

double SineMean(double period, double since, double until) {
  const double w = Turn(period);
  return (std::cos(w * since) - std::cos(w * until)) / (w * (until - since));
}

}  // namespace

double Wave::At(double seconds) const {
  return mean + swing * std::sin(Turn(period) * seconds) + slow_swing * std::sin(Turn(slow_period) * seconds);
}

double Wave::MeanOver(double since, double until) const {
  if (until - since < 1e-3) return At(until);
  return mean + swing * SineMean(period, since, until) + slow_swing * SineMean(slow_period, since, until);
}

}  // namespace brelant::bench
