// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "desktop/panels/PanelWindow.h"

namespace brelant {

/// The panel of platform 5 with two outputs.
class Panel5Window : public PanelWindow {
 public:
  Panel5Window(Panel& panel, Acts& acts);
};

}  // namespace brelant
