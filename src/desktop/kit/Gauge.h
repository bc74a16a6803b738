// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QWidget>

#include "desktop/kit/Views.h"

namespace brelant {

/// The percent of a text control as the length of a bar.
class Gauge : public QWidget {
 public:
  /// `output`: place of the output whose colour it has.
  Gauge(Views& views, const Control& control, std::size_t output, QWidget* parent);

  void SetOutput(std::size_t output);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  std::size_t output_;
  double percent_ = 0;
};

}  // namespace brelant
