// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shell/form.h"
#include "shell/session.h"

namespace brelant {

/// The warning before a CO2 span calibration. The caller shows it modally and goes on only if LastError is
/// empty afterwards.
class frmSpanCalNote {
 public:
  frmSpanCalNote(Session& session, Screen& screen);

  void ShowModal(Pump& pump);

  Form form;
  Control& Label1;
  Control& Label2;
  Control& Command2;
  Control& Command1;

 private:
  Session& session_;
};

}  // namespace brelant
