// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "connection/KICOM2.h"
#include "safety/UnitPanel.h"

namespace brelant {

/// The panel of the units of platform 8 without a tank (docs/memory-maps.md, The units of platform 8). Its
/// fields are a view of the unit itself, which it reaches by names, on KiBus only. No write is verified.
class frm8Chart : public UnitPanel {
 public:
  static constexpr int kAlarms = 5;
  /// Alarms that may drive one relay at the same time.
  static constexpr int kMostOfRelay = 3;

  explicit frm8Chart(const PanelContext& context);

  bool FormUpdateInit() override;
  /// Reads every setting into the fields. True without a unit.
  bool FormUpdate() override;
  /// Reads and shows values, alarms and the state line. True without a unit.
  bool FormUpdateM();
  using UnitPanel::FormRead;
  /// False: the reason is in LastError.
  bool FormRead(bool toSensor) override;
  std::vector<LiveValue> LiveValues() const override;
  std::vector<Alarm> Alarms() const override;

  /// What follows a change of the temperature unit.
  bool ActionFormUpdate() { return FormUpdate(); }
  bool ActionCalTempZero();
  /// `mode`: 0 zero gas, 1 fresh air, 2 another gas, which is asked for.
  bool ActionCalCO2Zero(int mode);
  bool ActionCalCO2span();
  /// These units have no such command: false, with nothing sent.
  bool ActionTWAReset();

  Control& txbVersion;
  /// What each alarm is.
  ControlArray lblStatus;
  ControlArray cbxKelrelay;
  ControlArray cbxKelrelay2;
  /// Leaves the panel.
  Control& Command1;

  Control& mTimeUnits;
  Control& mTimeUnitMin;
  Control& mTimeUnitSec;
  Control& CalTemp;
  Control& mCalCO2;
  Control& mCalCO2Zero;
  Control& mCalCO2Background;
  Control& mCalCO2Other;
  Control& mCalCO2span;
  Control& mTWAreset;

 protected:
  /// How a raw word is shown.
  enum class Scale { temperature, thousandths, whole };
  /// A live value: the number of its channel, the indexes of its field and of its name.
  struct Measure {
    int channel;
    int field;
    int name;
    const char* caption;
    Scale scale;
  };
  static constexpr Measure kTemperature{4, 0, 0, "TEMP 1", Scale::temperature};
  static constexpr Measure kCO2{5, 1, 1, "CO2", Scale::thousandths};
  static constexpr Measure kTWA{8, 2, 2, "TWA CO2", Scale::whole};
  static constexpr Measure kWeight{11, 5, 6, "WEIGHT", Scale::whole};

  frm8Chart(const PanelContext& context, const std::string& name, std::span<const Measure> measures);

  bool UpdateLive() override { return FormUpdateM(); }
  bool UpdateSettings() override { return FormUpdate(); }
  void SendAndReadBack() override;
  void MarkForSave() override;
  std::vector<Control*> SensorCommands() const override;
  bool RunAction(int command) override;
  std::string HelpPage() const override { return "help8.html"; }

 private:
  using Sequence = std::array<std::string, kPositions>;
  /// The same as the unit has it.
  using Channels = std::array<std::int32_t, kPositions>;
  using Boxes = std::array<int, kAlarms>;
  /// What is chosen or typed and goes to the unit with the next sending.
  struct Choices {
    Sequence sequence;
    Boxes relay1;
    Boxes relay2;
    int isTWAonP0;
    std::string id;
  };
  /// All settings, as the unit has them.
  struct Settings {
    Channels sequence;
    std::string serialNumber;
    std::int32_t id;
    /// By the order of the measures.
    std::vector<std::string> units;
    std::array<std::int32_t, kAlarms> levels;
    std::int32_t output;
    std::int32_t relay1;
    std::int32_t relay2;
  };
  struct Write {
    std::string name;
    std::int32_t value;
  };

  static Layout LayoutOf(std::span<const Measure> measures);
  void SetMenus();
  void SetRules();

  bool IsFahrenheit() const;
  std::string TextOf(std::int32_t raw, Scale scale) const;
  std::int32_t RawOf(const std::string& text, Scale scale) const;
  std::string UnitOf(KICOM2& sens, const Measure& measure) const;

  std::vector<std::string> NamesOfSettings() const;
  /// FormUpdate after a sending of these choices.
  bool ReadSettings(const Choices& sent);
  Settings AskUnit(KICOM2& sens) const;
  void Show(const Settings& read, const Choices& sent);
  void ShowUnits(const std::vector<std::string>& units);
  Choices ChoicesOfForm() const;
  std::vector<Write> WritesOfForm();
  Channels ChosenSequence() const;
  void Send(KICOM2& sens, const Write& write, bool toSensor);

  void ClickRelay(const ControlArray& boxes, int index);
  void ToggleTempAlarm();
  void ChooseDisplay(int position);
  void ChooseTemperatureUnit();
  void SetTemperatureUnit(bool toFahrenheit);

  std::vector<Measure> measures_;
  /// 0 where it is not known what the unit has.
  Channels sequence_{};
  /// Of one relay at least the word may be missing that follows its reset.
  bool relaysAreReset_ = false;
  LevelField idField_{txbID};
};

}  // namespace brelant
