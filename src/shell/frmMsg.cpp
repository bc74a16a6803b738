// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/frmMsg.h"

namespace brelant {

frmMsg::frmMsg(Session& session, Pump& pump, Screen& screen)
    : form(screen, "frmMsg", ""),
      Label1(form.Add(ControlKind::label, "Label1")),
      Label2(form.Add(ControlKind::label, "Label2")),
      Label3(form.Add(ControlKind::label, "Label3")),
      ProgressBar1(form.Add(ControlKind::bar, "ProgressBar1")),
      Command1(form.Add(ControlKind::button, "Command1", "Cancel")),
      session_(session),
      pump_(pump) {
  Command1.onClick = [this] { Cancel(); };
  form.onClose = [this] { Cancel(); };
}

void frmMsg::ShowProgress(const std::string& text, bool hideBar, Form* owner, bool hideLine1, bool hideLine2,
                          bool hideLine3) {
  Label1.SetText(text);
  ProgressBar1.SetValue(0);
  if (text.empty()) {
    timer_.reset();
    form.Hide();
    if (owner != nullptr) owner->SetBusy(false);
    return;
  }
  if (owner != nullptr) owner->SetBusy(true);
  Label1.SetVisible(!hideLine1);
  Label2.SetVisible(!hideLine2);
  Label3.SetVisible(!hideLine3);
  ProgressBar1.SetVisible(!hideBar);
  if (!hideBar) pump_.DoEvents();
  if (!form.Visible()) {
    // Often enough for a bar that runs smoothly.
    timer_ = pump_.Every(std::chrono::milliseconds(50), [this] { Timer1(); });
    form.Show();
  }
  pump_.DoEvents();
}

void frmMsg::Timer1() {
  if (ProgressBar1.Visible()) ProgressBar1.SetValue(session_.BusProgress);
  if (Label2.Visible()) Label2.SetText(session_.BusBusyText);
  if (Label3.Visible()) Label3.SetText(session_.BusBusyText2);
}

void frmMsg::Cancel() {
  session_.CancelPressed = true;
  session_.LastError = kCancelled;
}

}  // namespace brelant
