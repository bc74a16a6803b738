// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/KVXMain.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "app/connection.h"
#include "connection/ReadPartModbus.h"
#include "connection/connection_error.h"
#include "panels/frm5.h"
#include "panels/frm5Chart.h"
#include "panels/frm6.h"
#include "panels/frm61.h"
#include "panels/platform61/transfers.h"
#include "platform/machine_error.h"
#include "safety/frm8Chart.h"
#include "safety/frm8_2Chart.h"
#include "safety/frmZ7731Chart.h"
#include "shell/Common.h"

namespace brelant {

namespace {

constexpr float kProbeSeconds = 2.0F;
constexpr std::int32_t kWholeRam = 8;
constexpr std::int32_t kWholeEeprom = 30;

/// Found by its name only: it is not in the list of panels.
constexpr const char* kUnlistedPanel = "frm8_2Chart";

/// Which panel shows which sensors.
struct PanelChoice {
  int platform;
  float firstVariant;
  float lastVariant;
  const char* panel;
};

constexpr std::array kPanelChoices{
    PanelChoice{5, 0, 0, "frm5"},          PanelChoice{5, 1, 3, "frm5Chart"},
    PanelChoice{6, 0, 5, "frm6"},          PanelChoice{61, 0, 1, "frm61"},
    PanelChoice{7, 1, 2, "frm61"},         PanelChoice{8, 1, 1, "frm8Chart"},
    PanelChoice{8, 2, 2, kUnlistedPanel},  PanelChoice{9, 1, 1, "frmZ7731Chart"},
    PanelChoice{9, 3, 3, "frmZ7731Chart"}, PanelChoice{9, 5, 7, "frmZ7731Chart"},
};

/// Of a simulated safety unit, which is not asked for its model.
constexpr float kAnyModel = 1;
/// "eaUserInfo_28" of every unit that is reached by name.
constexpr std::int32_t kSymbolicUnit = 117;

const PanelChoice* ChoiceFor(int platform, float variant) {
  const auto found = std::find_if(kPanelChoices.begin(), kPanelChoices.end(), [&](const PanelChoice& choice) {
    return choice.platform == platform && variant >= choice.firstVariant && variant <= choice.lastVariant;
  });
  return found == kPanelChoices.end() ? nullptr : &*found;
}

bool IsSimulationFile(const std::string& name) {
  std::string ending = name.size() < 4 ? "" : name.substr(name.size() - 4);
  std::transform(ending.begin(), ending.end(), ending.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return ending == ".sim";
}

}  // namespace

KVXMain::KVXMain(const PanelContext& context, SerialLink& link, frmSim& sim, std::string applicationPath)
    : context_(context),
      link_(link),
      sim_(sim),
      sendFile_(context, link),
      applicationPath_(std::move(applicationPath)) {
  context_.EndSession = [this] { EndSession(); };
}

void KVXMain::Main() {
  auto& session = context_.session;
  session.sessionOver = false;
  session.PanelCommand = 0;
  EnterAppDir();
  FillPanelList();
  context_.com.ClearImage(static_cast<std::uint8_t>(kBroadcastId));
  bool ask = context_.comSet.cbxDontShow.Value() == 0;
  while (!session.processOver) {
    if (ask) AskForSettings();
    // After a failure the dialog comes back, also when the user has switched it off.
    ask = true;
    if (session.processOver) return;
    const auto outcome = Start();
    if (session.processOver || outcome == Outcome::started) return;
    context_.msg.ShowProgress("", true, nullptr);
    const bool silent = session.LastError.empty() || session.LastError == kCancelled;
    if (outcome == Outcome::failedAndTold || !silent) ShowMessage(session.LastError);
  }
}

bool KVXMain::Send(const std::string& fileName) {
  EnterAppDir();
  return sendFile_.Send(fileName);
}

void KVXMain::FillPanelList() {
  if (!panelList_.empty()) return;
  panelList_.push_back({"frm5", [this] { return std::make_unique<frm5>(context_); }});
  panelList_.push_back({"frm5Chart", [this] { return std::make_unique<frm5Chart>(context_); }});
  panelList_.push_back({"frm6", [this] { return std::make_unique<frm6>(context_); }});
  panelList_.push_back({"frm61", [this] { return std::make_unique<frm61>(context_); }});
  panelList_.push_back({"frm8Chart", [this] { return std::make_unique<frm8Chart>(context_); }});
  panelList_.push_back({"frmZ7731Chart", [this] { return std::make_unique<frmZ7731Chart>(context_); }});
}

void KVXMain::AskForSettings() {
  auto& dialog = context_.comSet;
  context_.session.LastError.clear();
  dialog.Show();
  while (dialog.form.Visible() && !context_.session.processOver) {
    context_.machine.pump.Wait(std::chrono::microseconds::max());
    if (dialog.TakeSendRequest() && dialog.form.Visible()) sendFile_.Run();
  }
}

KVXMain::Outcome KVXMain::Start() {
  auto& dialog = context_.comSet;
  context_.session.CancelPressed = false;
  link_.SetCommPort(dialog.txbComPort.Text());
  // So that a second attempt does not meet the flags of the first sensor.
  context_.com.ClearImage(static_cast<std::uint8_t>(kBroadcastId));
  const bool simulated = dialog.optStartMode[frmComSet::simulatedMode].Value() == 1;
  const auto outcome = simulated ? LoadSimulation() : ConnectSensor();
  if (outcome != Outcome::started) return outcome;
  if (!PreparePanel(simulated)) return Outcome::failed;
  ShowPanel(simulated);
  return Outcome::started;
}

KVXMain::Outcome KVXMain::ConnectSensor() {
  TakeSensorId(context_.comSet, context_.session);
  context_.msg.ShowProgress("Please wait", true, nullptr);
  // A failed probe is told even when there is nothing to tell.
  if (!link_.ProbePort(kProbeSeconds)) return Outcome::failedAndTold;
  return ReadPartNumber() ? Outcome::started : Outcome::failed;
}

bool KVXMain::ReadPartNumber() {
  const auto& dialog = context_.comSet;
  if (SpeaksKiBus(dialog)) return context_.com.ReadSensorMemory(0, 65, 1, false, false);
  if (!SpeaksModbus(dialog)) return true;
  return ReadPartModbus(context_.connection, context_.image, dialog.txbComPort.Text(), true);
}

KVXMain::Outcome KVXMain::LoadSimulation() {
  auto& session = context_.session;
  FillSimulationList();
  sim_.form.ShowModal(context_.machine.pump, [&session] { return session.Over(); });
  if (session.LastError == kCancelled) return Outcome::failed;
  context_.msg.ShowProgress("Please wait", true, nullptr);
  const auto& choice = sim_.cmbTypeOfS.Text();
  if (choice == "Vega 3") {
    PresetVega3();
    return Outcome::started;
  }
  const auto name = session.AppDir + (choice == "Last" ? "\\Last.set" : "\\" + choice + ".sim");
  return LoadImage(name) ? Outcome::started : Outcome::failed;
}

bool KVXMain::LoadImage(const std::string& name) {
  std::uint8_t block = snsFil::first;
  if (!context_.file.ReadSetBlock(name, block, true, true)) return false;
  if (context_.info.GetPlatform() != 7) return true;
  // The settings of this platform do not fit into one block.
  block = snsFil::upperEeprom;
  return context_.file.ReadSetBlock(name, block, true, true);
}

/// Once per process.
void KVXMain::FillSimulationList() {
  auto& list = sim_.cmbTypeOfS;
  if (!list.Items().empty()) return;
  std::vector<std::string> names;
  for (const auto& name : context_.machine.files.List(context_.session.AppDir)) {
    if (IsSimulationFile(name)) names.push_back(name.substr(0, name.size() - 4));
  }
  if (names.empty()) return;
  list.SetItems(names);
  list.SetValue(0);
  list.SetText(names.front());
}

/// The safety system is simulated without a file.
void KVXMain::PresetVega3() {
  auto& image = context_.image;
  image.RamImage[65] = 154;
  image.RamValid[65] = true;
  image.EepromImage[4124] = 117;
  image.EepromImage[4125] = 3;
  image.EepromValid[4124] = image.EepromValid[4125] = true;
}

bool KVXMain::PreparePanel(bool simulated) {
  float variant = 0;
  if (!ReadSensor(simulated, variant)) return false;
  const auto* choice = ChoiceFor(context_.info.GetPlatform(), variant);
  if (choice == nullptr) {
    context_.session.LastError = kUnknownSensor;
    return false;
  }
  panel_ = MakePanel(choice->panel);
  context_.session.CurrentPanel = panel_.get();
  panel_->form.SetCaption(kApplication);
  if (panel_->FormUpdateInit() && panel_->FormUpdate()) return true;
  panel_->LeaveSession();
  return false;
}

std::unique_ptr<Panel> KVXMain::MakePanel(const std::string& name) {
  if (name == kUnlistedPanel) return std::make_unique<frm8_2Chart>(context_);
  const auto entry = std::find_if(panelList_.begin(), panelList_.end(),
                                  [&](const PanelEntry& candidate) { return candidate.name == name; });
  return entry->make();
}

/// The variant of what is attached, and what its panel needs before it can be filled.
bool KVXMain::ReadSensor(bool simulated, float& variant) {
  const int platform = context_.info.GetPlatform();
  if (IsReachedByName(platform) && !simulated) return ReadModel(variant);
  // Without a unit there is nothing behind the names of platform 8.
  if (platform == kSafetySystem) {
    variant = kAnyModel;
    return true;
  }
  if (!ReadImage(simulated)) return false;
  variant = context_.info.GetProductVariant();
  return true;
}

/// The model code of a unit that is reached by name. The connection is gone again before a panel makes its
/// own, whatever happens.
bool KVXMain::ReadModel(float& model) {
  const auto& dialog = context_.comSet;
  context_.msg.ShowProgress("Reading sensor", true, nullptr);
  try {
    BRECOM sens(context_.connection);
    sens.ConnectSensor(dialog.txbComPort.Text(), IdForConnection(dialog, context_.session));
    if (SpeaksModbus(dialog)) sens.SelectModbus(1);
    model = static_cast<float>(sens.Nodes().FindNode("eaUserInfo_29", "").GetValue(true));
    if (sens.Nodes().FindNode("eaUserInfo_28", "").GetValue(true) == kSymbolicUnit) return true;
    context_.session.LastError = kUnknownSensor;
  } catch (const ConnectionError& error) {
    context_.session.Fail(error.what());
  }
  return false;
}

bool KVXMain::ReadImage(bool simulated) {
  switch (context_.info.GetPlatform()) {
    case 5:
      if (!context_.definitions.LoadDefinition()) return false;
      return simulated || ReadWhole(kWholeRam, false);
    case 6:
    case 61:
      return simulated || ReadWhole(kWholeEeprom, true);
    case 7:
      return simulated || ReadSettingsOf7();
    default:
      context_.session.LastError = kUnknownSensor;
      return false;
  }
}

bool KVXMain::ReadSettingsOf7() {
  context_.msg.ShowProgress("Reading sensor", false, nullptr);
  return platform61::ReadSettingsOf7(context_.com);
}

bool KVXMain::ReadWhole(std::int32_t selector, bool isEeprom) {
  context_.msg.ShowProgress("Reading sensor", false, nullptr);
  return context_.com.ReadSensorMemory(selector, 0, 0, isEeprom, false);
}

void KVXMain::ShowPanel(bool simulated) {
  auto& panel = *panel_;
  panel.SimMode(simulated);
  panel.cbxSimulated.SetVisible(!simulated);
  for (auto* control : {&panel.mReadfromsensor, &panel.mSendtosensor, &panel.mCalibrate,
                        &panel.btnReadFromSensor, &panel.btnSendToSensor}) {
    control->SetEnabled(!simulated);
  }
  panel.form.SetCaption(simulated ? std::string(kApplication) + " Simulated mode" : kApplication);
  panel.mComSet.SetValue(context_.comSet.cbxDontShow.Value() == 1 ? 0 : 1);
  context_.msg.ShowProgress("", true, &panel.form);
  panel.form.Show();
}

void KVXMain::EndSession() {
  auto& session = context_.session;
  if (session.sessionOver) return;
  session.sessionOver = true;
  auto* panel = session.CurrentPanel;
  if (panel != nullptr && panel->form.Visible()) {
    panel->LeaveSession();
    panel->FormRead();
    SaveLastSettings();
    panel->form.Hide();
  }
  context_.curve.form.Hide();
  link_.Close();
  context_.msg.ShowProgress("", true, nullptr);
  if (context_.comSet.cbxDontShow.Value() == 1) session.processOver = true;
}

/// A platform without a settings block leaves no file behind, not even the old one.
void KVXMain::SaveLastSettings() {
  const auto name = context_.session.AppDir + "\\last.set";
  std::uint8_t block = context_.file.BlockOfPlatform();
  if (block != snsFil::first) {
    context_.file.SaveSettings(block, name, 1, false, true);
    return;
  }
  try {
    if (context_.machine.files.Exists(name)) context_.machine.files.Remove(name);
  } catch (const MachineError&) {
    // A file that cannot be removed must not keep the session from ending.
    return;
  }
}

void KVXMain::ShowMessage(const std::string& text) {
  context_.machine.userInterface.Tell(text);
}

}  // namespace brelant
