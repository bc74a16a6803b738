// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "desktop/windows/DialogWindow.h"
#include "shell/frmSpanCalNote.h"

namespace brelant {

/// The warning before a span calibration. The button in focus is the one that Enter presses.
class SpanCalNoteWindow : public DialogWindow {
 public:
  SpanCalNoteWindow(frmSpanCalNote& note, Acts& acts);
};

}  // namespace brelant
