// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace brelant {

/// Exit statuses of the program.
inline constexpr int kDone = 0;
inline constexpr int kFailed = 1;
inline constexpr int kMakesNoSense = 2;

}  // namespace brelant
