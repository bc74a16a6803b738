// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "console/command_line.h"

namespace brelant {

/// `run [FILE]`: the scripted user (docs/architecture.md, The scripted user).
void AddRunCommand(CommandLine& line);

}  // namespace brelant
