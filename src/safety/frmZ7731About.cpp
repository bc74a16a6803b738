// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/frmZ7731About.h"

namespace brelant {

frmZ7731About::frmZ7731About(const UnitDesk& desk)
    : UnitDialog(desk, "frmZ7731About", "About BRELANT"),
      Picture1(form.Add(ControlKind::picture, "Picture1")),
      lblVersion(form.Add(ControlKind::label, "lblVersion")),
      lblAbout(form.Add(ControlKind::label, "lblAbout",
                        "Sets up, calibrates and watches carbon dioxide sensors and the CO2 safety system.")),
      btnOK(form.Add(ControlKind::button, "btnOK", "OK")) {
  btnOK.onClick = [this] { form.Hide(); };
}

void frmZ7731About::Fill() {
  lblVersion.SetText("2.1.0");
}

}  // namespace brelant
