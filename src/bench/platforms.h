// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "bench/atmosphere.h"
#include "bench/memory.h"
#include "bench/product.h"

namespace brelant::bench {

/// Puts a new sensor's settings into its memories; `memory` has the right sizes and is all zero. Throws
/// std::invalid_argument, with a text for people, for a variant that the platform cannot be.
void FillMemory(const Product& product, int id, Memory& memory);

/// Moves the live values to what they are at `moment`, by the settings in the memories.
void MoveLiveValues(const Product& product, Memory& memory, const Moment& moment);

/// The settings that a sensor runs on, from EEPROM to RAM and back.
void SettingsToRam(const Product& product, Memory& memory);
void SettingsToEeprom(const Product& product, Memory& memory);

// One of each per platform; the two above choose.
void FillPlatform5(const Product& product, Memory& memory);
void FillPlatform6(const Product& product, Memory& memory);
void FillPlatform61(const Product& product, Memory& memory);
void FillPlatform7(const Product& product, Memory& memory);
void FillPlatform8(const Product& product, Memory& memory);
void FillPlatform9(const Product& product, Memory& memory);

void MovePlatform5(const Product& product, Memory& memory, const Moment& moment);
void MovePlatform6(const Product& product, Memory& memory, const Moment& moment);
void MovePlatform61(const Product& product, Memory& memory, const Moment& moment);
void MovePlatform7(const Product& product, Memory& memory, const Moment& moment);
void MovePlatform8(const Product& product, Memory& memory, const Moment& moment);
void MovePlatform9(const Product& product, Memory& memory, const Moment& moment);

}  // namespace brelant::bench
