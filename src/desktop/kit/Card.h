// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFrame>

namespace brelant {

/// A group of fields on a ground of its own. `lit`: with a strong edge, for what takes part in something.
class Card : public QFrame {
 public:
  explicit Card(QWidget* parent) : QFrame(parent) {}

  void SetLit(bool lit);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  bool lit_ = false;
};

}  // namespace brelant
