// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>

#include "console/exit_status.h"
#include "qt/options.h"

namespace brelant {

/// The command line of brelantctl. Each command adds itself, and leaves in `action` what is to be done when
/// the line has been read; the action gives the exit status.
struct CommandLine {
  CLI::App& app;
  Options options;
  std::function<int()> action;
};

/// A command whose options may stand on either side of the common ones.
CLI::App& AddCommand(CommandLine& line, const std::string& name, const std::string& description,
                     std::function<int()> action);
void AddFlag(CLI::App& command, const std::string& name, bool& value, const std::string& description);
/// The name of a file, without an option before it.
void AddFile(CLI::App& command, std::string& value, const std::string& description, bool required);

}  // namespace brelant
