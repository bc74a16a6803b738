// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractButton>
#include <QPainter>
#include <functional>
#include <vector>

#include "desktop/kit/Views.h"

namespace brelant {

/// Several picture controls in one place, of which the form shows at most one. A click goes to that one; a
/// click with the mouse leaves the focus where it is.
class PictureButton : public QAbstractButton {
 public:
  /// Both are asked by the index of the visible picture.
  struct Face {
    std::function<void(QPainter&, const QRectF&, int)> paint;
    /// What the picture says, for those who do not see it.
    std::function<QString(int)> inWords;
  };

  PictureButton(Views& views, std::vector<Control*> pictures, Face face, QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void Refresh();

  std::vector<Control*> pictures_;
  Face face_;
  int shown_ = -1;
};

}  // namespace brelant
