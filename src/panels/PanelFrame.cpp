// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/PanelFrame.h"

#include <algorithm>

#include "shell/Common.h"

namespace brelant {

namespace {

constexpr double kPollPeriod = 2.0;
constexpr double kDay = 86400;
constexpr int kEnterKey = 13;

constexpr const char* kTitle = "KVX3.0";
constexpr const char* kSimulatedTitle = "KVX3.0 Simulated mode";

}  // namespace

PanelFrame::PanelFrame(const PanelContext& context, const std::string& name,
                       const std::string& simulatedCaption)
    : Panel(context.screen, name), context_(context) {
  const auto command = [this](Command code) { return [this, code] { Request(code); }; };
  btnReadFromSensor.onClick = mReadfromsensor.onClick = command(readSensor);
  btnSendToSensor.onClick = mSendtosensor.onClick = command(writeSensor);
  mLoadsettings.onClick = command(loadSettings);
  mSavesettings.onClick = command(saveSettings);
  mTWAreset.onClick = command(resetTWA);
  mExit.onClick = command(exitPanel);
  mComSet.onClick = [this] { ToggleComSet(); };
  mHelp.onClick = [this] { OpenHelp(); };
  form.onClose = [this] { context_.EndSession(); };
  cbxSimulated.SetText(simulatedCaption);
  cbxSimulated.onClick = [this] { SimMode(Simulated()); };
}

void PanelFrame::PanelLoop() {
  ShowProgress("", true);
  if (running_) return;
  running_ = true;
  double lastPoll = 0;
  while (!context_.session.Over()) {
    LetEventsRun(lastPoll);
    if (context_.session.Over()) break;
    if (context_.session.PanelCommand != 0) RunCommand();
    if (context_.session.Over()) break;
    if (Simulated()) {
      SimulatedPass();
    } else {
      PollWhenDue(lastPoll);
    }
  }
  running_ = false;
}

/// Sleeps no longer than until the loop has something of its own to do.
void PanelFrame::LetEventsRun(double lastPoll) {
  auto& clock = context_.machine.clock;
  auto& pump = context_.machine.pump;
  if (context_.session.PanelCommand != 0) {
    pump.DoEvents();
    return;
  }
  auto until = std::chrono::microseconds::max();
  if (!Simulated()) {
    const double now = clock.Timer();
    // Midnight moves the poll, so the loop must not sleep past it.
    const double left = std::min(std::clamp(lastPoll + kPollPeriod - now, 0.0, kPollPeriod), kDay - now);
    until = clock.Now() + std::chrono::milliseconds(static_cast<int>(left * 1000) + 1);
  } else if (const auto period = SimulatedPeriod()) {
    until = clock.Now() + *period;
  }
  pump.Wait(until);
}

void PanelFrame::RunCommand() {
  auto& session = context_.session;
  session.LastError.clear();
  RunAction(session.PanelCommand);
  if (session.Over()) return;
  session.PanelCommand = 0;
  if (!session.LastError.empty() && session.LastError != kCancelled) {
    context_.machine.userInterface.MessageBox(session.LastError, UserInterface::Buttons::ok, "",
                                              UserInterface::Icon::none);
  }
  session.LastError.clear();
  ShowProgress("", true);
}

bool PanelFrame::RunAction(int command) {
  switch (command) {
    case readSensor:
      return ActionSensorRead();
    case writeSensor:
      return ActionSensorWrite();
    case resetTWA:
      return ActionTWAReset();
    case exitPanel:
      context_.session.LastError = kCancelled;
      context_.EndSession();
      return true;
    case loadSettings:
    case saveSettings:
      context_.session.Fail("This command comes with a later release.");
      return false;
    default:
      return true;
  }
}

void PanelFrame::PollWhenDue(double& lastPoll) {
  auto& session = context_.session;
  const double now = context_.machine.clock.Timer();
  if (now < lastPoll) lastPoll = LastPollAfterMidnight(now);
  if (lastPoll + kPollPeriod >= now) return;
  lastPoll = now;
  const bool polled = session.LastError.empty();
  const bool failed = polled && !ActionSensorReadM();
  if (session.Over()) return;
  if (polled) ++session.polls;
  if (failed && session.LastError != kCancelled) {
    context_.machine.userInterface.MessageBox("No sensor detected, entering simulated mode.",
                                              UserInterface::Buttons::ok, "", UserInterface::Icon::none);
    SimMode(true);
  }
  session.LastError.clear();
}

void PanelFrame::SimMode(bool on) {
  cbxSimulated.SetValue(on ? 1 : 0);
  if (!on) context_.session.LastError = kCancelled;
  for (auto* field : LiveFields()) field->SetFore(on ? colours::kSimulated : colours::kLive);
  for (auto* control :
       {&mReadfromsensor, &mSendtosensor, &mCalibrate, &btnReadFromSensor, &btnSendToSensor}) {
    control->SetEnabled(!on);
  }
  form.SetCaption(on ? kSimulatedTitle : kTitle);
}

void PanelFrame::ShowProgress(const std::string& text, bool hideBar) {
  context_.msg.ShowProgress(text, hideBar, &form);
}

void PanelFrame::Request(Command command) {
  ShowProgress("Please wait", true);
  context_.session.PanelCommand = command;
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

void PanelFrame::MakeEditable(Control& field, std::function<void()> check) {
  MakeEditable(field, std::move(check), [this] { Restore(); });
}

void PanelFrame::Restore() {
  FormRead();
  FormUpdate();
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

void PanelFrame::ToggleComSet() {
  mComSet.SetValue(mComSet.Value() == 0 ? 1 : 0);
  auto& dontShow = context_.comSet.cbxDontShow;
  dontShow.SetValue(mComSet.Value() == 0 ? 1 : 0);
  context_.machine.settingsStore.Write("KVX", "Start", "Dont", std::to_string(dontShow.Value()));
}

void PanelFrame::OpenHelp() {
  const auto name = "help" + std::to_string(context_.info.GetPlatform()) + "v" +
                    NumberText(context_.info.GetProductVariant()) + ".html";
  context_.machine.userInterface.ShellOpen(context_.session.AppDir + name);
}

}  // namespace brelant
