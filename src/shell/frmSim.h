// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shell/form.h"
#include "shell/session.h"

namespace brelant {

/// Chooses what to simulate.
class frmSim {
 public:
  frmSim(Session& session, Screen& screen);

  Form form;
  Control& Label1;
  Control& cmbTypeOfS;
  Control& Command1;
  Control& Command2;
};

}  // namespace brelant
