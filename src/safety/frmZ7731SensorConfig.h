// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

#include "safety/UnitDialog.h"

namespace brelant {

/// What the unit's own display shows, its temperature unit and its network ID.
class frmZ7731SensorConfig : public UnitDialog {
 public:
  explicit frmZ7731SensorConfig(const UnitDesk& desk);

  /// Model code of the unit, to be set before the dialog is shown.
  int Model = 0;

  std::array<Control*, snsZ7731::kPositions> cmbValue;
  Control& btnUpdateDisplaySequence;
  ControlArray optTemp;
  Control& btnUpdateTempFormat;
  Control& txtCurrentID;
  Control& txtNewID;
  Control& btnUpdateNetworkD;
  Control& btnCancel;

 private:
  enum Format { celsius = 0, fahrenheit = 1 };

  void Fill() override;
  void UpdateDisplaySequence();
  void UpdateTempFormat();
  void UpdateNetworkID();
};

}  // namespace brelant
