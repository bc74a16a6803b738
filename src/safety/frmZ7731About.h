// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "safety/UnitDialog.h"

namespace brelant {

/// What this program is.
class frmZ7731About : public UnitDialog {
 public:
  explicit frmZ7731About(const UnitDesk& desk);

  Control& Picture1;
  Control& lblVersion;
  Control& lblAbout;
  Control& btnOK;

 private:
  void Fill() override;
};

}  // namespace brelant
