// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "panels/DigitalTrigger.h"
#include "panels/FunctionRows.h"
#include "panels/ImagePanel.h"
#include "panels/OutputStage.h"
#include "panels/platform6/JumperFace.h"
#include "panels/platform6/OutputRows.h"
#include "panels/platform6/SequentialFace.h"
#include "panels/platform6/VavFace.h"

namespace brelant {

/// The panel of platform 6 transmitters, with a face for each kind of product variant. All settings live in
/// EepromImage (docs/memory-maps.md, Platform 6).
class frm6 : public ImagePanel, public OutputStage {
 public:
  static constexpr int kLiveValues = 7;
  static constexpr int kFunctions = 6;
  static constexpr int kChannels = 16;
  static constexpr int kInputs = 11;
  static constexpr int kDisplays = 4;

  explicit frm6(const PanelContext& context);

  bool FormUpdateInit() override;
  bool FormUpdate() override;
  bool FormRead() override;
  bool FormUpdateM() override;
  bool ActionSensorReadM() override { return FormUpdateM(); }
  bool ActionSensorRead() override;
  bool ActionSensorWrite() override;
  bool ActionSettingsLoad() override;
  bool ActionSettingsSave() override;
  bool ActionTWAReset() override;
  /// What the fields of the jumper table run instead of FormRead.
  void Read6v3() { FormRead(); }
  /// Writes an end of the damper to the sensor at once.
  bool ActionVAV(bool isMax);
  void SimMode(bool on) override;
  void Simulate() override;
  std::vector<LiveValue> LiveValues() const override;
  /// Those of the generic face; the others have no model.
  int Outputs() const override;
  std::string NameOf(int output) const override { return outputs.lblOutName[output].Text(); }
  bool IsDigital(int output) const override { return outputs.IsDigital(output); }

  Control& txbSN;
  Control& txbID;
  ControlArray lblDisp;
  /// The value of a picture is its channel.
  ControlArray pctChannel;
  ControlArray lblCH_Name;
  ControlArray lblCH_Type;
  ControlArray txbCHact;

  ControlArray pctFunction;
  ControlArray pctOut;
  Control& pctD;
  Control& pctDT;
  FunctionRows rows;
  platform6::OutputRows outputs;
  DigitalTrigger trigger;
  Control& txbDigLevel;
  Control& pctDigPSign;
  Control& pctDigNSign;
  Control& cbxDigActive;

  platform6::VavFace vav;
  platform6::JumperFace jumper;
  platform6::SequentialFace sequential;

  Control& mChannels;
  ControlArray mCHannel;
  Control& mFChannels;
  ControlArray mFchannel;

 protected:
  const ControlArray& LiveFields() const override { return txbCHact; }
  const FunctionRows& Rows() const override { return rows; }
  const ControlArray& OutputFields() const override { return outputs.txbOutOut; }
  const Control* LiveField(const std::string& channel) const override;
  double Percent(int output, double shown, const FunctionRows::Input& input) const override;
  bool RunAction(int command) override;
  bool CalibrateSpan(const std::string& text) override;
  void SimulatedPass() override;
  std::optional<std::chrono::milliseconds> SimulatedPeriod() const override;

 private:
  enum class Face { generic, vav, jumper, sequential, compact };

  Face FaceNow() const;
  void SetRules();
  void SetMenus();
  platform6::VavFace::Rules VavRules();
  void ShowFace();
  void ShowGeneric(bool visible);
  void ShowOutput(int output, bool visible);
  void ShowSimulation();
  void NameOutputs();
  void NameChannels();

  float& Eeprom(int address) { return context_.image.EepromImage.at(static_cast<std::size_t>(address)); }
  std::span<float> FunctionRecord(int function);
  std::span<float> OutputRecord(int output);
  float InputChannel(int function);
  FunctionClass ClassOf(int function) const;
  std::string InputName(int function);
  platform6::FunctionEnds Ends();
  platform6::Pass EventPass();

  void UpdateGeneral();
  void UpdateGeneric();
  void UpdateDigital();
  void ReadGeneral();
  void ReadFace();
  void ReadGeneric();
  void ReadJumper();
  void ChooseFunctionChannel(int function);

  SignedLevel inputLevel_;
  float variant_ = 0;
};

}  // namespace brelant
