// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "console/command_line.h"

namespace brelant {

/// `watch`: a line a poll.
void AddWatchCommand(CommandLine& line);

}  // namespace brelant
