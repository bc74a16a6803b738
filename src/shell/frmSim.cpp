// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/frmSim.h"

namespace brelant {

frmSim::frmSim(Session& session, Screen& screen)
    : form(screen, "frmSim", "Simulated mode"),
      Label1(form.Add(ControlKind::label, "Label1", "Type of sensor to simulate:")),
      cmbTypeOfS(form.Add(ControlKind::list, "cmbTypeOfS")),
      Command1(form.Add(ControlKind::button, "Command1", "Next")),
      Command2(form.Add(ControlKind::button, "Command2", "Cancel")) {
  cmbTypeOfS.SetValue(-1);
  Command1.onClick = [this] { form.Hide(); };
  Command2.onClick = [this, &session] {
    session.LastError = kCancelled;
    form.Hide();
  };
  form.onClose = Command2.onClick;
}

}  // namespace brelant
