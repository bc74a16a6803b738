// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSize>
#include <QWidget>

namespace brelant::flow {

/// The widths that all signals and their headings share, so that columns stand under each other.
struct Columns {
  Columns(const QWidget& widget, bool dense);

  int badge;
  int channel;
  int number;
  int unit;
  QSize picture;
  int tick;
  int gap;
};

}  // namespace brelant::flow
