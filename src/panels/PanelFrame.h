// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "calibration/frmCalCurve.h"
#include "calibration/snsCal.h"
#include "comm/SensorImage.h"
#include "comm/snscom.h"
#include "connection/BRECOM.h"
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
  /// What connections to units that are reached by name are made with.
  BRECOM::Context connection;
  /// Ends the session of the panel (docs/architecture.md, One thread, one pump).
  std::function<void()> EndSession;
};

/// The frame that all panels share: command loop, poll, simulated mode, edit rules, menus, exit
/// (docs/architecture.md, Panels).
class PanelFrame : public Panel {
 public:
  enum Command {
    readSensor = 1,
    updateForm = 2,
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
    vavMin = 16,
    calibrateWeightEmpty = 17,
    calibrateWeightFull = 18,
    loggerGetData = 19,
    loggerCheckTime = 20,
    loggerSetTime = 21,
    loggerReset = 22,
    calibrateTemp2Zero = 23,
    exportLogger1 = 24,
    exportLogger2 = 25
  };

  static constexpr int kEnterKey = 13;
  /// Seconds from one poll to the next, where the user does not choose them.
  static constexpr double kPollPeriod = 2.0;

  /// What is not the same on all panels.
  struct Frame {
    /// Of cbxSimulated.
    std::string simulated;
    /// Of the window.
    std::string title;
    std::string simulatedTitle;
    MenuNames menus = {};
  };

  PanelFrame(const PanelContext& context, const std::string& name, const Frame& frame);

  void PanelLoop() override;
  void SimMode(bool on) override;
  std::vector<Alarm> Alarms() const override { return {}; }

  /// Reads all settings.
  virtual bool ActionSensorRead() = 0;
  /// Sends all settings.
  virtual bool ActionSensorWrite() = 0;
  virtual bool ActionSettingsLoad() = 0;
  virtual bool ActionSettingsSave() = 0;
  /// One pass of the offline model.
  virtual void Simulate() = 0;

  /// Index of the entry with that caption among the first `count`, a visible one before a hidden one.
  static std::optional<int> FindCaption(const ControlArray& menu, int count, const std::string& caption);
  /// Caption of an entry, empty if a nonsense byte points past the menu.
  static std::string CaptionAt(const ControlArray& menu, int index);

 protected:
  /// Reads and shows the live values. False: there is no sensor any more, unless LastError says otherwise.
  virtual bool Poll() = 0;
  /// What follows a poll that has failed.
  virtual void LosesSensor();
  /// The live value fields.
  virtual const ControlArray& LiveFields() const = 0;
  /// Commands that need a sensor, beside those that all panels have.
  virtual std::vector<Control*> SensorCommands() const { return {}; }
  /// The simulated pass of the loop.
  virtual void SimulatedPass() { Simulate(); }
  /// How long the simulated pass may wait for the next event; nothing: until there is one.
  virtual std::optional<std::chrono::milliseconds> SimulatedPeriod() const { return {}; }
  /// Runs the command of a code; the frame's table of commands that this panel has.
  virtual bool RunAction(int command);
  /// Seconds from one poll to the next.
  virtual double PollPeriod() const { return kPollPeriod; }
  /// Last poll time when midnight has passed.
  virtual double LastPollAfterMidnight(double now) const { return now; }
  /// The end of each turn of the loop.
  virtual void TurnEnds() {}
  /// The help page, without the folder.
  virtual std::string HelpPage() const;

  bool Simulated() const { return cbxSimulated.Value() == 1; }
  void ShowProgress(const std::string& text, bool hideBar);
  /// Makes a command pending, behind the box that guards the panel until the loop takes it.
  void Request(Command command);
  Control::Handler Requesting(Command command);
  /// Makes a command pending that asks before it does anything: no box may stand in front of its question.
  Control::Handler Question(Command command);
  /// For handlers whose work needs the line at once: runs it, or, while a command, a poll or another such
  /// work is under way, after that.
  void WhenFree(const std::function<void()>& work);
  /// An answer of the user; nothing if it was cancelled or left empty.
  std::optional<std::string> Ask(const std::string& prompt, const std::string& title = {});
  void TellNoSensor();
  /// Tells and clears LastError; a cancel is cleared only.
  void TellLastError();

  /// Gives a field the edit rules. `check` runs first when the field is left, `store` after it.
  void MakeEditable(Control& field, std::function<void()> check, std::function<void()> store);
  /// The bus ID: up to 29, and stored when the form is next taken. `store` runs when the field is left.
  void MakeIdEditable(Control& field, std::function<void()> store = nullptr);

  /// Pops up the visible entries of a menu; the choice, if there is one, becomes the text of the label.
  void PopUp(Control& label, const ControlArray& menu);

  PanelContext context_;
  Control* PopupTarget = nullptr;

 private:
  void LetEventsRun(double lastPoll);
  void RunPending();
  void RunCommand();
  void TakeTurn(double& lastPoll);
  void PollWhenDue(double& lastPoll);
  void ToggleComSet();

  std::string title_;
  std::string simulatedTitle_;
  bool running_ = false;
  /// A command, a poll or a handler's work has the line.
  bool busy_ = false;
  std::vector<std::function<void()>> pending_;
  /// Revision of the form behind the last simulated pass.
  std::optional<std::uint64_t> simulated_;
};

}  // namespace brelant
