// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>

#include "desktop/kit/Card.h"
#include "desktop/kit/OutputValue.h"
#include "desktop/kit/Views.h"
#include "desktop/panels/flow/plan.h"
#include "panels/Transfer.h"

namespace brelant::flow {

/// One output: what it puts out now, large, and how.
class OutputBlock : public Card {
 public:
  /// It stands in the place of its number at first. `transfer`: nullptr if nobody tells.
  OutputBlock(Views& views, const OutputPlan& plan, std::size_t output, const Transfer* transfer, bool dense,
              QWidget* parent);

  /// It stands in that place now, and has its colour.
  void SetPlace(std::size_t place);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void AddValue(Views& views, const OutputPlan& plan, const Transfer* transfer, bool dense,
                QBoxLayout& layout);
  void AddKinds(Views& views, const OutputPlan& plan, QBoxLayout& layout);
  void AddSetting(Views& views, const OutputPlan::Setting& setting, int digits,
                  const std::function<void(QWidget&)>& place);
  void AddSettings(Views& views, const OutputPlan& plan, QBoxLayout& layout);
  void AddSettingsInRow(Views& views, const OutputPlan& plan, QBoxLayout& layout);
  QString Spoken(const QString& what) const;

  std::size_t place_;
  OutputValue* value_ = nullptr;
};

}  // namespace brelant::flow
