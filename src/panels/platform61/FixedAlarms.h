// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <vector>

#include "comm/SensorImage.h"
#include "knowledge/SnsInfo.h"
#include "shell/form.h"
#include "shell/panel.h"

namespace brelant::platform61 {

/// The four alarms of a platform 61 sensor that measures CO2 and O2: CO2 above a level, O2 below one
/// (docs/memory-maps.md, Platform 61).
class FixedAlarms {
 public:
  static constexpr int kAlarms = 4;
  static constexpr int kLinks = 3;

  FixedAlarms(Form& form, SensorImage& image, SnsInfo& info,
              const std::function<void(Control&)>& makeEditable);

  void SetVisible(bool visible);
  void ShowUnits(const std::string& gas, const std::string& oxygen);
  void Update();
  void Read();
  /// Compares the levels with the values as the form shows both.
  void ShowStates(const Control& gas, const Control& oxygen);
  void ForgetStates();
  std::vector<Panel::Alarm> States() const;

  Control& pctAlarm061;
  /// The captions of the alarms.
  ControlArray lblAlarm061;
  ControlArray txbAlarm061Level;
  ControlArray lblAlarm061Unit;
  ControlArray txbAlarm061Status;
  /// How each of two outputs is made of the alarms. Nothing of it reaches the sensor
  /// (docs/architecture.md, The panel of platforms 61 and 7).
  Control& lblOC3;
  Control& lblOC4;
  ControlArray cbxOC3;
  ControlArray cbxOC4;
  ControlArray lblAlarm061Logic1;
  ControlArray lblAlarm061Logic2;

 private:
  std::vector<Control*> Controls() const;
  static void SetLogic(const ControlArray& labels);

  SensorImage& image_;
  SnsInfo& info_;
};

}  // namespace brelant::platform61
