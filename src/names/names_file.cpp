// SPDX-License-Identifier: GPL-3.0-or-later
#include "names/names_file.h"

#include <array>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>

#include "platform/machine_error.h"

namespace brelant {

namespace {

using Json = nlohmann::json;

constexpr int kHighestRam = 8191;
constexpr int kHighestEeprom = 8194;
constexpr int kHighestRegister = 65535;
constexpr int kByteMask = 255;
constexpr int kHighestUnit = 247;

/// One object of the file, each key of which has to be known and taken.
class Entry {
 public:
  Entry(const Json& json, std::string where) : json_(json), where_(std::move(where)) {
    if (!json_.is_object()) Fail("is no object");
  }

  bool Has(const char* key) const { return json_.contains(key); }

  std::string Text(const char* key) const {
    const auto& value = Value(key);
    if (!value.is_string()) Fail(std::string("\"") + key + "\" is no text");
    return value.get<std::string>();
  }
  int Number(const char* key, int least, int most) const {
    const auto& value = Value(key);
    const bool isWithin = value.is_number_integer() && value >= least && value <= most;
    if (!isWithin) {
      Fail(std::string("\"") + key + "\" is no whole number from " + std::to_string(least) + " to " +
           std::to_string(most));
    }
    return value.get<int>();
  }
  bool Flag(const char* key) const {
    const auto& value = Value(key);
    if (!value.is_boolean()) Fail(std::string("\"") + key + "\" is neither true nor false");
    return value.get<bool>();
  }
  template <typename Choice, std::size_t size>
  Choice OneOf(const char* key, const std::array<std::pair<const char*, Choice>, size>& choices) const {
    const auto text = Text(key);
    std::string known;
    for (const auto& [name, choice] : choices) {
      if (text == name) return choice;
      known += known.empty() ? name : std::string(", ") + name;
    }
    Fail(std::string("\"") + key + "\" is none of " + known);
  }
  Entry Inner(const char* key) const { return {Value(key), where_ + ", \"" + key + "\""}; }

  template <std::size_t size>
  void RequireOnly(const std::array<const char*, size>& keys) const {
    for (const auto& item : json_.items()) {
      bool isKnown = false;
      for (const auto* key : keys) isKnown = isKnown || item.key() == key;
      if (!isKnown) Fail("\"" + item.key() + "\" is unknown");
    }
  }

  [[noreturn]] void Fail(const std::string& what) const { throw NamesError(where_ + ": " + what + "."); }

 private:
  const Json& Value(const char* key) const {
    const auto found = json_.find(key);
    if (found == json_.end()) Fail(std::string("\"") + key + "\" is missing");
    return *found;
  }

  const Json& json_;
  std::string where_;
};

constexpr std::array kMemories{std::pair{"ram", Space::ram}, std::pair{"eeprom", Space::eeprom}};
constexpr std::array kBanks{std::pair{"input", Space::input}, std::pair{"holding", Space::holding}};
constexpr std::array kParts{std::pair{"whole", Register::Part::whole},
                            std::pair{"high", Register::Part::high}, std::pair{"low", Register::Part::low}};
constexpr std::array kParities{std::pair{"none", ModbusMaster::Parity::none},
                               std::pair{"even", ModbusMaster::Parity::even},
                               std::pair{"odd", ModbusMaster::Parity::odd}};

Register RegisterOf(const Entry& entry) {
  entry.RequireOnly(std::array{"bank", "number", "part"});
  return {entry.OneOf("bank", kBanks), entry.Number("number", 0, kHighestRegister),
          entry.Has("part") ? entry.OneOf("part", kParts) : Register::Part::whole};
}

Place PlaceOf(const Entry& entry) {
  Place place{entry.OneOf("memory", kMemories), 0, entry.Number("bytes", 1, 2)};
  const int highest = place.memory == Space::ram ? kHighestRam : kHighestEeprom;
  place.address = entry.Number("address", 0, highest - place.width + 1);
  place.isSigned = entry.Has("signed") && entry.Flag("signed");
  if (!entry.Has("mask")) return place;
  place.mask = entry.Number("mask", 1, kByteMask);
  if (place.width != 1) entry.Fail("a mask is for one byte only");
  return place;
}

NamedParameter RowOf(const Entry& entry) {
  entry.RequireOnly(std::array{"name", "memory", "address", "bytes", "signed", "mask", "register"});
  NamedParameter row{entry.Text("name"), PlaceOf(entry), {}};
  if (row.name.empty()) entry.Fail("\"name\" is empty");
  if (entry.Has("register")) row.modbus = RegisterOf(entry.Inner("register"));
  return row;
}

ModbusSettings ModbusOf(const Entry& entry) {
  entry.RequireOnly(std::array{"onlyUnit", "baud", "parity", "stopBits"});
  ModbusSettings settings;
  if (entry.Has("onlyUnit")) settings.onlyUnit = entry.Number("onlyUnit", 1, kHighestUnit);
  if (entry.Has("baud")) settings.line.baud = entry.Number("baud", 1200, 115200);
  if (entry.Has("parity")) settings.line.parity = entry.OneOf("parity", kParities);
  if (entry.Has("stopBits")) settings.line.stopBits = entry.Number("stopBits", 1, 2);
  return settings;
}

std::string PlaceOfRow(const Json& row, std::size_t index) {
  auto where = "names.json, row " + std::to_string(index + 1);
  if (row.is_object() && row.contains("name") && row["name"].is_string()) {
    where += " (\"" + row["name"].get<std::string>() + "\")";
  }
  return where;
}

}  // namespace

UnitNames ParseNames(std::string_view text) {
  Json json;
  try {
    json = Json::parse(text);
  } catch (const Json::parse_error& error) {
    throw NamesError(std::string("names.json: ") + error.what());
  }
  const Entry whole(json, "names.json");
  whole.RequireOnly(std::array{"modbus", "names"});
  UnitNames known;
  if (whole.Has("modbus")) known.modbus = ModbusOf(whole.Inner("modbus"));
  if (!whole.Has("names")) return known;
  const auto& rows = json["names"];
  if (!rows.is_array()) whole.Fail("\"names\" is no list");
  for (std::size_t i = 0; i < rows.size(); ++i) known.names.Replace(RowOf({rows[i], PlaceOfRow(rows[i], i)}));
  return known;
}

UnitNames ReadUnitNames(const Files& files, const std::string& applicationPath) {
  constexpr std::size_t kMostBytes = 1 << 20;
  const auto path = applicationPath + "\\names.json";
  if (!files.Exists(path)) return {};
  try {
    const auto bytes = files.Read(path, kMostBytes);
    return ParseNames(std::string(bytes.begin(), bytes.end()));
  } catch (const MachineError& error) {
    throw NamesError(std::string("names.json: ") + error.what());
  }
}

}  // namespace brelant
