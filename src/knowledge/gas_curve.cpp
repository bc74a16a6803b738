// SPDX-License-Identifier: GPL-3.0-or-later
#include "knowledge/gas_curve.h"

#include <cmath>

#include "knowledge/bisect.h"

namespace brelant {

namespace {

constexpr float kFirstGuess = 32768;
constexpr float kFirstStep = 16384;
constexpr float kTableOffset = 5000;
constexpr int kSegment = 4096;
constexpr int kFullPosition = 61440;
constexpr std::size_t kLastFound = 15;

void ContinueLastSegment(GasTable& table) {
  table[16] = table[15] - (table[14] - table[15]);
}

}  // namespace

float GasCurve::At(float c) const {
  const double dk = k;
  const double db = b;
  const double y = a1 * std::exp(dk * c) + a2 * std::exp(dk * db * c) + a3 * std::exp(dk * db * db * c) +
                   1.0 - a1 - a2 - a3;
  const auto single = static_cast<float>(y);
  if (!std::isfinite(single)) throw NoResult("The curve has no value at this concentration");
  return single;
}

GasTable NormalisedTable(const GasCurve& curve, float fullScale, const std::function<void()>& pass) {
  const float yFull = curve.At(fullScale);
  const double range = 1.0 - yFull;
  if (range == 0) throw NoResult("The curve does not fall up to full scale");
  GasTable table{};
  for (int x = kFullPosition; x >= 0; x -= kSegment) {
    const auto found = Bisect(
        kFirstGuess, kFirstStep,
        [&](float c) {
          const double n = std::trunc((static_cast<double>(curve.At(c)) - yFull) / range * kFullPosition);
          return x > n ? -1 : x < n ? 1 : 0;
        },
        pass);
    table[static_cast<std::size_t>(x / kSegment)] = std::trunc(found.x) + kTableOffset;
  }
  ContinueLastSegment(table);
  return table;
}

std::optional<GasTable> SteppedTable(const GasCurve& curve, float yFull, const std::function<void()>& pass) {
  GasTable table{};
  for (std::size_t i = 0; i <= kLastFound; ++i) {
    const auto target = static_cast<float>(1.0 - static_cast<double>(kLastFound - i) * yFull / kLastFound);
    const auto found = Bisect(
        kFirstGuess, kFirstStep,
        [&](float c) {
          const float y = curve.At(c);
          return y > target ? 1 : y < target ? -1 : 0;
        },
        pass);
    if (!found.exact) return {};
    table[i] = std::trunc(found.x) + kTableOffset;
  }
  ContinueLastSegment(table);
  return table;
}

}  // namespace brelant
