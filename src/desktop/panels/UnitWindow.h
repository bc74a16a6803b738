// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>
#include <vector>

#include "desktop/panels/PanelWindow.h"
#include "desktop/panels/alarms/AlarmMatrix.h"

namespace brelant {

/// The window of a unit that is reached by name: its live values beside the matrix of its alarms and the
/// relays. It is read from a ladder: values and states are large.
class UnitWindow : public PanelWindow {
 protected:
  using PanelWindow::PanelWindow;

  /// The indexes of a live value.
  struct Tile {
    int name;
    int field;
  };
  struct Plan {
    /// From top to bottom.
    std::vector<Tile> tiles;
    /// Of the live values, as a multiple of the usual size.
    double numberSize;
    alarms::AlarmMatrix::Plan alarms;
    /// What is kept for the next sending.
    QString unsent;
  };
  /// Fills the ground. The row that is handed back is the lowest one.
  QBoxLayout& LayOutUnit(Panel& panel, const Plan& plan);

 private:
  void AddTiles(const Plan& plan, QBoxLayout& layout);
  void AddOptions(const QString& unsent, QBoxLayout& layout);
};

}  // namespace brelant
