// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>
#include <optional>

#include "knowledge/gas_curve.h"

namespace brelant::test {

// The tables once more, as plainly as docs/memory-maps.md has them (Calibration, Definition files): every
// expression in double, every named number held in single. Slow and simple, to hold the program's own
// against.

inline constexpr GasCurve kPlainA{0.115081F, -0.00185441F, 0.42264F, 0.114645F, 0.2415F};
inline constexpr GasCurve kPlainB{0.0717408F, -0.00995154F, 0.218223F, 0.194551F, 0.386614F};
inline constexpr GasCurve kPlainC{0.124038F, -0.00162505F, 0.390136F, 0.130051F, 0.213468F};
inline constexpr GasCurve kPlainD{0.0514902F, -0.01291F, 0.178395F, 0.173295F, 0.480166F};

inline float PlainTransmission(const GasCurve& curve, double c) {
  const double a1 = curve.a1;
  const double k = curve.k;
  const double a2 = curve.a2;
  const double b = curve.b;
  const double a3 = curve.a3;
  const double y =
      a1 * std::exp(k * c) + a2 * std::exp(k * b * c) + a3 * std::exp(k * b * b * c) + 1 - a1 - a2 - a3;
  return static_cast<float>(y);
}

/// The words with which a sensor sees its gas.
struct PlainMeasurement {
  double A = 4096;
  double C = 0;
  double D = 0;
  double E = 0;
};

/// r; `F` is 1 or 2.
inline float PlainMeasured(const PlainMeasurement& m, double F) {
  const auto s = static_cast<float>(61440 - (61440 - m.A * m.C / 2048) * (m.E * m.D + 2048) / (2048 / F));
  return static_cast<float>(((F - 1) + s / 61440.0) / F);
}

/// The power to which the curve is taken, so that it passes through the measured point.
inline float PlainExponent(const GasCurve& curve, float r, float cs) {
  return static_cast<float>(std::log(double{r}) /
                            std::log(static_cast<double>(PlainTransmission(curve, cs))));
}

/// Nothing if the search for an entry does not come to an end.
inline std::optional<GasTable> PlainSpanTable(const GasCurve& curve, int F, float r, float cs, float offset) {
  constexpr int kEndless = 1'000'000;
  const float p = PlainExponent(curve, r, cs);
  GasTable table{};
  float c = 0;
  for (int x = 57344; x >= 0; x -= 4096) {
    const auto w = static_cast<float>(((F - 1) + x / 61440.0) / F);
    float step = 100;
    int direction = 1;
    for (int turn = 0;; ++turn) {
      if (turn == kEndless) return {};
      const double y = PlainTransmission(curve, c);
      const auto d = static_cast<float>(std::exp(std::log(y) * p) - w);
      if (std::abs(d) < 0.0001) break;
      if (d > 0 && direction == -1) {
        step = step / 2;
        direction = 1;
      } else if (d < 0 && direction == 1) {
        step = step / 2;
        direction = -1;
      }
      c = c + step * static_cast<float>(direction);
      if (c > 9999) break;
    }
    table.at(static_cast<std::size_t>(x / 4096)) = std::trunc(c) + offset;
  }
  table[15] = offset;
  table[16] = table[15] - (table[14] - table[15]);
  return table;
}

inline GasTable PlainDefinitionTable(const GasCurve& curve, float fullScale) {
  const double yFull = PlainTransmission(curve, fullScale);
  GasTable table{};
  for (int x = 61440; x >= 0; x -= 4096) {
    float c = 32768;
    float step = 16384;
    while (true) {
      const double y = PlainTransmission(curve, c);
      const double n = std::trunc((y - yFull) / (1 - yFull) * 61440);
      if (x > n) c = c - step;
      if (x < n) c = c + step;
      step = step / 2;
      if (step == 0 || x == n) break;
    }
    table.at(static_cast<std::size_t>(x / 4096)) = std::trunc(c) + 5000;
  }
  table[16] = table[15] - (table[14] - table[15]);
  return table;
}

}  // namespace brelant::test
