// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "connection/unit_names.h"
#include "panels/definition_file.h"
#include "panels/frm5.h"
#include "panels/sample_ram.h"
#include "support/bus.h"

namespace brelant::test {

inline constexpr Colour kFieldBack = 9268308;
inline constexpr Colour kYellow = 65535;
inline constexpr Colour kGreen = 65280;
inline constexpr Colour kWhite = 16777215;
inline constexpr Colour kBlack = 0;
inline constexpr int kEnter = 13;

/// All that a panel stands on, wired as the program wires it, but for the end of a session, which is counted.
template <typename Port>
struct PanelGround : Bus<Port> {
  template <typename... PortSetup>
  explicit PanelGround(PortSetup&&... setup) : Bus<Port>(std::forward<PortSetup>(setup)...) {
    Define(104, SampleChannels());
  }

  void Define(int part, const DefinedChannels& channels) {
    std::string number = std::to_string(part);
    number.insert(0, 5 - number.size(), '0');
    this->files.Put("C:\\KVX\\DEF" + number + ".PDT", DefinitionFile(channels));
  }

  /// Takes the bytes for read from the sensor.
  void Load(const RamBytes& ram) {
    for (std::size_t i = 0; i < ram.size(); ++i) {
      this->image.RamImage[i] = ram[i];
      this->image.RamValid[i] = true;
    }
  }

  Screen screen;
  Definitions definitions{this->session, this->image, this->com, this->machine};
  SnsInfo info{this->session, this->image, this->com, definitions, this->machine};
  Table table{this->session, this->image, this->com, definitions, info};
  snsFil file{this->session, this->image, this->com, info, table, this->machine};
  snsCal cal{this->session, this->image, this->link, this->com, info, table, this->machine};
  frmMsg msg{this->session, this->machine.pump, screen};
  frmComSet comSet{this->session, this->machine, screen};
  frmSpanCalNote spanNote{this->session, screen};
  frmCalCurve curve{info, screen};
  UnitNames unitNames;
  int sessionsEnded = 0;
  PanelContext context{
      this->machine,
      this->session,
      screen,
      this->image,
      this->com,
      info,
      definitions,
      file,
      cal,
      msg,
      comSet,
      spanNote,
      curve,
      {this->session, this->link, this->files, this->modbus, unitNames.names, unitNames.modbus},
      [this] {
        ++sessionsEnded;
        this->session.sessionOver = true;
      }};
};

/// A person at a field.
inline void Type(Control& field, const std::string& text) {
  auto& form = field.Owner();
  form.GainFocus(field);
  form.ChangeText(field, text);
  form.LoseFocus(field);
}
inline bool Click(Control& control) {
  return control.Owner().Click(control);
}

/// frm5 on the sample sensor, filled and shown.
template <typename Port>
class Frm5TestOn : public testing::Test {
 protected:
  template <typename... PortSetup>
  explicit Frm5TestOn(PortSetup&&... setup) : ground(std::forward<PortSetup>(setup)...) {
    Show(SampleRam());
  }

  void Show(const RamBytes& ram) {
    ground.Load(ram);
    panel.FormUpdateInit();
    panel.FormUpdate();
    panel.form.Show();
  }

  int Ram(std::size_t address) const {
    const float value = ground.image.RamImage.at(address);
    EXPECT_EQ(value, static_cast<float>(static_cast<int>(value))) << "no whole number at " << address;
    return static_cast<int>(value);
  }
  std::vector<int> Ram(std::size_t address, std::size_t count) const {
    std::vector<int> bytes;
    for (std::size_t i = 0; i < count; ++i) bytes.push_back(Ram(address + i));
    return bytes;
  }
  void SetRam(std::size_t address, std::initializer_list<int> bytes) {
    for (const int byte : bytes) ground.image.RamImage.at(address++) = static_cast<float>(byte);
  }
  RamBytes WholeRam() const {
    RamBytes ram{};
    for (std::size_t i = 0; i < ram.size(); ++i) ram[i] = static_cast<std::uint8_t>(Ram(i));
    return ram;
  }
  /// The image holds the sample, but for these bytes.
  void ExpectChanged(std::size_t address, std::initializer_list<std::uint8_t> bytes) const {
    auto expected = SampleRam();
    Put(expected, address, bytes);
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
  frm5 panel{ground.context};
};

/// With no line to a sensor.
using Frm5Test = Frm5TestOn<ScriptedPort>;

}  // namespace brelant::test
