// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>

#include "desktop/panels/PanelWindow.h"

namespace brelant {

/// The panel of platform 5 with five alarm levels. It is read from a ladder: live values and states are
/// large.
class Panel5ChartWindow : public PanelWindow {
 public:
  Panel5ChartWindow(Panel& panel, Acts& acts);

 private:
  void AddTiles(QBoxLayout& layout);
  void AddOptions(QBoxLayout& layout);
};

}  // namespace brelant
