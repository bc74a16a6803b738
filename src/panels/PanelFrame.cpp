// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/PanelFrame.h"

#include <algorithm>

#include "shell/Common.h"

namespace brelant {

namespace {

constexpr double kDay = 86400;

constexpr std::size_t kPartAddress = 65;
constexpr std::int32_t kWholeEeprom = 30;

constexpr const char* kTitle = "KVX3.0";
constexpr const char* kSimulatedTitle = "KVX3.0 Simulated mode";

ControlArray AddEntries(Form& form, const std::vector<std::pair<std::string, std::string>>& entries) {
  std::vector<Control*> added;
  for (const auto& [name, caption] : entries) added.push_back(&form.AddMenu("mCalibrate", name, caption));
  return ControlArray(added);
}

}  // namespace

PanelFrame::PanelFrame(const PanelContext& context, const std::string& name, const Captions& captions)
    : Panel(context.screen, name, captions.optionsMenu),
      context_(context),
      CalTemp(form.AddMenu("mCalibrate", captions.names.temperature, captions.temperatureEntry)),
      mCalCO2(form.AddMenu("mCalibrate", "mCalCO2", captions.singlePointEntry)),
      mCalCO2Zero(form.AddMenu("mCalCO2", captions.names.zero, "Zero")),
      mCalCO2Background(form.AddMenu("mCalCO2", captions.names.background, "Fresh air")),
      mCalCO2Other(form.AddMenu("mCalCO2", captions.names.other, "Other")),
      mCalCO2span(form.AddMenu("mCalibrate", "mCalCO2span", "CO2 span")),
      furtherCalibrations_(AddEntries(form, captions.furtherCalibrations)),
      mCalCurve(form.AddMenu("mCalibrate", "mCalCurve", "Calibration curve")),
      calibratingTemperature_(captions.calibratingTemperature) {
  const auto command = [this](Command code) { return [this, code] { Request(code); }; };
  btnReadFromSensor.onClick = mReadfromsensor.onClick = command(readSensor);
  btnSendToSensor.onClick = mSendtosensor.onClick = command(writeSensor);
  mLoadsettings.onClick = command(loadSettings);
  mSavesettings.onClick = command(saveSettings);
  mTWAreset.onClick = command(resetTWA);
  mExit.onClick = command(exitPanel);
  mCalCO2Zero.onClick = command(calibrateCO2Zero);
  mCalCO2Background.onClick = command(calibrateCO2Background);
  mCalCO2Other.onClick = command(calibrateCO2Other);
  CalTemp.onClick = Question(calibrateTempZero);
  mCalCO2span.onClick = Question(calibrateCO2Span);
  mCalCurve.SetEnabled(false);
  mCalCurve.onClick = [this] { context_.curve.form.Show(); };
  mComSet.onClick = [this] { ToggleComSet(); };
  mHelp.onClick = [this] { OpenHelp(); };
  form.onClose = [this] { context_.EndSession(); };
  cbxSimulated.SetText(captions.simulated);
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
      simulated_ = form.Revision();
    } else {
      simulated_.reset();
      PollWhenDue(lastPoll);
    }
  }
  running_ = false;
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
    context_.machine.userInterface.Tell(session.LastError);
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
      return ActionSettingsLoad();
    case saveSettings:
      return ActionSettingsSave();
    case calibrateTempZero:
      return ActionCalTempZero();
    case calibrateCO2Zero:
      return ActionCalCO2Zero(snsCal::zeroGas);
    case calibrateCO2Background:
      return ActionCalCO2Zero(snsCal::freshAir);
    case calibrateCO2Other:
      return ActionCalCO2Zero(snsCal::otherGas);
    case calibrateCO2Span:
      return ActionCalCO2span();
    default:
      return true;
  }
}

bool PanelFrame::ReadAfresh(const std::function<bool()>& read) {
  imageBefore_ = context_.image;
  context_.com.ClearImage(static_cast<std::uint8_t>(kBroadcastId));
  const bool done = read();
  if (!done) GiveImageBack();
  imageBefore_.reset();
  return done;
}

void PanelFrame::GiveImageBack() {
  if (imageBefore_) context_.image = *imageBefore_;
}

bool PanelFrame::ReadWhole(std::int32_t selector, bool isEeprom) {
  return context_.com.ReadSensorMemory(selector, 0, 0, isEeprom, false);
}

void PanelFrame::TellNoSensor() {
  context_.machine.userInterface.Tell("No sensor detected, entering simulated mode.");
}

std::optional<std::string> PanelFrame::AskForFile(UserInterface::FileUse use, const std::string& text) {
  auto name = context_.machine.userInterface.FileDialog(use, "(*.Set)|*.Set");
  if (!name || name->empty()) return {};
  ShowProgress(text, false);
  return name;
}

bool PanelFrame::LoadEeprom() {
  const auto name = AskForFile(UserInterface::FileUse::open, "Loading settings");
  if (!name) return true;
  if (!FormRead()) return false;
  // A file brings the part number of the sensor that it was saved from.
  auto& part = context_.image.RamImage.at(kPartAddress);
  const float attached = part;
  const bool loaded = context_.file.LoadSettings(*name, 0);
  part = attached;
  return loaded && FormUpdateInit() && FormUpdate();
}

bool PanelFrame::ReadEeprom() {
  return ReadWhole(kWholeEeprom, true);
}

bool PanelFrame::SendEeprom() {
  if (!FormRead()) return false;
  ShowProgress("Sending to sensor", false);
  return context_.com.WriteSensorMemory(kWholeEeprom, 0, 0, true, true, false, true, true, false);
}

bool PanelFrame::SaveSelected(const std::string& name, std::int32_t selection,
                              std::span<const snsFil::BlockWrite> blocks) {
  context_.com.SelectBlock(selection);
  return Saved(context_.file.SaveBlocks(name, 1, blocks));
}

bool PanelFrame::Saved(bool done) {
  if (!done) context_.session.Fail("Can't save settings.");
  return done;
}

std::optional<std::string> PanelFrame::Ask(const std::string& prompt) {
  auto answer = context_.machine.userInterface.InputBox(prompt);
  return answer && !answer->empty() ? answer : std::nullopt;
}

bool PanelFrame::ActionCalTempZero() {
  const auto text = Ask("Please enter correct temperature");
  if (!text) return true;
  ShowProgress(calibratingTemperature_, false);
  return Calibrated(context_.cal.CalibrateTemperature(ParseNumber(*text), snsCal::kPlatformChannel, false));
}

bool PanelFrame::ActionCalCO2Zero(int kind) {
  std::optional<std::string> text;
  if (kind == snsCal::otherGas) {
    text = Ask("Please enter CO2 concentration");
    if (!text) return true;
  }
  ShowProgress("Calibrating CO2 zero point", false);
  return Calibrated(context_.cal.CalibrateCO2Zero(snsCal::kPlatformChannel, false, kind, text.value_or("")));
}

bool PanelFrame::ActionCalCO2span() {
  context_.spanNote.ShowModal(context_.machine.pump);
  if (!context_.session.LastError.empty() || context_.session.Over()) return true;
  const auto text = Ask("Please enter span gas concentration");
  if (!text) return true;
  ShowProgress("Calibrating CO2 span", false);
  return Calibrated(CalibrateSpan(*text));
}

bool PanelFrame::CalibrateSpanOf(float channel, const std::string& text) {
  const float raw = context_.info.TextToRaw(text, channel, false);
  return context_.cal.CalibrateCO2Span(channel, NumberText(raw), false);
}

bool PanelFrame::Calibrated(bool done) {
  const auto& change = context_.cal.LastChange();
  if (!done || !change) return done;
  context_.curve.Take(*change);
  mCalCurve.SetEnabled(true);
  return true;
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
    TellNoSensor();
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

Control::Handler PanelFrame::Question(Command command) {
  return [this, command] { context_.session.PanelCommand = command; };
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

void PanelFrame::MakeIdEditable(Control& field) {
  const auto limit = [&field] {
    constexpr float kHighestId = 29;
    field.SetText(NumberText(std::min(ParseNumber(field.Text()), kHighestId)));
  };
  MakeEditable(field, limit, nullptr);
}

void PanelFrame::Restore() {
  if (!ImageIsWhole()) return;
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

void PanelFrame::ChooseAndStore(Control& label, const ControlArray& menu) {
  if (!ImageIsWhole()) return;
  PopUp(label, menu);
  Restore();
}

void PanelFrame::Choose(Control& label, const ControlArray& menu, const std::function<void()>& store) {
  if (!ImageIsWhole()) return;
  FormRead();
  PopUp(label, menu);
  store();
  FormUpdate();
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

void PanelFrame::OpenHelp() {
  const auto name = "help" + std::to_string(context_.info.GetPlatform()) + "v" +
                    NumberText(context_.info.GetProductVariant()) + ".html";
  context_.machine.userInterface.ShellOpen(context_.session.AppDir + name);
}

}  // namespace brelant
