// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QWidget>
#include <vector>

#include "desktop/kit/Views.h"
#include "panels/platform6/JumperFace.h"

namespace brelant::platform6 {

/// The functions that the corner points were turned into, each with its ends. An arrow leads from function 1
/// to those that stand on its result. Nothing here takes an edit.
class ChainView : public QWidget {
 public:
  ChainView(Views& views, const JumperFace& jumper, QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QWidget& MakeFunction(Views& views, const JumperFace& jumper, int index);

  std::vector<QWidget*> functions_;
};

}  // namespace brelant::platform6
