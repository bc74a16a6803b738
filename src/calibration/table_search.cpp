// SPDX-License-Identifier: GPL-3.0-or-later
#include "calibration/table_search.h"

#include <array>
#include <cmath>

namespace brelant {

namespace {

constexpr GasCurve kCurveA{0.115081F, -0.00185441F, 0.42264F, 0.114645F, 0.2415F};
constexpr GasCurve kCurveB{0.0717408F, -0.00995154F, 0.218223F, 0.194551F, 0.386614F};
constexpr GasCurve kCurveC{0.124038F, -0.00162505F, 0.390136F, 0.130051F, 0.213468F};
constexpr GasCurve kCurveD{0.0514902F, -0.01291F, 0.178395F, 0.173295F, 0.480166F};

constexpr double kZeroGas = 61440;
constexpr double kOne = 2048;
constexpr int kSegment = 4096;
constexpr int kFirstSearched = 57344;
constexpr float kFirstStep = 100;
constexpr float kCloseEnough = 0.0001F;
constexpr float kHighest = 9999;
constexpr const char* kNoGas = "The sensor sees no span gas";

float Finite(double value, const char* what) {
  const auto single = static_cast<float>(value);
  if (!std::isfinite(single)) throw NoResult(what);
  return single;
}

/// Goes on from the concentration of the position before, as they rise from position to position.
float SearchConcentration(const GasCurve& curve, float exponent, float target, float c,
                          const std::function<void()>& pass) {
  float step = kFirstStep;
  float direction = 1;
  while (true) {
    pass();
    const float d = Finite(std::exp(std::log(double{curve.At(c)}) * exponent) - target,
                           "The table search has no value at this concentration");
    if (std::abs(d) < kCloseEnough) return c;
    if ((d > 0 && direction < 0) || (d < 0 && direction > 0)) {
      step /= 2;
      direction = -direction;
    }
    const float next = c + step * direction;
    if (next > kHighest) return next;
    if (next == c) throw NoResult("The table search does not come to an end");
    c = next;
  }
}

}  // namespace

std::optional<GasCurve> CurveOfType(std::uint8_t type) {
  switch (type) {
    case 1:
      return kCurveA;
    case 2:
      return kCurveB;
    case 9:
      return kCurveC;
    default:
      return {};
  }
}

SpanCurve CurveOfNibble(int nibble) {
  switch (nibble) {
    case 0:
      return {kCurveA, 2};
    case 1:
      return {kCurveB, 1};
    case 2:
      return {kCurveC, 2};
    case 3:
      return {kCurveD, 1};
    default:
      return {};
  }
}

float MeasuredTransmission(const Measurement& measured) {
  if (measured.scale == 0) throw NoResult("Can't compute the calibration, the scale factor is 0");
  const double position = double{measured.zeroWord} * measured.signal / kOne;
  const double correction =
      (double{measured.tempCoefficient} * measured.tempDeviation + kOne) / (kOne / measured.scale);
  const auto s = static_cast<float>(kZeroGas - (kZeroGas - position) * correction);
  return Finite(((measured.scale - 1) + s / kZeroGas) / measured.scale,
                "Can't compute the calibration from the sensor's signal");
}

GasTable SpanTable(const SpanCurve& curve, float transmission, float span, float offset,
                   const std::function<void()>& pass) {
  const double atSpan = std::log(double{curve.curve.At(span)});
  if (span <= 0 || atSpan == 0) throw NoResult("Can't calibrate with this concentration");
  // As much as without gas, or more: there is no curve through that.
  if (transmission >= 1) throw NoResult(kNoGas);
  const float exponent = Finite(std::log(double{transmission}) / atSpan,
                                "Can't compute the calibration from the sensor's signal");

  GasTable table{};
  float c = 0;
  for (int x = kFirstSearched; x >= 0; x -= kSegment) {
    const auto target = static_cast<float>(((curve.scale - 1) + x / kZeroGas) / curve.scale);
    c = SearchConcentration(curve.curve, exponent, target, c, pass);
    if (x == kFirstSearched && c > kHighest) throw NoResult(kNoGas);
    table[static_cast<std::size_t>(x / kSegment)] = std::trunc(c) + offset;
  }
  table[15] = offset;
  table[16] = table[15] - (table[14] - table[15]);
  return table;
}

}  // namespace brelant
