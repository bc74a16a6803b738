// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>

#include "desktop/panels/PanelWindow.h"

namespace brelant {

/// The panel of platform 5.
class Panel5Window : public PanelWindow {
 public:
  Panel5Window(Panel& panel, Acts& acts);

 private:
  void AddIdentity(QBoxLayout& layout);
  void AddCommands(Panel& panel, QBoxLayout& layout);
};

}  // namespace brelant
