// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/PanelFrame.h"

#include <algorithm>
#include <utility>

#include "shell/Common.h"

namespace brelant {

namespace {

constexpr double kDay = 86400;

/// Holds a flag for the time of a scope.
class While {
 public:
  explicit While(bool& flag) : flag_(flag) { flag_ = true; }
  ~While() { flag_ = false; }
  While(const While&) = delete;
  While& operator=(const While&) = delete;

 private:
  bool& flag_;
};

}  // namespace

PanelFrame::PanelFrame(const PanelContext& context, const std::string& name, const Frame& frame)
    : Panel(context.screen, name, frame.menus),
      context_(context),
      title_(frame.title),
      simulatedTitle_(frame.simulatedTitle) {
  btnReadFromSensor.onClick = mReadfromsensor.onClick = Requesting(readSensor);
  btnSendToSensor.onClick = mSendtosensor.onClick = Requesting(writeSensor);
  mLoadsettings.onClick = Requesting(loadSettings);
  mSavesettings.onClick = Requesting(saveSettings);
  mExit.onClick = Requesting(exitPanel);
  mComSet.onClick = [this] { ToggleComSet(); };
  mHelp.onClick = [this] { context_.machine.userInterface.ShellOpen(context_.session.AppDir + HelpPage()); };
  form.onClose = [this] { context_.EndSession(); };
  cbxSimulated.SetText(frame.simulated);
  cbxSimulated.onClick = [this] { SimMode(Simulated()); };
}

void PanelFrame::PanelLoop() {
  ShowProgress("", true);
  if (running_) return;
  const While running(running_);
  // Of what ran before there was a loop.
  context_.session.CancelPressed = false;
  double lastPoll = 0;
  while (!context_.session.Over()) {
    LetEventsRun(lastPoll);
    TakeTurn(lastPoll);
  }
}

void PanelFrame::TakeTurn(double& lastPoll) {
  const auto& session = context_.session;
  if (!session.Over() && session.PanelCommand != 0) RunCommand();
  if (session.Over()) return;
  if (Simulated()) {
    SimulatedPass();
    simulated_ = form.Revision();
  } else {
    simulated_.reset();
    PollWhenDue(lastPoll);
  }
  RunPending();
  TurnEnds();
}

/// Sleeps no longer than until the loop has something of its own to do.
void PanelFrame::LetEventsRun(double lastPoll) {
  auto& clock = context_.machine.clock;
  auto& pump = context_.machine.pump;
  const bool unsimulated = Simulated() && simulated_ != form.Revision();
  if (context_.session.PanelCommand != 0 || unsimulated) {
    pump.DoEvents();
    return;
  }
  auto until = std::chrono::microseconds::max();
  if (!Simulated()) {
    const double now = clock.Timer();
    // Midnight moves the poll, so the loop must not sleep past it.
    const double left = std::min(std::clamp(lastPoll + PollPeriod() - now, 0.0, PollPeriod()), kDay - now);
    until = clock.Now() + std::chrono::milliseconds(static_cast<std::int64_t>(left * 1000) + 1);
  } else if (const auto period = SimulatedPeriod()) {
    until = clock.Now() + *period;
  }
  pump.Wait(until);
}

void PanelFrame::WhenFree(const std::function<void()>& work) {
  if (busy_) {
    pending_.push_back(work);
    return;
  }
  {
    const While busy(busy_);
    work();
  }
  RunPending();
}

void PanelFrame::RunPending() {
  for (const auto& work : std::exchange(pending_, {})) {
    if (context_.session.Over()) return;
    WhenFree(work);
  }
}

void PanelFrame::RunCommand() {
  auto& session = context_.session;
  session.LastError.clear();
  {
    const While busy(busy_);
    RunAction(session.PanelCommand);
  }
  if (session.Over()) return;
  session.PanelCommand = 0;
  TellLastError();
  session.CancelPressed = false;
  ShowProgress("", true);
}

void PanelFrame::TellLastError() {
  auto& session = context_.session;
  const bool silent =
      session.LastError.empty() || session.LastError == kCancelled || session.LastError == kCancelSelected;
  if (!silent) context_.machine.userInterface.Tell(session.LastError);
  session.LastError.clear();
}

bool PanelFrame::RunAction(int command) {
  switch (command) {
    case readSensor:
      return ActionSensorRead();
    case writeSensor:
      return ActionSensorWrite();
    case loadSettings:
      return ActionSettingsLoad();
    case saveSettings:
      return ActionSettingsSave();
    case exitPanel:
      context_.session.LastError = kCancelled;
      context_.EndSession();
      return true;
    default:
      return true;
  }
}

void PanelFrame::PollWhenDue(double& lastPoll) {
  auto& session = context_.session;
  const double now = context_.machine.clock.Timer();
  if (now < lastPoll) lastPoll = LastPollAfterMidnight(now);
  if (lastPoll + PollPeriod() >= now) return;
  lastPoll = now;
  const bool polled = session.LastError.empty();
  bool failed = false;
  if (polled) {
    const While busy(busy_);
    failed = !Poll();
  }
  if (session.Over()) return;
  if (polled) ++session.polls;
  if (failed && session.LastError != kCancelled) LosesSensor();
  session.LastError.clear();
}

void PanelFrame::LosesSensor() {
  TellNoSensor();
  SimMode(true);
}

void PanelFrame::TellNoSensor() {
  context_.machine.userInterface.Tell("No sensor detected, entering simulated mode.");
}

void PanelFrame::SimMode(bool on) {
  cbxSimulated.SetValue(on ? 1 : 0);
  if (!on) context_.session.LastError = kCancelled;
  for (auto* field : LiveFields()) field->SetFore(on ? colours::kSimulated : colours::kLive);
  auto commands = SensorCommands();
  commands.insert(commands.end(),
                  {&mReadfromsensor, &mSendtosensor, &mCalibrate, &btnReadFromSensor, &btnSendToSensor});
  for (auto* control : commands) control->SetEnabled(!on);
  form.SetCaption(on ? simulatedTitle_ : title_);
}

void PanelFrame::ShowProgress(const std::string& text, bool hideBar) {
  context_.msg.ShowProgress(text, hideBar, &form);
}

void PanelFrame::Request(Command command) {
  ShowProgress("Please wait", true);
  context_.session.PanelCommand = command;
}

Control::Handler PanelFrame::Requesting(Command command) {
  return [this, command] { Request(command); };
}

Control::Handler PanelFrame::Question(Command command) {
  return [this, command] { context_.session.PanelCommand = command; };
}

std::optional<std::string> PanelFrame::Ask(const std::string& prompt, const std::string& title) {
  auto answer = context_.machine.userInterface.InputBox(prompt, title);
  return answer && !answer->empty() ? answer : std::nullopt;
}

void PanelFrame::MakeEditable(Control& field, std::function<void()> check, std::function<void()> store) {
  const auto leave = [&field, check = std::move(check), store = std::move(store)] {
    field.SetBack(colours::kFieldBack);
    field.SetFore(colours::kFieldText);
    if (check) check();
    if (store) store();
  };
  field.SetBack(colours::kFieldBack);
  field.SetFore(colours::kFieldText);
  field.onFocus = [&field] {
    if (!field.Editable()) return;
    field.SetBack(colours::kEditBack);
    field.SetFore(colours::kEditText);
  };
  field.onLeave = [&field, leave] {
    if (field.Editable()) leave();
  };
  field.onKey = [&field, leave](int code) {
    if (code != kEnterKey) return false;
    if (field.Editable()) leave();
    return true;
  };
}

void PanelFrame::MakeIdEditable(Control& field, std::function<void()> store) {
  const auto limit = [&field] {
    constexpr float kHighestId = 29;
    field.SetText(NumberText(std::min(ParseNumber(field.Text()), kHighestId)));
  };
  MakeEditable(field, limit, std::move(store));
}

void PanelFrame::PopUp(Control& label, const ControlArray& menu) {
  PopupTarget = &label;
  std::vector<std::string> captions;
  for (const auto* entry : menu) {
    if (entry->Visible()) captions.push_back(entry->Text());
  }
  const auto choice = context_.machine.userInterface.PopupMenu(captions);
  if (choice) PopupTarget->SetText(captions.at(*choice));
}

std::optional<int> PanelFrame::FindCaption(const ControlArray& menu, int count, const std::string& caption) {
  for (const bool visible : {true, false}) {
    for (int i = 0; i < count; ++i) {
      if (menu[i].Visible() == visible && menu[i].Text() == caption) return i;
    }
  }
  return {};
}

std::string PanelFrame::CaptionAt(const ControlArray& menu, int index) {
  return index < menu.Count() ? menu[index].Text() : std::string();
}

void PanelFrame::ToggleComSet() {
  mComSet.SetValue(mComSet.Value() == 0 ? 1 : 0);
  auto& dontShow = context_.comSet.cbxDontShow;
  dontShow.SetValue(mComSet.Value() == 0 ? 1 : 0);
  context_.machine.settingsStore.Write("KVX", "Start", "Dont", std::to_string(dontShow.Value()));
}

std::string PanelFrame::HelpPage() const {
  return "help" + std::to_string(context_.info.GetPlatform()) + "v" +
         NumberText(context_.info.GetProductVariant()) + ".html";
}

}  // namespace brelant
