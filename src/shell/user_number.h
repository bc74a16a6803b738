// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string_view>

namespace brelant {

/// The number in a text that a user typed, by ParseNumber, for where a 0 made of something else would do
/// harm: nothing for a text that has no number, or of which that reading would make a 0.
std::optional<float> FindNumber(std::string_view text);

}  // namespace brelant
