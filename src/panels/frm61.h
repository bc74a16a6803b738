// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "panels/ImagePanel.h"
#include "panels/platform61/AlarmRows.h"
#include "panels/platform61/FixedAlarms.h"

namespace brelant {

/// The panel of platform 61 and platform 7 sensors: live values, alarms and their levels. The two keep their
/// settings in different places of EepromImage (docs/memory-maps.md, Platform 61 and Platform 7).
class frm61 : public ImagePanel {
 public:
  /// Fields for live values, of which three are used.
  static constexpr int kLiveValues = 4;
  static constexpr int kShown = 3;
  static constexpr int kDisplays = 4;
  static constexpr int kChannels = 16;
  static constexpr int kDisplayModes = 5;

  explicit frm61(const PanelContext& context);

  bool FormUpdateInit() override;
  bool FormUpdate() override;
  bool FormRead() override;
  bool FormUpdateM() override;
  /// Takes the live values that a user typed into RamImage.
  void FormReadM();
  bool ActionSensorReadM() override;
  bool ActionSensorRead() override;
  bool ActionSensorWrite() override;
  bool ActionSettingsLoad() override { return LoadEeprom(); }
  bool ActionSettingsSave() override;
  /// There is no average to reset on these platforms.
  bool ActionTWAReset() override { return true; }
  bool ActionCalO2Zero();
  bool ActionCalO2Span();
  /// Compares levels and values of a sensor with fixed alarms.
  void Simulate() override;
  std::vector<LiveValue> LiveValues() const override;
  std::vector<Alarm> Alarms() const override;

  Control& txbSN;
  Control& txbID;
  ControlArray lblDisp;
  Control& pctDisplay6;
  Control& lblDisplayMode;

  ControlArray pctChannel;
  ControlArray lblCH_Name;
  ControlArray lblCH_Type;
  ControlArray txbCHact;
  /// pctChannel(5), lblCH_Name(5) and txbCHact(5): the status of the sensor.
  Control& pctStatus;
  Control& lblStatusName;
  Control& txbStatus;

  platform61::FixedAlarms alarms;
  platform61::AlarmRows rows;

  Control& mChannels;
  ControlArray mCHannel;
  Control& mDisplayModes;
  ControlArray mDisplayMode;

 protected:
  const ControlArray& LiveFields() const override { return txbCHact; }
  bool RunAction(int command) override;
  bool CalibrateSpan(const std::string& text) override;
  double LastPollAfterMidnight(double now) const override;

 private:
  /// What the attached sensor has on the panel: fixed alarms (platform 61, variant 0), none (variant 1) or
  /// alarm rows (platform 7).
  enum class Face { none, fixedAlarms, noAlarms, alarmRows };

  /// The name and the unit of a shown channel.
  struct Channel {
    std::string name;
    std::string unit;
  };

  /// Asks what is attached.
  void TakeProduct();
  void ForgetLive();
  void SetRules();
  void SetMenus();
  void NameChannels();
  std::vector<Channel> ChannelsOfFace();
  void ShowFace();

  float& Eeprom(int address) { return context_.image.EepromImage.at(static_cast<std::size_t>(address)); }
  int IdAddress() const;
  void UpdateDisplays();
  void ReadDisplayBytes();
  bool UpdateFromSensor();
  bool UpdateFromRam();
  void ShowStatus();
  void ShowRowStates();
  void ChooseAlarmChannel(int row);

  bool ReadAttached();
  bool FetchChannels();

  int platform_ = 0;
  Face face_ = Face::none;
};

}  // namespace brelant
