// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "comm/SensorImage.h"
#include "connection/BRECOM.h"

namespace brelant {

/// Puts the part number of the unit that SensorId means into the image, read over Modbus on a connection of
/// its own. False: it could not be read, which LastError then tells if `reportError` is true.
bool ReadPartModbus(const BRECOM::Context& context, SensorImage& image, const std::string& port,
                    bool reportError);

}  // namespace brelant
