// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>

#include "bench/gas_curve.h"

namespace brelant::bench {

/// 2048 stands for 1 in zero words and span words.
inline constexpr int kOne = 2048;
/// The zero word of a new sensor; its signal without gas is then 30720.
inline constexpr int kNewZeroWord = 4096;
/// What the raw words of most channels carry on top.
inline constexpr int kRawOffset = 5000;

/// To the nearest whole number as hosts round, ties to even.
inline int Nearest(double value) {
  return static_cast<int>(std::lrint(value));
}

/// The signal of a new sensor's measuring path at a position on the common scale.
inline int SignalAt(double position) {
  return static_cast<int>(std::lround(position * kOne / kNewZeroWord));
}

/// The word for a position, by how far the sensor spreads the scale.
inline int WordOfPosition(double position, double spread) {
  return Nearest(kZeroGas - (kZeroGas - position) / spread);
}

/// The same position without the zero word of a new sensor.
inline int BaseOf(int background) {
  return Nearest(static_cast<double>(background) * kOne / kNewZeroWord);
}

/// The position that a sensor makes of its signal, by its zero word and by how far it spreads the scale.
inline double PositionBy(int zero_word, int signal, double spread) {
  return kZeroGas - (kZeroGas - static_cast<double>(zero_word) * signal / kOne) * spread;
}

}  // namespace brelant::bench
