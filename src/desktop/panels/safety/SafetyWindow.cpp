// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/safety/SafetyWindow.h"

#include <array>

#include "safety/RelayBoxes.h"
#include "safety/panel_plan.h"

namespace brelant {

namespace {

constexpr double kNumberSize = 4.5;
/// The places of the channels, in the order of their alarms.
constexpr std::array<std::size_t, z7731::kChannels.size()> kChannels{2, 1, 0, 3, 4};
/// The alarms as they are read, by the index of their state.
constexpr std::array<int, z7731::kAlarms.size()> kAlarms{0, 1, 2, 3, 4, 7, 8, 5, 6};

}  // namespace

SafetyWindow::SafetyWindow(Panel& panel, Acts& acts) : UnitWindow(panel, acts) {
  LayOutUnit(panel, ThePlan());
}

UnitWindow::Plan SafetyWindow::ThePlan() const {
  Plan plan{{}, kNumberSize, {{}, RelayBoxes::kNoAlarm}, "Relays, display and P0"};
  for (const auto index : kChannels) {
    const auto& place = z7731::kChannels.at(index);
    plan.tiles.push_back({place.name, place.field});
  }
  for (const int index : kAlarms) {
    const auto& place = z7731::kAlarms.at(static_cast<std::size_t>(index));
    plan.alarms.rows.push_back({index, views_(place.label, place.box), place.box});
  }
  return plan;
}

}  // namespace brelant
