// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "calibration/response.h"
#include "knowledge/SnsInfo.h"
#include "shell/form.h"

namespace brelant {

/// What the last calibration did to a channel: its response before and after as a table of points, with the
/// measured point. A face may draw the same numbers as curves.
class frmCalCurve {
 public:
  static constexpr int kPoints = 16;

  frmCalCurve(SnsInfo& info, Screen& screen);

  /// Fills the form; the texts are those of the channel.
  void Take(const CalibrationChange& change);

  Form form;
  /// Channel and its unit, as in "CO2 (ppm)".
  Control& lblChannel;
  /// What the points lie over: "Signal" or "Position".
  Control& lblSignal;
  /// Signal and value of the points, high signals first; empty where there is none.
  ControlArray lblBeforeSignal;
  ControlArray lblBeforeValue;
  ControlArray lblAfterSignal;
  ControlArray lblAfterValue;
  Control& lblMeasuredSignal;
  Control& lblMeasuredValue;
  Control& btnClose;

 private:
  void Fill(const std::vector<ResponsePoint>& points, const ControlArray& signalLabels,
            const ControlArray& valueLabels, float channel);
  static std::string SignalText(const ResponsePoint& point);
  std::string ValueText(const ResponsePoint& point, float channel);

  SnsInfo& info_;
};

}  // namespace brelant
