// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "comm/SensorImage.h"
#include "shell/form.h"

namespace brelant {

/// The four channels that the display of a platform 6 or 61 sensor shows, two to a byte
/// (docs/memory-maps.md, Platform 6). `channels` is the menu that names a channel by its number.
void ShowDisplays(const SensorImage& image, const ControlArray& channels, const ControlArray& labels);
/// Takes the labels into the image; one that names no channel stores 0.
void ReadDisplays(SensorImage& image, const ControlArray& channels, const ControlArray& labels);

}  // namespace brelant
