// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>
#include <array>
#include <optional>
#include <vector>

#include "desktop/kit/LiveTile.h"
#include "desktop/kit/Views.h"
#include "desktop/panels/platform5/OutputBlock.h"
#include "desktop/panels/platform5/SignalRow.h"

namespace brelant::platform5 {

/// The way of a value, from left to right: live inputs, functions and trigger, outputs, and drawn between
/// them what leads where.
class FlowBoard : public QWidget {
 public:
  /// `unitOfLast`: the unit of the fourth channel, which has no control of its own.
  FlowBoard(Views& views, const QString& unitOfLast, QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  static constexpr int kInputs = 4;
  static constexpr int kFunctions = 5;
  static constexpr std::size_t kOutputs = 2;

  /// What the drawing depends on.
  struct Wiring {
    std::array<std::optional<int>, kFunctions> input;
    std::array<std::array<bool, kOutputs>, kFunctions + 1> feeds{};
    bool operator==(const Wiring&) const = default;
  };

  void AddInputs(const QString& unitOfLast, QBoxLayout& layout);
  void AddShift(QBoxLayout& layout);
  void AddSignals(QBoxLayout& layout);
  void AddOutputs(QBoxLayout& layout);

  Wiring CurrentWiring() const;
  std::optional<int> InputOf(int function) const;

  QRectF Place(const QWidget& widget) const;
  double LaneOf(int input) const;
  void PaintInputWires(QPainter& painter, int input, bool active) const;
  void PaintGrid(QPainter& painter) const;
  void PaintSignals(QPainter& painter) const;
  void PaintBus(QPainter& painter, std::size_t output) const;

  Views& views_;
  std::array<LiveTile*, kInputs> tiles_{};
  std::vector<SignalRow*> signals_;
  std::array<OutputBlock*, kOutputs> outputs_{};
  Wiring wiring_;
};

}  // namespace brelant::platform5
