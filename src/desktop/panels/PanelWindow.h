// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMainWindow>

#include "desktop/windows/FormWindow.h"
#include "shell/panel.h"

namespace brelant {

/// The window of any panel: its menus with their shortcuts, and the field that takes the focus when none of
/// its fields has it.
class PanelWindow : public FormWindow, public QMainWindow {
 public:
  PanelWindow(Panel& panel, Acts& acts);

  QWidget& Window() override { return *this; }

 protected:
  void closeEvent(QCloseEvent* event) override;
  /// The ground: a click on it leaves the field that is being edited.
  QWidget* PreferredFocus() override { return centralWidget(); }
};

}  // namespace brelant
