// SPDX-License-Identifier: GPL-3.0-or-later
#include "connection/name_table.h"

#include <algorithm>
#include <bit>
#include <charconv>

#include "connection/connection_error.h"

namespace brelant {

namespace {

constexpr std::string_view kInputPrefix = "miIR_";
constexpr std::string_view kHoldingPrefix = "mhHR_";
constexpr int kByte = 8;
constexpr int kRegisterBits = 16;
constexpr unsigned kRegisters = 65536;
constexpr bool kSigned = true;
constexpr int kUnitBits = 28;

constexpr Place Byte(int address, int mask = 0) {
  return {Space::eeprom, address, 1, false, mask};
}
constexpr Place Word(int address, bool isSigned = false) {
  return {Space::eeprom, address, 2, isSigned};
}
constexpr Place LiveByte(int address) {
  return {Space::ram, address, 1};
}
constexpr Place LiveWord(int address, bool isSigned = false) {
  return {Space::ram, address, 2, isSigned};
}

/// Where the families of names begin.
constexpr int kChannels = 12;
constexpr int kChannelStates = 256;
constexpr int kRegulatorStates = 272;
constexpr int kGeneralStates = 288;
constexpr int kCalibration = 320;
constexpr int kLogCounts = 336;
constexpr int kLogNexts = 340;
constexpr int kLogAge = 344;
constexpr int kUserInfo = 4096;
constexpr int kSensorId = 4160;
constexpr int kRegulators = 4224;
constexpr int kWeight = 4352;
constexpr int kMenu = 4400;
constexpr int kCounters = 4416;
constexpr int kStates = 4480;
constexpr int kLogSize = 4640;
constexpr int kTable3 = 4704;
constexpr int kCases = 7960;

Register Input(int number, Register::Part part = Register::Part::whole) {
  return {Space::input, number, part};
}
Register Holding(int number) {
  return {Space::holding, number};
}

class Builder {
 public:
  void Add(const std::string& family, int index, const Place& place, std::optional<Register> modbus = {}) {
    rows.push_back({family + "_" + std::to_string(index), place, modbus});
  }

  std::vector<NamedParameter> rows;
};

void AddLive(Builder& table) {
  const auto channel = [&](int number, int input) {
    table.Add("raChan", number, LiveWord(kChannels + 2 * number, kSigned), Input(input));
    table.Add("raChanStat", number, LiveByte(kChannelStates + number));
  };
  channel(4, 7);
  channel(5, 6);
  channel(8, 13);
  channel(9, 9);
  channel(11, 11);
  for (const int regulator : {4, 5, 6, 7, 13}) {
    table.Add("raRegStat", regulator, LiveByte(kRegulatorStates + regulator));
  }
  for (const int i : {8, 9}) table.Add("raGenStat", i, LiveWord(kGeneralStates + 2 * i));
  table.Add("raCalPar", 0, LiveWord(kCalibration, kSigned));
  table.Add("raCalPar", 1, LiveWord(kCalibration + 2));
}

void AddLoggers(Builder& table) {
  for (const int logger : {0, 1}) {
    table.Add("raLoggCount", logger, LiveWord(kLogCounts + 2 * logger));
    table.Add("raLoggNext", logger, LiveWord(kLogNexts + 2 * logger));
  }
  table.Add("raLoggAge", 0, LiveWord(kLogAge));
}

void AddChannels(Builder& table) {
  using Part = Register::Part;
  const auto caseWord = [&](int number, int input, Part part) {
    table.Add("eaCaseChannel", number, Byte(kCases + number), Input(input, part));
    table.Add("eaCaseChannelUnit", number, Byte(kCases + number, kUnitBits));
  };
  caseWord(4, 16, Part::high);
  caseWord(5, 16, Part::low);
  caseWord(8, 19, Part::low);
  caseWord(9, 17, Part::high);
  caseWord(11, 18, Part::low);
}

void AddLevels(Builder& table) {
  const auto regulator = [&](int number, std::optional<int> holding) {
    const auto place = [number](int side) { return Word(kRegulators + 4 * number + 2 * side, kSigned); };
    for (const int side : {0, 1}) {
      const auto modbus = holding ? std::optional(Holding(*holding + side)) : std::nullopt;
      table.Add("eaRegPar" + std::to_string(side), number, place(side), modbus);
    }
  };
  regulator(4, 20);
  regulator(5, 23);
  regulator(6, 26);
  regulator(7, 29);
  regulator(8, {});
  for (const int i : {1, 2, 3}) table.Add("eawPar", i, Word(kWeight + 2 * i, kSigned), Holding(10 + i));
}

void AddSettings(Builder& table) {
  for (const int i : {28, 29}) table.Add("eaUserInfo", i, Byte(kUserInfo + i));
  table.Add("eaSensorID", 0, Byte(kSensorId));
  for (const int list : {0, 1}) {
    for (const int position : {1, 2, 3, 4}) {
      table.Add("eaMenuItemMPar" + std::to_string(position), list, Byte(kMenu + 8 * list + position));
    }
  }
  for (const int i : {9, 10, 11, 14}) table.Add("eaCountPar", i, Word(kCounters + 2 * i));
  for (const int i : {21, 22, 25}) table.Add("eaState0Alg", i, Word(kStates + 4 * i));
  table.Add("eaState1Alg", 30, Word(kStates + 4 * 30 + 2));
  table.Add("eaLoggBufferSize", 0, Word(kLogSize));
  for (int i = 0; i < 16; ++i) table.Add("eaTable3", i, Word(kTable3 + 2 * i));
}

std::optional<int> NumberBehind(std::string_view name, std::string_view prefix) {
  if (!name.starts_with(prefix)) return {};
  const auto digits = name.substr(prefix.size());
  unsigned number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  const bool isNumber = error == std::errc() && end == digits.data() + digits.size();
  if (!isNumber || number >= kRegisters) return {};
  return static_cast<int>(number);
}

[[noreturn]] void ThrowUnknown(std::string_view name) {
  throw ConnectionError("Unknown name '" + std::string(name) + "'.");
}

/// Bit and width of the part of a byte that a mask names.
void Narrow(Target& target, int mask) {
  if (mask == 0) return;
  const auto bits = static_cast<unsigned>(mask);
  target.shift += std::countr_zero(bits);
  target.width = std::bit_width(bits) - std::countr_zero(bits);
}

Target TargetOf(const Register& modbus, bool isSigned) {
  Target target{modbus.bank, modbus.number, 1, 0, kRegisterBits, isSigned};
  if (modbus.part == Register::Part::whole) return target;
  target.width = kByte;
  if (modbus.part == Register::Part::high) target.shift = kByte;
  return target;
}

}  // namespace

NameTable NameTable::Standard() {
  Builder builder;
  AddLive(builder);
  AddLoggers(builder);
  AddChannels(builder);
  AddLevels(builder);
  AddSettings(builder);
  NameTable table;
  table.rows_ = std::move(builder.rows);
  return table;
}

void NameTable::Replace(const NamedParameter& row) {
  const auto old =
      std::find_if(rows_.begin(), rows_.end(), [&](const auto& each) { return each.name == row.name; });
  if (old == rows_.end()) {
    rows_.push_back(row);
  } else {
    *old = row;
  }
}

const NamedParameter& NameTable::Find(std::string_view name) const {
  const auto row =
      std::find_if(rows_.begin(), rows_.end(), [&](const auto& each) { return each.name == name; });
  if (row == rows_.end()) ThrowUnknown(name);
  return *row;
}

Target NameTable::OnKiBus(std::string_view name) const {
  return OnKiBus(Find(name).place);
}

Target NameTable::OnModbus(std::string_view name) const {
  if (const auto number = NumberBehind(name, kInputPrefix)) {
    return TargetOf({Space::input, *number}, IsSigned(Space::input, *number));
  }
  if (const auto number = NumberBehind(name, kHoldingPrefix)) {
    return TargetOf({Space::holding, *number}, IsSigned(Space::holding, *number));
  }
  const auto& row = Find(name);
  return row.modbus ? TargetOf(*row.modbus, row.place.isSigned) : OnModbus(row.place);
}

Target NameTable::ForWritingOnModbus(std::string_view name) const {
  const auto target = OnModbus(name);
  if (target.space != Space::input || NumberBehind(name, kInputPrefix)) return target;
  const auto& place = Find(name).place;
  return place.memory == Space::eeprom ? OnModbus(place) : target;
}

/// A register that a row names has the sign of its row.
bool NameTable::IsSigned(Space bank, int number) const {
  return std::any_of(rows_.begin(), rows_.end(), [&](const auto& row) {
    return row.modbus && row.modbus->bank == bank && row.modbus->number == number && row.place.isSigned;
  });
}

Target NameTable::OnKiBus(const Place& place) {
  Target target{place.memory, place.address, place.width, 0, kByte * place.width, place.isSigned};
  Narrow(target, place.mask);
  return target;
}

Target NameTable::OnModbus(const Place& place) {
  const int window = place.memory == Space::ram ? kRamWindow : kEepromWindow;
  const int last = place.address + place.width - 1;
  const int first = place.address / 2;
  Target target{Space::holding,      window + first, last / 2 - first + 1, last % 2 == 0 ? kByte : 0,
                kByte * place.width, place.isSigned};
  Narrow(target, place.mask);
  return target;
}

}  // namespace brelant
