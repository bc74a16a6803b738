// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "comm/SensorImage.h"
#include "knowledge/SnsInfo.h"

namespace brelant::platform6 {

inline constexpr float kWordOffset = 5000;

/// A word of EEPROM less 5000 as a text of that channel, and back.
inline std::string OffsetWordText(const SensorImage& image, SnsInfo& info, int address, float channel) {
  return info.RawToText(image.EepromWord(address) - kWordOffset, channel, true);
}
inline void StoreOffsetWord(SensorImage& image, SnsInfo& info, int address, float channel,
                            const std::string& text) {
  image.SetEepromWord(address, info.TextToRaw(text, channel, true) + kWordOffset);
}

}  // namespace brelant::platform6
