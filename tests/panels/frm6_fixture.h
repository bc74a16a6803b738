// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <chrono>
#include <string>
#include <utility>
#include <vector>

#include "panels/frm6.h"
#include "panels/loop_act.h"
#include "panels/panel_fixture.h"
#include "panels/sample_eeprom.h"
#include "panels/sensor_line.h"

namespace brelant::test {

inline constexpr std::uint8_t kPart88 = 88;

/// The bytes that make a sensor of that variant: bit 0 of 165, byte 173 and bit 0 of 90.
inline void MakeVariant(EepromBytes& eeprom, int variant) {
  eeprom[165] = static_cast<std::uint8_t>((eeprom[165] & ~1) | (variant == 4 ? 0 : 1));
  eeprom[173] = static_cast<std::uint8_t>(variant == 2 || variant == 4 ? 0 : variant);
  eeprom[90] = static_cast<std::uint8_t>((eeprom[90] & ~1) | (variant == 2 ? 1 : 0));
}
inline EepromBytes SampleEeprom(std::uint8_t part, int variant) {
  auto eeprom = SampleEeprom(part);
  MakeVariant(eeprom, variant);
  return eeprom;
}

inline std::vector<std::string> Texts(const ControlArray& controls) {
  std::vector<std::string> texts;
  for (const auto* control : controls) texts.push_back(control->Text());
  return texts;
}
inline std::vector<int> Values(const ControlArray& controls) {
  std::vector<int> values;
  for (const auto* control : controls) values.push_back(control->Value());
  return values;
}
inline std::vector<bool> Visibles(const ControlArray& controls) {
  std::vector<bool> visible;
  for (const auto* control : controls) visible.push_back(control->Visible());
  return visible;
}

/// frm6 with whatever a test loads.
template <typename Port>
class Frm6TestOn : public testing::Test {
 protected:
  template <typename... PortSetup>
  explicit Frm6TestOn(PortSetup&&... setup) : ground(std::forward<PortSetup>(setup)...) {}

  /// Takes the bytes for read from the sensor, with nothing in RAM but the part number.
  void Load(const EepromBytes& eeprom) {
    ground.image.RamImage.fill(0);
    ground.image.RamValid.fill(true);
    ground.KnowPart(eeprom[164]);
    for (std::size_t i = 0; i < eeprom.size(); ++i) {
      ground.image.EepromImage[i] = ground.image.EepromRead[i] = eeprom[i];
      ground.image.EepromValid[i] = true;
    }
  }
  void Show(const EepromBytes& eeprom) {
    Load(eeprom);
    EXPECT_TRUE(panel.FormUpdateInit());
    EXPECT_TRUE(panel.FormUpdate());
    panel.form.Show();
  }

  EepromBytes Eeprom() const {
    for (std::size_t i = 0; i < 512; ++i) {
      const float value = ground.image.EepromImage.at(i);
      EXPECT_EQ(value, static_cast<float>(static_cast<std::uint8_t>(value))) << "no byte at " << i;
    }
    return EepromOf(ground.image);
  }
  std::vector<int> Eeprom(std::size_t address, std::size_t count) const {
    const auto all = Eeprom();
    return {all.begin() + static_cast<std::ptrdiff_t>(address),
            all.begin() + static_cast<std::ptrdiff_t>(address + count)};
  }
  void SetEeprom(std::size_t address, std::initializer_list<int> bytes) {
    for (const int byte : bytes) ground.image.EepromImage.at(address++) = static_cast<float>(byte);
  }
  void SetRamWord(int address, int value) { ground.image.SetRamWord(address, static_cast<float>(value)); }

  Control& Entry(const std::string& name) {
    auto* control = panel.form.Find(name);
    EXPECT_NE(control, nullptr) << name;
    return *control;
  }
  void Run(std::chrono::microseconds span) { RunLoop(ground, panel, span); }
  void After(std::chrono::microseconds delay, std::function<void()> act) {
    ground.pump.After(delay, std::move(act));
  }

  PanelGround<Port> ground;
  frm6 panel{ground.context};
};

/// With no line to a sensor.
using Frm6Test = Frm6TestOn<ScriptedPort>;

/// With a virtual sensor on the line that holds the sample of its part and variant, and that the panel has
/// read.
class Frm6SensorTest : public Frm6TestOn<SensorPort> {
 protected:
  explicit Frm6SensorTest(std::uint8_t part = kPart88, int variant = 0, bool pace = false)
      : Frm6TestOn(bench::SensorSetup{.part = part, .variant = variant, .pace = pace}),
        sample(SampleEeprom(part, variant)) {
    Hold(sample);
    Show(sample);
    ground.image.RamValid.fill(false);
    ground.KnowPart(part);
    panel.SimMode(false);
    session.LastError.clear();
  }

  void Hold(const EepromBytes& eeprom) { std::ranges::copy(eeprom, port.sensor.Eeprom().begin()); }
  EepromBytes Held() {
    EepromBytes eeprom{};
    std::ranges::copy(port.sensor.Eeprom(), eeprom.begin());
    return eeprom;
  }
  void HoldWord(std::size_t ram, int value) {
    port.sensor.Ram()[ram] = static_cast<std::uint8_t>(value / 256);
    port.sensor.Ram()[ram + 1] = static_cast<std::uint8_t>(value % 256);
  }
  /// The sensor's frames that write EEPROM.
  std::vector<Bytes> Writes() {
    std::vector<Bytes> writes;
    for (const auto& frame : port.sensor.Frames()) {
      if (frame.size() > 3 && (frame[0] & 0xF8) == 8) writes.push_back(frame);
    }
    return writes;
  }

  SensorPort& port = ground.port;
  Session& session = ground.session;
  EepromBytes sample;
};

}  // namespace brelant::test
