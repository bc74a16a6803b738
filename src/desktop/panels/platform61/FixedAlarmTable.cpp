// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/platform61/FixedAlarmTable.h"

#include <QToolButton>

#include "desktop/kit/bind.h"
#include "desktop/kit/make.h"
#include "desktop/kit/text.h"
#include "panels/platform61/FixedAlarms.h"

namespace brelant::platform61 {

namespace {

constexpr int kFirstRow = 1;
constexpr const char* kNote = "Not stored in the sensor";

}  // namespace

FixedAlarmTable::FixedAlarmTable(Views& views, QWidget* parent) : AlarmGrid(parent) {
  for (int i = 0; i < FixedAlarms::kAlarms; ++i) {
    const int row = kFirstRow + i;
    AddAlarm(views,
             {views("lblAlarm061", i), views("txbAlarm061Status", i), views("txbAlarm061Level", i),
              views("lblAlarm061Unit", i)},
             row);
    // Room for what joins the ticks, between them.
    Grid().setRowMinimumHeight(row, fontMetrics().height() * 7 / 2);
    Grid().setRowStretch(row, 1);
  }
  AddOutput(views, {"lblOC3", "cbxOC3", "lblAlarm061Logic1"}, kFurther);
  AddOutput(views, {"lblOC4", "cbxOC4", "lblAlarm061Logic2"}, kFurther + 1);
  AddNote();
}

void FixedAlarmTable::AddOutput(Views& views, const Output& output, int column) {
  auto& caption = views(output.caption);
  Grid().addWidget(&alarms::MakeCaption(views, caption, *this), 0, column, Qt::AlignHCenter);
  for (int i = 0; i < FixedAlarms::kAlarms; ++i) {
    auto& tick = MakeTick(views, views(output.tick, i));
    tick.setAccessibleName(TextOf(views("lblAlarm061", i)) + " " + TextOf(caption));
    tick.setAccessibleDescription(kNote);
    Grid().addWidget(&tick, kFirstRow + i, column, Qt::AlignCenter);
    if (i < FixedAlarms::kLinks) AddLogic(views, caption, views(output.logic, i), i, column);
  }
}

/// Stands half way between the ticks that it joins.
void FixedAlarmTable::AddLogic(Views& views, const Control& caption, Control& logic, int index, int column) {
  auto& button = Make<QToolButton>(*this);
  button.setFixedWidth(Digits(button, 7));
  button.setAccessibleDescription(kNote);
  Bind(views, logic, button);
  views.OnRefresh([&button, &caption, &logic] {
    button.setAccessibleName(TextOf(caption) + ", alarms joined by " + TextOf(logic));
    button.setToolTip(button.accessibleName());
  });
  Grid().addWidget(&button, kFirstRow + index, column, 2, 1, Qt::AlignCenter);
}

void FixedAlarmTable::AddNote() {
  auto& note = Make<QLabel>(*this, kNote);
  Grid().addWidget(&note, kFirstRow + FixedAlarms::kAlarms, kFurther, 1, 2, Qt::AlignHCenter);
}

}  // namespace brelant::platform61
