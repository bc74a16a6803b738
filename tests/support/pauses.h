// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <ostream>

#include <gmock/gmock.h>

namespace brelant::test {

/// A pause is never shorter than its rule, and nothing is gained by more than a millisecond above it.
MATCHER_P(Lasts, rule, std::to_string(std::chrono::microseconds(rule).count()) + " us or up to 1 ms more") {
  *result_listener << "which is " << arg.count() << " us";
  return arg >= rule && arg < rule + std::chrono::milliseconds(1);
}

}  // namespace brelant::test
