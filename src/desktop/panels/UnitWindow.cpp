// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/UnitWindow.h"

#include <QCheckBox>
#include <memory>

#include "desktop/kit/ActivityLamp.h"
#include "desktop/kit/LiveTile.h"
#include "desktop/kit/bind.h"
#include "desktop/kit/fields.h"
#include "desktop/kit/make.h"
#include "desktop/panels/alarms/StatusLine.h"
#include "desktop/panels/header.h"

namespace brelant {

namespace {

constexpr int kSpacing = 10;

}  // namespace

QBoxLayout& UnitWindow::LayOutUnit(Panel& panel, const Plan& plan) {
  auto& ground = *centralWidget();
  auto& layout = LayOutPanel(views_, panel, FourDisplays(views_, "lblDisplayMode"), ground);
  auto& middle = AddRow(layout, kSpacing);
  layout.setStretchFactor(&middle, 1);
  auto& tiles = *std::make_unique<QVBoxLayout>().release();
  tiles.setSpacing(kSpacing);
  middle.addLayout(&tiles, 1);
  AddTiles(plan, tiles);
  middle.addWidget(&Make<alarms::AlarmMatrix>(ground, views_, plan.alarms), 2);
  auto& options = AddRow(layout, kSpacing);
  AddOptions(plan.unsent, options);
  return options;
}

void UnitWindow::AddTiles(const Plan& plan, QBoxLayout& layout) {
  for (const auto& tile : plan.tiles) {
    auto& value = views_("txbCHact", tile.field);
    const LiveTile::Controls controls{views_("lblCH_Name", tile.name), value, value,
                                      &views_("lblCH_Type", tile.field)};
    layout.addWidget(&Make<LiveTile>(*centralWidget(), views_, controls, QString(), plan.numberSize), 1);
  }
}

void UnitWindow::AddOptions(const QString& unsent, QBoxLayout& layout) {
  auto& ground = *centralWidget();
  const alarms::StatusLine::Controls state{nullptr, views_("txbKELActTempAenable")};
  layout.addWidget(&Make<alarms::StatusLine>(ground, views_, state, "Temperature alarms", 1));
  auto& average = Make<QCheckBox>(ground);
  Bind(views_, views_("cbxTWAonP0"), average, {'T'});
  layout.addWidget(&average);
  layout.addStretch();
  AddCaption(unsent + " reach the unit with the next level, or with \"Send to sensor\".", ground, layout);
  layout.addSpacing(kSpacing);
  layout.addWidget(&Make<ActivityLamp>(ground, views_, views_("picFlash")));
}

}  // namespace brelant
