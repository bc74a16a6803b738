// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>
#include <QFrame>
#include <QLabel>

#include "desktop/kit/Views.h"

namespace brelant::platform61 {

/// What the sensor says of itself, in the colour that the form tells. Takes a second line for many faults.
class StatusLine : public QFrame {
 public:
  StatusLine(Views& views, QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void AddName(Views& views, QBoxLayout& layout);
  void AddStatus(Views& views, QBoxLayout& layout);
};

}  // namespace brelant::platform61
