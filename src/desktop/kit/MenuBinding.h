// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QKeySequence>
#include <QMenuBar>
#include <map>
#include <string>
#include <vector>

#include "desktop/kit/Views.h"

namespace brelant {

/// What a menu needs beyond what its controls tell.
struct MenuFace {
  /// By control name.
  std::map<std::string, QKeySequence> shortcuts;
  /// Controls whose value is a tick.
  std::vector<std::string> ticked;
};

/// Builds the menu bar out of the menu controls. A menu that the form hides from the start exists to be
/// popped up and is not drawn. Every entry gets a letter that is its own within its menu.
void BindMenus(Views& views, QMenuBar& bar, const MenuFace& face);

}  // namespace brelant
