// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/safety/SafetyWindow.h"

#include <QCheckBox>
#include <array>

#include "desktop/kit/ActivityLamp.h"
#include "desktop/kit/LiveTile.h"
#include "desktop/kit/bind.h"
#include "desktop/kit/fields.h"
#include "desktop/kit/make.h"
#include "desktop/kit/text.h"
#include "desktop/panels/alarms/StatusLine.h"
#include "desktop/panels/header.h"
#include "desktop/panels/safety/AlarmMatrix.h"
#include "safety/panel_plan.h"

namespace brelant {

namespace {

constexpr int kSpacing = 10;
constexpr double kNumberSize = 4.5;

/// The places of the channels, in the order of their alarms.
constexpr std::array<std::size_t, z7731::kChannels.size()> kOrder{2, 1, 0, 3, 4};

}  // namespace

SafetyWindow::SafetyWindow(Panel& panel, Acts& acts) : PanelWindow(panel, acts) {
  auto& ground = *centralWidget();
  auto& layout = LayOutPanel(views_, panel, FourDisplays(views_, "lblDisplayMode"), ground);
  auto& middle = AddRow(layout, kSpacing);
  layout.setStretchFactor(&middle, 1);
  auto& tiles = *std::make_unique<QVBoxLayout>().release();
  tiles.setSpacing(kSpacing);
  middle.addLayout(&tiles, 1);
  AddTiles(tiles);
  middle.addWidget(&Make<z7731::AlarmMatrix>(ground, views_), 2);
  AddOptions(AddRow(layout, kSpacing));
}

void SafetyWindow::AddTiles(QBoxLayout& layout) {
  for (const auto index : kOrder) {
    const auto& place = z7731::kChannels.at(index);
    auto& value = views_("txbCHact", place.field);
    const LiveTile::Controls controls{views_("lblCH_Name", place.name), value, value,
                                      &views_("lblCH_Type", place.field)};
    layout.addWidget(&Make<LiveTile>(*centralWidget(), views_, controls, QString(), kNumberSize), 1);
  }
}

void SafetyWindow::AddOptions(QBoxLayout& layout) {
  auto& ground = *centralWidget();
  const alarms::StatusLine::Controls state{nullptr, views_("txbKELActTempAenable")};
  layout.addWidget(&Make<alarms::StatusLine>(ground, views_, state, "Temperature alarms", 1));
  auto& average = Make<QCheckBox>(ground);
  Bind(views_, views_("cbxTWAonP0"), average, {'T'});
  layout.addWidget(&average);
  layout.addStretch();
  AddCaption("Relays, display and P0 reach the unit with the next level, or with \"Send to sensor\".", ground,
             layout);
  layout.addSpacing(kSpacing);
  layout.addWidget(&Make<ActivityLamp>(ground, views_, views_("picFlash")));
}

}  // namespace brelant
