// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <numeric>

#include "support/scripted_port.h"

namespace brelant::test {

/// A message frame of these bytes: with their sum behind them.
inline Bytes Framed(Bytes bytes) {
  bytes.push_back(static_cast<std::uint8_t>(std::accumulate(bytes.begin(), bytes.end(), 0) & 255));
  return bytes;
}

}  // namespace brelant::test
