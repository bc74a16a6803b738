// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>
#include <optional>
#include <vector>

#include "desktop/kit/LiveTile.h"
#include "desktop/kit/Views.h"
#include "desktop/panels/flow/OutputBlock.h"
#include "desktop/panels/flow/SignalRow.h"
#include "desktop/panels/flow/plan.h"

namespace brelant::flow {

/// The way of a value, from left to right: live inputs, functions and what else makes a signal, outputs, and
/// drawn between them what leads where.
class FlowBoard : public QWidget {
 public:
  FlowBoard(Views& views, BoardPlan plan, QWidget* parent);

  /// Everything but the inputs: other things can stand beside them in its place.
  QWidget& Network() const { return *network_; }
  /// Puts a widget beside the inputs.
  void AddBeside(QWidget& widget) { static_cast<QBoxLayout*>(layout())->addWidget(&widget, 1); }
  /// The inputs stand side by side, or below each other as they do at first.
  void SpreadInputs(bool spread);

 protected:
  void paintEvent(QPaintEvent* event) override;
  bool event(QEvent* event) override;

 private:
  /// What the drawing depends on. Signals by row, outputs by place.
  struct Wiring {
    std::vector<std::optional<int>> input;
    std::vector<std::vector<bool>> feeds;
    Order order;
    std::size_t outputs = 0;
    bool operator==(const Wiring&) const = default;
  };

  void AddInputs(QBoxLayout& layout);
  void AddSignals(QBoxLayout& layout);
  void AddOutputs(QBoxLayout& layout);
  int Spacing() const;
  int CountInputs() const;
  int CountOutputs() const { return static_cast<int>(plan_.outputs.size()); }

  void Refresh();
  void Arrange(const Order& order);
  Wiring CurrentWiring() const;
  Order CurrentOrder() const;
  std::vector<bool> FeedsOf(const SignalRow& row) const;
  std::optional<int> InputOf(int function) const;
  bool HasOutput(std::size_t output) const;
  QString NameAt(std::size_t place) const;

  QRectF Place(const QWidget& widget) const;
  double LaneOf(int input) const;
  double TurnOf(std::size_t place) const;
  void PaintInputWires(QPainter& painter, int input, bool active) const;
  void PaintGrid(QPainter& painter) const;
  void PaintSignals(QPainter& painter) const;
  void PaintBus(QPainter& painter, std::size_t place) const;

  Views& views_;
  BoardPlan plan_;
  QWidget* inputs_ = nullptr;
  QBoxLayout* tileRow_ = nullptr;
  QWidget* network_ = nullptr;
  std::vector<LiveTile*> tiles_;
  std::vector<SignalRow*> signals_;
  /// By output.
  std::vector<OutputBlock*> outputs_;
  Wiring wiring_;
};

}  // namespace brelant::flow
