// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <chrono>
#include <optional>
#include <span>
#include <string>

#include "panels/DigitalTrigger.h"
#include "panels/FunctionRows.h"
#include "panels/OutputStage.h"
#include "panels/Panel5.h"

namespace brelant {

/// The panel of platform 5 transmitters with two outputs driven by a network of five functions. All settings
/// live in RamImage (docs/memory-maps.md, Platform 5).
class frm5 : public Panel5, public OutputStage {
 public:
  static constexpr int kChannels = 4;
  static constexpr int kFunctions = 5;
  static constexpr int kOutputs = 2;

  explicit frm5(const PanelContext& context);

  bool FormUpdateInit() override;
  bool FormUpdate() override;
  bool FormRead() override;
  bool FormUpdateM() override;
  bool ActionSensorReadM() override;
  bool ActionSensorWrite() override;
  bool ActionTWAReset() override;
  void SimMode(bool on) override;
  void Simulate() override;
  std::vector<LiveValue> LiveValues() const override;
  int Outputs() const override { return kOutputs; }
  std::string NameOf(int output) const override;
  bool IsDigital(int output) const override { return optOut5Digital[output].Value() == 1; }

  Control& lblShiftb;
  Control& txbShiftBamount;
  Control& lblShiftb_Type;

  ControlArray lblCH_Name;
  ControlArray lblCH_Type;
  ControlArray pctChannel;
  ControlArray txbCHact;

  FunctionRows rows;
  DigitalTrigger trigger;

  ControlArray optOut5V;
  ControlArray optOut5mA;
  ControlArray optOut5Digital;
  ControlArray txbOutBaseLine;
  ControlArray txbOutIntTime;
  ControlArray txbOutOut;

  Control& mChannels;
  ControlArray mCHannel;

 protected:
  const ControlArray& LiveFields() const override { return txbCHact; }
  const FunctionRows& Rows() const override { return rows; }
  const ControlArray& OutputFields() const override { return txbOutOut; }
  const Control* LiveField(const std::string& channel) const override;
  double ShiftOf(const std::string& channel) const override;
  double Percent(int output, double shown, const FunctionRows::Input& input) const override;
  void SimulatedPass() override;
  std::optional<std::chrono::milliseconds> SimulatedPeriod() const override;

 private:
  using Labels = std::array<Control*, 4>;

  void SetRules();
  void SetMenus();
  Labels AddOutputLabels(const std::array<int, 4>& indexes);

  float ShiftChannel();
  FunctionClass ClassOf(int function) const;
  std::span<float> FunctionRecord(int function);

  void UpdateGeneral();
  void UpdateOutput(int output);
  void UpdateTrigger();
  bool ReadExponents(std::array<float, kOutputs>& exponents);
  void ReadShift();
  void ReadOutput(int output, float exponent);
  void ReadTrigger();

  void ChooseFunctionChannel(int function);
  void ChooseShiftChannel();

  std::array<Labels, kOutputs> outputLabels_;
};

}  // namespace brelant
