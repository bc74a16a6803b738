// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "panels/frm61.h"
#include "panels/loop_act.h"
#include "panels/panel_fixture.h"
#include "panels/sensor_line.h"

namespace brelant::test {

inline constexpr std::uint8_t kPart61 = 215;
inline constexpr std::uint8_t kPart7 = 50;

/// A sensor that has this panel.
struct Product61 {
  int platform;
  int variant;

  std::uint8_t Part() const { return platform == 61 ? kPart61 : kPart7; }
  friend std::ostream& operator<<(std::ostream& out, const Product61& product) {
    return out << product.platform << " v" << product.variant;
  }
};

inline void PutBytes(Bytes& memory, std::size_t address, std::initializer_list<std::uint8_t> bytes) {
  for (const auto byte : bytes) memory.at(address++) = byte;
}
/// A table of 17 words that fall, or rise, by the same step.
inline void PutEvenTable(Bytes& memory, std::size_t address, int first, int step) {
  for (int entry = 0; entry < 17; ++entry) {
    const int word = first + step * entry;
    PutBytes(memory, address + 2 * static_cast<std::size_t>(entry),
             {static_cast<std::uint8_t>(word / 256), static_cast<std::uint8_t>(word % 256)});
  }
}

/// The EEPROM of a platform 61 or platform 7 sensor (docs/memory-maps.md) whose settings all lie on the grain
/// of the panel, so that a form that is filled and taken back leaves every byte as it is. Bytes without a
/// meaning here differ from their neighbours.
inline Bytes Sample61(int variant) {
  Bytes eeprom(512);
  for (std::size_t i = 0; i < eeprom.size(); ++i) eeprom[i] = static_cast<std::uint8_t>(i * 7 + 3);
  PutBytes(eeprom, 0, {8, 0});                                            // O2 span: 1
  PutBytes(eeprom, 32, {7});                                              // bus ID
  PutBytes(eeprom, 46, {16, 0});                                          // zero word 4096
  PutBytes(eeprom, 50, {0x54, 0x6F});                                     // channels 4, 5, 15, 6
  PutBytes(eeprom, 58, {176, 0});                                         // background: 45056, entry 11
  PutBytes(eeprom, 76, {25, 100});                                        // CO2 5000 + 1500
  PutBytes(eeprom, 78, {31, 64});                                         // CO2 5000 + 3000
  PutBytes(eeprom, 80, {26, 244});                                        // O2 5000 + 1900
  PutBytes(eeprom, 83, {127});                                            // no temperature coefficient
  PutBytes(eeprom, 84, {26, 144});                                        // O2 5000 + 1800
  PutBytes(eeprom, 90, {0});                                              // no variant 2
  PutBytes(eeprom, 164, {kPart61, 1});                                    // part; not sequential
  PutBytes(eeprom, 170, {4, 18, 0, static_cast<std::uint8_t>(variant)});  // serial number 1042
  PutBytes(eeprom, 222, {0x86});                                          // C, two decimals, offset
  PutBytes(eeprom, 223, {static_cast<std::uint8_t>(variant == 0 ? 0x95 : 0x90)});  // % thousandths, or ppm
  PutBytes(eeprom, 224, {0x96});                                                   // %, two decimals, offset
  PutEvenTable(eeprom, 308, 3000, 500);                                            // temperature
  PutEvenTable(eeprom, 444, 6500, -100);
  return eeprom;
}
inline Bytes Sample7(int variant) {
  Bytes eeprom(1024);
  for (std::size_t i = 0; i < eeprom.size(); ++i) eeprom[i] = static_cast<std::uint8_t>(i * 7 + 3);
  PutBytes(eeprom, 0, {8, 0});                                // O2 span: 1
  PutBytes(eeprom, 14, {16, 0});                              // zero word 4096
  PutBytes(eeprom, 16, {7});                                  // bus ID
  PutBytes(eeprom, 164, {kPart7});                            // in files only
  PutBytes(eeprom, 385, {4, 5, 6, 8});                        // display
  PutEvenTable(eeprom, 512, 0, 400);                          // temperature
  PutEvenTable(eeprom, 580, 1500, -100);                      // CO2
  PutEvenTable(eeprom, 648, 0, 160);                          // O2
  PutEvenTable(eeprom, 682, 1500, -100);                      // of the background
  PutBytes(eeprom, 760, {0, 0, 8, 0});                        // O2 zero, scale factor 1
  PutBytes(eeprom, 796, {0x06, 0x15, 0x16});                  // C hundredths, % thousandths, % hundredths
  PutBytes(eeprom, 834, {5, 220, 0x45, 17, 63, 255});         // above 1.5 %, with bits of unknown meaning
  PutBytes(eeprom, 840, {11, 184, 0x21, 34, 63, 255});        // above 3 %
  PutBytes(eeprom, 846, {7, 108, 0x80 | 0x12, 51, 63, 255});  // below 19 %
  PutBytes(eeprom, 881, {0});                                 // no temperature coefficient
  PutBytes(eeprom, 925, {0xA5, 1, 0x35, 2, 0x96, 3, 77, 4});  // CO2, CO2, O2
  PutBytes(eeprom, 976, {176, 0, 176, 0});
  PutBytes(eeprom, 998, {18, 4, 0});  // serial number 1042, low byte first
  PutBytes(eeprom, 1003, {0x35});     // curve 3
  PutBytes(eeprom, 1023, {static_cast<std::uint8_t>(variant)});
  return eeprom;
}
inline Bytes SampleOf(const Product61& product) {
  return product.platform == 61 ? Sample61(product.variant) : Sample7(product.variant);
}

inline std::vector<std::string> Texts(const ControlArray& controls) {
  std::vector<std::string> texts;
  for (const auto* control : controls) texts.push_back(control->Text());
  return texts;
}
inline std::vector<bool> Visibles(const ControlArray& controls) {
  std::vector<bool> visible;
  for (const auto* control : controls) visible.push_back(control->Visible());
  return visible;
}
inline std::vector<Colour> Backs(const ControlArray& controls) {
  std::vector<Colour> backs;
  for (const auto* control : controls) backs.push_back(control->Back());
  return backs;
}

/// frm61 with whatever a test loads.
template <typename Port>
class Frm61TestOn : public testing::Test {
 protected:
  template <typename... PortSetup>
  explicit Frm61TestOn(PortSetup&&... setup) : ground(std::forward<PortSetup>(setup)...) {}

  /// Takes the bytes for read from a sensor of that part, with nothing else in RAM.
  void Load(std::uint8_t part, const Bytes& eeprom) {
    ground.image.Clear();
    ground.image.RamValid.fill(true);
    ground.KnowPart(part);
    for (std::size_t i = 0; i < eeprom.size(); ++i) {
      ground.image.EepromImage.at(i) = ground.image.EepromRead.at(i) = eeprom[i];
      ground.image.EepromValid.at(i) = true;
    }
  }
  void Show(std::uint8_t part, const Bytes& eeprom) {
    size = eeprom.size();
    Load(part, eeprom);
    EXPECT_TRUE(panel.FormUpdateInit());
    EXPECT_TRUE(panel.FormUpdate());
    panel.form.Show();
  }
  void Show(const Product61& product) { Show(product.Part(), SampleOf(product)); }

  /// All bytes of EEPROM in the image, which must be bytes.
  Bytes Eeprom() const {
    Bytes bytes;
    for (std::size_t i = 0; i < size; ++i) {
      const float value = ground.image.EepromImage.at(i);
      bytes.push_back(static_cast<std::uint8_t>(value));
      EXPECT_EQ(value, static_cast<float>(bytes.back())) << "no byte at " << i;
    }
    return bytes;
  }
  std::vector<int> Eeprom(std::size_t address, std::size_t count) const {
    const auto all = Eeprom();
    return {all.begin() + static_cast<std::ptrdiff_t>(address),
            all.begin() + static_cast<std::ptrdiff_t>(address + count)};
  }
  std::vector<int> Ram(std::size_t address, std::size_t count) const {
    std::vector<int> bytes;
    for (std::size_t i = address; i < address + count; ++i) {
      bytes.push_back(static_cast<int>(ground.image.RamImage.at(i)));
      EXPECT_EQ(ground.image.RamImage.at(i), static_cast<float>(bytes.back())) << "no byte at " << i;
    }
    return bytes;
  }
  void SetEeprom(std::size_t address, std::initializer_list<int> bytes) {
    for (const int byte : bytes) ground.image.EepromImage.at(address++) = static_cast<float>(byte);
  }
  void SetRamWord(int address, int value) { ground.image.SetRamWord(address, static_cast<float>(value)); }
  /// Shows three live words.
  void ShowLive(int temperature, int gas, int oxygen) {
    SetRamWord(20, temperature);
    SetRamWord(22, gas);
    SetRamWord(24, oxygen);
    EXPECT_TRUE(panel.FormUpdateM());
  }
  std::vector<std::string> RowStates() const {
    return {panel.rows.txbAlarm7StatusPre.Text(), panel.rows.txbAlarm7StatusMain.Text()};
  }

  Control& Entry(const std::string& name) {
    auto* control = panel.form.Find(name);
    EXPECT_NE(control, nullptr) << name;
    return *control;
  }
  void Choose(Control& label, std::size_t choice) {
    ground.ui.choices.emplace_back(choice);
    EXPECT_TRUE(Click(label)) << label.Name();
  }
  void Run(std::chrono::microseconds span) { RunLoop(ground, panel, span); }
  void After(std::chrono::microseconds delay, std::function<void()> act) {
    ground.pump.After(delay, std::move(act));
  }

  PanelGround<Port> ground;
  frm61 panel{ground.context};
  std::size_t size = 0;
};

/// With no line to a sensor.
using Frm61Test = Frm61TestOn<ScriptedPort>;

/// With a virtual sensor on the line that holds the sample of its product, and that the panel has read.
class Frm61SensorTest : public Frm61TestOn<SensorPort> {
 protected:
  explicit Frm61SensorTest(const Product61& attached)
      : Frm61TestOn(bench::SensorSetup{.part = attached.Part(), .variant = attached.variant}),
        product(attached),
        sample(SampleOf(attached)) {
    Hold(sample);
    Show(attached);
    ground.image.RamValid.fill(false);
    ground.KnowPart(attached.Part());
    panel.SimMode(false);
    session.LastError.clear();
    Listen();
  }

  void Hold(const Bytes& eeprom) { std::ranges::copy(eeprom, port.sensor.Eeprom().begin()); }
  Bytes Held() { return {port.sensor.Eeprom().begin(), port.sensor.Eeprom().end()}; }
  void HoldWord(std::size_t ram, int value) {
    port.sensor.Ram()[ram] = static_cast<std::uint8_t>(value >> 8 & 255);
    port.sensor.Ram()[ram + 1] = static_cast<std::uint8_t>(value & 255);
  }
  /// From now on the test looks at what is sent.
  void Listen() {
    port.Forget();
    port.sensor.ForgetFrames();
  }
  /// The sensor answers no frame from the n-th on, the first being 0.
  void FallSilentAt(std::size_t frame) {
    BeforeEachOutput(port, [this, frame](const Bytes&) { return port.sensor.Frames().size() < frame; });
  }
  /// What was done to the port, with a word "frame" for each message frame: its requests to send aside.
  std::vector<std::string> PortActs() const {
    std::vector<std::string> acts;
    for (const auto& event : port.Events()) {
      if (event.act == SensorPort::Act::open) acts.emplace_back("open");
      if (event.act == SensorPort::Act::close) acts.emplace_back("close");
      if (event.act == SensorPort::Act::output && event.bytes == Bytes{254}) acts.emplace_back("frame");
    }
    return acts;
  }
  void ClickInTheLoop(const std::string& entry, std::chrono::seconds span = std::chrono::seconds(20)) {
    After(std::chrono::milliseconds(100), [this, entry] { EXPECT_TRUE(Click(Entry(entry))) << entry; });
    Run(span);
  }

  Product61 product;
  SensorPort& port = ground.port;
  Session& session = ground.session;
  Bytes sample;
};

/// One test for all that have the panel.
class EachFrm61SensorTest : public Frm61SensorTest, public testing::WithParamInterface<Product61> {
 protected:
  EachFrm61SensorTest() : Frm61SensorTest(GetParam()) {}
  bool IsOn61() const { return product.platform == 61; }
};
inline auto Products61() {
  return testing::Values(Product61{61, 0}, Product61{61, 1}, Product61{7, 1}, Product61{7, 2});
}
inline std::string ProductName(const testing::TestParamInfo<Product61>& info) {
  return "Platform" + std::to_string(info.param.platform) + "Variant" + std::to_string(info.param.variant);
}

}  // namespace brelant::test
