// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "desktop/panels/PanelWindow.h"
#include "desktop/panels/flow/FlowBoard.h"

namespace brelant {

/// The panel of platform 6: the live values, and beside them the face of the sensor's variant.
class Panel6Window : public PanelWindow {
 public:
  Panel6Window(Panel& panel, Acts& acts);

 private:
  /// What stands beside the live values while a picture of the form is to be seen.
  struct Face {
    QWidget* view;
    const Control* presence;
  };

  template <typename View, typename... Models>
  void AddFace(const std::string& presence, const Models&... models);
  void ShowFace();

  flow::FlowBoard* board_;
  std::vector<Face> faces_;
};

}  // namespace brelant
