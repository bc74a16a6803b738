// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/platform5/AlarmTable.h"

#include "desktop/kit/text.h"
#include "panels/frm5Chart.h"

namespace brelant::platform5 {

AlarmTable::AlarmTable(Views& views, QWidget* parent) : AlarmGrid(parent) {
  for (int i = 0; i < frm5Chart::kLevels; ++i) {
    AddAlarm(views,
             {views("lblStatus", i), views("txbStatus", i), views("txbKelLevel", i), views("lblFKelunit", i)},
             i);
    AddRelay(views, i);
  }
}

void AlarmTable::AddRelay(Views& views, int index) {
  auto& relay = MakeTick(views, views("cbxKelrelay", index));
  relay.setAccessibleName(TextOf(views("lblStatus", index)) + " " + relay.text());
  Grid().addWidget(&relay, index, kFurther);
}

}  // namespace brelant::platform5
