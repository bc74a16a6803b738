// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <span>
#include <string>

#include "comm/SensorImage.h"
#include "knowledge/SnsInfo.h"
#include "panels/platform6/show_live.h"
#include "shell/form.h"

namespace brelant::platform6 {

/// The face of sequential control: two set points, the ranges of ventilation and cooling, the least
/// ventilation (docs/memory-maps.md, Platform 6).
class SequentialFace {
 public:
  SequentialFace(Form& form, SensorImage& image, SnsInfo& info,
                 const std::function<void(Control&)>& makeEditable);

  void SetVisible(bool visible);
  void Update();
  void Read();
  /// Live values of channels 1 and 0.
  void UpdateLive(const ShowLive& show);

  Control& pctSecCont;
  Control& txbV4SetPtemp;
  Control& txbV4SetPCO2;
  Control& txbV4PrangeVentTemp;
  Control& txbV4PrangeCoolTemp;
  Control& txbV4PrangeVentCO2;
  Control& txbV4MinVent;
  Control& txbV4Out1Out;
  Control& txbV4Out2Out;

 private:
  ControlArray Fields() const;
  float& Eeprom(int address) { return image_.EepromImage.at(static_cast<std::size_t>(address)); }
  std::span<float> Bytes(int address);
  /// Stores the word of a function, its flag kept.
  void Store(int address, float word);
  /// The word of a function as a temperature, and that less a value as a text.
  float Value(int address);
  std::string LessText(int address, float value);
  void ReadRange(int address, const Control& field, float setPoint, float channel);

  SensorImage& image_;
  SnsInfo& info_;
};

}  // namespace brelant::platform6
