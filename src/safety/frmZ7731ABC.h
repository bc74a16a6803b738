// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "safety/UnitDialog.h"

namespace brelant {

/// The interval of a unit's automatic background calibration, in days. Its parameters lie in a block whose
/// place is itself stored in the unit (docs/memory-maps.md, Platforms 8 and 9).
class frmZ7731ABC : public UnitDialog {
 public:
  explicit frmZ7731ABC(const UnitDesk& desk);

  Control& txtCurrent;
  Control& txtDays;
  Control& btnChangeInterval;
  Control& btnCancel;

 private:
  void Fill() override;
  void ChangeInterval();
  void ShowInterval();
  std::int32_t Word(int address);

  int base_ = 0;
};

}  // namespace brelant
