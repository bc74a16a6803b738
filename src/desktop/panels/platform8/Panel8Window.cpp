// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/platform8/Panel8Window.h"

#include <QPushButton>

#include "desktop/kit/bind.h"
#include "desktop/kit/make.h"
#include "safety/frm8Chart.h"

namespace brelant {

namespace {

// There is room for larger ones than on the safety system's panel.
constexpr double kNumberSize = 6;
constexpr double kAlarmSize = 1.25;

}  // namespace

Panel8Window::Panel8Window(Panel& panel, Acts& acts) : UnitWindow(panel, acts) {
  auto& options = LayOutUnit(panel, ThePlan());
  auto& exit = Make<QPushButton>(*centralWidget());
  Bind(views_, views_("Command1"), exit, {'x'});
  options.addWidget(&exit);
}

UnitWindow::Plan Panel8Window::ThePlan() const {
  // CO2, its average, temperature: in the order of their alarms.
  Plan plan{{{1, 1}, {2, 2}, {0, 0}}, kNumberSize, {{}, {}, kAlarmSize}, "ID, relays, display and P0"};
  constexpr Tile kWeight{6, 5};
  if (views_.Model().Find("txbCHact(5)") != nullptr) plan.tiles.push_back(kWeight);
  for (int i = 0; i < frm8Chart::kAlarms; ++i) {
    plan.alarms.rows.push_back({i, views_("lblStatus", i), i});
  }
  return plan;
}

}  // namespace brelant
