// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>

#include "desktop/kit/EditBinding.h"
#include "desktop/kit/Views.h"

namespace brelant {

/// A state in a word on a ground of the control's colour, large enough to be told from afar.
class StatusLamp : public QLabel {
 public:
  /// `name` is spoken before the state.
  StatusLamp(Views& views, Control& state, SpokenName name, QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void TakeColour(const QColor& told);

  QColor back_;
};

}  // namespace brelant
