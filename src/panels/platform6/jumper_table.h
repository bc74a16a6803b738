// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <functional>
#include <optional>

namespace brelant::platform6 {

/// The ends of the six functions of a panel in the units of their channels, counted from 1.
class FunctionEnds {
 public:
  float& A(int index) { return a_.at(static_cast<std::size_t>(index - 1)); }
  float& B(int index) { return b_.at(static_cast<std::size_t>(index - 1)); }
  float A(int index) const { return a_.at(static_cast<std::size_t>(index - 1)); }
  float B(int index) const { return b_.at(static_cast<std::size_t>(index - 1)); }

  /// Percent that a function gives at x: -100 to 100 for functions 1 to 3, 0 to 100 for 4 to 6, which stand
  /// on function 1. 0 where the ends of a function are equal.
  double GetFunkResult(int index, double x) const;

 private:
  std::array<float, 6> a_{};
  std::array<float, 6> b_{};
};

/// The corner points of the relation of two outputs, by the last letters of their fields
/// (docs/memory-maps.md, Platform 6).
struct JumperCorners {
  float A = 0;
  /// B, E and K are searched for: nothing if the search ended without a number.
  std::optional<float> B;
  float C = 0;
  float D = 0;
  std::optional<float> E;
  float F = 0;
  float G = 0;
  float I = 0;
  std::optional<float> K;
};

using Pass = std::function<void()>;

/// The corner points that the functions make.
JumperCorners CornersOf(const FunctionEnds& ends, float jumperOffset, const Pass& pass);

struct JumperSettings {
  FunctionEnds ends;
  float jumperOffset = 0;
};

/// The functions that make the corner points. B, E and K must be there. Throws NoResult if C is 0.
JumperSettings SettingsOf(const JumperCorners& corners, const Pass& pass);

}  // namespace brelant::platform6
