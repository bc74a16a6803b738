// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>
#include <string>
#include <utility>
#include <vector>

#include "desktop/kit/Views.h"
#include "shell/panel.h"

namespace brelant {

/// What the display of the sensor shows, a choice each, and how the choice is called.
using Displays = std::vector<std::pair<Control*, QString>>;

/// The four of a sensor whose display shows four channels.
Displays FourDisplays(const Views& views, const std::string& labels = "lblDisp");

/// Lays out the ground of a panel, and puts the row on top of it: what the sensor is, the mode, and the
/// commands.
QBoxLayout& LayOutPanel(Views& views, Panel& panel, const Displays& displays, QWidget& ground);

}  // namespace brelant
