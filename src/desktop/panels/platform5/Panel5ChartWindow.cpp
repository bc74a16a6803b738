// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/platform5/Panel5ChartWindow.h"

#include <QCheckBox>

#include "desktop/kit/Card.h"
#include "desktop/kit/LiveTile.h"
#include "desktop/kit/bind.h"
#include "desktop/kit/fields.h"
#include "desktop/kit/make.h"
#include "desktop/kit/text.h"
#include "desktop/panels/header.h"
#include "desktop/panels/platform5/AlarmTable.h"
#include "panels/frm5Chart.h"

namespace brelant {

namespace {

constexpr double kNumberSize = 4.5;
constexpr double kStateSize = 1.3;

}  // namespace

Panel5ChartWindow::Panel5ChartWindow(Panel& panel, Acts& acts) : PanelWindow(panel, acts) {
  auto& layout = LayOutPanel(views_, panel, {{&views_("lblDisplayMode"), "Display mode"}}, *centralWidget());
  AddTiles(AddRow(layout, 10));
  layout.addWidget(&Make<platform5::AlarmTable>(*centralWidget(), views_), 1);
  AddOptions(layout);
}

void Panel5ChartWindow::AddTiles(QBoxLayout& layout) {
  auto& ground = *centralWidget();
  for (int i = 0; i < frm5Chart::kLiveValues; ++i) {
    auto& value = views_("txbCHact", i);
    const LiveTile::Controls controls{views_("lblCH_Name", i), value, value, &views_("lblCH_Type", i)};
    layout.addWidget(&Make<LiveTile>(ground, views_, controls, QString(), kNumberSize), 1);
  }
}

void Panel5ChartWindow::AddOptions(QBoxLayout& layout) {
  auto& card = Make<Card>(*centralWidget());
  layout.addWidget(&card);
  auto& row = LayOut<QHBoxLayout>(card, 10);
  row.setContentsMargins(14, 8, 14, 8);
  auto& average = Make<QCheckBox>(card);
  Bind(views_, views_("cbxTWAonP0"), average, {'T'});
  row.addWidget(&average);
  row.addStretch();
  auto& caption = views_("lblKELActTempAenable");
  AddLabel(views_, caption, 0, card, row);
  auto& state = MakeNumber(
      views_, views_("txbKELActTempAenable"), Digits(card, 14), [&caption] { return TextOf(caption); }, card);
  state.setAlignment(Qt::AlignCenter);
  // Green on the ground of fields takes a large letter.
  ScaleFont(state, kStateSize, QFont::Bold);
  row.addWidget(&state);
}

}  // namespace brelant
