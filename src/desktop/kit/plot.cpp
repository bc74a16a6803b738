// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/kit/plot.h"

#include "desktop/Appearance.h"

namespace brelant {

CurvePlot::Colours PlotColours(const QPalette& palette, const QColor& point) {
  const auto at = [&](QPalette::ColorRole role) { return palette.color(QPalette::Active, role); };
  return {at(QPalette::Window), at(QPalette::Base), InkOf(palette).faint, at(QPalette::WindowText), point};
}

}  // namespace brelant
