// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "console/command_line.h"

namespace brelant {

/// `send FILE`: a settings file to the sensor, as the dialog sends it.
void AddSendCommand(CommandLine& line);

}  // namespace brelant
