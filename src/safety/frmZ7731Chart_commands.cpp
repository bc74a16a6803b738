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

constexpr const char* kCorrectTemperature = "Please enter correct temperature";
/// Bytes that belong to the settings and have no name.
constexpr std::array kMarkedBytes{7124, 7125};

}  // namespace

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

// Calibrations

bool frmZ7731Chart::ActionCalTempZero() {
  const auto answer = Ask(kCorrectTemperature, "Temperature 1");
  if (!answer) return false;
  return Calibrate("Calibrating temperature 1", "cpSpaceTempOffsetAdjust",
                   "cvSpaceTempOffsetAdjustCorrectTemp", *answer);
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
  return Calibrate("Calibrating CO2 zero point", "cpCO2ZeroCal");
}

bool frmZ7731Chart::ActionCalWeightE() {
  return CalibrateEmptyTank();
}

bool frmZ7731Chart::ActionCalWeightF() {
  return CalibrateFullTank();
}

// Loggers

/// The two are numbered the other way round by the decoder.
bool frmZ7731Chart::ActionLoggerGetData(int logger) {
  // It takes long enough for a bar, which would begin with what the last transfer left.
  context_.session.BusProgress = 0;
  ShowProgress("Please wait", false);
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
