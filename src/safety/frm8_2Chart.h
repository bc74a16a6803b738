// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "safety/frm8Chart.h"

namespace brelant {

/// The panel of the units of platform 8 with a tank: the other one with its weight, its calibration and the
/// logger's menu.
class frm8_2Chart : public frm8Chart {
 public:
  explicit frm8_2Chart(const PanelContext& context);

  bool ActionCalWeightE() { return CalibrateEmptyTank(); }
  bool ActionCalWeightF() { return CalibrateFullTank(); }
  /// Required to be there and to do nothing: these units have no logger (docs/memory-maps.md, The units of
  /// platform 8).
  bool ActionLoggerGetData() { return true; }
  bool ActionLoggerCheckTime() { return true; }
  bool ActionLoggerSetTime() { return true; }
  bool ActionLoggerReset() { return true; }

  Control& mCalWeightEmpty;
  Control& mCalWeightFull;
  Control& mLogger;
  Control& mLoggerExp;
  Control& mLoggerCheckT;
  Control& mLoggerSetT;
  Control& mLoggerReset;

 protected:
  std::vector<Control*> SensorCommands() const override;
  bool RunAction(int command) override;
};

}  // namespace brelant
