// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/alarms/AlarmGrid.h"

#include <utility>

#include "desktop/kit/StatusLamp.h"
#include "desktop/kit/bind.h"
#include "desktop/kit/fields.h"
#include "desktop/kit/make.h"
#include "desktop/kit/text.h"

namespace brelant::alarms {

namespace {

constexpr double kCaptionSize = 1.3;
/// On top of what a number field has.
constexpr double kLevelSize = 1.4;

enum Column { caption, state, level, unit };

}  // namespace

QLabel& MakeCaption(Views& views, Control& caption, QWidget& parent) {
  auto& label = Make<QLabel>(parent);
  ScaleFont(label, kCaptionSize, QFont::DemiBold);
  Bind(views, caption, label);
  return label;
}

QLineEdit& MakeLevel(Views& views, Control& level, SpokenName name, QWidget& parent) {
  auto& number = MakeNumber(views, level, 0, std::move(name), parent);
  ScaleFont(number, kLevelSize);
  number.setFixedWidth(Digits(number, 8));
  return number;
}

QLabel& MakeUnit(Views& views, Control& unit, QWidget& parent) {
  auto& label = Make<QLabel>(parent);
  ScaleFont(label, kCaptionSize);
  label.setFixedWidth(Digits(label, 5));
  Bind(views, unit, label);
  return label;
}

AlarmGrid::AlarmGrid(QWidget* parent) : Card(parent), grid_(&LayOut<QGridLayout>(*this, 8)) {
  grid_->setContentsMargins(14, 10, 14, 10);
  grid_->setHorizontalSpacing(16);
  grid_->setColumnStretch(caption, 2);
  grid_->setColumnStretch(state, 3);
  grid_->setColumnStretch(level, 1);
}

void AlarmGrid::AddAlarm(Views& views, const Controls& alarm, int row) {
  grid_->addWidget(&MakeCaption(views, alarm.caption, *this), row, caption);
  const auto spoken = [alarm] { return TextOf(alarm.caption); };
  grid_->addWidget(&Make<StatusLamp>(*this, views, alarm.state, spoken), row, state);
  const auto ofLevel = [alarm] { return TextOf(alarm.caption) + " level, " + TextOf(alarm.unit); };
  grid_->addWidget(&MakeLevel(views, alarm.level, ofLevel, *this), row, level,
                   Qt::AlignRight | Qt::AlignVCenter);
  grid_->addWidget(&MakeUnit(views, alarm.unit, *this), row, unit);
}

QCheckBox& AlarmGrid::MakeTick(Views& views, Control& tick) {
  auto& check = Make<QCheckBox>(*this);
  ScaleFont(check, kCaptionSize);
  Bind(views, tick, check);
  return check;
}

}  // namespace brelant::alarms
