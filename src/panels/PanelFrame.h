// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "calibration/frmCalCurve.h"
#include "calibration/snsCal.h"
#include "comm/SensorImage.h"
#include "comm/snscom.h"
#include "knowledge/SnsInfo.h"
#include "knowledge/definitions.h"
#include "knowledge/snsFil.h"
#include "platform/machine.h"
#include "shell/form.h"
#include "shell/frmComSet.h"
#include "shell/frmMsg.h"
#include "shell/frmSpanCalNote.h"
#include "shell/panel.h"
#include "shell/session.h"

namespace brelant {

/// Colours that are part of the behaviour.
namespace colours {
inline constexpr Colour kFieldBack = 0x8D6C54;
inline constexpr Colour kFieldText = 65535;
inline constexpr Colour kEditBack = 16777215;
inline constexpr Colour kEditText = 0;
inline constexpr Colour kLive = 65280;
inline constexpr Colour kSimulated = 65535;
inline constexpr Colour kFault = 255;
}  // namespace colours

/// What a panel is handed by the program.
struct PanelContext {
  Machine machine;
  Session& session;
  Screen& screen;
  SensorImage& image;
  snscom& com;
  SnsInfo& info;
  Definitions& definitions;
  snsFil& file;
  snsCal& cal;
  frmMsg& msg;
  frmComSet& comSet;
  frmSpanCalNote& spanNote;
  frmCalCurve& curve;
  /// Ends the session of the panel (docs/architecture.md, One thread, one pump).
  std::function<void()> EndSession;
};

/// The frame that all panels share: command loop, poll, simulated mode, edit rules, menus, exit
/// (docs/architecture.md, Panels).
class PanelFrame : public Panel {
 public:
  enum Command {
    readSensor = 1,
    writeSensor = 3,
    loadSettings = 4,
    saveSettings = 5,
    calibrateTempZero = 6,
    calibrateCO2Zero = 7,
    calibrateCO2Background = 8,
    calibrateCO2Other = 9,
    calibrateCO2Span = 10,
    calibrateO2Zero = 11,
    calibrateO2Span = 12,
    resetTWA = 13,
    exitPanel = 14,
    vavMax = 15,
    vavMin = 16
  };

  static constexpr int kEnterKey = 13;
  /// Seconds from one poll to the next.
  static constexpr double kPollPeriod = 2.0;

  /// Names of the entries that calibrate temperature and CO2.
  struct CalibrationNames {
    std::string temperature = "CalTemp";
    std::string zero = "mCalCO2Zero";
    std::string background = "mCalCO2Background";
    std::string other = "mCalCO2Other";
  };
  /// What is not the same on all panels.
  struct Captions {
    std::string simulated;
    std::string calibratingTemperature;
    std::string temperatureEntry;
    std::string singlePointEntry;
    std::string optionsMenu = "mOptions";
    CalibrationNames names = {};
    /// Calibrations that not all panels have: name and caption of each entry.
    std::vector<std::pair<std::string, std::string>> furtherCalibrations = {};
  };

  PanelFrame(const PanelContext& context, const std::string& name, const Captions& captions);

  void PanelLoop() override;
  void SimMode(bool on) override;
  void GiveImageBack() override;
  std::vector<Alarm> Alarms() const override { return {}; }

  /// Shows the live values from the images.
  virtual bool FormUpdateM() = 0;
  /// The poll.
  virtual bool ActionSensorReadM() = 0;
  /// Reads all settings.
  virtual bool ActionSensorRead() = 0;
  /// Sends all settings.
  virtual bool ActionSensorWrite() = 0;
  virtual bool ActionTWAReset() = 0;
  virtual bool ActionSettingsLoad() = 0;
  virtual bool ActionSettingsSave() = 0;
  /// Ask for what the procedure needs and run it; an answer that is cancelled or empty ends them with true.
  bool ActionCalTempZero();
  /// `kind` of snsCal::ZeroKind.
  bool ActionCalCO2Zero(int kind);
  bool ActionCalCO2span();
  /// One pass of the offline model.
  virtual void Simulate() = 0;

  /// Index of the entry with that caption among the first `count`, a visible one before a hidden one.
  static std::optional<int> FindCaption(const ControlArray& menu, int count, const std::string& caption);
  /// Caption of an entry, empty if a nonsense byte points past the menu.
  static std::string CaptionAt(const ControlArray& menu, int index);

 protected:
  /// The live value fields.
  virtual const ControlArray& LiveFields() const = 0;
  /// The simulated pass of the loop.
  virtual void SimulatedPass() { Simulate(); }
  /// How long the simulated pass may wait for the next event; nothing: until there is one.
  virtual std::optional<std::chrono::milliseconds> SimulatedPeriod() const { return {}; }
  /// Runs the command of a code; the frame's table of commands that this panel has.
  virtual bool RunAction(int command);
  /// Last poll time when midnight has passed.
  virtual double LastPollAfterMidnight(double now) const { return now; }

  bool Simulated() const { return cbxSimulated.Value() == 1; }
  void ShowProgress(const std::string& text, bool hideBar);
  /// Makes a command pending, behind the box that guards the panel until the loop takes it.
  void Request(Command command);
  /// Makes a command pending that asks before it does anything: no box may stand in front of its question.
  Control::Handler Question(Command command);
  /// An answer of the user; nothing if it was cancelled or left empty.
  std::optional<std::string> Ask(const std::string& prompt);
  /// Keeps what a procedure did for the view.
  bool Calibrated(bool done);
  /// Runs the span calibration with the text that the user typed.
  virtual bool CalibrateSpan(const std::string& text) = 0;
  /// The span calibration of platforms 5, 6 and 61.
  bool CalibrateSpanOf(float channel, const std::string& text);
  /// Empties the image and reads the sensor. An image that was not read whole comes back as it was: nothing
  /// of it may be sent, saved or calibrated as zeros.
  bool ReadAfresh(const std::function<bool()>& read);
  /// False while such a read is under way: the image is another sensor's by halves, and no field is taken.
  bool ImageIsWhole() const { return !imageBefore_; }
  /// Reads a block of the sensor's memory (docs/protocol.md).
  bool ReadWhole(std::int32_t selector, bool isEeprom);
  void TellNoSensor();
  /// The name of a settings file, asked for; nothing if there is none. `text` is then shown as progress.
  std::optional<std::string> AskForFile(UserInterface::FileUse use, const std::string& text);
  /// Loads a settings file of a sensor whose settings lie in EEPROM.
  bool LoadEeprom();
  /// Reads all of such a sensor's settings into the image.
  bool ReadEeprom();
  /// Takes the form and sends them.
  bool SendEeprom();
  /// Saves blocks of such a sensor; a selection block among them marks what `selection` selects.
  bool SaveSelected(const std::string& name, std::int32_t selection,
                    std::span<const snsFil::BlockWrite> blocks);
  /// Tells of a save that failed without a text of its own.
  bool Saved(bool done);

  /// Gives a field the edit rules. `check` runs first when the field is left, `store` after it.
  void MakeEditable(Control& field, std::function<void()> check, std::function<void()> store);
  /// The usual store: the whole form into the image and back.
  void Restore();
  void MakeEditable(Control& field, std::function<void()> check = {});

  /// The bus ID: up to 29, and stored when the form is next taken.
  void MakeIdEditable(Control& field);

  /// Pops up the visible entries of a menu; the choice, if there is one, becomes the text of the label.
  void PopUp(Control& label, const ControlArray& menu);
  /// The same, and the form is taken and filled again.
  void ChooseAndStore(Control& label, const ControlArray& menu);
  /// The same for a choice that the form does not hold: the form is taken before, `store` takes the choice.
  void Choose(Control& label, const ControlArray& menu, const std::function<void()>& store);

  PanelContext context_;
  Control& CalTemp;
  Control& mCalCO2;
  Control& mCalCO2Zero;
  Control& mCalCO2Background;
  Control& mCalCO2Other;
  Control& mCalCO2span;
  ControlArray furtherCalibrations_;
  /// The view of what the last calibration did.
  Control& mCalCurve;
  Control* PopupTarget = nullptr;

 private:
  void LetEventsRun(double lastPoll);
  void RunCommand();
  void PollWhenDue(double& lastPoll);
  void ToggleComSet();
  void OpenHelp();

  /// The image behind a read of all settings that is under way.
  std::optional<SensorImage> imageBefore_;
  std::string calibratingTemperature_;
  bool running_ = false;
  /// Revision of the form behind the last simulated pass.
  std::optional<std::uint64_t> simulated_;
};

}  // namespace brelant
