// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "panels/frm5Chart.h"
#include "panels/panel_fixture.h"

namespace brelant::test {

/// The RAM of a sensor whose five functions are alarm levels, TWA on P0. All settings lie on the grain of
/// their fields, so that a form that is filled and taken back leaves every byte as it is.
inline RamBytes SampleChartRam() {
  auto ram = SampleRam();
  Put(ram, 14, {128 | 3});
  Put(ram, 20, {27, 238, 22, 180, 21, 77, 20, 116});  // 5000 + 2150, + 812, + 453, + 236
  Put(ram, 31, {3});
  Put(ram, 162, {3, 128 | 22, 158, 128 | 22, 168});  // 5000 + 790 and 5000 + 800
  Put(ram, 167, {1, 128 | 24, 46, 24, 56});          // 5000 + 1190 and 5000 + 1200
  Put(ram, 172, {1, 21, 224, 128 | 21, 224});        // 5000 + 600, twice
  Put(ram, 177, {0, 128 | 27, 88, 27, 188});         // 5000 + 2000 and 5000 + 2100
  Put(ram, 182, {0, 28, 232, 128 | 29, 76});         // 5000 + 2400 and 5000 + 2500
  Put(ram, 189, {64 | 32 | 16 | 4 | 1});             // relays of levels 0, 2 and 4, and two bits of others
  Put(ram, 205, {243, 65, 16});                      // channel 3 has type 15, channel 1 type 4; Celsius
  Put(ram, 226, {3});
  Put(ram, 255, {128 | 64 | 8 | 2});  // alarms 1 and 3, and two bits that mean nothing here
  return ram;
}

/// The channels of such a sensor. The type of channel 3 is wrong on purpose: the panel knows better.
inline DefinedChannels ChartChannels() {
  auto channels = SampleChannels();
  channels[3] = {.name = "CO2 TWA", .type = 0};
  return channels;
}

/// frm5Chart on that sensor, filled and shown.
template <typename Port>
class ChartTestOn : public testing::Test {
 protected:
  template <typename... PortSetup>
  explicit ChartTestOn(PortSetup&&... setup) : ground(std::forward<PortSetup>(setup)...) {
    ground.Define(104, ChartChannels());
    Show(SampleChartRam());
  }

  void Show(const RamBytes& ram) {
    ground.Load(ram);
    panel.FormUpdateInit();
    panel.FormUpdate();
    panel.FormUpdateM();
    panel.form.Show();
  }
  /// The sample with TWA off P0: the unit comes from 205 itself.
  void TakeTWAOff() {
    SetRam(162, {1});
    SetRam(205, {16});
    panel.FormUpdate();
  }

  int Ram(std::size_t address) const {
    const float value = ground.image.RamImage.at(address);
    EXPECT_EQ(value, static_cast<float>(static_cast<int>(value))) << "no whole number at " << address;
    return static_cast<int>(value);
  }
  int Word(std::size_t address) const { return (Ram(address) & 127) * 256 + Ram(address + 1); }
  void SetRam(std::size_t address, std::initializer_list<int> bytes) {
    for (const int byte : bytes) ground.image.RamImage.at(address++) = static_cast<float>(byte);
  }
  RamBytes WholeRam() const {
    RamBytes ram{};
    for (std::size_t i = 0; i < ram.size(); ++i) ram[i] = static_cast<std::uint8_t>(Ram(i));
    return ram;
  }
  /// The image holds the sample, but for these bytes.
  void ExpectChanged(const std::vector<std::pair<std::size_t, std::uint8_t>>& bytes) const {
    auto expected = SampleChartRam();
    for (const auto& [address, byte] : bytes) expected.at(address) = byte;
    EXPECT_EQ(WholeRam(), expected);
  }

  static std::vector<std::string> Texts(const ControlArray& controls) {
    std::vector<std::string> texts;
    for (const auto* control : controls) texts.push_back(control->Text());
    return texts;
  }
  static std::vector<int> Values(const ControlArray& controls) {
    std::vector<int> values;
    for (const auto* control : controls) values.push_back(control->Value());
    return values;
  }

  PanelGround<Port> ground;
  frm5Chart panel{ground.context};
};

/// With no line to a sensor.
using ChartTest = ChartTestOn<ScriptedPort>;

}  // namespace brelant::test
