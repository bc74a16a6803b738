// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPalette>

#include "plots/CurvePlot.h"

namespace brelant {

/// The colours of a plot on a window.
CurvePlot::Colours PlotColours(const QPalette& palette, const QColor& point);

}  // namespace brelant
