// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <string>

#include "platform/pump.h"
#include "shell/form.h"
#include "shell/session.h"

namespace brelant {

/// The progress box, and the one way in which a user breaks a bus transfer.
class frmMsg {
 public:
  frmMsg(Session& session, Pump& pump, Screen& screen);

  /// With a text: shows or rearranges the box. With an empty text: closes it. The owner, which may be
  /// missing, has the hourglass for as long.
  void ShowProgress(const std::string& text, bool hideBar, Form* owner, bool hideLine1 = false,
                    bool hideLine2 = true, bool hideLine3 = true);

  bool Visible() const { return form.Visible(); }

  Form form;
  Control& Label1;
  Control& Label2;
  Control& Label3;
  Control& ProgressBar1;
  Control& Command1;

 private:
  void Timer1();
  void Cancel();

  Session& session_;
  Pump& pump_;
  std::unique_ptr<Pump::Timer> timer_;
};

}  // namespace brelant
