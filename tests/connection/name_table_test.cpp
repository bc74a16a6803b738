// SPDX-License-Identifier: GPL-3.0-or-later
#include "connection/name_table.h"

#include <map>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "connection/connection_error.h"

namespace brelant {
namespace {

using testing::HasSubstr;

/// A name, where it lies, in how many bytes, with a sign or not, and its Modbus register if it has one.
struct Row {
  std::string name;
  Space memory;
  int address;
  int width;
  bool isSigned;
  std::optional<Target> modbus = {};
};

Target Whole(Space bank, int number, bool isSigned) {
  return {bank, number, 1, 0, 16, isSigned};
}
Target HighByte(int input) {
  return {Space::input, input, 1, 8, 8, false};
}
Target LowByte(int input) {
  return {Space::input, input, 1, 0, 8, false};
}

/// Every name that a panel of a safety unit asks for.
std::vector<Row> Rows() {
  const auto ram = Space::ram;
  const auto eeprom = Space::eeprom;
  const auto input = [](int number) { return Whole(Space::input, number, true); };
  const auto holding = [](int number) { return Whole(Space::holding, number, true); };
  std::vector<Row> rows{
      {"eaUserInfo_29", eeprom, 4125, 1, false},
      {"eaUserInfo_28", eeprom, 4124, 1, false},
      {"eaSensorID_0", eeprom, 4160, 1, false},
      {"eaCaseChannel_4", eeprom, 7964, 1, false, HighByte(16)},
      {"eaCaseChannel_5", eeprom, 7965, 1, false, LowByte(16)},
      {"eaCaseChannel_8", eeprom, 7968, 1, false, LowByte(19)},
      {"eaCaseChannel_9", eeprom, 7969, 1, false, HighByte(17)},
      {"eaCaseChannel_11", eeprom, 7971, 1, false, LowByte(18)},
      {"eaRegPar0_4", eeprom, 4240, 2, true, holding(20)},
      {"eaRegPar1_4", eeprom, 4242, 2, true, holding(21)},
      {"eaRegPar0_5", eeprom, 4244, 2, true, holding(23)},
      {"eaRegPar1_5", eeprom, 4246, 2, true, holding(24)},
      {"eaRegPar0_6", eeprom, 4248, 2, true, holding(26)},
      {"eaRegPar1_6", eeprom, 4250, 2, true, holding(27)},
      {"eaRegPar0_7", eeprom, 4252, 2, true, holding(29)},
      {"eaRegPar1_7", eeprom, 4254, 2, true, holding(30)},
      {"eaRegPar0_8", eeprom, 4256, 2, true},
      {"eaRegPar1_8", eeprom, 4258, 2, true},
      {"eawPar_1", eeprom, 4354, 2, true, holding(11)},
      {"eawPar_2", eeprom, 4356, 2, true, holding(12)},
      {"eawPar_3", eeprom, 4358, 2, true, holding(13)},
      {"eaMenuItemMPar1_0", eeprom, 4401, 1, false},
      {"eaMenuItemMPar2_0", eeprom, 4402, 1, false},
      {"eaMenuItemMPar3_0", eeprom, 4403, 1, false},
      {"eaMenuItemMPar4_0", eeprom, 4404, 1, false},
      {"eaMenuItemMPar1_1", eeprom, 4409, 1, false},
      {"eaMenuItemMPar2_1", eeprom, 4410, 1, false},
      {"eaMenuItemMPar3_1", eeprom, 4411, 1, false},
      {"eaMenuItemMPar4_1", eeprom, 4412, 1, false},
      {"eaCountPar_9", eeprom, 4434, 2, false},
      {"eaCountPar_10", eeprom, 4436, 2, false},
      {"eaCountPar_11", eeprom, 4438, 2, false},
      {"eaCountPar_14", eeprom, 4444, 2, false},
      {"eaState0Alg_21", eeprom, 4564, 2, false},
      {"eaState0Alg_22", eeprom, 4568, 2, false},
      {"eaState0Alg_25", eeprom, 4580, 2, false},
      {"eaState1Alg_30", eeprom, 4602, 2, false},
      {"eaLoggBufferSize_0", eeprom, 4640, 2, false},
      {"raChan_4", ram, 20, 2, true, input(7)},
      {"raChan_5", ram, 22, 2, true, input(6)},
      {"raChan_8", ram, 28, 2, true, input(13)},
      {"raChan_9", ram, 30, 2, true, input(9)},
      {"raChan_11", ram, 34, 2, true, input(11)},
      {"raChanStat_4", ram, 260, 1, false},
      {"raChanStat_5", ram, 261, 1, false},
      {"raChanStat_8", ram, 264, 1, false},
      {"raChanStat_9", ram, 265, 1, false},
      {"raChanStat_11", ram, 267, 1, false},
      {"raRegStat_4", ram, 276, 1, false},
      {"raRegStat_5", ram, 277, 1, false},
      {"raRegStat_6", ram, 278, 1, false},
      {"raRegStat_7", ram, 279, 1, false},
      {"raRegStat_13", ram, 285, 1, false},
      {"raGenStat_8", ram, 304, 2, false},
      {"raGenStat_9", ram, 306, 2, false},
      {"raCalPar_0", ram, 320, 2, true},
      {"raCalPar_1", ram, 322, 2, false},
      {"raLoggCount_0", ram, 336, 2, false},
      {"raLoggCount_1", ram, 338, 2, false},
      {"raLoggNext_0", ram, 340, 2, false},
      {"raLoggNext_1", ram, 342, 2, false},
      {"raLoggAge_0", ram, 344, 2, false},
  };
  for (int i = 0; i < 16; ++i) {
    rows.push_back({"eaTable3_" + std::to_string(i), eeprom, 4704 + 2 * i, 2, false});
  }
  return rows;
}

const std::vector<std::string> kUnitNames{"eaCaseChannelUnit_4", "eaCaseChannelUnit_5", "eaCaseChannelUnit_8",
                                          "eaCaseChannelUnit_9", "eaCaseChannelUnit_11"};

const NameTable& Table() {
  static const NameTable table = NameTable::Standard();
  return table;
}

std::string TextOfUnknown(const std::string& name, bool isModbus) {
  try {
    static_cast<void>(isModbus ? Table().OnModbus(name) : Table().OnKiBus(name));
  } catch (const ConnectionError& error) {
    return error.what();
  }
  return {};
}

TEST(NameTable, KnowsOnKiBusWhereEachParameterLies) {
  for (const auto& row : Rows()) {
    const Target expected{row.memory, row.address, row.width, 0, 8 * row.width, row.isSigned};
    EXPECT_EQ(Table().OnKiBus(row.name), expected) << row.name;
  }
}

TEST(NameTable, KnowsOnModbusTheRegisterOfEachParameterThatHasOne) {
  for (const auto& row : Rows()) {
    if (row.modbus) {
      EXPECT_EQ(Table().OnModbus(row.name), *row.modbus) << row.name;
    }
  }
}

TEST(NameTable, ReachesTheOthersOnModbusThroughTheWindows) {
  for (const auto& row : Rows()) {
    if (row.modbus) continue;
    // Two bytes a register, the even one high; no word of the table begins at an odd address.
    const int first = (row.memory == Space::ram ? 4096 : 8192) + row.address / 2;
    const bool isHigh = row.width == 1 && row.address % 2 == 0;
    const Target expected{Space::holding, first, 1, isHigh ? 8 : 0, 8 * row.width, row.isSigned};
    EXPECT_EQ(Table().OnModbus(row.name), expected) << row.name;
  }
}

TEST(NameTable, KnowsTheUnitOfACaseWordAsBits2To4OfItsByte) {
  for (const auto& name : kUnitNames) {
    const int channel = std::stoi(name.substr(name.find('_') + 1));
    EXPECT_EQ(Table().OnKiBus(name), (Target{Space::eeprom, 7960 + channel, 1, 2, 3, false})) << name;
    const Target window{Space::holding, 8192 + (7960 + channel) / 2, 1, channel % 2 == 0 ? 10 : 2, 3, false};
    EXPECT_EQ(Table().OnModbus(name), window) << name;
  }
}

TEST(NameTable, HoldsNothingElse) {
  std::set<std::string> expected(kUnitNames.begin(), kUnitNames.end());
  for (const auto& row : Rows()) expected.insert(row.name);
  std::set<std::string> held;
  for (const auto& row : Table().Rows()) EXPECT_TRUE(held.insert(row.name).second) << row.name << " twice";
  EXPECT_EQ(held, expected);
}

using Bit = std::tuple<Space, int, int>;

/// The single bits of a target: space, cell, and bit in the cell.
std::set<Bit> BitsOf(const Target& target) {
  const int cellBits = target.space == Space::ram || target.space == Space::eeprom ? 8 : 16;
  std::set<Bit> bits;
  for (int i = target.shift; i < target.shift + target.width; ++i) {
    const int cell = target.first + target.count - 1 - i / cellBits;
    bits.insert({target.space, cell, i % cellBits});
  }
  return bits;
}

/// The unit of a Case word is part of the Case word; nothing else shares a bit.
bool MayShare(const std::string& one, const std::string& other) {
  const auto longer = one.size() > other.size() ? one : other;
  const auto shorter = one.size() > other.size() ? other : one;
  const std::string kFamily = "eaCaseChannel";
  return shorter.starts_with(kFamily + "_") && longer == kFamily + "Unit" + shorter.substr(kFamily.size());
}

TEST(NameTable, GivesNoTwoParametersTheSameBit) {
  for (const bool isModbus : {false, true}) {
    std::map<Bit, std::string> owners;
    for (const auto& row : Table().Rows()) {
      for (const auto& bit : BitsOf(isModbus ? Table().OnModbus(row.name) : Table().OnKiBus(row.name))) {
        const auto [owner, isFree] = owners.insert({bit, row.name});
        EXPECT_TRUE(isFree || MayShare(owner->second, row.name)) << row.name << " lies on " << owner->second;
      }
    }
  }
}

TEST(NameTable, LeavesAloneWhatHasAnAddressButNoName) {
  std::map<std::pair<Space, int>, std::string> cells;
  for (const auto& row : Table().Rows()) {
    const auto target = Table().OnKiBus(row.name);
    for (int i = 0; i < target.count; ++i) cells[{target.space, target.first + i}] = row.name;
  }
  // Part number and state byte; pointer of the base line and serial number.
  for (const int address : {65, 383}) EXPECT_FALSE(cells.contains({Space::ram, address})) << address;
  for (const int address : {7868, 7869, 8166, 8167, 8168}) {
    EXPECT_FALSE(cells.contains({Space::eeprom, address})) << address;
  }
}

TEST(NameTable, FailsForAnUnknownNameAndTellsIt) {
  for (const std::string name :
       {"eaRegPar0_9", "raChan_6", "eaUserInfo_30", "xyz_1", "eaRegPar0", "eaRegPar0_", "earegpar0_4",
        "raChan_4 ", " raChan_4", "raChan_04", "cpCO2ZeroCal"}) {
    EXPECT_THAT(TextOfUnknown(name, false), HasSubstr("'" + name + "'"));
    EXPECT_THAT(TextOfUnknown(name, true), HasSubstr("'" + name + "'"));
  }
  EXPECT_NE(TextOfUnknown("", false), "");
  EXPECT_NE(TextOfUnknown("", true), "");
}

// Names of registers

TEST(RegisterName, IsAPrefixAndANumber) {
  EXPECT_EQ(Table().OnModbus("miIR_10"), Whole(Space::input, 10, false));
  EXPECT_EQ(Table().OnModbus("mhHR_100"), Whole(Space::holding, 100, false));
  EXPECT_EQ(Table().OnModbus("miIR_0"), Whole(Space::input, 0, false));
  EXPECT_EQ(Table().OnModbus("mhHR_65535"), Whole(Space::holding, 65535, false));
}

TEST(RegisterName, WithASignOrJunkOrTooLargeIsUnknown) {
  for (const std::string prefix : {"miIR_", "mhHR_"}) {
    for (const std::string number :
         {"", "-1", "-0", "+7", " 7", "7 ", "7a", "a", "0x10", "7.0", "1e1", "65536", "99999", "2147483648",
          "4294967303", "99999999999999999999", "_7", "-"}) {
      EXPECT_THAT(TextOfUnknown(prefix + number, true), HasSubstr("'" + prefix + number + "'"));
    }
  }
  for (const std::string name : {"miHR_7", "mhIR_7", "miIR7", "MIIR_7", "IR_7", "miIR"}) {
    EXPECT_THAT(TextOfUnknown(name, true), HasSubstr(name));
  }
}

TEST(RegisterName, IsUnknownOnKiBus) {
  EXPECT_THAT(TextOfUnknown("miIR_7", false), HasSubstr("'miIR_7'"));
  EXPECT_THAT(TextOfUnknown("mhHR_20", false), HasSubstr("'mhHR_20'"));
}

TEST(RegisterName, HasTheSignOfTheParameterInTheRegister) {
  const std::set<int> kSignedInputs{6, 7, 9, 11, 13};
  const std::set<int> kSignedHoldings{11, 12, 13, 20, 21, 23, 24, 26, 27, 29, 30};
  for (int number = 0; number < 64; ++number) {
    EXPECT_EQ(Table().OnModbus("miIR_" + std::to_string(number)).isSigned, kSignedInputs.contains(number))
        << number;
    EXPECT_EQ(Table().OnModbus("mhHR_" + std::to_string(number)).isSigned, kSignedHoldings.contains(number))
        << number;
  }
}

// The windows

/// What a target makes of the bytes of a memory that lies in registers from `window` on, two in each.
std::uint32_t Through(const Target& target, int window, const std::vector<std::uint8_t>& memory) {
  std::uint32_t joined = 0;
  for (int i = 0; i < target.count; ++i) {
    const auto even = static_cast<std::size_t>(2 * (target.first + i - window));
    joined = joined << 16 | static_cast<std::uint32_t>(memory.at(even) << 8 | memory.at(even + 1));
  }
  return joined >> target.shift & ((1U << target.width) - 1);
}

TEST(Window, GivesEachByteAndEachWordOfAMemory) {
  std::mt19937 random(1);
  for (const auto& [space, window] : {std::pair{Space::ram, 4096}, std::pair{Space::eeprom, 8192}}) {
    std::vector<std::uint8_t> memory(8200);
    for (auto& byte : memory) byte = static_cast<std::uint8_t>(random());
    for (int address = 0; address < 8192; ++address) {
      const auto at = static_cast<std::size_t>(address);
      const auto byte = NameTable::OnModbus(Place{space, address, 1});
      ASSERT_EQ(byte.space, Space::holding);
      ASSERT_EQ(byte.count, 1);
      ASSERT_EQ(Through(byte, window, memory), memory.at(at)) << address;
      const auto word = NameTable::OnModbus(Place{space, address, 2});
      ASSERT_EQ(word.count, address % 2 == 0 ? 1 : 2);
      ASSERT_EQ(Through(word, window, memory), memory.at(at) * 256U + memory.at(at + 1)) << address;
      const auto bits = NameTable::OnModbus(Place{space, address, 1, false, 0x38});
      ASSERT_EQ(Through(bits, window, memory), memory.at(at) >> 3 & 7U) << address;
    }
  }
}

TEST(Window, BeginsWhereItIsTold) {
  EXPECT_EQ(NameTable::OnModbus(Place{Space::ram, 0, 1}), (Target{Space::holding, 4096, 1, 8, 8, false}));
  EXPECT_EQ(NameTable::OnModbus(Place{Space::ram, 65, 1}), (Target{Space::holding, 4128, 1, 0, 8, false}));
  EXPECT_EQ(NameTable::OnModbus(Place{Space::ram, 511, 1}), (Target{Space::holding, 4351, 1, 0, 8, false}));
  EXPECT_EQ(NameTable::OnModbus(Place{Space::eeprom, 0, 2}), (Target{Space::holding, 8192, 1, 0, 16, false}));
  EXPECT_EQ(NameTable::OnModbus(Place{Space::eeprom, 8191, 1}),
            (Target{Space::holding, 12287, 1, 0, 8, false}));
  EXPECT_EQ(NameTable::OnModbus(Place{Space::eeprom, 7, 2}), (Target{Space::holding, 8195, 2, 8, 16, false}));
}

TEST(Place, IsTheSameCellsOnKiBusNarrowedByItsMask) {
  EXPECT_EQ(NameTable::OnKiBus(Place{Space::ram, 383, 1, false, 128}),
            (Target{Space::ram, 383, 1, 7, 1, false}));
  EXPECT_EQ(NameTable::OnKiBus(Place{Space::eeprom, 7, 2, true}), (Target{Space::eeprom, 7, 2, 0, 16, true}));
  EXPECT_EQ(NameTable::OnKiBus(Place{Space::eeprom, 7, 1, false, 255}),
            (Target{Space::eeprom, 7, 1, 0, 8, false}));
}

// Rows of an integrator's own

TEST(NameTable, TakesAnotherPlaceForAName) {
  auto table = NameTable::Standard();
  const auto count = table.Rows().size();
  table.Replace({"raChan_4", {Space::ram, 100, 1}, Register{Space::holding, 50, Register::Part::high}});
  EXPECT_EQ(table.Rows().size(), count);
  EXPECT_EQ(table.OnKiBus("raChan_4"), (Target{Space::ram, 100, 1, 0, 8, false}));
  EXPECT_EQ(table.OnModbus("raChan_4"), (Target{Space::holding, 50, 1, 8, 8, false}));
  // Nothing signed lies in that register any more.
  EXPECT_FALSE(table.OnModbus("miIR_7").isSigned);
}

// An input register cannot be written, but what it shows can where it lies.
TEST(NameTable, WritesAParameterOfAnInputRegisterThroughTheWindow) {
  const auto& table = Table();
  EXPECT_EQ(table.ForWritingOnModbus("eaCaseChannel_4"),
            (Target{Space::holding, 8192 + 7964 / 2, 1, 8, 8, false}));
  EXPECT_EQ(table.ForWritingOnModbus("eaRegPar0_4"), table.OnModbus("eaRegPar0_4"));
  EXPECT_EQ(table.ForWritingOnModbus("miIR_16"), table.OnModbus("miIR_16"));
}

TEST(NameTable, TakesANameOfItsOwn) {
  auto table = NameTable::Standard();
  const auto count = table.Rows().size();
  table.Replace({"eaOwn_1", {Space::eeprom, 5000, 2, true}, Register{Space::input, 40}});
  EXPECT_EQ(table.Rows().size(), count + 1);
  EXPECT_EQ(table.OnKiBus("eaOwn_1"), (Target{Space::eeprom, 5000, 2, 0, 16, true}));
  EXPECT_TRUE(table.OnModbus("miIR_40").isSigned);
}

}  // namespace
}  // namespace brelant
