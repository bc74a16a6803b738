// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>
#include <optional>

#include "desktop/kit/EditBinding.h"
#include "desktop/kit/Gauge.h"
#include "desktop/kit/Views.h"

namespace brelant {

/// What an output puts out now: percent, large, and below it as the length of a bar.
class OutputValue : public QWidget {
 public:
  struct Face {
    /// Says what the output is called; becomes part of this.
    QWidget* title;
    /// The title stands beside the number rather than above it.
    bool beside;
    /// Of the number, as a multiple of the usual size.
    double size;
    /// Place of the output whose colour the bar has; nothing: there is no bar.
    std::optional<std::size_t> place;
    /// Stands beside the title; nullptr: there is none. Becomes part of this.
    QWidget* button = nullptr;
  };

  OutputValue(Views& views, Control& value, const Face& face, SpokenName name, QWidget* parent);

  /// The place of an output that has a bar.
  void SetPlace(std::size_t place) { gauge_->SetOutput(place); }

 private:
  Gauge* gauge_ = nullptr;
};

}  // namespace brelant
