// SPDX-License-Identifier: GPL-3.0-or-later
// brelantctl: the console program.
#include <CLI/CLI.hpp>
#include <QCoreApplication>
#include <exception>
#include <iostream>

#include "console/command_line.h"
#include "console/identify_command.h"
#include "console/run_command.h"
#include "console/send_command.h"
#include "console/show_command.h"
#include "console/watch_command.h"

int main(int argc, char** argv) {
  CLI::App app("The console program for CO2 sensors and the CO2 safety system.", "brelantctl");
  app.require_subcommand(1);
  brelant::CommandLine line{app, {}, {}};
  brelant::AddCommonOptions(app, line.options);
  brelant::AddRunCommand(line);
  brelant::AddIdentifyCommand(line);
  brelant::AddShowCommand(line);
  brelant::AddWatchCommand(line);
  brelant::AddSendCommand(line);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? brelant::kDone : brelant::kMakesNoSense;
  }
  const QCoreApplication application(argc, argv);
  try {
    return line.action();
  } catch (const std::exception& error) {
    std::cerr << error.what() << std::endl;
    return brelant::kFailed;
  }
}
