// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>
#include <QGridLayout>
#include <QLabel>
#include <QWidget>

#include "desktop/kit/Views.h"

namespace brelant::platform6 {

/// The face of the VAV units: set points, the damper with its two ends, and the other output.
class VavFaceView : public QWidget {
 public:
  VavFaceView(Views& views, QWidget* parent);

 private:
  /// One end of the damper, with the buttons that move it.
  struct End {
    QString name;
    const char* field;
    const char* less;
    const char* more;
  };

  void AddSetPoints(Views& views, QBoxLayout& layout);
  void AddDamper(Views& views, QBoxLayout& layout);
  void AddEnd(Views& views, const End& end, int row, QGridLayout& grid);
  void AddNote(Views& views, QGridLayout& grid);
  void AddOther(Views& views, QBoxLayout& layout);
};

}  // namespace brelant::platform6
