// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "safety/RelayBoxes.h"
#include "safety/UnitPanel.h"
#include "safety/frmZ7731ABC.h"
#include "safety/frmZ7731About.h"
#include "safety/frmZ7731Logger.h"
#include "safety/frmZ7731Options.h"
#include "safety/frmZ7731SensorConfig.h"
#include "safety/snsZ7731.h"

namespace brelant {

/// The panel of the safety system: five channels with their alarms, levels and relays. Its fields are a view
/// of the unit itself, which it reaches by names (docs/architecture.md, The safety panel). Which index of a
/// field means what stands in safety/panel_plan.h.
class frmZ7731Chart : public UnitPanel {
 public:
  /// Seconds from poll to poll where the user has not chosen them.
  static constexpr int kUsualPeriod = 2;

  explicit frmZ7731Chart(const PanelContext& context);

  bool FormUpdateInit() override;
  /// Reads and shows values, alarms and the state line. True without a unit.
  bool FormUpdate() override;
  using UnitPanel::FormRead;
  /// Each setting is verified. False: some were not taken, which the user has been told, or there is nothing
  /// that may be sent.
  bool FormRead(bool toSensor) override;
  /// Reads every setting into the fields.
  bool GetAllStaticValues(bool fromSensor);
  /// Writes a parameter and reads it back. False: the unit has not taken it.
  bool WriteToSensor(const std::string& name, float value, bool toSensor);
  std::vector<LiveValue> LiveValues() const override;
  std::vector<Alarm> Alarms() const override;

  bool ActionCalTempZero();
  bool ActionCalTemp2Zero();
  /// Any mode but 0 does nothing.
  bool ActionCalCO2Zero(int mode);
  bool ActionCalWeightE();
  bool ActionCalWeightF();
  /// `logger`: 0 or 1, by the order of the menu.
  bool ActionLoggerGetData(int logger);

  /// Seconds from poll to poll; counts at once.
  int UpdatePeriod = kUsualPeriod;

  /// What each alarm is, by the index of its state.
  ControlArray alarmLabels;

 private:
  /// The unit as it was read last, with the relay choices of the user.
  snsZ7731 unit_;

 public:
  RelayBoxes cbxKelrelay;
  RelayBoxes cbxKelrelay2;

  Control& m_Temp1;
  Control& m_Temp2;
  Control& m_CO2;
  Control& m_Zero;
  Control& m_Weight;
  Control& m_EmptyTank;
  Control& m_FullTank;
  Control& m_ConfigureSensor;
  Control& m_ConfigureABC;
  Control& m_ConfigureLogger;
  Control& m_ExportLogger1;
  Control& m_ExportLogger2;
  Control& m_Options;
  Control& m_About;

  frmZ7731SensorConfig SensorConfig;
  frmZ7731ABC ABC;
  frmZ7731Logger Logger;
  frmZ7731Options Options;
  frmZ7731About About;

 protected:
  bool UpdateLive() override { return FormUpdate(); }
  bool UpdateSettings() override { return GetAllStaticValues(true); }
  void SendAndReadBack() override;
  void MarkForSave() override;
  std::vector<Control*> SensorCommands() const override;
  bool RunAction(int command) override;
  double PollPeriod() const override { return UpdatePeriod; }
  std::string HelpPage() const override { return "Support\\help9.html"; }

 private:
  ControlArray MakeAlarmLabels();
  UnitDesk Desk();
  void SetMenus();
  void SetCommands();
  void SetRules();

  int StoredPeriod() const;
  void FillSimulated();

  void ShowValues();
  void ShowAlarms();
  void ShowPresence();
  void ShowUnits();
  void ShowSettings();
  void ShowSequence();
  std::string LevelText(int index) const;

  /// What is chosen by clicks and goes to the unit with the next sending.
  struct Choices {
    snsZ7731::RelayList relay1;
    snsZ7731::RelayList relay2;
    snsZ7731::DisplaySequence sequence;
    bool isTWAonP0;
  };
  Choices ChoicesOfForm() const;
  /// GetAllStaticValues after a sending of these choices.
  bool ReadSettings(bool fromSensor, const Choices& sent);
  void KeepChanges(const Choices& before, const Choices& now);

  bool SendFields(bool toSensor);
  std::int32_t RawLevel(int index);
  void ChooseTemperatureUnit();
  void SetTemperatureUnit(std::int32_t unitBits);
  void SendCases(BRECOM& connection, std::int32_t first, std::int32_t second);
  void ConvertTemperatures(const std::string& formerUnit);
  void ChooseDisplay(int position);

  int modelCode_ = 0;
};

}  // namespace brelant
