// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "comm/snscom.h"

namespace brelant::platform61 {

/// What goes over the line in several transfers, each of which stops at the first that fails
/// (docs/memory-maps.md, Platform 61 and Platform 7).

/// The settings of a platform 7 sensor, which lie in five places of its EEPROM.
bool ReadSettingsOf7(snscom& com);
bool WriteSettingsOf7(snscom& com);
/// The live values: three places of RAM.
bool ReadLiveOf61(snscom& com);
bool ReadLiveOf7(snscom& com);

}  // namespace brelant::platform61
