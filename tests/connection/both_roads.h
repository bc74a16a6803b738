// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <map>
#include <optional>
#include <string>

#include "connection/connection_fixture.h"

namespace brelant::test {

/// A unit of part 154 that is reached over KiBus or, with the parameter true, over Modbus; its memory is the
/// same on both.
class BothRoadsTest : public ConnectionTest, public testing::WithParamInterface<bool> {
 protected:
  BothRoadsTest() {
    if (IsModbus()) {
      for (int number = 0; number < 32; ++number) Unit().input[number] = Unit().holding[number] = 0;
      for (int number = 4096; number < 12288; ++number) Unit().holding[number] = 0;
      sens.SelectModbus(1);
    } else {
      kiBus.emplace(port);
    }
    PutByte(SensorMemory::ram, 65, 154);
    PutByte(SensorMemory::eeprom, 4124, 117);
    PutByte(SensorMemory::eeprom, 4125, 3);
    sens.ConnectSensor("3", -1);
    Forget();
  }

  static bool IsModbus() { return GetParam(); }
  VirtualModbus::Unit& Unit() { return modbus.units[1]; }

  void PutByte(int kind, int address, int value) {
    const auto byte = static_cast<std::uint8_t>(value);
    if (!IsModbus()) {
      Memory(kind).at(static_cast<std::size_t>(address)) = byte;
      return;
    }
    auto& word = Unit().holding.at(Register(kind, address));
    word = static_cast<std::uint16_t>(address % 2 == 0 ? byte << 8 | (word & 255) : (word & 65280) | byte);
  }
  int Byte(int kind, int address) {
    if (!IsModbus()) return Memory(kind).at(static_cast<std::size_t>(address));
    const auto word = Unit().holding.at(Register(kind, address));
    return address % 2 == 0 ? word >> 8 : word & 255;
  }
  void PutWord(int kind, int address, int value) {
    PutByte(kind, address, value >> 8 & 255);
    PutByte(kind, address + 1, value & 255);
  }
  int Word(int kind, int address) { return Byte(kind, address) * 256 + Byte(kind, address + 1); }

  /// The Case word of channel 4 or 5.
  void PutCase(int channel, int word) {
    PutByte(SensorMemory::eeprom, 7960 + channel, word);
    if (!IsModbus()) return;
    auto& both = Unit().input.at(16);
    both = static_cast<std::uint16_t>(channel == 4 ? word << 8 | (both & 255) : (both & 65280) | word);
  }

  /// Frames or requests that change something in the unit.
  std::size_t Writes() const {
    std::size_t count = 0;
    for (const auto& request : modbus.Requests()) count += request.written.empty() ? 0 : 1;
    if (kiBus) {
      for (const auto& frame : kiBus->frames) count += frame.front() < 128 ? 1 : 0;
    }
    return count;
  }
  std::size_t Transfers() const { return modbus.Requests().size() + (kiBus ? kiBus->frames.size() : 0); }
  void Forget() {
    modbus.Forget();
    if (kiBus) kiBus->frames.clear();
    port.Forget();
  }
  /// The unit takes writes to that byte and does not keep them.
  void Stick(int kind, int address) {
    const int value = Byte(kind, address);
    bus.pump.OnPass([=, this] {
      PutByte(kind, address, value);
      return false;
    });
  }

  std::optional<KiBusUnit> kiBus;

 private:
  /// The windows (docs/names.md), but for the levels that have registers of their own.
  static int Register(int kind, int address) {
    static const std::map<int, int> kOwn{{4240, 20}, {4242, 21}, {4354, 11}, {4356, 12}};
    const auto own = kOwn.find(address / 2 * 2);
    if (kind == SensorMemory::eeprom && own != kOwn.end()) return own->second;
    return (kind == SensorMemory::ram ? 4096 : 8192) + address / 2;
  }
  std::vector<std::uint8_t>& Memory(int kind) {
    return kind == SensorMemory::ram ? kiBus->ram : kiBus->eeprom;
  }
};

inline std::string RoadName(const testing::TestParamInfo<bool>& road) {
  return road.param ? "Modbus" : "KiBus";
}

}  // namespace brelant::test
