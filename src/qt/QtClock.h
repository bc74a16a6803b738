// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/clock.h"

namespace brelant {

/// The machine's clock, counting from its own construction.
class QtClock : public Clock {
 public:
  std::chrono::microseconds Now() const override;
  std::int32_t GetTickCount() const override;
  double Timer() const override;
  std::int64_t LocalTime() const override;

 private:
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

}  // namespace brelant
