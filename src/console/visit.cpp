// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/visit.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <utility>

#include "connection/ReadPartModbus.h"
#include "names/names_file.h"

namespace brelant {

CLI::App& AddConnectedCommand(CommandLine& line, const std::string& name, const std::string& description,
                              Connection& connection, std::function<int()> action) {
  auto& command = AddCommand(line, name, description, [&line, action = std::move(action)] {
    if (!line.options.port.empty()) return action();
    std::cerr << "--port is missing: which port is the sensor on?" << std::endl;
    return kMakesNoSense;
  });
  command.add_option("--id", connection.id, "Bus ID of the sensor; without it the single one on the line")
      ->check(CLI::Range(1, 29));
  command.add_flag("--modbus", connection.modbus, "Speak Modbus instead of KiBus");
  return command;
}

Visit::Visit(const Options& options, const Connection& connection)
    : options_(options), connection_(connection), machine_(options, user_), program_(MakeProgram()) {
  user_.onMessage = [this] { Fail(); };
}

Program Visit::MakeProgram() {
  const auto folder = ResolveAppDir(options_);
  const auto all = machine();
  return {all, folder, ReadUnitNames(all.files, folder)};
}

Machine Visit::machine() {
  const auto all = machine_.machine();
  return {all.clock, all.pump, all.serialPort, all.modbusMaster, all.files, settings_, all.userInterface};
}

int Visit::OpenPanel(std::function<bool(const Panel&)> onPoll) {
  onPoll_ = std::move(onPoll);
  machine_.pump().OnPass([this] { return Pass(); });
  program_.Run();
  return status_;
}

bool Visit::FindSensor() {
  constexpr float kProbeSeconds = 2.0F;
  constexpr float kPartAddress = 65;
  const auto id = connection_.id.value_or(static_cast<int>(kBroadcastId));
  program_.link.SetCommPort(options_.port);
  program_.com.ClearImage(static_cast<std::uint8_t>(id));
  if (!program_.link.ProbePort(kProbeSeconds)) return false;
  if (!connection_.modbus) return program_.com.ReadSensorMemory(0, kPartAddress, 1, false, false);
  return ReadPartModbus(ByNames(), program_.image, options_.port, true);
}

BRECOM::Context Visit::ByNames() {
  const auto all = machine();
  return {program_.session,         program_.link, all.files, all.modbusMaster, program_.unitNames.names,
          program_.unitNames.modbus};
}

std::unique_ptr<BRECOM> Visit::Connect() {
  auto sens = std::make_unique<BRECOM>(ByNames());
  if (connection_.modbus) sens->SelectModbus(1);
  sens->ConnectSensor(options_.port, connection_.id.value_or(kOnlyUnit));
  return sens;
}

bool Visit::Pass() {
  auto& session = program_.session;
  // A process that is over must not sleep on its way out.
  if (session.Over()) return true;
  if (program_.comSet.form.Visible()) {
    // The dialog comes back only after a failure.
    if (started_) {
      Fail();
    } else {
      Start();
    }
    return true;
  }
  if (session.polls == polls_) return false;
  polls_ = session.polls;
  if (!onPoll_(*session.CurrentPanel)) End();
  return true;
}

bool Visit::Send(const std::string& fileName) {
  FillDialog();
  return program_.main.Send(fileName);
}

/// What a person does in the dialog.
void Visit::Start() {
  FillDialog();
  started_ = true;
  program_.comSet.form.Click(program_.comSet.btnStartKVX);
}

void Visit::FillDialog() {
  auto& dialog = program_.comSet;
  dialog.txbComPort.SetText(options_.port);
  dialog.form.Select(
      dialog.optStartMode[connection_.id ? frmComSet::networkSensor : frmComSet::singleSensor]);
  if (connection_.id) dialog.txbID.SetText(std::to_string(*connection_.id));
  dialog.form.Select(dialog.optComProt[connection_.modbus ? frmComSet::modBus : frmComSet::kiBus]);
}

void Visit::Fail() {
  status_ = kFailed;
  End();
}

}  // namespace brelant
