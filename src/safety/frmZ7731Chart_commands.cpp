// SPDX-License-Identifier: GPL-3.0-or-later
// What the commands of the safety panel do.
#include <array>
#include <string_view>

#include "connection/KiLoggDecoder.h"
#include "connection/connection_error.h"
#include "safety/Functions.h"
#include "safety/frmZ7731Chart.h"
#include "safety/temperature_table.h"
#include "safety/unit_settings.h"
#include "shell/Common.h"
#include "shell/user_number.h"

namespace brelant {

namespace {

constexpr int kWholeBar = 100;
constexpr std::size_t kPartAddress = 65;

constexpr const char* kCorrectTemperature = "Please enter correct temperature";
constexpr const char* kTankNode = "raGenStat_8";
constexpr int kTankPause = 5000;

constexpr std::int32_t kWholeByte = 255;
constexpr std::int32_t kWholeWord = -1;
/// Bytes that belong to the settings and have no name.
constexpr std::array kMarkedBytes{7124, 7125};

}  // namespace

struct frmZ7731Chart::TankCalibration {
  const char* question;
  std::int32_t command;
  const char* completed;
};

bool frmZ7731Chart::RunAction(int command) {
  switch (command) {
    case calibrateTempZero:
      return ActionCalTempZero();
    case calibrateTemp2Zero:
      return ActionCalTemp2Zero();
    case calibrateCO2Zero:
      return ActionCalCO2Zero(0);
    case calibrateWeightEmpty:
      return ActionCalWeightE();
    case calibrateWeightFull:
      return ActionCalWeightF();
    case exportLogger1:
      return ActionLoggerGetData(0);
    case exportLogger2:
      return ActionLoggerGetData(1);
    default:
      return PanelFrame::RunAction(command);
  }
}

bool frmZ7731Chart::ActionSensorRead() {
  ShowProgress("Reading from sensor", false);
  const bool isPrepared = Try([this](BRECOM& connection) {
    const bool isOnNetwork = unit_.ProtocolInUse == snsZ7731::kiBus && id_ != kOnlyUnit;
    context_.com.ClearImage(static_cast<std::uint8_t>(isOnNetwork ? id_ : static_cast<int>(kBroadcastId)));
    context_.session.BusProgress = kWholeBar;
    // What the image tells of the product, which nothing else can ask for while the connection has the line.
    context_.image.RamImage.at(kPartAddress) = connection.Memory().PartNumber();
    context_.image.RamValid.at(kPartAddress) = true;
  });
  return isPrepared && GetAllStaticValues(true);
}

bool frmZ7731Chart::ActionSensorWrite() {
  ShowProgress("Sending to sensor", false);
  return FormRead(true);
}

// Settings files

void frmZ7731Chart::FILE_Action(const std::string& text) {
  ShowProgress(text, false);
}

/// What a settings file holds, in the order in which it holds it.
void frmZ7731Chart::MarkForSave() {
  auto nodes = Connection().Nodes();
  const auto mark = [&nodes](std::string_view name, std::int32_t mask) {
    nodes.FindNode(name, "").MarkForSave(mask);
  };
  mark(unit_.Temp1.CaseValueFormat(), kWholeByte);
  mark(unit_.Temp2.CaseValueFormat(), kWholeByte);
  mark(snsZ7731::P0Algorithm, kWholeWord);
  for (const int model : {0, kSecondListModel}) {
    for (const auto& name : DisplaySequenceNames(model)) mark(name, kWholeByte);
  }
  mark("eaSensorID_0", kWholeByte);
  for (const auto* name : {"eaRegPar0_4", "eaRegPar1_4", "eaRegPar0_5", "eaRegPar1_5", "eaRegPar0_6",
                           "eaRegPar1_6", "eaRegPar0_7", "eaRegPar1_7", "eawPar_1", "eawPar_2",
                           "eaCountPar_9", "eaCountPar_10", "eaCountPar_11"}) {
    mark(name, kWholeWord);
  }
  for (const int address : kMarkedBytes) {
    Connection().Memory().MarkBlock(address, 1, SensorMemory::eeprom, kWholeByte);
  }
  for (const auto name : {snsZ7731::Log1Node, snsZ7731::Log2Node, snsZ7731::LogTimerNode}) {
    mark(name, kWholeWord);
  }
}

bool frmZ7731Chart::ActionSettingsSave() {
  return Try([this](BRECOM&) {
    MarkForSave();
    ShowProgress("Saving settings", false);
    // What the fields hold goes to the unit first.
    if (!FormRead(true)) return;
    if (file_->ChooseForSave("")) file_->Write();
  });
}

bool frmZ7731Chart::ActionSettingsLoad() {
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
  return GetAllStaticValues(true) && FormUpdate() && done;
}

// Calibrations

bool frmZ7731Chart::Confirmed(const std::string& question) {
  const auto reply = context_.machine.userInterface.MessageBox(question, UserInterface::Buttons::yesNo, "",
                                                               UserInterface::Icon::none);
  return reply == UserInterface::Reply::yes;
}

bool frmZ7731Chart::ActionCalTempZero() {
  const auto answer = Ask(kCorrectTemperature, "Temperature 1");
  if (!answer) return false;
  ShowProgress("Calibrating temperature 1", false);
  return Try([&](BRECOM&) {
    auto& procedure = calibration_->Procedure("cpSpaceTempOffsetAdjust");
    procedure.Values().Item("cvSpaceTempOffsetAdjustCorrectTemp").Text = *answer;
    procedure.Run();
  });
}

bool frmZ7731Chart::ActionCalTemp2Zero() {
  const auto answer = Ask(kCorrectTemperature, "Temperature 2");
  if (!answer) return false;
  ShowProgress("Calibrating temperature 2", false);
  return Try([&](BRECOM& connection) {
    const auto actual = FindNumber(*answer);
    if (!actual) throw ConnectionError("'" + *answer + "' is no number.");
    const Functions::TableTools tools{
        [this](const std::string& name, float value) { return WriteToSensor(name, value, true); },
        [this](int pause) { Sleep(pause); }};
    const bool done = Functions::CalibrateTemp2Table(connection, unit_, *actual, unit_.Temp2.Case(), tools);
    if (!done) context_.machine.userInterface.Tell("Calibration of temperature 2 failed");
  });
}

bool frmZ7731Chart::ActionCalCO2Zero(int mode) {
  if (mode != 0 || !Confirmed("Zero calibrate CO2?")) return false;
  ShowProgress("Calibrating CO2 zero point", false);
  return Try([this](BRECOM&) { calibration_->Procedure("cpCO2ZeroCal").Run(); });
}

bool frmZ7731Chart::ActionCalWeightE() {
  return CalibrateTank({"Start empty tank calibration?", 1, "Empty tank calibration completed"});
}

bool frmZ7731Chart::ActionCalWeightF() {
  return CalibrateTank({"Start full tank calibration?", 2, "Full tank calibration completed"});
}

bool frmZ7731Chart::CalibrateTank(const TankCalibration& calibration) {
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

// Loggers

/// The two are numbered the other way round by the decoder.
bool frmZ7731Chart::ActionLoggerGetData(int logger) {
  return Try([&](BRECOM& connection) {
    const auto& clock = context_.machine.clock;
    KiLoggDecoder decoder({connection, context_.machine.files, context_.machine.userInterface,
                           [&clock] { return clock.LocalTime(); }, Functions::RawToDisplay,
                           Functions::UnitLetter, Functions::LoggerPeriodSeconds});
    decoder.SetLogger(logger == 0 ? 1 : 0);
    if (!decoder.Export("")) throw ConnectionError("The logger could not be exported.");
  });
}

}  // namespace brelant
