// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/frm8_2Chart.h"

#include <array>

namespace brelant {

frm8_2Chart::frm8_2Chart(const PanelContext& context)
    : frm8Chart(context, "frm8_2Chart", std::array{kTemperature, kCO2, kTWA, kWeight}),
      mCalWeightEmpty(form.AddMenu("mCalibrate", "mCalWeightEmpty", "WEIGHT, empty tank")),
      mCalWeightFull(form.AddMenu("mCalibrate", "mCalWeightFull", "WEIGHT, full tank")),
      mLogger(form.AddMenu("M0", "mLogger", "Logger")),
      mLoggerExp(form.AddMenu("mLogger", "mLoggerExp", "Export")),
      mLoggerCheckT(form.AddMenu("mLogger", "mLoggerCheckT", "Check time")),
      mLoggerSetT(form.AddMenu("mLogger", "mLoggerSetT", "Set time")),
      mLoggerReset(form.AddMenu("mLogger", "mLoggerReset", "Reset")) {
  mCalWeightEmpty.onClick = Question(calibrateWeightEmpty);
  mCalWeightFull.onClick = Question(calibrateWeightFull);
  mLoggerExp.onClick = Requesting(loggerGetData);
  mLoggerCheckT.onClick = Requesting(loggerCheckTime);
  mLoggerSetT.onClick = Requesting(loggerSetTime);
  mLoggerReset.onClick = Requesting(loggerReset);
}

std::vector<Control*> frm8_2Chart::SensorCommands() const {
  auto commands = frm8Chart::SensorCommands();
  commands.insert(commands.end(), {&mCalWeightEmpty, &mCalWeightFull});
  return commands;
}

bool frm8_2Chart::RunAction(int command) {
  switch (command) {
    case calibrateWeightEmpty:
      return ActionCalWeightE();
    case calibrateWeightFull:
      return ActionCalWeightF();
    case loggerGetData:
      return ActionLoggerGetData();
    case loggerCheckTime:
      return ActionLoggerCheckTime();
    case loggerSetTime:
      return ActionLoggerSetTime();
    case loggerReset:
      return ActionLoggerReset();
    default:
      return frm8Chart::RunAction(command);
  }
}

}  // namespace brelant
