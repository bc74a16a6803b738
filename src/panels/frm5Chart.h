// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>
#include <string>
#include <vector>

#include "panels/Panel5.h"

namespace brelant {

/// The panel of platform 5 sensors with five alarm levels, each built on one of the five function blocks
/// (docs/memory-maps.md, Platform 5).
class frm5Chart : public Panel5 {
 public:
  static constexpr int kLevels = 5;
  static constexpr int kLiveValues = 3;

  explicit frm5Chart(const PanelContext& context);

  bool FormUpdateInit() override { return true; }
  bool FormUpdate() override;
  bool FormRead() override;
  bool FormUpdateM() override;
  bool ActionSensorReadM() override;
  bool ActionSensorWrite() override;
  bool ActionTWAReset() override;
  void SimMode(bool on) override;
  void Simulate() override;
  std::vector<LiveValue> LiveValues() const override;
  std::vector<Alarm> Alarms() const override;

  Control& txbVersion;
  ControlArray lblCH_Name;
  ControlArray lblCH_Type;
  ControlArray txbCHact;
  /// The captions of the alarms.
  ControlArray lblStatus;
  ControlArray txbStatus;
  ControlArray txbKelLevel;
  ControlArray lblFKelunit;
  ControlArray cbxKelrelay;
  Control& cbxTWAonP0;
  Control& lblKELActTempAenable;
  Control& txbKELActTempAenable;

 protected:
  const ControlArray& LiveFields() const override { return txbCHact; }

 private:
  void SetRules();
  std::span<float> Bytes(int address) {
    return std::span(context_.image.RamImage).subspan(static_cast<std::size_t>(address), 2);
  }
  void SetDisplayModes();
  void UpdateLevel(int level);
  void ReadLevel(int level);
  void ReadUnits();
  void ToggleTempAlarm();
  bool TWAOnP0() const { return cbxTWAonP0.Value() == 1; }
  /// Channel through which a level is shown.
  float ShownChannel(int level) const;
};

}  // namespace brelant
