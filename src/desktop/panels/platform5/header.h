// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>

#include "desktop/kit/Views.h"
#include "shell/panel.h"

namespace brelant::platform5 {

/// Lays out the ground of either panel of platform 5, and puts the row on top of it: what the sensor is, the
/// mode, and the commands.
QBoxLayout& LayOutPanel(Views& views, Panel& panel, QWidget& ground);

}  // namespace brelant::platform5
