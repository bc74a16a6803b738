// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/frmZ7731Options.h"

namespace brelant {

frmZ7731Options::frmZ7731Options(const UnitDesk& desk)
    : UnitDialog(desk, "frmZ7731Options", "Options..."),
      txtSeconds(form.Add(ControlKind::text, "txtSeconds")),
      btnChangeUpdate(form.Add(ControlKind::button, "btnChangeUpdate", "Change update frequency")),
      btnCancel(form.Add(ControlKind::button, "btnCancel", "Cancel")) {
  btnChangeUpdate.onClick = Working([this] { ChangeUpdate(); });
  btnCancel.onClick = [this] { form.Hide(); };
}

void frmZ7731Options::Fill() {
  txtSeconds.SetText(std::to_string(desk_.UpdatePeriod));
}

void frmZ7731Options::ChangeUpdate() {
  const int seconds = IntegerOf(txtSeconds);
  if (seconds < 1) return Tell("Invalid value");
  desk_.UpdatePeriod = seconds;
  desk_.machine.settingsStore.Write(kApplication, "Z7731", "UpdatePeriod", std::to_string(seconds));
  Tell("Update frequency has been succesfully changed.");
}

}  // namespace brelant
