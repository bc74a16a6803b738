// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include "comm/SensorImage.h"
#include "knowledge/SnsInfo.h"
#include "panels/platform6/show_live.h"
#include "shell/form.h"

namespace brelant::platform6 {

/// The face of the VAV units: set points, slope, integration times and the two ends of the damper, each of
/// which goes to the sensor at once (docs/memory-maps.md, Platform 6).
class VavFace {
 public:
  struct Rules {
    std::function<void(Control&, std::function<void()>)> makeEditable;
    std::function<void()> changed;
    /// A limit is to be written: of the upper end or of the lower one.
    std::function<void(bool isMax)> limitChanged;
    /// A button moves a limit: the user is to wait.
    std::function<void()> busy;
    /// False while no limit can be taken.
    std::function<bool()> mayChange;
  };
  /// Bytes of a limit that were put into the image, to be written as one piece.
  struct Write {
    int address;
    int count;
  };

  VavFace(Form& form, SensorImage& image, SnsInfo& info, const Rules& rules);

  void SetVisible(bool visible);
  void Update();
  /// Throws NoResult for an integration time that is no number above 0, before anything is taken.
  void Read();
  void UpdateLive(const ShowLive& show);

  /// Puts an end of the damper into the image and tells what is to be written.
  Write TakeLimit(bool isMax);

  /// Writes the fixed set-up of the unit into the image; nothing on other part numbers.
  void GetInitSetVAV();

  Control& pctSetpV1;
  Control& pctOutV1;
  Control& pctOutV1VAV;
  Control& txbSetPV1Temp;
  Control& txbSetPV1CO2;
  Control& optV1SlopePos;
  Control& optV1SlopeNeg;
  Control& txbOutV1IntTimeVAV;
  Control& txbOutV1IntTime;
  Control& txbOutV1OutVAV;
  Control& txbOutV1Out;
  Control& txbUseMax;
  Control& txbUseMin;
  Control& Command6;
  Control& Command5;
  Control& Command1;
  Control& Command2;
  /// Shown from a change of a limit until it has been written; its value is the place, 270 or 660.
  Control& lblV1Note;

 private:
  bool Exchanged() { return info_.GetPartNumber() == 223; }
  float& Eeprom(int address) { return image_.EepromImage.at(static_cast<std::size_t>(address)); }
  int BaseByte() { return Exchanged() ? 142 : 139; }
  void LimitLeft(Control& field, bool isMax);
  void StepUp(Control& field, bool isMax);
  void StepDown(Control& field, bool isMax);
  void ReadLimits();
  void ShowBaseLineOf(Control& field, double percent, int address);

  SensorImage& image_;
  SnsInfo& info_;
  Rules rules_;
};

}  // namespace brelant::platform6
