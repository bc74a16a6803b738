// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/alarms/AlarmMatrix.h"

#include <QPainter>
#include <array>

#include "desktop/Appearance.h"
#include "desktop/kit/make.h"
#include "desktop/kit/text.h"

namespace brelant::alarms {

namespace {

constexpr std::array kRelays{"cbxKelrelay", "cbxKelrelay2"};
constexpr int kSpacing = 4;
constexpr double kNoAlarmSize = 1.3;
constexpr double kTickSize = 1.4;

}  // namespace

AlarmMatrix::AlarmMatrix(Views& views, const Plan& plan, QWidget* parent) : AlarmGrid(parent) {
  // Before there is anything inside, so that all of it follows.
  ScaleFont(*this, plan.size);
  Grid().setVerticalSpacing(kSpacing);
  AddHeads();
  for (const auto& alarm : plan.rows) AddRow(views, alarm, Grid().rowCount());
  if (plan.noAlarmBox) AddNoAlarm(views, *plan.noAlarmBox, Grid().rowCount());
}

void AlarmMatrix::AddHeads() {
  constexpr std::array kHeads{"Alarm", "State", "Level", "", "Relay 1", "Relay 2"};
  for (std::size_t i = 0; i < kHeads.size(); ++i) {
    auto& head = Make<QLabel>(*this, kHeads.at(i));
    ScaleFont(head, 1, QFont::Bold);
    Grid().addWidget(&head, 0, static_cast<int>(i), i == 0 ? Qt::AlignLeft : Qt::AlignHCenter);
  }
  for (std::size_t relay = 0; relay < kRelays.size(); ++relay) {
    Grid().setColumnMinimumWidth(kFurther + static_cast<int>(relay), Digits(*this, 12));
  }
}

void AlarmMatrix::AddRow(Views& views, const Row& alarm, int row) {
  const auto& [index, caption, box] = alarm;
  AddAlarm(views,
           {caption, views("txbStatus", index), views("txbKelLevel", index), views("lblFKelunit", index)},
           row);
  AddTicks(views, TextOf(caption), box, row);
}

/// Has no state and no level: only the places of a relay's list that hold no alarm.
void AlarmMatrix::AddNoAlarm(Views& views, int box, int row) {
  Grid().setRowMinimumHeight(row, fontMetrics().height() * 2);
  auto& caption = Make<QLabel>(*this, "No alarm");
  ScaleFont(caption, kNoAlarmSize, QFont::DemiBold);
  Grid().addWidget(&caption, row, 0);
  auto& meaning = Make<QLabel>(*this, "ticked: the relay has places without an alarm");
  Grid().addWidget(&meaning, row, 1, 1, kFurther - 1);
  AddTicks(views, caption.text(), box, row);
}

void AlarmMatrix::AddTicks(Views& views, const QString& alarm, int box, int row) {
  for (std::size_t relay = 0; relay < kRelays.size(); ++relay) {
    auto& tick = MakeTick(views, views(kRelays.at(relay), box));
    ScaleFont(tick, kTickSize);
    tick.setAccessibleName(QString("%1, relay %2").arg(alarm).arg(relay + 1));
    tick.setToolTip(tick.accessibleName());
    Grid().addWidget(&tick, row, kFurther + static_cast<int>(relay), Qt::AlignCenter);
  }
}

/// Lines between what stands in the grid, so that the eye finds the relay of an alarm.
void AlarmMatrix::paintEvent(QPaintEvent* event) {
  AlarmGrid::paintEvent(event);
  QPainter painter(this);
  painter.setPen(QPen(InkOf(palette()).faint, 1));
  const int last = Grid().rowCount() - 1;
  const auto inside = Grid().contentsRect();
  for (int row = 0; row < last; ++row) {
    const auto cell = Grid().cellRect(row, 0);
    const double y = cell.bottom() + 1 + kSpacing / 2.0;
    if (cell.height() > 0) painter.drawLine(QPointF(inside.left(), y), QPointF(inside.right(), y));
  }
  for (std::size_t relay = 0; relay < kRelays.size(); ++relay) {
    const auto cell = Grid().cellRect(0, kFurther + static_cast<int>(relay));
    const double x = cell.left() - Grid().horizontalSpacing() / 2.0;
    painter.drawLine(QPointF(x, inside.top()), QPointF(x, inside.bottom()));
  }
}

}  // namespace brelant::alarms
