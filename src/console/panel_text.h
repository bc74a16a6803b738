// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "shell/panel.h"

namespace brelant {

/// The panel as aligned lines for people: live values with units, alarms, and the fields that are to be seen,
/// one line for all of one name.
std::string PanelText(const Panel& panel);

}  // namespace brelant
