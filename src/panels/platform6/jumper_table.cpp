// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/platform6/jumper_table.h"

#include <algorithm>
#include <cmath>

#include "knowledge/bisect.h"
#include "knowledge/gas_curve.h"

namespace brelant::platform6 {

namespace {

constexpr int kTwoSided = 3;
constexpr double kFull = 100;

int Sign(double difference) {
  return difference > 0 ? 1 : difference < 0 ? -1 : 0;
}

/// The x at which `result`, which rises with it, meets the target.
template <typename Result>
std::optional<float> SearchFor(double target, Result result, const Pass& pass) {
  constexpr float kFirstStep = 9999;
  const auto found = Bisect(
      0.0F, kFirstStep, [&](float x) { return Sign(target - result(x)); }, pass);
  if (!std::isfinite(found.x) || !std::isfinite(result(found.x))) return {};
  return found.x;
}

float Middle(const FunctionEnds& ends, int index) {
  return ends.B(index) - (ends.B(index) - ends.A(index)) / 2;
}

/// End B of function 4 such that the two functions together are full at that corner.
void FitFunction4(FunctionEnds& ends, float corner, const Pass& pass) {
  constexpr float kFirstStep = 50;
  const auto direction = [&](float b) {
    ends.B(4) = b;
    return Sign(ends.GetFunkResult(4, corner) + ends.GetFunkResult(1, corner) - kFull);
  };
  ends.B(4) = Bisect(static_cast<float>(kFull), kFirstStep, direction, pass).x;
}

/// The same for function 5 with function 2, which ends close to full too: after the step of that turn.
void FitFunction5(FunctionEnds& ends, float corner, const Pass& pass) {
  constexpr float kFirstStep = 250;
  constexpr double kClose = 0.0001;
  ends.B(5) = ends.A(5) + 1;
  for (float step = kFirstStep; step != 0; step /= 2) {
    pass();
    const double result = ends.GetFunkResult(5, corner) + ends.GetFunkResult(2, corner);
    ends.B(5) += static_cast<float>(Sign(result - kFull)) * step;
    if (result > kFull - kClose && result < kFull + kClose) return;
  }
}

float FitOffset(const FunctionEnds& ends, float corner, const Pass& pass) {
  constexpr float kFirstStep = 100;
  const auto direction = [&](float offset) {
    return Sign(ends.GetFunkResult(1, corner) - offset - ends.B(6));
  };
  return Bisect(0.0F, kFirstStep, direction, pass).x;
}

}  // namespace

double FunctionEnds::GetFunkResult(int index, double x) const {
  const double a = A(index);
  const double b = B(index);
  if (a == b) return 0;
  if (index <= kTwoSided) return std::clamp((x - a) / (b - a) * 2 * kFull - kFull, -kFull, kFull);
  return std::clamp((GetFunkResult(1, x) - a) / (b - a) * kFull, 0.0, kFull);
}

JumperCorners CornersOf(const FunctionEnds& ends, float jumperOffset, const Pass& pass) {
  // Both searches look at functions 4 and 1.
  const auto sum = [&](float x) { return ends.GetFunkResult(4, x) + ends.GetFunkResult(1, x); };
  const auto moved = [&](float x) { return ends.GetFunkResult(1, x) - jumperOffset; };
  JumperCorners corners;
  corners.A = Middle(ends, 1);
  corners.B = SearchFor(kFull, sum, pass);
  corners.C = ends.B(1);
  corners.D = Middle(ends, 2);
  corners.E = SearchFor(kFull, sum, pass);
  corners.F = ends.B(2);
  corners.G = ends.B(3);
  corners.I = static_cast<float>(ends.B(6) / kFull * ends.B(1));
  corners.K = SearchFor(ends.B(6), moved, pass);
  return corners;
}

JumperSettings SettingsOf(const JumperCorners& corners, const Pass& pass) {
  if (corners.C == 0) throw NoResult("Can't compute the functions, C is 0");
  const auto percentOfC = [&](float value) { return static_cast<float>(value / double{corners.C} * kFull); };
  JumperSettings settings;
  auto& ends = settings.ends;
  ends.B(1) = corners.C;
  ends.A(1) = -corners.C;
  ends.B(2) = corners.F;
  ends.A(2) = 2 * corners.D - corners.F;
  ends.B(3) = corners.G;
  ends.A(3) = corners.G - static_cast<float>(kFull);
  ends.A(4) = percentOfC(corners.A);
  FitFunction4(ends, corners.B.value(), pass);
  ends.A(5) = percentOfC(corners.D);
  FitFunction5(ends, corners.E.value(), pass);
  ends.B(6) = percentOfC(corners.I);
  ends.A(6) = percentOfC(corners.I - static_cast<float>(kFull));
  settings.jumperOffset = FitOffset(ends, corners.K.value(), pass);
  return settings;
}

}  // namespace brelant::platform6
