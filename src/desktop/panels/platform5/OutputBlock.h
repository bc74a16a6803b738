// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>

#include "desktop/kit/Card.h"
#include "desktop/kit/Views.h"

namespace brelant::platform5 {

/// One output: what it puts out now, large, and how.
class OutputBlock : public Card {
 public:
  OutputBlock(Views& views, int index, QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void AddValue(Views& views, QBoxLayout& layout);
  void AddKinds(Views& views, QBoxLayout& layout);
  void AddSettings(Views& views, QBoxLayout& layout);
  QString Spoken(const QString& what) const;

  int index_;
};

}  // namespace brelant::platform5
