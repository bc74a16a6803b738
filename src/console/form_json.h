// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "console/json_lines.h"
#include "console/script/property.h"
#include "shell/form.h"

namespace brelant {

Json PropertyJson(const Control& control, script::Property property);
/// The control with its name.
Json ControlJson(const Control& control);
/// The form with all its controls.
Json FormJson(const Form& form);

}  // namespace brelant
