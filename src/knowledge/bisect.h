// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

namespace brelant {

/// Where a search by halved steps ended, and whether it met what it looked for.
struct Bisection {
  float x = 0;
  bool exact = false;
};

/// Moves x by a step that halves at every turn until it is 0 in single precision. `direction` gives +1 or -1
/// for the x of the turn, or 0 to end the search there; `pass` is called before it.
template <typename Direction>
Bisection Bisect(float x, float step, Direction direction, const std::function<void()>& pass) {
  Bisection found{x};
  for (; step != 0 && !found.exact; step /= 2) {
    pass();
    const int sign = direction(found.x);
    found.x += static_cast<float>(sign) * step;
    found.exact = sign == 0;
  }
  return found;
}

}  // namespace brelant
