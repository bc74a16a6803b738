// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string_view>

namespace brelant::script {

/// What a script may ask of a control.
enum class Property { text, value, visible, enabled, back, fore, tip, items };

/// The property of that name, nothing if there is none.
std::optional<Property> FindProperty(std::string_view name);

}  // namespace brelant::script
