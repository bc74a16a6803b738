// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace brelant::bench {

/// A value that moves slowly and forever: the sum of two sines around a mean.
struct Wave {
  double mean;
  double swing;
  double period;  ///< seconds
  double slow_swing;
  double slow_period;  ///< seconds

  double At(double seconds) const;
  /// The mean from `since` to `until`, in closed form, so that it does not matter how often one looks.
  double MeanOver(double since, double until) const;
};

/// What lies around the sensors. Each wave crosses the usual alarm levels now and then; CO2 in a cellar and
/// O2 cross theirs in each of their periods.
inline constexpr Wave kTemperature{22.0, 2.2, 61, 0.8, 211};    // degrees Celsius
inline constexpr Wave kHumidity{45.0, 6.0, 83, 4.0, 240};       // % relative
inline constexpr Wave kOxygen{19.3, 1.5, 71, 0.1, 190};         // %
inline constexpr Wave kRoomGas{1050, 420, 47, 180, 173};        // ppm CO2 where people breathe
inline constexpr Wave kCellarGas{18300, 15500, 53, 2200, 187};  // ppm CO2 where gas may leak
inline constexpr Wave kMonoxide{12, 6, 59, 4, 199};             // ppm CO where engines run

/// The live values of a sensor are a function of this.
struct Moment {
  double seconds = 0;
  double average_since = 0;  ///< when the time-weighted average began
};

}  // namespace brelant::bench
