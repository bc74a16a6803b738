// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/UnitPanel.h"

#include <array>
#include <chrono>
#include <exception>

#include "connection/connection_error.h"
#include "panels/alarm_state.h"
#include "safety/Functions.h"
#include "shell/Common.h"

namespace brelant {

namespace {

/// The system's colour of a button's face, which a window draws as its own.
constexpr Colour kButtonFace = static_cast<Colour>(0x8000000FU);
constexpr Colour kLampLit = 32768;
constexpr Colour kWhite = 16777215;
constexpr int kProgressPause = 5;

constexpr int kTemperatureAlarmsMask = 128;

constexpr std::size_t kPartAddress = 65;
constexpr int kWholeBar = 100;

constexpr const char* kTankNode = "raGenStat_8";
constexpr int kTankPause = 5000;

/// What the offline model compares: ALARM at or below the level, or at or above it. The two of temperature 2
/// cross, as required. A panel has the first of them.
struct Comparison {
  int status;
  int level;
  int value;
  bool isBelow;
};
constexpr std::array<Comparison, 9> kComparisons{{{0, 0, 1, false},
                                                  {1, 1, 1, false},
                                                  {2, 2, 2, false},
                                                  {3, 3, 0, true},
                                                  {4, 4, 0, false},
                                                  {7, 8, 6, true},
                                                  {8, 7, 6, false},
                                                  {5, 5, 5, true},
                                                  {6, 6, 5, true}}};

}  // namespace

struct UnitPanel::TankCalibration {
  const char* question;
  std::int32_t command;
  const char* completed;
};

UnitPanel::UnitPanel(const PanelContext& context, const std::string& name, const Layout& layout)
    : PanelFrame(context, name, {"Simulated", "BRELANT", "BRELANT Simulated mode", layout.menus}),
      txbSN(form.Add(ControlKind::text, "txbSN")),
      txbID(form.Add(ControlKind::text, "txbID")),
      lblDisplayMode(form.AddArray(ControlKind::label, "lblDisplayMode", kPositions)),
      txbKELActTempAenable(form.Add(ControlKind::text, "txbKELActTempAenable")),
      cbxTWAonP0(form.Add(ControlKind::check, "cbxTWAonP0", "TWA drives output P0")),
      picFlash(form.Add(ControlKind::lamp, "picFlash")),
      lblCH_Name(form.AddArray(ControlKind::label, "lblCH_Name", layout.names)),
      lblCH_Type(form.AddArray(ControlKind::label, "lblCH_Type", layout.liveFields)),
      txbCHact(form.AddArray(ControlKind::text, "txbCHact", layout.liveFields)),
      txbStatus(form.AddArray(ControlKind::text, "txbStatus", layout.alarms)),
      txbKelLevel(form.AddArray(ControlKind::text, "txbKelLevel", layout.alarms)),
      lblFKelunit(form.AddArray(ControlKind::label, "lblFKelunit", layout.alarms)),
      mDisplayModes(form.AddMenu("", "mDisplayModes", "Display modes")),
      mDisplayMode(form.AddArray(ControlKind::menu, "mDisplayMode", kDisplayModes)),
      mTempUnit(form.AddMenu("", "mTempUnit", "Temperature unit")),
      mTempUnitCelsius(form.AddMenu("mTempUnit", "mTempUnitCelsius", "C")),
      mTempUnitFahrenheit(form.AddMenu("mTempUnit", layout.fahrenheit, "F")) {
  SetMenus();
  SetRules(layout);
}

void UnitPanel::SetMenus() {
  for (auto* menu : {&mDisplayModes, &mTempUnit}) menu->SetVisible(false);
  for (auto* entry : mDisplayMode) {
    entry->parent = mDisplayModes.Name();
    entry->SetVisible(false);
  }
}

void UnitPanel::SetRules(const Layout& layout) {
  const auto never = [] { return false; };
  txbSN.editable = txbKELActTempAenable.editable = never;
  for (auto* field : txbStatus) field->editable = never;
  for (const auto* unused : {&lblCH_Name, &lblCH_Type, &txbCHact}) {
    for (auto* control : *unused) control->SetVisible(false);
  }
  for (auto* field : txbCHact) {
    field->editable = [this] { return Simulated(); };
    MakeEditable(*field, nullptr, nullptr);
  }
  for (const auto& channel : layout.channels) {
    lblCH_Name[channel.name].SetText(channel.caption);
    for (auto* control : {&lblCH_Name[channel.name], &lblCH_Type[channel.field], &txbCHact[channel.field]}) {
      control->SetVisible(true);
    }
  }
  for (auto* field : txbKelLevel) MakeLevelEditable(*field);
  picFlash.SetBack(kButtonFace);
}

void UnitPanel::MakeLevelEditable(Control& field) {
  auto& level = levels_.emplace_back(field);
  MakeEditable(
      field, [&level] { level.EditEnds(); }, [this] { StoreEdit(); });
  Guard(field, level);
}

void UnitPanel::Guard(Control& field, LevelField& level) {
  field.onFocus = [&level, enter = field.onFocus] {
    level.EditBegins();
    enter();
  };
  field.onChange = [&level] { level.Typed(); };
}

// The connection

void UnitPanel::TakeDialog() {
  const auto& dialog = context_.comSet;
  const bool isSimulated = dialog.optStartMode[frmComSet::simulatedMode].Value() == 1;
  const bool isNetwork = dialog.optStartMode[frmComSet::networkSensor].Value() == 1;
  cbxSimulated.SetValue(isSimulated ? 1 : 0);
  port_ = dialog.txbComPort.Text();
  id_ = isNetwork ? static_cast<int>(ParseNumber(dialog.txbID.Text())) : kOnlyUnit;
  isKnown_ = false;
}

bool UnitPanel::Open(bool isModbus) {
  isModbus_ = isModbus;
  sens_ = std::make_unique<BRECOM>(context_.connection);
  sens_->onProgress = [this](int percent) { SENS_Progress(percent); };
  calibration_ = std::make_unique<CalibrationLibrary>(CalibrationLibrary::Context{
      *sens_, context_.machine.clock, context_.machine.pump, Functions::DisplayToRaw});
  calibration_->onProgress = sens_->onProgress;
  file_ = std::make_unique<BREFILE>(
      BREFILE::Context{*sens_, context_.machine.files, context_.machine.userInterface});
  file_->onAction = [this](const std::string& text) { FILE_Action(text); };
  if (isModbus) sens_->SelectModbus(1);
  return Try([this](BRECOM&) { Connect(); });
}

void UnitPanel::Connect() {
  sens_->ConnectSensor(port_, id_);
}

void UnitPanel::LeaveSession() {
  if (sens_) sens_->CloseConnection();
}

/// The library's own event: at each transfer the bar moves, Cancel is heard and the lamp flickers.
void UnitPanel::SENS_Progress(int percent) {
  auto& session = context_.session;
  session.BusProgress = static_cast<std::uint8_t>(percent);
  if (session.CancelPressed) {
    session.LastError = kCancelled;
    sens_->Abort();
  }
  Sleep(kProgressPause);
  picFlash.SetBack(picFlash.Back() == kButtonFace ? kLampLit : kButtonFace);
}

void UnitPanel::FILE_Action(const std::string& text) {
  ShowProgress(text, false);
}

void UnitPanel::Sleep(int milliseconds) {
  auto& clock = context_.machine.clock;
  const auto until = clock.Now() + std::chrono::milliseconds(milliseconds);
  while (clock.Now() < until && !context_.session.Over()) context_.machine.pump.Wait(until);
}

BRECOM& UnitPanel::Connection() {
  if (!sens_) throw ConnectionError("There is no connection.");
  return *sens_;
}

bool UnitPanel::Try(const std::function<void(BRECOM&)>& work) {
  try {
    work(Connection());
    return true;
  } catch (const std::exception& error) {
    // What a unit holds may also be a channel that does not exist.
    context_.session.Fail(error.what());
    return false;
  }
}

void UnitPanel::TakePartNumber(BRECOM& connection) {
  context_.image.RamImage.at(kPartAddress) = connection.Memory().PartNumber();
  context_.image.RamValid.at(kPartAddress) = true;
}

// The live view

bool UnitPanel::Poll() {
  if (!UpdateLive()) {
    context_.session.LastError = "Communication error";
    return false;
  }
  // Settings that could not be read when the session began.
  if (!isKnown_) UpdateSettings();
  return true;
}

void UnitPanel::LosesSensor() {
  LeaveSession();
  PanelFrame::LosesSensor();
}

void UnitPanel::TurnEnds() {
  picFlash.SetBack(kButtonFace);
}

void UnitPanel::ShowStateLine(BRECOM& connection) {
  const bool isOn =
      connection.Memory().ReadBytes(kStateAddress, 1, SensorMemory::ram, kTemperatureAlarmsMask) == 1;
  txbKELActTempAenable.SetText(isOn ? "Enabled" : "Disabled");
  txbKELActTempAenable.SetFore(isOn ? colours::kLive : colours::kFault);
}

void UnitPanel::SimMode(bool on) {
  PanelFrame::SimMode(on);
  if (on) {
    // What is typed from now on is not the unit's.
    isKnown_ = false;
    txbKELActTempAenable.SetFore(kWhite);
    return;
  }
  WhenFree([this] {
    // After a lost link the unit is connected as it was the first time.
    const bool isThere = sens_ && (sens_->Connected() || Try([this](BRECOM&) { Connect(); }));
    if (isThere) UpdateSettings();
    context_.session.CancelPressed = false;
  });
}

void UnitPanel::Simulate() {
  for (const auto& compared : kComparisons) {
    if (compared.status >= txbStatus.Count()) continue;
    const float value = ParseNumber(txbCHact[compared.value].Text());
    const float level = ParseNumber(txbKelLevel[compared.level].Text());
    ShowAlarm(txbStatus[compared.status], compared.isBelow ? value <= level : value >= level);
  }
}

// Edits and choices

/// Edits that end while the line is in use are sent together.
void UnitPanel::StoreEdit() {
  if (Simulated()) return TakeLevels();
  if (storeAwaits_) return;
  storeAwaits_ = true;
  WhenFree([this] {
    storeAwaits_ = false;
    // The link may have been lost meanwhile.
    if (Simulated()) return TakeLevels();
    form.SetBusy(true);
    SendAndReadBack();
    ShowProgress("", true);
    context_.session.CancelPressed = false;
  });
}

void UnitPanel::SendEdit() {
  if (!FormRead(true) && !context_.session.Over()) TellLastError();
  // A Cancel was for the sending: the fields show what the unit holds.
  context_.session.CancelPressed = false;
}

void UnitPanel::TakeLevels() {
  for (auto& level : levels_) level.Taken();
}

bool UnitPanel::RequireKnown() {
  if (isKnown_) return true;
  TakeLevels();
  context_.session.Fail("The settings of the unit have not been read.");
  return false;
}

std::optional<bool> UnitPanel::AskForFahrenheit() {
  const auto choice =
      context_.machine.userInterface.PopupMenu({mTempUnitCelsius.Text(), mTempUnitFahrenheit.Text()});
  if (!choice) return {};
  return *choice != 0;
}

std::optional<int> UnitPanel::AskForDisplayMode() {
  std::vector<int> channels;
  std::vector<std::string> captions;
  for (int i = 0; i < mDisplayMode.Count(); ++i) {
    if (!mDisplayMode[i].Visible()) continue;
    channels.push_back(i);
    captions.push_back(mDisplayMode[i].Text());
  }
  const auto choice = context_.machine.userInterface.PopupMenu(captions);
  if (!choice) return {};
  return channels.at(*choice);
}

// All settings

bool UnitPanel::ActionSensorRead() {
  ShowProgress("Reading from sensor", false);
  const bool isPrepared = Try([this](BRECOM& connection) {
    const bool isOnNetwork = !isModbus_ && id_ != kOnlyUnit;
    context_.com.ClearImage(static_cast<std::uint8_t>(isOnNetwork ? id_ : static_cast<int>(kBroadcastId)));
    context_.session.BusProgress = kWholeBar;
    TakePartNumber(connection);
  });
  return isPrepared && UpdateSettings();
}

bool UnitPanel::ActionSensorWrite() {
  ShowProgress("Sending to sensor", false);
  return FormRead(true);
}

bool UnitPanel::ActionSettingsSave() {
  return Try([this](BRECOM&) {
    MarkForSave();
    ShowProgress("Saving settings", false);
    // What the fields hold goes to the unit first.
    if (!FormRead(true)) return;
    if (file_->ChooseForSave("")) file_->Write();
  });
}

bool UnitPanel::ActionSettingsLoad() {
  bool isChosen = false;
  const bool done = Try([&](BRECOM&) {
    isChosen = file_->Read("");
    if (!isChosen) return;
    ShowProgress("Loading settings", false);
    // The fields count again when they were read back, as some of the file may have been sent.
    isKnown_ = false;
    file_->Send();
  });
  if (!isChosen) return done;
  context_.session.CancelPressed = false;
  return UpdateSettings() && UpdateLive() && done;
}

// Calibrations

bool UnitPanel::Confirmed(const std::string& question) {
  const auto reply = context_.machine.userInterface.MessageBox(question, UserInterface::Buttons::yesNo, "",
                                                               UserInterface::Icon::none);
  return reply == UserInterface::Reply::yes;
}

bool UnitPanel::Calibrate(const std::string& progress, const std::string& procedure, const std::string& value,
                          const std::string& text) {
  ShowProgress(progress, false);
  return Try([&](BRECOM&) {
    auto& calibration = calibration_->Procedure(procedure);
    if (!value.empty()) calibration.Values().Item(value).Text = text;
    calibration.Run();
  });
}

bool UnitPanel::CalibrateEmptyTank() {
  return CalibrateTank({"Start empty tank calibration?", 1, "Empty tank calibration completed"});
}

bool UnitPanel::CalibrateFullTank() {
  return CalibrateTank({"Start full tank calibration?", 2, "Full tank calibration completed"});
}

bool UnitPanel::CalibrateTank(const TankCalibration& calibration) {
  if (!Confirmed(calibration.question)) return true;
  return Try([&](BRECOM& connection) {
    connection.Nodes().FindNode(kTankNode, "").SetValue(true, calibration.command);
    Sleep(kTankPause);
    if (connection.Nodes().FindNode(kTankNode, "").GetValue(true) != 0) {
      throw ConnectionError("Calibration error");
    }
    context_.machine.userInterface.Tell(calibration.completed);
  });
}

}  // namespace brelant
