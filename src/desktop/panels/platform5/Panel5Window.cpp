// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/platform5/Panel5Window.h"

#include <array>

#include "desktop/kit/Card.h"
#include "desktop/kit/PopupLabel.h"
#include "desktop/kit/fields.h"
#include "desktop/kit/make.h"
#include "desktop/kit/text.h"
#include "desktop/panels/flow/FlowBoard.h"
#include "desktop/panels/header.h"

namespace brelant {

namespace {

constexpr int kInputs = 4;
constexpr int kFunctions = 5;
constexpr int kLastChannel = kInputs - 1;

/// The one unit that no control shows. Asked when the window opens: with the sensor's memory at hand the
/// answer costs nothing on the line.
QString UnitOfLastChannel(const Views& views, const Panel& panel) {
  const auto isThere = [&](int channel) { return views("pctChannel", channel).Visible(); };
  if (!isThere(kLastChannel)) return {};
  // Live values come in the order of the channels, without those that are not there.
  std::size_t before = 0;
  for (int channel = 0; channel < kLastChannel; ++channel) before += isThere(channel) ? 1 : 0;
  return QString::fromStdString(panel.LiveValues().at(before).unit);
}

/// Indexes of the labels around the settings of an output: base line and its unit, integration time and its
/// unit.
constexpr std::array<std::array<int, 4>, 2> kLabels{{{42, 49, 38, 50}, {12, 15, 11, 16}}};

flow::OutputPlan OutputOf(const Views& views, int index) {
  const auto label = [&](std::size_t which) {
    return flow::Caption{&views("Label1", kLabels.at(static_cast<std::size_t>(index)).at(which)), {}};
  };
  return {&views("txbOutOut", index),
          nullptr,
          nullptr,
          {&views("optOut5V", index), &views("optOut5mA", index), &views("optOut5Digital", index)},
          {{&views("txbOutBaseLine", index), label(0), label(1)},
           {&views("txbOutIntTime", index), label(2), label(3)}}};
}

void AddShift(Views& views, QBoxLayout& layout) {
  constexpr int kSpacing = 8;
  auto& card = Make<Card>(*layout.parentWidget());
  layout.addWidget(&card);
  auto& inside = LayOut<QVBoxLayout>(card, 4);
  inside.setContentsMargins(10, 6, 10, 8);
  ScaleFont(AddCaption("Shift button", card, inside), 1, QFont::DemiBold);
  auto& row = AddRow(inside, kSpacing);
  auto& unit = views("lblShiftb_Type");
  row.addWidget(
      &Make<PopupLabel>(card, views, views("lblShiftb"), Always("Channel of the shift button"), true), 1);
  const auto spoken = [&unit] { return "Shift amount, " + TextOf(unit); };
  row.addWidget(&MakeNumber(views, views("txbShiftBamount"), Digits(card, 8), spoken, card));
  AddLabel(views, unit, 4, card, row);
}

flow::BoardPlan PlanOf(Views& views, const Panel& panel) {
  constexpr int kOutputs = 2;
  const auto trigger = [&views](QWidget& parent) -> flow::SignalRow& {
    return flow::AddTrigger(views, kOutputs, false, parent);
  };
  return {kInputs,    UnitOfLastChannel(views, panel),
          kFunctions, {OutputOf(views, 0), OutputOf(views, 1)},
          {trigger},  [&views](QBoxLayout& layout) { AddShift(views, layout); },
          false,      dynamic_cast<const Transfer*>(&panel)};
}

}  // namespace

Panel5Window::Panel5Window(Panel& panel, Acts& acts) : PanelWindow(panel, acts) {
  auto& layout = LayOutPanel(views_, panel, {{&views_("lblDisplayMode"), "Display mode"}}, *centralWidget());
  layout.addWidget(&Make<flow::FlowBoard>(*centralWidget(), views_, PlanOf(views_, panel)), 1);
}

}  // namespace brelant
