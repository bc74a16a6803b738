// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/command_line.h"

#include <CLI/CLI.hpp>
#include <utility>

namespace brelant {

CLI::App& AddCommand(CommandLine& line, const std::string& name, const std::string& description,
                     std::function<int()> action) {
  auto& command = *line.app.add_subcommand(name, description)->fallthrough();
  command.callback([&line, action = std::move(action)] { line.action = action; });
  return command;
}

void AddFlag(CLI::App& command, const std::string& name, bool& value, const std::string& description) {
  command.add_flag(name, value, description);
}

void AddFile(CLI::App& command, std::string& value, const std::string& description, bool required) {
  command.add_option("FILE", value, description)->required(required);
}

}  // namespace brelant
