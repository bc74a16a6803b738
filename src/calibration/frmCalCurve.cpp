// SPDX-License-Identifier: GPL-3.0-or-later
#include "calibration/frmCalCurve.h"

#include <cmath>

#include "shell/Common.h"

namespace brelant {

frmCalCurve::frmCalCurve(SnsInfo& info, Screen& screen)
    : form(screen, "frmCalCurve", "Calibration curve"),
      lblChannel(form.Add(ControlKind::label, "lblChannel")),
      lblSignal(form.Add(ControlKind::label, "lblSignal", "Signal")),
      lblBeforeSignal(form.AddArray(ControlKind::label, "lblBeforeSignal", kPoints)),
      lblBeforeValue(form.AddArray(ControlKind::label, "lblBeforeValue", kPoints)),
      lblAfterSignal(form.AddArray(ControlKind::label, "lblAfterSignal", kPoints)),
      lblAfterValue(form.AddArray(ControlKind::label, "lblAfterValue", kPoints)),
      lblMeasuredSignal(form.Add(ControlKind::label, "lblMeasuredSignal")),
      lblMeasuredValue(form.Add(ControlKind::label, "lblMeasuredValue")),
      btnClose(form.Add(ControlKind::button, "btnClose", "Close")),
      info_(info) {
  btnClose.onClick = [this] { form.Hide(); };
}

void frmCalCurve::Take(const CalibrationChange& change) {
  const auto unit = info_.GetChannelUnit(change.channel);
  lblChannel.SetText(info_.GetChannelName(change.channel, false) + (unit.empty() ? "" : " (" + unit + ")"));
  lblSignal.SetText(change.overPosition ? "Position" : "Signal");
  Fill(change.before, lblBeforeSignal, lblBeforeValue, change.channel);
  Fill(change.after, lblAfterSignal, lblAfterValue, change.channel);
  lblMeasuredSignal.SetText(SignalText(change.measured));
  lblMeasuredValue.SetText(ValueText(change.measured, change.channel));
}

void frmCalCurve::Fill(const std::vector<ResponsePoint>& points, const ControlArray& signalLabels,
                       const ControlArray& valueLabels, float channel) {
  for (int i = 0; i < kPoints; ++i) {
    const auto index = static_cast<std::size_t>(i);
    const bool isThere = index < points.size();
    signalLabels[i].SetText(isThere ? SignalText(points[index]) : "");
    valueLabels[i].SetText(isThere ? ValueText(points[index], channel) : "");
  }
}

std::string frmCalCurve::SignalText(const ResponsePoint& point) {
  return NumberText(std::round(point.signal));
}

std::string frmCalCurve::ValueText(const ResponsePoint& point, float channel) {
  return info_.RawToText(point.value, channel, false, true);
}

}  // namespace brelant
