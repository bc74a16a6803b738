// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>
#include <QWidget>
#include <memory>
#include <utility>

namespace brelant {

/// A widget that belongs to its parent.
template <typename Widget, typename... Arguments>
Widget& Make(QWidget& parent, Arguments&&... arguments) {
  return *std::make_unique<Widget>(std::forward<Arguments>(arguments)..., &parent).release();
}

/// The layout of a widget, without margins.
template <typename Layout>
Layout& LayOut(QWidget& widget, int spacing) {
  auto& layout = *std::make_unique<Layout>(&widget).release();
  layout.setContentsMargins({});
  layout.setSpacing(spacing);
  return layout;
}

/// A row inside another layout, which it belongs to.
inline QHBoxLayout& AddRow(QBoxLayout& layout, int spacing) {
  auto& row = *std::make_unique<QHBoxLayout>().release();
  row.setSpacing(spacing);
  layout.addLayout(&row);
  return row;
}

/// Shows or hides, and costs nothing if that changes nothing.
inline void SetShown(QWidget& widget, bool shown) {
  if (widget.isHidden() == shown) widget.setVisible(shown);
}

}  // namespace brelant
