// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "connection/BRECOM.h"
#include "connection/BREFILE.h"
#include "connection/CalibrationLibrary.h"
#include "panels/PanelFrame.h"
#include "safety/LevelField.h"

namespace brelant {

/// What the panels of units share that are reached by name: the connection and what hangs on it, the live
/// view's frame, levels that are sent as soon as they are typed, simulated mode, settings files and the
/// calibrations that a unit carries out by itself (docs/architecture.md, The symbolic road).
class UnitPanel : public PanelFrame {
 public:
  static constexpr int kPositions = 4;
  static constexpr int kDisplayModes = 16;

  /// A live value: the index of its field and unit, that of its name, and the name.
  struct Channel {
    int field;
    int name;
    const char* caption;
  };
  /// What is not the same on all of them.
  struct Layout {
    int liveFields;
    int names;
    std::vector<Channel> channels;
    int alarms;
    /// Of the menu entry for Fahrenheit.
    std::string fahrenheit;
    MenuNames menus = {};
  };

  UnitPanel(const PanelContext& context, const std::string& name, const Layout& layout);

  /// What the end of a session calls: nothing is sent then.
  bool FormRead() override { return true; }
  /// Sends every setting. False: not all of them are there, which the user has been told or LastError tells.
  virtual bool FormRead(bool toSensor) = 0;
  void SimMode(bool on) override;
  /// Compares the values with the levels, as they stand in the fields.
  void Simulate() override;
  void LeaveSession() override;

  bool ActionSensorRead() override;
  bool ActionSensorWrite() override;
  bool ActionSettingsLoad() override;
  bool ActionSettingsSave() override;

  Control& txbSN;
  Control& txbID;
  ControlArray lblDisplayMode;
  Control& txbKELActTempAenable;
  Control& cbxTWAonP0;
  Control& picFlash;
  ControlArray lblCH_Name;
  ControlArray lblCH_Type;
  ControlArray txbCHact;
  ControlArray txbStatus;
  ControlArray txbKelLevel;
  ControlArray lblFKelunit;

  Control& mDisplayModes;
  ControlArray mDisplayMode;
  Control& mTempUnit;
  Control& mTempUnitCelsius;
  Control& mTempUnitFahrenheit;

 protected:
  /// The byte of RAM with the state of the unit.
  static constexpr int kStateAddress = 383;
  /// What a settings file holds of a parameter.
  static constexpr std::int32_t kWholeByte = 255;
  static constexpr std::int32_t kWholeWord = -1;

  /// Reads and shows values, alarms and the state line. True without a unit.
  virtual bool UpdateLive() = 0;
  /// Reads every setting into the fields. True without a unit.
  virtual bool UpdateSettings() = 0;
  /// A finished edit goes to the unit at once and is read back.
  virtual void SendAndReadBack() = 0;
  /// Marks on the connection what a settings file holds.
  virtual void MarkForSave() = 0;

  bool Poll() override;
  void LosesSensor() override;
  void TurnEnds() override;
  const ControlArray& LiveFields() const override { return txbCHact; }

  /// Takes from the dialog whether there is a unit, and where.
  void TakeDialog();
  /// Connects to the unit of the dialog. False: the reason is in LastError.
  bool Open(bool isModbus);
  BRECOM& Connection();
  bool HasConnection() const { return sens_ != nullptr; }
  /// Runs what uses the connection; its failure goes to LastError.
  bool Try(const std::function<void(BRECOM&)>& work);
  /// Puts into the image what it tells of the product, which nothing else can ask for while the connection
  /// has the line.
  void TakePartNumber(BRECOM& connection);
  /// Waits, and lets events happen meanwhile.
  void Sleep(int milliseconds);

  /// The state of the bit of RAM that tells whether temperature alarms are on.
  void ShowStateLine(BRECOM& connection);
  LevelField& Level(int index) { return levels_.at(static_cast<std::size_t>(index)); }
  /// Keeps what is being typed into a field from being sent, and from being overwritten.
  static void Guard(Control& field, LevelField& level);
  /// FormRead behind an edit, which no command is there to speak for: tells what went wrong.
  void SendEdit();
  /// The texts of the levels are on their way to the unit, or will never be.
  void TakeLevels();
  /// False, and told in LastError: nothing of the form may be sent, as it was never read whole.
  bool RequireKnown();
  bool IsKnown() const { return isKnown_; }
  void SettingsAreKnown() { isKnown_ = true; }

  /// Pops up the unit menu; nothing if it was left.
  std::optional<bool> AskForFahrenheit();
  /// Pops up the visible display modes; nothing if it was left.
  std::optional<int> AskForDisplayMode();

  bool Confirmed(const std::string& question);
  /// Lets the unit carry a procedure out, with the value that it needs, if there is one.
  bool Calibrate(const std::string& progress, const std::string& procedure, const std::string& value = {},
                 const std::string& text = {});
  bool CalibrateEmptyTank();
  bool CalibrateFullTank();

 private:
  void SetMenus();
  void SetRules(const Layout& layout);
  void MakeLevelEditable(Control& field);
  void Connect();
  void SENS_Progress(int percent);
  void FILE_Action(const std::string& text);
  void StoreEdit();
  struct TankCalibration;
  bool CalibrateTank(const TankCalibration& calibration);

  /// The settings of the unit have been read whole: without that nothing of the form may be sent.
  bool isKnown_ = false;
  bool storeAwaits_ = false;
  bool isModbus_ = false;
  std::unique_ptr<BRECOM> sens_;
  /// Both work on `sens_`.
  std::unique_ptr<CalibrationLibrary> calibration_;
  std::unique_ptr<BREFILE> file_;
  std::string port_;
  int id_ = kOnlyUnit;
  /// Their handlers hold on to them.
  std::deque<LevelField> levels_;
};

}  // namespace brelant
