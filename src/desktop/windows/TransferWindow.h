// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <functional>
#include <vector>

#include "desktop/kit/Views.h"
#include "panels/Transfer.h"
#include "plots/CurvePlot.h"

namespace brelant {

/// What an output does with one of its inputs, and where it is now. No form of its own: a view beside the
/// panel, which follows it while it is open and goes with its window.
class TransferWindow : public QDialog {
 public:
  /// `place` tells where the output stands now, and so its colour.
  TransferWindow(Views& views, const Transfer& transfer, int output, std::function<std::size_t()> place,
                 QWidget* panel);

  /// Shows it in front of the panel.
  void Open();

 private:
  using Inputs = std::vector<Transfer::Input>;

  void AddHead(QBoxLayout& layout);
  void AddPlot(QBoxLayout& layout);
  void AddClose(QBoxLayout& layout);

  void Refresh();
  void OfferInputs(const Inputs& inputs);
  /// Draws the curve, or says in words why there is none.
  void Draw(const Inputs& inputs);
  std::optional<CurvePlot::Curves> CurvesOf(const Transfer::Input& input) const;
  QString Name() const { return QString::fromStdString(transfer_.NameOf(output_)); }

  const Transfer& transfer_;
  int output_;
  std::function<std::size_t()> place_;
  QLabel* title_ = nullptr;
  QLabel* inputCaption_ = nullptr;
  QComboBox* input_ = nullptr;
  QLabel* now_ = nullptr;
  CurvePlot* plot_ = nullptr;
  QLabel* reason_ = nullptr;
};

}  // namespace brelant
