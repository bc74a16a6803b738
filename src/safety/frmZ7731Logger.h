// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "safety/UnitDialog.h"

namespace brelant {

/// What the two loggers of a safety unit record, and how often (docs/memory-maps.md, Platforms 8 and 9).
class frmZ7731Logger : public UnitDialog {
 public:
  explicit frmZ7731Logger(const UnitDesk& desk);

  Control& cmbLoggerValue1;
  Control& cmbLoggerValue2;
  Control& btnChangeValues;
  Control& txtMinutes;
  Control& btnChangeInterval;
  Control& btnEstimate;
  Control& btnCancel;

 private:
  void Fill() override;
  void ShowInterval();
  void ChangeValues();
  void ChangeInterval();
  void Estimate();
};

}  // namespace brelant
