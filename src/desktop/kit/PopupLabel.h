// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractButton>
#include <QStyleOptionComboBox>

#include "desktop/kit/EditBinding.h"
#include "desktop/kit/Views.h"

namespace brelant {

/// A label that stands for a choice: looks like a choice button while it can be clicked, and like a plain
/// text while it cannot. A click with the mouse leaves the focus where it is.
class PopupLabel : public QAbstractButton {
 public:
  /// `framed`: drawn as the style draws a choice; otherwise as text with a small arrow, for coloured grounds.
  PopupLabel(Views& views, Control& control, SpokenName name, bool framed, QWidget* parent);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void PaintFramed();
  void PaintFlat();
  QStyleOptionComboBox ChoiceOption() const;
  int ArrowWidth() const;

  bool framed_;
};

}  // namespace brelant
