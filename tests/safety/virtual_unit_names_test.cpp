// SPDX-License-Identifier: GPL-3.0-or-later
// The connection's table of names against the virtual unit's own plan of memory and registers, which was
// written apart from it: each parameter must be the same one on both protocols (docs/names.md).
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "bench/modbus_registers.h"
#include "connection/name_table.h"

namespace brelant {
namespace {

using Memory = std::vector<std::uint8_t>;

class VirtualUnitNamesTest : public testing::Test {
 protected:
  Memory& MemoryOf(Space space) { return space == Space::ram ? ram : eeprom; }

  /// Puts bits where KiBus has a parameter.
  void Put(const Target& target, std::uint64_t bits) {
    auto& memory = MemoryOf(target.space);
    bits <<= target.shift;
    for (int i = target.count - 1; i >= 0; --i, bits >>= 8) {
      memory.at(static_cast<std::size_t>(target.first + i)) = static_cast<std::uint8_t>(bits & 255);
    }
  }
  std::uint64_t Register(Space bank, int number) {
    if (bank == Space::input) {
      const auto word = bench::InputRegister(ram, eeprom, number);
      EXPECT_TRUE(word) << "input " << number;
      return word.value_or(0);
    }
    const auto place = bench::HoldingRegister(ram.size(), eeprom.size(), number);
    EXPECT_TRUE(place) << "holding " << number;
    if (!place) return 0;
    const auto& memory = place->in_eeprom ? eeprom : ram;
    return memory.at(place->address) * 256U + memory.at(place->address + 1);
  }
  std::uint64_t Get(const Target& target) {
    std::uint64_t bits = 0;
    for (int i = 0; i < target.count; ++i) bits = bits << 16 | Register(target.space, target.first + i);
    return bits >> target.shift & ((std::uint64_t{1} << target.width) - 1);
  }

  Memory ram = Memory(7168);
  Memory eeprom = Memory(8192);
};

TEST_F(VirtualUnitNamesTest, EachNameIsTheSameParameterOnBothProtocols) {
  const auto table = NameTable::Standard();
  ASSERT_GT(table.Rows().size(), 80U);
  for (const auto& row : table.Rows()) {
    const auto onKiBus = table.OnKiBus(row.name);
    const auto onModbus = table.OnModbus(row.name);
    ASSERT_EQ(onKiBus.width, onModbus.width) << row.name;
    const auto all = (std::uint64_t{1} << onKiBus.width) - 1;
    for (const std::uint64_t pattern : {std::uint64_t{0xFFFF}, std::uint64_t{0x5AC3}, std::uint64_t{0}}) {
      Put(onKiBus, pattern & all);
      EXPECT_EQ(Get(onModbus), pattern & all) << row.name;
    }
  }
}

TEST_F(VirtualUnitNamesTest, NoTwoNamesShareAPlaceUnlessTheyAreMeantTo) {
  const auto table = NameTable::Standard();
  for (const auto& row : table.Rows()) {
    // "eaCaseChannelUnit" is a part of "eaCaseChannel".
    if (row.place.mask != 0) continue;
    for (const auto& other : table.Rows()) {
      if (other.name == row.name || other.place.mask != 0 || other.place.memory != row.place.memory) continue;
      const bool isApart = other.place.address + other.place.width <= row.place.address ||
                           row.place.address + row.place.width <= other.place.address;
      EXPECT_TRUE(isApart) << row.name << " and " << other.name;
    }
  }
}

}  // namespace
}  // namespace brelant
