// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "panels/ImagePanel.h"

namespace brelant {

/// What the two panels of platform 5 have in common: identity, display mode, units, the whole-memory read,
/// settings files and the span calibration of channel 1.
class Panel5 : public ImagePanel {
 public:
  Panel5(const PanelContext& context, const std::string& name, const Captions& captions);

  bool ActionSensorRead() override;
  bool ActionSettingsLoad() override;
  bool ActionSettingsSave() override;
  void SimMode(bool on) override;

  Control& txbSN;
  Control& txbID;
  Control& lblDisplayMode;
  Control& mDisplayModes;
  ControlArray mDisplayMode;
  Control& mTempUnit;
  Control& mTempUnitCelsius;
  Control& mTempUnitFarenheit;

 protected:
  bool CalibrateSpan(const std::string& text) override;

  float& Ram(int address) { return context_.image.RamImage.at(static_cast<std::size_t>(address)); }
  /// Only such a unit is a choice.
  static bool IsTemperature(const std::string& unit) { return unit == "C" || unit == "F"; }
  void UpdateIdentity();
  void ReadIdentity();
  /// Asks for C or F on the label of a channel; what the label of channel 0 reads is stored.
  void ChooseTempUnit(Control& label, bool isChannel0);
};

}  // namespace brelant
