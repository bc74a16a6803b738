// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include "shell/form.h"

namespace brelant::platform6 {

/// Shows the live value of a channel in a field.
using ShowLive = std::function<void(Control& field, int channel)>;

}  // namespace brelant::platform6
