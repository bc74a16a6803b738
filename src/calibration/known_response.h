// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "calibration/response.h"
#include "comm/SensorImage.h"
#include "knowledge/SnsInfo.h"

namespace brelant {

/// The response of a gas channel as far as the image alone tells it, over the signals; empty if it does not.
/// The sensor is never asked.
std::vector<ResponsePoint> KnownGasResponse(const SensorImage& image, SnsInfo& info, float channel);
/// The same of a temperature channel, over the positions.
std::vector<ResponsePoint> KnownTemperatureResponse(const SensorImage& image, SnsInfo& info, float channel);

}  // namespace brelant
