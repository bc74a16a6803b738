// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/command_line.h"

#include <utility>

namespace brelant {

CLI::App& AddCommand(CommandLine& line, const std::string& name, const std::string& description,
                     std::function<int()> action) {
  auto& command = *line.app.add_subcommand(name, description)->fallthrough();
  command.callback([&line, action = std::move(action)] { line.action = action; });
  return command;
}

}  // namespace brelant
