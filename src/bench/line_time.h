// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <ratio>

namespace brelant::bench {

/// Time on the line in thirds of a microsecond: a byte at 9600 bit/s is then a whole number of them, and
/// nothing adds up however long the sensor runs.
using LineTime = std::chrono::duration<std::int64_t, std::ratio<1, 3'000'000>>;

/// One start bit, eight data bits and one stop bit at 9600 bit/s.
inline constexpr LineTime kByteAt9600{3125};

}  // namespace brelant::bench
