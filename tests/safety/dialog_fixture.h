// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <array>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "safety/z7731_fixture.h"

namespace brelant::test {

/// A person before the dialogs and commands of the panel, on a unit that keeps still.
class DialogTest : public StillUnitTest {
 protected:
  ~DialogTest() override { ground.screen.onShow = nullptr; }

  /// Opens a dialog by its menu entry, does that in it and leaves it with its Cancel. How often it was shown.
  int In(Control& menu, Form& dialog, std::function<void()> acts) {
    int shown = 0;
    ground.screen.onShow = [&, acts](Form& form, bool visible) {
      if (&form != &dialog || !visible) return;
      ++shown;
      After(std::chrono::milliseconds(1), [&dialog, acts] {
        acts();
        auto* leave = dialog.Find("btnCancel");
        if (leave == nullptr) leave = dialog.Find("btnOK");
        EXPECT_TRUE(Click(*leave));
        EXPECT_FALSE(dialog.Visible());
      });
    };
    EXPECT_TRUE(Click(menu));
    ground.screen.onShow = nullptr;
    return shown;
  }
  /// The same, where it is only looked at.
  int In(Control& menu, Form& dialog) {
    return In(menu, dialog, [] {});
  }

  /// The unit answers writes to that byte, or word, of EEPROM as any other, and keeps what it has.
  void Refuse(std::size_t address, std::size_t width) {
    const std::vector<std::uint8_t> kept(unit.eeprom.begin() + static_cast<std::ptrdiff_t>(address),
                                         unit.eeprom.begin() + static_cast<std::ptrdiff_t>(address + width));
    port.onOutput = [this, address, kept, answer = port.onOutput](const Bytes& bytes) {
      answer(bytes);
      std::copy(kept.begin(), kept.end(), unit.eeprom.begin() + static_cast<std::ptrdiff_t>(address));
    };
  }
  /// The line is dead on both roads.
  void Silence() {
    unit.isSilent = true;
    modbus.units.clear();
  }
  /// The unit puts that result into a word of RAM so long after a command has come into it. 0 is no command.
  void AnswerCommand(std::size_t address, int result, std::chrono::milliseconds delay) {
    ground.pump.OnPass([this, address, result, delay, seen = std::make_shared<bool>(false)] {
      if (*seen || WordOnRoad(address) == 0) return false;
      *seen = true;
      After(delay, [this, address, result] { PutResult(address, result); });
      return false;
    });
  }
  /// Writes down when each frame came, from now on.
  void TimeFrames() {
    unit.frames.clear();
    port.onOutput = [this, answer = port.onOutput](const Bytes& bytes) {
      answer(bytes);
      while (moments.size() < unit.frames.size()) moments.push_back(ground.clock.Now());
    };
  }
  /// The times of the frames of that text, in milliseconds since the first frame.
  std::vector<std::int64_t> TimesOf(const std::string& words) const {
    std::vector<std::int64_t> times;
    for (std::size_t i = 0; i < unit.frames.size(); ++i) {
      if (Words(unit.frames[i]) != words) continue;
      times.push_back(std::chrono::duration_cast<std::chrono::milliseconds>(moments[i] - moments[0]).count());
    }
    return times;
  }
  /// The texts of the progress box as it changes; "" where there is none.
  void NoteBox() {
    ground.pump.OnPass([this] {
      const auto text = ground.msg.Visible() ? ground.msg.Label1.Text() : std::string();
      if (boxes.empty() || boxes.back() != text) boxes.push_back(text);
      return false;
    });
  }
  /// The panel's loop takes the command of that menu entry right after its first poll, and goes on until that
  /// time has passed.
  void Command(Control& menu, std::chrono::milliseconds span) {
    After(std::chrono::milliseconds(1000), [&menu] { EXPECT_TRUE(Click(menu)); });
    Run(span);
  }
  /// The first frame of each poll on KiBus.
  static constexpr const char* kPollBegins = "R264+2";

  std::vector<std::chrono::microseconds> moments;
  std::vector<std::string> boxes;

 private:
  /// A word of RAM where the road in use has it.
  int WordOnRoad(std::size_t address) {
    return modbus.IsOpen() ? modbus.units.at(1).holding.at(Window(address)) : WordOf(unit.ram, address);
  }
  void PutResult(std::size_t address, int result) {
    if (modbus.IsOpen()) {
      modbus.units.at(1).holding.at(Window(address)) = static_cast<std::uint16_t>(result);
    } else {
      PutWord(unit.ram, address, result);
    }
  }
  static int Window(std::size_t address) { return 4096 + static_cast<int>(address) / 2; }
};

/// The roads to a unit.
inline constexpr std::array kRoads{frmComSet::kiBus, frmComSet::modBus};

}  // namespace brelant::test
