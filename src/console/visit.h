// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "app/Program.h"
#include "console/command_line.h"
#include "console/no_settings.h"
#include "console/plain_user.h"
#include "qt/QtMachine.h"

namespace brelant {

/// How the sensor is reached, beside the port.
struct Connection {
  /// Nothing: the single sensor on the line.
  std::optional<int> id;
  bool modbus = false;
};

/// A command on a sensor, which does not work without a port.
CLI::App& AddConnectedCommand(CommandLine& line, const std::string& name, const std::string& description,
                              Connection& connection, std::function<int()> action);

/// One look at what is attached: a program of its own that asks nobody and leaves nothing behind, neither in
/// the user's settings nor in "last.set".
class Visit {
 public:
  Visit(const Options& options, const Connection& connection);
  Visit(const Visit&) = delete;
  Visit& operator=(const Visit&) = delete;

  /// Opens the panel of what is attached and calls `onPoll` after every poll until it returns false. Gives
  /// the exit status: any message ends the visit as failed.
  int OpenPanel(std::function<bool(const Panel&)> onPoll);
  /// A connection by names to what was found. Throws ConnectionError.
  std::unique_ptr<BRECOM> Connect();
  /// Probes the port and reads the part number, and no more. On failure the reason is in LastError.
  bool FindSensor();
  /// Sends a settings file. On failure the reason is in LastError.
  bool Send(const std::string& fileName);
  /// Ends the visit from inside a pump pass.
  void End() { program_.session.processOver = true; }

  Program& program() { return program_; }

 private:
  Machine machine();
  BRECOM::Context ByNames();
  Program MakeProgram();
  bool Pass();
  void FillDialog();
  void Start();
  void Fail();

  Options options_;
  Connection connection_;
  PlainUser user_;
  NoSettings settings_;
  QtMachine machine_;
  Program program_;

  std::function<bool(const Panel&)> onPoll_;
  bool started_ = false;
  unsigned polls_ = 0;
  int status_ = kDone;
};

}  // namespace brelant
