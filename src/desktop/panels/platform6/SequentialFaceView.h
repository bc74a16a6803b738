// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>
#include <QWidget>

#include "desktop/kit/Views.h"

namespace brelant::platform6 {

/// The face of sequential control: set points, the ranges of ventilation and cooling, the two outputs.
class SequentialFaceView : public QWidget {
 public:
  SequentialFaceView(Views& views, QWidget* parent);

 private:
  void AddSettings(Views& views, QBoxLayout& layout);
  void AddOutputs(Views& views, QBoxLayout& layout);
};

}  // namespace brelant::platform6
