// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/platform5/AlarmTable.h"

#include <QCheckBox>

#include "desktop/kit/StatusLamp.h"
#include "desktop/kit/bind.h"
#include "desktop/kit/fields.h"
#include "desktop/kit/make.h"
#include "desktop/kit/text.h"
#include "panels/frm5Chart.h"

namespace brelant::platform5 {

namespace {

constexpr double kCaptionSize = 1.3;
/// On top of what a number field has.
constexpr double kLevelSize = 1.4;

enum Column { caption, state, level, unit, relay };

}  // namespace

AlarmTable::AlarmTable(Views& views, QWidget* parent) : Card(parent) {
  auto& grid = LayOut<QGridLayout>(*this, 8);
  grid.setContentsMargins(14, 10, 14, 10);
  grid.setHorizontalSpacing(16);
  grid.setColumnStretch(caption, 2);
  grid.setColumnStretch(state, 3);
  grid.setColumnStretch(level, 1);
  for (int index = 0; index < frm5Chart::kLevels; ++index) AddAlarm(views, index, grid);
}

void AlarmTable::AddAlarm(Views& views, int index, QGridLayout& grid) {
  auto& text = views("lblStatus", index);
  auto& label = Make<QLabel>(*this);
  ScaleFont(label, kCaptionSize, QFont::DemiBold);
  Bind(views, text, label);
  grid.addWidget(&label, index, caption);
  const auto spoken = [&text] { return TextOf(text); };
  grid.addWidget(&Make<StatusLamp>(*this, views, views("txbStatus", index), spoken), index, state);
  AddLevel(views, index, text, grid);
  auto& check = Make<QCheckBox>(*this);
  ScaleFont(check, kCaptionSize);
  Bind(views, views("cbxKelrelay", index), check);
  check.setAccessibleName(TextOf(text) + " " + check.text());
  grid.addWidget(&check, index, relay);
}

void AlarmTable::AddLevel(Views& views, int index, const Control& caption, QGridLayout& grid) {
  auto& unitControl = views("lblFKelunit", index);
  const auto spoken = [&caption, &unitControl] { return TextOf(caption) + " level, " + TextOf(unitControl); };
  auto& number = MakeNumber(views, views("txbKelLevel", index), 0, spoken, *this);
  ScaleFont(number, kLevelSize);
  number.setFixedWidth(Digits(number, 8));
  grid.addWidget(&number, index, level, Qt::AlignRight | Qt::AlignVCenter);
  auto& label = Make<QLabel>(*this);
  ScaleFont(label, kCaptionSize);
  label.setFixedWidth(Digits(label, 5));
  Bind(views, unitControl, label);
  grid.addWidget(&label, index, unit);
}

}  // namespace brelant::platform5
