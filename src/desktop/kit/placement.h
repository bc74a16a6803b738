// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

namespace brelant {

/// Puts a window that has not been shown yet in front of its owner, or in the middle of the screen if there
/// is none. It does not belong to the owner, which may go first.
void PlaceOver(QWidget& window, const QWidget* owner);

}  // namespace brelant
