// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/kit/ModeBadge.h"

#include "desktop/kit/text.h"
#include "panels/PanelFrame.h"

namespace brelant {

ModeBadge::ModeBadge(Views& views, const Control& simulated, QWidget* parent) : QLabel(parent) {
  ScaleFont(*this, 1, QFont::Bold);
  setAutoFillBackground(true);
  setContentsMargins(8, 3, 8, 3);
  views.OnRefresh([this, &simulated] {
    const bool isSimulated = simulated.Value() == 1;
    const QString word = isSimulated ? "SIMULATED" : "LIVE";
    if (text() == word) return;
    setText(word);
    QPalette palette;
    // Darker than the fields: this text is small.
    palette.setColor(QPalette::Window, ToQColor(colours::kFieldBack).darker(250));
    palette.setColor(QPalette::WindowText, ToQColor(isSimulated ? colours::kSimulated : colours::kLive));
    setPalette(palette);
  });
}

}  // namespace brelant
