// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "comm/SensorImage.h"
#include "console/exit_status.h"
#include "console/json_lines.h"
#include "console/script/script.h"
#include "console/script/scripted_user.h"
#include "platform/clock.h"
#include "platform/pump.h"
#include "shell/form.h"
#include "shell/frmMsg.h"
#include "shell/session.h"

namespace brelant::script {

/// What a script is played on.
struct Stage {
  Session& session;
  Screen& screen;
  const SensorImage& image;
  const frmMsg& msg;
  const Clock& clock;
  Pump& pump;
};

/// Plays a script on the forms, one command a pump pass, and prints what a person would see
/// (docs/architecture.md, The scripted user). The process is over when the script is.
class Runner {
 public:
  Runner(Script& script, ScriptedUser& user, JsonLines& out, const Stage& stage);
  ~Runner();
  Runner(const Runner&) = delete;
  Runner& operator=(const Runner&) = delete;

  /// The hook of the pump; nested passes are welcome. True if the pump must not sleep.
  bool Pass();

  /// To be called when the process is over. Tells the end and gives the exit status.
  int Finish();

 private:
  /// A wait that goes on.
  struct Pending {
    Wait wait;
    std::chrono::microseconds deadline;
    /// Session::polls when it was looked at last.
    unsigned polls;
  };

  void CarryOut(Line line);
  // One for each command.
  void Do(const Get& command);
  void Do(const Dump& command);
  void Do(const Type& command);
  void Do(const Enter& command);
  void Do(const Focus& command);
  void Do(const Leave& command);
  void Do(const Click& command);
  void Do(const Select& command);
  void Do(const Choose& command);
  void Do(const Answer& command);
  void Do(const Reply& command);
  void Do(const File& command);
  void Do(const Wait& command);
  void Do(const Expect& command);
  void Do(const Image& command);
  void Do(const Close& command);
  void Do(const Quit& command);

  void EndOfScript();
  void Fail(const std::string& why);
  void Report(int line, const std::string& command, const std::string& why);
  void End(int status);

  Form& FindForm(const std::string& name) const;
  Control& FindControl(const ControlName& name) const;
  /// The control if a person could reach it now, and counts as an act of that person.
  Control& Reach(const ControlName& name);
  void RequireInReach(const Form& form) const;
  void BeginAct();
  void Replace(Control& control, const std::string& text);

  /// True when no wait goes on any more, or has just failed.
  bool WaitIsOver();
  bool HasHappened(Pending& pending);
  bool TakeMessage();
  bool TakeProgress(const std::string& text);
  bool TakePolls(Pending& pending);
  bool IsIdle() const;
  void WakeAt(std::chrono::microseconds moment);

  void NoteShown(const Form& form, bool visible);
  void NoteProgress();

  Script& script_;
  ScriptedUser& user_;
  JsonLines& out_;
  Stage stage_;

  int status_ = kDone;
  bool over_ = false;
  /// Commands that are being carried out, one inside the other.
  int depth_ = 0;
  Line current_{0, "", Quit{}};
  std::optional<Pending> pending_;
  std::unique_ptr<Pump::Timer> wake_;
  bool woken_ = false;

  /// What the progress box says now, and what it has said since the last act.
  std::string progress_;
  std::vector<std::string> progressSeen_;
  /// Message boxes that no wait can be waiting for.
  int messagesTaken_;
};

}  // namespace brelant::script
