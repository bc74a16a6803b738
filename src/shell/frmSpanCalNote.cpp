// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/frmSpanCalNote.h"

namespace brelant {

frmSpanCalNote::frmSpanCalNote(Session& session, Screen& screen)
    : form(screen, "frmSpanCalNote", "Span cal note"),
      Label1(form.Add(ControlKind::label, "Label1", "Note!")),
      Label2(
          form.Add(ControlKind::label, "Label2",
                   "The Span constant is given from the factory calibration  and  is not expected to vary "
                   "with age.   If span calibration still is needed then it is recommended to perform a "
                   "single point calibration first, then to use a well specified gas concentration to flow "
                   "through the sensor with a flow of 0.3 l/min.")),
      Command2(form.Add(ControlKind::button, "Command2", "Next")),
      Command1(form.Add(ControlKind::button, "Command1", "Cancel")),
      session_(session) {
  Command2.onClick = [this] { form.Hide(); };
  Command1.onClick = [this] {
    session_.LastError = kCancelled;
    form.Hide();
  };
  form.onClose = Command1.onClick;
}

void frmSpanCalNote::ShowModal(Pump& pump) {
  form.initialFocus = &Command1;
  form.ShowModal(pump, [this] { return session_.Over(); });
}

}  // namespace brelant
