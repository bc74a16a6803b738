// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>

#include "safety/frm8_2Chart.h"
#include "safety/z7731_fixture.h"

namespace brelant::test {

/// A panel of platform 8 on a unit that keeps still.
template <typename PanelOf8, int kVariant>
class UnitOf8 : public UnitPanelTest<PanelOf8>, protected StillUnit {
 protected:
  using Base = UnitPanelTest<PanelOf8>;
  using Base::After;
  using Base::ground;
  using Base::panel;
  using Base::port;
  using Base::Run;
  using Base::session;

  UnitOf8() : Base({.part = 40, .variant = kVariant}), StillUnit(Base::port) {}

  /// As a session begins, with nothing written down yet.
  void Start(frmComSet::StartMode mode = frmComSet::singleSensor, const std::string& id = "") {
    ground.Choose(mode, frmComSet::kiBus, id);
    ASSERT_TRUE(panel.FormUpdateInit()) << session.LastError;
    ASSERT_TRUE(panel.FormUpdate()) << session.LastError;
    panel.SimMode(mode == frmComSet::simulatedMode);
    panel.form.Show();
    // The loop would clear it at its first turn.
    session.LastError.clear();
    Forget();
  }
  void Forget() {
    unit.frames.clear();
    port.Forget();
    ground.ui.messages.clear();
  }
  /// A click while the loop runs, and what it leads to before the first poll.
  void ClickInLoop(Control& control) {
    After(std::chrono::milliseconds(100), [&control] { Click(control); });
    // The first poll of a loop comes at once, the next one two seconds later.
    Run(std::chrono::milliseconds(1900));
  }

  int Setting(std::size_t address) const { return WordOf(unit.eeprom, address); }
  std::uint8_t& StateByte() { return unit.ram.at(383); }
  /// What the unit answers to a command of the tank (R304) or another procedure (R306).
  void Answers(std::size_t address, int result) {
    ground.pump.OnPass([this, address, result] {
      if (WordOf(unit.ram, address) != 0) PutWord(unit.ram, address, result);
      return false;
    });
  }
};

using Frm8Test = UnitOf8<frm8Chart, 1>;
using Frm8TankTest = UnitOf8<frm8_2Chart, 2>;

}  // namespace brelant::test
