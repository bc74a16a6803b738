// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "desktop/panels/UnitWindow.h"

namespace brelant {

/// Both panels of platform 8: the second one has the weight too.
class Panel8Window : public UnitWindow {
 public:
  Panel8Window(Panel& panel, Acts& acts);

 private:
  Plan ThePlan() const;
};

}  // namespace brelant
