// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/frmZ7731ABC.h"

#include <cmath>
#include <stdexcept>

#include "shell/Common.h"
#include "shell/user_number.h"

namespace brelant {

namespace {

constexpr int kBasePointer = 7868;
constexpr int kHighest = 8191;
/// A pointer may count from where the unit sees its own high memory.
constexpr int kHighWindow = 57344;
constexpr int kCountAt = 4;
constexpr int kTickAt = 8;
constexpr int kWordWidth = 2;
constexpr double kHour = 3600;
constexpr double kDayHours = 24;
constexpr double kHighestWord = 65535;

}  // namespace

frmZ7731ABC::frmZ7731ABC(const UnitDesk& desk)
    : UnitDialog(desk, "frmZ7731ABC", "ABC Configuration"),
      txtCurrent(form.Add(ControlKind::text, "txtCurrent")),
      txtDays(form.Add(ControlKind::text, "txtDays")),
      btnChangeInterval(form.Add(ControlKind::button, "btnChangeInterval", "Update ABC parameters")),
      btnCancel(form.Add(ControlKind::button, "btnCancel", "Cancel")) {
  txtCurrent.editable = [] { return false; };
  btnChangeInterval.onClick =
      Working([this] { ChangeInterval(); }, "Could not change ABC calibration interval");
  btnCancel.onClick = [this] { form.Hide(); };
}

std::int32_t frmZ7731ABC::Word(int address) {
  return desk_.connection().Memory().ReadBytes(address, kWordWidth, SensorMemory::eeprom, 0);
}

void frmZ7731ABC::Fill() {
  base_ = Word(kBasePointer);
  if (base_ > kHighest) base_ -= kHighWindow;
  ShowInterval();
  txtDays.SetText(txtCurrent.Text());
}

void frmZ7731ABC::ShowInterval() {
  const double tick = Word(base_ + kTickAt);
  const double count = Word(base_ + kCountAt);
  txtCurrent.SetText(NumberText(static_cast<float>(Round(tick * 2 / kHour * count / kDayHours))));
}

void frmZ7731ABC::ChangeInterval() {
  const auto days = FindNumber(txtDays.Text());
  if (!days) throw std::invalid_argument("no number");
  const double tick = Word(base_ + kTickAt);
  const double count = Round(*days * kDayHours * kHour / (tick * 2));
  // Also a tick of 0, by which nothing can be divided.
  if (!(count >= 0 && count <= kHighestWord)) throw std::out_of_range("no interval");
  desk_.connection().Memory().WriteWord(base_ + kCountAt, kWordWidth, SensorMemory::eeprom, 0,
                                        static_cast<std::int32_t>(count));
  ShowInterval();
}

}  // namespace brelant
