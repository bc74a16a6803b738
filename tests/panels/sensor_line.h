// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "panels/framed.h"
#include "panels/panel_fixture.h"
#include "support/sensor_port.h"

namespace brelant::test {

/// A panel's ground with a virtual sensor on its line.
using SensorGround = PanelGround<SensorPort>;

inline void Hold(SensorPort& port, const RamBytes& ram) {
  std::copy(ram.begin(), ram.end(), port.sensor.Ram().begin());
}
inline RamBytes Held(SensorPort& port) {
  RamBytes ram{};
  const auto held = port.sensor.Ram();
  std::copy(held.begin(), held.end(), ram.begin());
  return ram;
}
inline void PullOff(SensorPort& port) {
  port.onOutput = nullptr;
}

/// Happens before the far end hears what is sent; false: it does not hear it.
inline void BeforeEachOutput(SensorPort& port, std::function<bool(const Bytes&)> act) {
  port.onOutput = [answer = port.onOutput, act = std::move(act)](const Bytes& bytes) {
    if (act(bytes)) answer(bytes);
  };
}
/// The texts of the progress box while bytes go out, each once.
inline void NoteProgress(SensorGround& ground, std::vector<std::string>& texts) {
  BeforeEachOutput(ground.port, [&ground, &texts](const Bytes&) {
    const auto text = ground.msg.Visible() ? ground.msg.Label1.Text() : std::string();
    if (texts.empty() || texts.back() != text) texts.push_back(text);
    return true;
  });
}

}  // namespace brelant::test
