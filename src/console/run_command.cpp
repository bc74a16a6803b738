// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/run_command.h"

#include <iostream>
#include <memory>
#include <optional>

#include "app/Program.h"
#include "console/script/runner.h"
#include "names/names_file.h"
#include "qt/QtMachine.h"
#include "qt/StdinLines.h"
#include "qt/machine_path.h"

namespace brelant {

namespace {

using script::Script;

int Play(const Options& options, Script& script, bool readsStdin) {
  JsonLines out(std::cout);
  script::ScriptedUser user(out, [](const std::string& path) { return MachinePath(path).toStdString(); });
  QtMachine machine(options, user);
  const auto folder = ResolveAppDir(options);
  Program program(machine.machine(), folder, ReadUnitNames(machine.machine().files, folder));
  if (!options.port.empty()) program.comSet.txbComPort.SetText(options.port);
  const auto all = machine.machine();
  script::Runner runner(script, user, out,
                        {program.session, program.screen, program.image, program.msg, all.clock, all.pump});
  std::optional<StdinLines> input;
  if (readsStdin) {
    input.emplace([&script](std::string_view line) { script.Append(line); },
                  [&script] { script.Complete(); });
  }
  machine.pump().OnPass([&runner] { return runner.Pass(); });
  program.Run();
  return runner.Finish();
}

int PlayFile(const Options& options, const std::string& file) {
  auto script = script::LoadScript(file);
  if (!script) {
    std::cerr << file << " cannot be read." << std::endl;
    return kMakesNoSense;
  }
  if (const auto& fault = script->FaultyLine()) {
    std::cerr << file << ":" << fault->line << ": " << fault->text << ": " << fault->why << std::endl;
    return kMakesNoSense;
  }
  return Play(options, *script, false);
}

int PlayStdin(const Options& options) {
  Script script;
  return Play(options, script, true);
}

}  // namespace

void AddRunCommand(CommandLine& line) {
  const auto file = std::make_shared<std::string>();
  auto& command = AddCommand(
      line, "run", "Play a script, from the standard input without FILE",
      [&line, file] { return file->empty() ? PlayStdin(line.options) : PlayFile(line.options, *file); });
  AddFile(command, *file, "The script", false);
}

}  // namespace brelant
