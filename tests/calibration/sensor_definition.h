// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

namespace brelant::test {

/// The definition file that goes with a virtual sensor of platform 5.
std::vector<std::uint8_t> DefinitionOf(int part);

}  // namespace brelant::test
