// SPDX-License-Identifier: GPL-3.0-or-later
#include "names/names_file.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "connection/connection_error.h"

namespace brelant {
namespace {

using testing::HasSubstr;

std::string FaultOf(const std::string& text) {
  try {
    ParseNames(text);
  } catch (const NamesError& error) {
    return error.what();
  }
  return "none";
}

std::string WithRow(const std::string& row) {
  return R"({"names": [{"name": "raChan_5", "memory": "ram", "address": 22, "bytes": 2}, )" + row + "]}";
}

TEST(NamesFileTest, AnEmptyObjectChangesNothing) {
  const auto known = ParseNames("{}");
  EXPECT_EQ(known.names.Rows().size(), NameTable::Standard().Rows().size());
  EXPECT_EQ(known.modbus.onlyUnit, 1);
  EXPECT_EQ(known.modbus.line.baud, 9600);
  EXPECT_EQ(known.modbus.line.parity, ModbusMaster::Parity::none);
  EXPECT_EQ(known.modbus.line.stopBits, 1);
}

TEST(NamesFileTest, ARowReplacesTheOneOfItsName) {
  const auto known = ParseNames(R"({"names": [{"name": "raChan_4", "memory": "eeprom", "address": 100,
      "bytes": 2, "signed": true, "register": {"bank": "holding", "number": 77}}]})");
  EXPECT_EQ(known.names.Rows().size(), NameTable::Standard().Rows().size());
  EXPECT_EQ(known.names.OnKiBus("raChan_4"), (Target{Space::eeprom, 100, 2, 0, 16, true}));
  EXPECT_EQ(known.names.OnModbus("raChan_4"), (Target{Space::holding, 77, 1, 0, 16, true}));
}

TEST(NamesFileTest, ARowOfANewNameIsAdded) {
  const auto known = ParseNames(R"({"names": [{"name": "eaNew_1", "memory": "eeprom", "address": 9,
      "bytes": 1, "mask": 12}]})");
  EXPECT_EQ(known.names.OnKiBus("eaNew_1"), (Target{Space::eeprom, 9, 1, 2, 2, false}));
  // Byte 9 is the low one of the window's fifth register.
  EXPECT_EQ(known.names.OnModbus("eaNew_1"), (Target{Space::holding, 8192 + 4, 1, 2, 2, false}));
}

TEST(NamesFileTest, ARegisterMayHoldAValueInOneOfItsBytes) {
  const auto known = ParseNames(R"({"names": [
      {"name": "a", "memory": "ram", "address": 1, "bytes": 1,
       "register": {"bank": "input", "number": 65535, "part": "high"}},
      {"name": "b", "memory": "ram", "address": 2, "bytes": 1,
       "register": {"bank": "input", "number": 0, "part": "low"}}]})");
  EXPECT_EQ(known.names.OnModbus("a"), (Target{Space::input, 65535, 1, 8, 8, false}));
  EXPECT_EQ(known.names.OnModbus("b"), (Target{Space::input, 0, 1, 0, 8, false}));
}

TEST(NamesFileTest, TheModbusLine) {
  const auto known =
      ParseNames(R"({"modbus": {"onlyUnit": 247, "baud": 19200, "parity": "even", "stopBits": 2}})");
  EXPECT_EQ(known.modbus.onlyUnit, 247);
  EXPECT_EQ(known.modbus.line.baud, 19200);
  EXPECT_EQ(known.modbus.line.parity, ModbusMaster::Parity::even);
  EXPECT_EQ(known.modbus.line.stopBits, 2);
}

TEST(NamesFileTest, AFaultNamesItsRow) {
  const std::string row = R"({"name": "eaX_1", "memory": "ram", "address": 1, "bytes": 1)";
  for (const auto& [wrong, what] : std::vector<std::pair<std::string, std::string>>{
           {R"({"name": "eaX_1", "memory": "rom", "address": 1, "bytes": 1})",
            "\"memory\" is none of ram, eeprom"},
           {R"({"name": "eaX_1", "memory": "ram", "address": -1, "bytes": 1})",
            "\"address\" is no whole number"},
           {R"({"name": "eaX_1", "memory": "ram", "address": 1.5, "bytes": 1})",
            "\"address\" is no whole number"},
           {R"({"name": "eaX_1", "memory": "ram", "address": 8191, "bytes": 2})", "from 0 to 8190"},
           {R"({"name": "eaX_1", "memory": "ram", "address": 1, "bytes": 4})", "\"bytes\""},
           {R"({"name": "eaX_1", "memory": "ram", "address": 1})", "\"bytes\" is missing"},
           {row + R"(, "mask": 0})", "\"mask\""},
           {row + R"(, "signed": 1})", "neither true nor false"},
           {row + R"(, "color": 1})", "\"color\" is unknown"},
           {row + R"(, "register": 7})", "\"register\": is no object"},
           {row + R"(, "register": {"bank": "coil", "number": 1}})", "\"bank\" is none of input, holding"},
           {row + R"(, "register": {"bank": "input", "number": 65536}})", "\"number\""}}) {
    EXPECT_THAT(FaultOf(WithRow(wrong)), AllOf(HasSubstr("row 2 (\"eaX_1\")"), HasSubstr(what))) << wrong;
  }
  EXPECT_THAT(FaultOf(WithRow(R"({"memory": "ram", "address": 1, "bytes": 1})")),
              AllOf(HasSubstr("row 2:"), HasSubstr("\"name\" is missing")));
  EXPECT_THAT(FaultOf(WithRow("7")), HasSubstr("row 2: is no object"));
  EXPECT_THAT(FaultOf(WithRow(R"({"name": "", "memory": "ram", "address": 1, "bytes": 1})")),
              HasSubstr("\"name\" is empty"));
  EXPECT_THAT(FaultOf(WithRow(R"({"name": "w", "memory": "ram", "address": 1, "bytes": 2, "mask": 3})")),
              HasSubstr("a mask is for one byte only"));
}

TEST(NamesFileTest, FaultsOutsideOfRows) {
  EXPECT_THAT(FaultOf(""), HasSubstr("names.json: "));
  EXPECT_THAT(FaultOf("{"), HasSubstr("names.json: "));
  EXPECT_THAT(FaultOf("[]"), HasSubstr("names.json: is no object"));
  EXPECT_THAT(FaultOf(R"({"names": {}})"), HasSubstr("\"names\" is no list"));
  EXPECT_THAT(FaultOf(R"({"name": []})"), HasSubstr("\"name\" is unknown"));
  EXPECT_THAT(FaultOf(R"({"modbus": {"onlyUnit": 248}})"), HasSubstr("\"modbus\": \"onlyUnit\""));
  EXPECT_THAT(FaultOf(R"({"modbus": {"parity": "mark"}})"), HasSubstr("none, even, odd"));
}

}  // namespace
}  // namespace brelant
