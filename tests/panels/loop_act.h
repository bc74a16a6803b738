// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "panels/panel_fixture.h"

namespace brelant::test {

/// Runs a panel's loop on the virtual clock for that long, then ends the session.
template <typename Port>
void RunLoop(PanelGround<Port>& ground, Panel& panel, std::chrono::microseconds span) {
  ground.session.sessionOver = false;
  ground.pump.After(span, [&ground] { ground.session.sessionOver = true; });
  panel.PanelLoop();
}

/// A panel that has nothing but the frame: its actions are written down and do what a test says.
class BarePanel : public ImagePanel {
 public:
  explicit BarePanel(const PanelContext& context)
      : ImagePanel(context, "frmBare", {"Off line", "Calibrating temperature ", "Temp", "CO2 single point"}) {
  }

  bool FormUpdateInit() override { return true; }
  bool FormUpdate() override { return true; }
  bool FormRead() override { return true; }
  bool FormUpdateM() override { return true; }
  bool ActionSensorReadM() override { return Act("poll", onPoll); }
  bool ActionSensorRead() override { return Act("read", onCommand); }
  bool ActionSensorWrite() override { return Act("write", onCommand); }
  bool ActionTWAReset() override { return Act("TWA reset", onCommand); }
  bool ActionSettingsLoad() override { return Act("load", onCommand); }
  bool ActionSettingsSave() override { return Act("save", onCommand); }
  void Simulate() override { ++simulations; }
  std::vector<LiveValue> LiveValues() const override { return {}; }

  std::vector<std::string> acts;
  int simulations = 0;
  std::function<bool()> onPoll;
  std::function<bool()> onCommand;

 protected:
  const ControlArray& LiveFields() const override { return fields_; }
  bool CalibrateSpan(const std::string& text) override { return Act("span " + text, onCommand); }

 private:
  bool Act(const std::string& name, const std::function<bool()>& act) {
    acts.push_back(name);
    return !act || act();
  }

  ControlArray fields_;
};

/// The bare panel, shown.
class LoopTest : public testing::Test {
 protected:
  LoopTest() { panel.form.Show(); }

  void After(std::chrono::microseconds delay, std::function<void()> act) {
    ground.pump.After(delay, std::move(act));
  }
  void Run(std::chrono::microseconds span) { RunLoop(ground, panel, span); }

  PanelGround<ScriptedPort> ground;
  Session& session = ground.session;
  BarePanel panel{ground.context};
};

}  // namespace brelant::test
