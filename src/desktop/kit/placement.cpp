// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/kit/placement.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWindow>

namespace brelant {

void PlaceOver(QWidget& window, const QWidget* owner) {
  // Gives it a handle, which only then can be told its owner.
  window.winId();
  window.adjustSize();
  const auto* screen = owner == nullptr ? QGuiApplication::primaryScreen() : owner->screen();
  const auto room = screen->availableGeometry();
  auto frame = window.frameGeometry();
  frame.moveCenter(owner == nullptr ? room.center() : owner->frameGeometry().center());
  window.move(frame.topLeft());
  if (owner != nullptr) window.windowHandle()->setTransientParent(owner->windowHandle());
}

}  // namespace brelant
