// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "shell/panel.h"

namespace brelant::test {

/// A panel of nothing but what it shows.
class FakePanel : public Panel {
 public:
  explicit FakePanel(Screen& screen) : Panel(screen, "frmFake", {}) {}

  bool FormUpdateInit() override { return true; }
  bool FormUpdate() override { return true; }
  bool FormRead() override { return true; }
  void SimMode(bool /*on*/) override {}
  void PanelLoop() override {}
  std::vector<LiveValue> LiveValues() const override { return values; }
  std::vector<Alarm> Alarms() const override { return alarms; }

  std::vector<LiveValue> values;
  std::vector<Alarm> alarms;
};

}  // namespace brelant::test
