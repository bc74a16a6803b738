// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/platform61/transfers.h"

#include <algorithm>
#include <array>
#include <span>

namespace brelant::platform61 {

namespace {

struct Stretch {
  float address;
  std::uint8_t count;
};
constexpr Stretch kId{16, 1};
constexpr Stretch kAlarmRows{834, 24};
constexpr Stretch kSerial{998, 3};
constexpr Stretch kAlarmChannels{925, 8};
constexpr Stretch kLayout{1023, 1};
constexpr Stretch kDisplay{385, 4};
constexpr Stretch kLive{20, 6};
constexpr Stretch kSignal{40, 4};
constexpr Stretch kStatus{67, 1};
constexpr Stretch kAlarms{210, 1};

/// The port stays open between the reads.
bool ReadLive(snscom& com, std::span<const Stretch> order) {
  return std::all_of(order.begin(), order.end(), [&](const Stretch& stretch) {
    const bool isLast = &stretch == &order.back();
    return com.ReadSensorMemory(0, stretch.address, stretch.count, false, !isLast);
  });
}

}  // namespace

bool ReadSettingsOf7(snscom& com) {
  static constexpr std::array kOrder{kId, kAlarmRows, kSerial, kAlarmChannels, kDisplay};
  return std::all_of(kOrder.begin(), kOrder.end(), [&](const Stretch& stretch) {
    return com.ReadSensorMemory(0, stretch.address, stretch.count, true, false);
  });
}

bool WriteSettingsOf7(snscom& com) {
  static constexpr std::array kOrder{kId, kAlarmRows, kAlarmChannels, kLayout, kDisplay};
  return std::all_of(kOrder.begin(), kOrder.end(), [&](const Stretch& stretch) {
    return com.WriteSensorMemory(0, stretch.address, stretch.count, true, true, false, true, true, false);
  });
}

bool ReadLiveOf61(snscom& com) {
  static constexpr std::array kOrder{kLive, kSignal, kStatus};
  return ReadLive(com, kOrder);
}

bool ReadLiveOf7(snscom& com) {
  static constexpr std::array kOrder{kLive, kStatus, kAlarms};
  return ReadLive(com, kOrder);
}

}  // namespace brelant::platform61
