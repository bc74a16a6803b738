// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>
#include <QGridLayout>
#include <QWidget>
#include <array>

#include "desktop/kit/Views.h"
#include "panels/platform6/JumperFace.h"

namespace brelant::platform6 {

/// The face of the jumper table: an output beside the other, each with a drawing of its corner points, and
/// below them the functions that these were turned into.
class JumperFaceView : public QWidget {
 public:
  JumperFaceView(Views& views, const JumperFace& jumper, QWidget* parent);

 private:
  /// Last letters of the fields: the first one stands in two of them, beside each of the others.
  using Corners = std::array<QChar, 3>;

  void AddOutput(Views& views, int index, const Corners& corners, QBoxLayout& layout);
  void AddCurve(Views& views, const Corners& corners, int way, QGridLayout& grid);
};

}  // namespace brelant::platform6
