// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>
#include <string>

#include "desktop/panels/PanelWindow.h"

namespace brelant {

/// The panel of platforms 61 and 7: live values and, where the sensor has them, alarms and a status. It is
/// read from a ladder: values and states are large.
class Panel61Window : public PanelWindow {
 public:
  Panel61Window(Panel& panel, Acts& acts);

 private:
  void AddTiles(QBoxLayout& layout);
  /// Adds what is shown while a picture of the form is to be seen.
  template <typename View>
  void AddFace(const std::string& presence, QBoxLayout& layout);
  void AddStatus(QBoxLayout& layout);
  void ShowWith(const std::string& presence, QWidget& view);
};

}  // namespace brelant
