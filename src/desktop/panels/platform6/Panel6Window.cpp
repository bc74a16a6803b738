// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/platform6/Panel6Window.h"

#include <algorithm>

#include "desktop/kit/make.h"
#include "desktop/kit/text.h"
#include "desktop/panels/header.h"
#include "desktop/panels/platform6/JumperFaceView.h"
#include "desktop/panels/platform6/SequentialFaceView.h"
#include "desktop/panels/platform6/VavFaceView.h"
#include "panels/frm6.h"

namespace brelant {

namespace {

constexpr int kOutputs = platform6::OutputRows::kOutputs;

flow::OutputPlan OutputOf(const Views& views, int index) {
  return {&views("txbOutOut", index),
          &views("pctOut", index),
          &views("lblOutName", index),
          {&views("optOut6Analog", index), &views("optOut6Digital", index), &views("optOut6TMO", index),
           &views("cbxOut6Invert", index)},
          {{&views("txbOutBaseLine", index), {nullptr, "Base line"}, {nullptr, "%"}},
           {&views("txbOutIntTime", index), {nullptr, "Int. time"}, {nullptr, "s"}}}};
}

flow::BoardPlan PlanOf(Views& views, const Panel& panel) {
  flow::BoardPlan plan{};
  plan.inputs = frm6::kLiveValues;
  plan.functions = frm6::kFunctions;
  plan.dense = true;
  plan.transfer = dynamic_cast<const Transfer*>(&panel);
  for (int j = 0; j < kOutputs; ++j) plan.outputs.push_back(OutputOf(views, j));
  for (const auto add : {flow::AddTrigger, flow::AddDigitalInput}) {
    plan.others.emplace_back(
        [&views, add](QWidget& parent) -> flow::SignalRow& { return add(views, kOutputs, true, parent); });
  }
  return plan;
}

}  // namespace

Panel6Window::Panel6Window(Panel& panel, Acts& acts)
    : PanelWindow(panel, acts),
      board_(&Make<flow::FlowBoard>(*centralWidget(), views_, PlanOf(views_, panel))) {
  auto& layout = LayOutPanel(views_, panel, FourDisplays(views_), *centralWidget());
  layout.addWidget(board_, 1);
  faces_.push_back({&board_->Network(), &views_("pctFunction", 0)});
  AddFace<platform6::VavFaceView>("pctSetpV1");
  AddFace<platform6::JumperFaceView>("pct6v3Settings", dynamic_cast<const frm6&>(panel).jumper);
  AddFace<platform6::SequentialFaceView>("pctSecCont");
  views_.OnRefresh([this] { ShowFace(); });
}

template <typename View, typename... Models>
void Panel6Window::AddFace(const std::string& presence, const Models&... models) {
  auto& view = Make<View>(*board_, views_, models...);
  view.setContentsMargins(Digits(view, 2), 0, 0, 0);
  board_->AddBeside(view);
  faces_.push_back({&view, &views_(presence)});
}

/// A load or a read may have brought another variant.
void Panel6Window::ShowFace() {
  const bool alone =
      std::none_of(faces_.begin(), faces_.end(), [](const Face& face) { return face.presence->Visible(); });
  // First: what is shown makes the window as wide as all of it takes at that moment.
  board_->SpreadInputs(alone);
  for (const auto& [view, presence] : faces_) SetShown(*view, presence->Visible());
}

}  // namespace brelant
