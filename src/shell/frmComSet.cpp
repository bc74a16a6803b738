// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/frmComSet.h"

namespace brelant {

namespace {

constexpr const char* kSection = "Start";
constexpr int kStartModeGroup = 1;
constexpr int kProtocolGroup = 2;

const char* TrueOrFalse(const Control& option) {
  return option.Value() == 1 ? "True" : "False";
}

std::string Offer(const SerialPort::Description& port) {
  return port.about.empty() ? port.device : port.device + "  " + port.about;
}

}  // namespace

frmComSet::frmComSet(Session& session, const Machine& machine, Screen& screen)
    : form(screen, "frmComSet", "Communication setup"),
      Label1(form.Add(ControlKind::label, "Label1")),
      Label2(form.Add(ControlKind::label, "Label2")),
      txbComPort(form.Add(ControlKind::text, "txbComPort")),
      optStartMode(form.AddArray(ControlKind::option, "optStartMode", 3)),
      lblID(form.Add(ControlKind::label, "lblID", "ID")),
      txbID(form.Add(ControlKind::text, "txbID")),
      optComProt(form.AddArray(ControlKind::option, "optComProt", 2)),
      cbxLoggcom(form.Add(ControlKind::check, "cbxLoggcom", "Logg communication")),
      cbxDontShow(form.Add(ControlKind::check, "cbxDontShow", "Don't show this dialog in the future")),
      txbFileName(form.Add(ControlKind::text, "txbFileName")),
      Command5(form.Add(ControlKind::button, "Command5", "...")),
      cmdSendFile(form.Add(ControlKind::button, "cmdSendFile", "Send file to sensor")),
      btnHelp(form.Add(ControlKind::button, "btnHelp", "Help")),
      btnStartKVX(form.Add(ControlKind::button, "btnStartKVX", "Start")),
      btnExit(form.Add(ControlKind::button, "btnExit", "Exit")),
      session_(session),
      machine_(machine) {
  optStartMode[singleSensor].SetText("Single sensor");
  optStartMode[networkSensor].SetText("Network sensor");
  optStartMode[simulatedMode].SetText("Simulated mode");
  optComProt[kiBus].SetText("KiBus");
  optComProt[modBus].SetText("ModBus");
  for (auto* option : optStartMode) {
    option->group = kStartModeGroup;
    option->onClick = [this] { StartModeChanged(); };
  }
  for (auto* option : optComProt) option->group = kProtocolGroup;
  txbComPort.onChange = [this] { PortChanged(); };
  cbxLoggcom.onClick = [this] {
    if (cbxLoggcom.Value() == 1) session_.TrafficLogOn = true;
  };
  Command5.onClick = [this] { ChooseFile(); };
  // Whoever waits for the dialog carries it out: a handler does not talk to the sensor.
  cmdSendFile.onClick = [this] { sendRequested_ = true; };
  btnHelp.onClick = [this] { machine_.userInterface.ShellOpen(session_.AppDir + "\\helpComSet.html"); };
  btnStartKVX.onClick = [this] { Start(); };
  btnExit.onClick = [this] { Exit(); };
  form.onClose = [this] { Exit(); };
  Load();
}

void frmComSet::Load() {
  Label1.SetText("Brelant Safety System");
  Label2.SetText("Version 2.1.0");
  txbComPort.SetText(ReadSetting("Com", "1"));
  for (int mode = 0; mode < optStartMode.Count(); ++mode) {
    if (ReadSetting("StartMode" + std::to_string(mode), "") == "True") form.Select(optStartMode[mode]);
  }
  txbID.SetText(ReadSetting("ID", ""));
  cbxDontShow.SetValue(ReadSetting("Dont", "") == "1" ? 1 : 0);
  if (optStartMode[simulatedMode].Value() == 1) form.Select(optStartMode[singleSensor]);
  form.Select(optComProt[ReadSetting("Prot", "") == "ModBus" ? modBus : kiBus]);
  StartModeChanged();
}

void frmComSet::Show() {
  ports_ = machine_.serialPort.AvailablePorts();
  std::vector<std::string> offers;
  offers.reserve(ports_.size());
  for (const auto& port : ports_) offers.push_back(Offer(port));
  txbComPort.SetItems(offers);
  form.Show();
}

void frmComSet::Exit() {
  WriteSettings();
  session_.processOver = true;
  form.Hide();
}

void frmComSet::StartModeChanged() {
  const bool network = optStartMode[networkSensor].Value() == 1;
  lblID.SetVisible(network);
  txbID.SetVisible(network);
}

void frmComSet::PortChanged() {
  for (const auto& port : ports_) {
    if (txbComPort.Text() == Offer(port)) txbComPort.SetText(port.device);
  }
}

void frmComSet::ChooseFile() {
  const auto name = machine_.userInterface.FileDialog(UserInterface::FileUse::open, "(*.Set)|*.Set");
  if (!name) return;
  chosenFile_ = *name;
  txbFileName.SetText(*name);
}

void frmComSet::Start() {
  WriteSettings();
  const bool useModBus = optComProt[kiBus].Value() == 0 && optComProt[modBus].Value() == 1;
  WriteSetting("Prot", useModBus ? "ModBus" : "KiBus");
  form.Hide();
}

void frmComSet::WriteSettings() {
  WriteSetting("Com", txbComPort.Text());
  for (int mode = 0; mode < optStartMode.Count(); ++mode) {
    WriteSetting("StartMode" + std::to_string(mode), TrueOrFalse(optStartMode[mode]));
  }
  WriteSetting("ID", txbID.Text());
  WriteSetting("Dont", cbxDontShow.Value() == 1 ? "1" : "0");
}

std::string frmComSet::ReadSetting(const std::string& key, const std::string& fallback) const {
  return machine_.settingsStore.Read(kApplication, kSection, key, fallback);
}

void frmComSet::WriteSetting(const std::string& key, const std::string& value) {
  machine_.settingsStore.Write(kApplication, kSection, key, value);
}

}  // namespace brelant
