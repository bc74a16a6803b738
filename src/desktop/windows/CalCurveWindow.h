// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>
#include <QTableWidget>

#include "calibration/frmCalCurve.h"
#include "desktop/windows/DialogWindow.h"
#include "plots/CurvePlot.h"

namespace brelant {

/// What a calibration did, as curves and as the same numbers in a table.
class CalCurveWindow : public DialogWindow {
 public:
  CalCurveWindow(frmCalCurve& curve, Acts& acts);

 protected:
  QWidget* PreferredFocus() override { return close_; }

 private:
  void AddPlot(QBoxLayout& layout);
  void AddMeasured(QBoxLayout& layout);
  void AddTable(QBoxLayout& layout);
  void AddClose(QBoxLayout& layout);
  CurvePlot::Curves Curves() const;
  void FillTable(QTableWidget& table) const;

  frmCalCurve& curve_;
  QWidget* close_ = nullptr;
};

}  // namespace brelant
