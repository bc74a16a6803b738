// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "safety/UnitDialog.h"

namespace brelant {

/// How often the safety panel polls its unit.
class frmZ7731Options : public UnitDialog {
 public:
  explicit frmZ7731Options(const UnitDesk& desk);

  Control& txtSeconds;
  Control& btnChangeUpdate;
  Control& btnCancel;

 private:
  void Fill() override;
  void ChangeUpdate();
};

}  // namespace brelant
