// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/platform61/Panel61Window.h"

#include "desktop/kit/LiveTile.h"
#include "desktop/kit/make.h"
#include "desktop/panels/alarms/StatusLine.h"
#include "desktop/panels/header.h"
#include "desktop/panels/platform61/AlarmRowTable.h"
#include "desktop/panels/platform61/FixedAlarmTable.h"
#include "panels/frm61.h"

namespace brelant {

namespace {

constexpr int kSpacing = 10;
constexpr double kNumberSize = 6;

}  // namespace

Panel61Window::Panel61Window(Panel& panel, Acts& acts) : PanelWindow(panel, acts) {
  auto& ground = *centralWidget();
  auto& layout = LayOutPanel(views_, panel, FourDisplays(views_), ground);
  AddTiles(AddRow(layout, kSpacing));
  AddStatus(layout);
  AddFace<platform61::FixedAlarmTable>("pctAlarm061", layout);
  AddFace<platform61::AlarmRowTable>("pctAlarm07", layout);
}

void Panel61Window::AddTiles(QBoxLayout& layout) {
  auto& ground = *centralWidget();
  for (int i = 0; i < frm61::kLiveValues; ++i) {
    auto& presence = views_("pctChannel", i);
    const LiveTile::Controls controls{views_("lblCH_Name", i), views_("txbCHact", i), presence,
                                      &views_("lblCH_Type", i)};
    auto& tile = Make<LiveTile>(ground, views_, controls, QString(), kNumberSize);
    tile.setObjectName(QString::fromStdString(presence.Name()));
    layout.addWidget(&tile, 1);
  }
}

void Panel61Window::AddStatus(QBoxLayout& layout) {
  constexpr int kLines = 2;
  const alarms::StatusLine::Controls controls{&views_("lblCH_Name(5)"), views_("txbCHact(5)")};
  auto& status = Make<alarms::StatusLine>(*centralWidget(), views_, controls, QString(), kLines);
  layout.addWidget(&status);
  ShowWith("pctChannel(5)", status);
}

template <typename View>
void Panel61Window::AddFace(const std::string& presence, QBoxLayout& layout) {
  auto& view = Make<View>(*centralWidget(), views_);
  layout.addWidget(&view, 1);
  ShowWith(presence, view);
}

void Panel61Window::ShowWith(const std::string& presence, QWidget& view) {
  const auto& picture = views_(presence);
  view.setObjectName(QString::fromStdString(presence));
  // A load or a read may have brought another sensor.
  views_.OnRefresh([&view, &picture] { SetShown(view, picture.Visible()); });
}

}  // namespace brelant
