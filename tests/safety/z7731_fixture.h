// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "bench/modbus_registers.h"
#include "connection/kibus_unit.h"
#include "panels/loop_act.h"
#include "safety/frmZ7731Chart.h"

namespace brelant::test {

inline constexpr Colour kRed = 255;
inline constexpr Colour kDarkGreen = 32768;
inline constexpr Colour kButtonFace = static_cast<Colour>(0x8000000FU);
inline constexpr const char* kNoUnit = "No sensor detected, entering simulated mode.";

/// Unit 1 on a Modbus line, whose registers stand for the memories of a unit (docs/protocol.md, Modbus). They
/// are filled in each pass of the pump; what a request has written goes to the memories in the next one.
class MirroredUnit {
 public:
  using Memory = std::span<std::uint8_t>;

  MirroredUnit(VirtualModbus& modbus, VirtualPump& pump, Memory ram, Memory eeprom)
      : modbus_(modbus), ram_(ram), eeprom_(eeprom) {
    modbus_.units[1];
    Fill();
    pump.OnPass([this] {
      Mind();
      return false;
    });
  }
  MirroredUnit(const MirroredUnit&) = delete;
  MirroredUnit& operator=(const MirroredUnit&) = delete;

  void Mind() {
    if (modbus_.units.count(1) == 0 || (IsAsFilled() && !WasAsked())) return;
    Take();
    Fill();
  }

 private:
  std::uint16_t Held(const bench::RegisterPlace& place) const {
    const auto& memory = place.in_eeprom ? eeprom_ : ram_;
    return static_cast<std::uint16_t>(memory[place.address] << 8 | memory[place.address + 1]);
  }
  bool IsAsFilled() const {
    return std::equal(ram_.begin(), ram_.end(), filledRam_.begin(), filledRam_.end()) &&
           std::equal(eeprom_.begin(), eeprom_.end(), filledEeprom_.begin(), filledEeprom_.end());
  }
  bool WasAsked() { return std::exchange(requests_, modbus_.Requests().size()) != modbus_.Requests().size(); }
  void Fill() {
    filledRam_.assign(ram_.begin(), ram_.end());
    filledEeprom_.assign(eeprom_.begin(), eeprom_.end());
    auto& unit = modbus_.units.at(1);
    for (int number = 0; number < 32; ++number) {
      if (const auto word = bench::InputRegister(ram_, eeprom_, number)) unit.input[number] = *word;
    }
    for (const auto& [number, place] : places_) unit.holding[number] = filled_[number] = Held(place);
  }
  void Take() {
    for (const auto& [number, word] : modbus_.units.at(1).holding) {
      if (filled_.at(number) == word) continue;
      const auto& place = places_.at(number);
      const auto& memory = place.in_eeprom ? eeprom_ : ram_;
      memory[place.address] = static_cast<std::uint8_t>(word >> 8);
      memory[place.address + 1] = static_cast<std::uint8_t>(word & 255);
    }
  }
  /// The levels, and of the windows what a panel looks at.
  std::map<int, bench::RegisterPlace> Places() const {
    struct Range {
      int first;
      int end;
    };
    std::map<int, bench::RegisterPlace> places;
    for (const auto& [first, end] : {Range{0, 32}, Range{4096, 4096 + 256}, Range{8192 + 2048, 8192 + 2400},
                                     Range{8192 + 3552, 12288}}) {
      for (int number = first; number < end; ++number) {
        const auto place = bench::HoldingRegister(ram_.size(), eeprom_.size(), number);
        if (place) places.emplace(number, *place);
      }
    }
    return places;
  }

  VirtualModbus& modbus_;
  Memory ram_;
  Memory eeprom_;
  std::map<int, bench::RegisterPlace> places_ = Places();
  std::map<int, std::uint16_t> filled_;
  std::vector<std::uint8_t> filledRam_;
  std::vector<std::uint8_t> filledEeprom_;
  std::size_t requests_ = 0;
};

/// A frame as words: "E4240+2" for a read of two bytes of EEPROM, "R304 = 1" for a write.
inline std::string Words(const Bytes& frame) {
  const bool isWide = (frame.front() & 56) != 0;
  const int address = isWide ? frame.at(1) * 256 + frame.at(2) : frame.at(1) + ((frame.front() & 64) * 2);
  auto text = ((frame.front() & 56) == 8 ? "E" : "R") + std::to_string(address);
  if (frame.front() >= 128) return text + "+" + std::to_string(frame.front() % 8);
  int value = 0;
  for (std::size_t i = isWide ? 3 : 2; i < frame.size(); ++i) value = value * 256 + frame.at(i);
  return text + " = " + std::to_string(value);
}

/// What a panel of the safety system stands on: a virtual unit of part 154 on its line.
struct SafetyGround : PanelGround<SensorPort> {
  explicit SafetyGround(const bench::SensorSetup& setup = {.part = 154}) : PanelGround(setup) {}

  /// As the dialog before the session has it.
  void Choose(frmComSet::StartMode mode, frmComSet::Protocol protocol, const std::string& id = "") {
    comSet.form.Select(comSet.optStartMode[mode]);
    comSet.form.Select(comSet.optComProt[protocol]);
    comSet.txbID.SetText(id);
  }
};

/// A unit on the line that keeps still: it has the memories of the virtual one, what a test puts there stays,
/// and its frames are written down.
class StillUnit {
 protected:
  explicit StillUnit(SensorPort& port) : unit(port) {
    const auto& ram = port.sensor.Ram();
    const auto& eeprom = port.sensor.Eeprom();
    std::copy(ram.begin(), ram.end(), unit.ram.begin());
    std::copy(eeprom.begin(), eeprom.end(), unit.eeprom.begin());
  }

  static void PutWord(std::vector<std::uint8_t>& memory, std::size_t address, int value) {
    memory.at(address) = static_cast<std::uint8_t>(value >> 8 & 255);
    memory.at(address + 1) = static_cast<std::uint8_t>(value & 255);
  }
  static int WordOf(const std::vector<std::uint8_t>& memory, std::size_t address) {
    return memory.at(address) * 256 + memory.at(address + 1);
  }
  void PutSetting(std::size_t address, int word) { PutWord(unit.eeprom, address, word); }
  void PutLive(std::size_t channel, int value) { PutWord(unit.ram, 12 + 2 * channel, value); }

  /// All frames, or those that write, as words.
  std::vector<std::string> Frames() const {
    std::vector<std::string> words;
    for (const auto& frame : unit.frames) words.push_back(Words(frame));
    return words;
  }
  std::vector<std::string> Writes() const {
    std::vector<std::string> words;
    for (const auto& frame : unit.frames) {
      if (frame.front() < 128) words.push_back(Words(frame));
    }
    return words;
  }

  KiBusUnit unit;
};

/// A panel of a unit that is reached by name, on its line.
template <typename PanelOfUnit>
class UnitPanelTest : public testing::Test {
 protected:
  explicit UnitPanelTest(const bench::SensorSetup& setup) : ground(setup) {}

  void Choose(frmComSet::StartMode mode, frmComSet::Protocol protocol, const std::string& id = "") {
    ground.Choose(mode, protocol, id);
  }
  void Run(std::chrono::microseconds span) { RunLoop(ground, panel, span); }
  void After(std::chrono::microseconds delay, std::function<void()> act) {
    ground.pump.After(delay, std::move(act));
  }

  static std::vector<std::string> Texts(const ControlArray& controls) {
    std::vector<std::string> texts;
    for (const auto* control : controls) texts.push_back(control->Text());
    return texts;
  }
  /// The boxes that are ticked.
  static std::vector<int> Ticked(const ControlArray& boxes) {
    std::vector<int> ticked;
    for (int i = 0; i < boxes.Count(); ++i) {
      if (boxes[i].Value() == 1) ticked.push_back(i);
    }
    return ticked;
  }
  std::vector<std::string> Told() const { return ground.ui.Texts(); }

  SafetyGround ground;
  SensorPort& port = ground.port;
  VirtualModbus& modbus = ground.modbus;
  Session& session = ground.session;
  PanelOfUnit panel{ground.context};
};

/// The panel of the safety system, opened as the start of a session opens it.
class Z7731Test : public UnitPanelTest<frmZ7731Chart> {
 protected:
  explicit Z7731Test(const bench::SensorSetup& setup = {.part = 154}) : UnitPanelTest(setup) {}

  /// False: the session does not begin, for the reason in LastError.
  bool Open() { return panel.FormUpdateInit() && panel.FormUpdate(); }
  bool Start() {
    if (!Open()) return false;
    panel.SimMode(ground.comSet.optStartMode[frmComSet::simulatedMode].Value() == 1);
    panel.form.Show();
    // The loop would clear it at its first turn.
    session.LastError.clear();
    return true;
  }
  bool StartSimulated() {
    Choose(frmComSet::simulatedMode, frmComSet::kiBus);
    return Start();
  }

  using UnitPanelTest::Ticked;
  static std::vector<int> Ticked(const RelayBoxes& relay) { return Ticked(relay.boxes); }
};

/// On a unit that keeps still. It hears both roads.
class StillUnitTest : public Z7731Test, protected StillUnit {
 protected:
  StillUnitTest() : StillUnit(port) {}

  /// As a session begins on the only unit there, with nothing written down yet.
  void StartOn(frmComSet::Protocol protocol) {
    Choose(frmComSet::singleSensor, protocol);
    mirror.Mind();
    ASSERT_TRUE(Start()) << session.LastError;
    Forget();
  }
  void StartOnKiBus() { StartOn(frmComSet::kiBus); }
  void StartOnModbus() { StartOn(frmComSet::modBus); }
  void Forget() {
    unit.frames.clear();
    modbus.Forget();
    ground.ui.messages.clear();
  }

  std::uint8_t& Status(std::size_t channel) { return unit.ram.at(256 + channel); }
  std::uint8_t& Regulator(std::size_t number) { return unit.ram.at(272 + number); }
  int Setting(std::size_t address) {
    mirror.Mind();
    return WordOf(unit.eeprom, address);
  }

  /// On either road.
  std::vector<std::string> Writes() const {
    auto words = StillUnit::Writes();
    for (const auto& request : modbus.Requests()) {
      if (request.written.empty()) continue;
      words.push_back("H" + std::to_string(request.first) + " = " + std::to_string(request.written.front()));
    }
    return words;
  }
  std::size_t Transfers() const { return unit.frames.size() + modbus.Requests().size(); }

  MirroredUnit mirror{modbus, ground.pump, unit.ram, unit.eeprom};
};

}  // namespace brelant::test
