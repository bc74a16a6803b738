// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace brelant {

/// The platform number of a part number, 0 if it has none (docs/memory-maps.md, Identity).
std::uint8_t PlatformOfPart(std::uint8_t part);

/// The set of command frames that a sensor of that part number understands: 1, 2, or 0 if it has none.
std::uint8_t ProtocolGenerationOfPart(std::uint8_t part);

}  // namespace brelant
