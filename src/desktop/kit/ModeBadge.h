// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>

#include "desktop/kit/Views.h"

namespace brelant {

/// Says in a word, and in the colours of the values, whether they are live or simulated.
class ModeBadge : public QLabel {
 public:
  ModeBadge(Views& views, const Control& simulated, QWidget* parent);
};

}  // namespace brelant
