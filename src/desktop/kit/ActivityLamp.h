// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QWidget>

#include "desktop/kit/Views.h"

namespace brelant {

/// A round lamp of the control's colour, which flickers while the line is in use.
class ActivityLamp : public QWidget {
 public:
  ActivityLamp(Views& views, const Control& lamp, QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QColor back_;
};

}  // namespace brelant
