// SPDX-License-Identifier: GPL-3.0-or-later
#include "qt/QtClock.h"

#include <QDateTime>
#include <QTime>

namespace brelant {

using std::chrono::duration_cast;
using std::chrono::microseconds;
using std::chrono::milliseconds;

microseconds QtClock::Now() const {
  return duration_cast<microseconds>(std::chrono::steady_clock::now() - start_);
}

std::int32_t QtClock::GetTickCount() const {
  const auto ticks = duration_cast<milliseconds>(Now()).count();
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(ticks));
}

double QtClock::Timer() const {
  return QTime::currentTime().msecsSinceStartOfDay() / 1000.0;
}

std::int64_t QtClock::LocalTime() const {
  const auto now = QDateTime::currentDateTime();
  return QDateTime(now.date(), now.time(), Qt::UTC).toSecsSinceEpoch();
}

}  // namespace brelant
