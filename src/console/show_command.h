// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "console/command_line.h"

namespace brelant {

/// `show`: the panel of what is attached, after one poll.
void AddShowCommand(CommandLine& line);

}  // namespace brelant
