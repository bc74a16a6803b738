// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "console/command_line.h"

namespace brelant {

/// `identify`: what is attached, whether there is a panel for it or not.
void AddIdentifyCommand(CommandLine& line);

}  // namespace brelant
