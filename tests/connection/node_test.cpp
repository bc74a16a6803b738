// SPDX-License-Identifier: GPL-3.0-or-later
#include "connection/connection_fixture.h"

namespace brelant {
namespace {

using test::Bytes;
using test::FailureOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class NodeOnKiBusTest : public test::KiBusUnitTest {};
class NodeOnModbusTest : public test::ModbusUnitTest {};

TEST_F(NodeOnKiBusTest, IsNotFoundByAnUnknownName) {
  EXPECT_THAT(FailureOfGet("raChan_6"), HasSubstr("'raChan_6'"));
  EXPECT_THAT(FailureOfGet("miIR_7"), HasSubstr("'miIR_7'"));
  EXPECT_THAT(port.Sent(), IsEmpty());
}

TEST_F(NodeOnModbusTest, IsNotFoundByAnUnknownName) {
  EXPECT_THAT(FailureOfGet("raChan_6"), HasSubstr("'raChan_6'"));
  EXPECT_THAT(FailureOfGet("miIR_-7"), HasSubstr("'miIR_-7'"));
  EXPECT_THAT(modbus.Story(), IsEmpty());
}

// Negative values

TEST_F(NodeOnKiBusTest, GivesNegativeValuesOfSignedParametersOnly) {
  unit.ram.at(20) = 255;
  unit.ram.at(21) = 251;
  EXPECT_EQ(Get("raChan_4"), -5);
  unit.PutWord(4240, 0x8000);
  EXPECT_EQ(Get("eaRegPar0_4"), -32768);
  unit.PutWord(4602, 37302);
  EXPECT_EQ(Get("eaState1Alg_30"), 37302);
  unit.PutWord(4436, 0x8690);
  EXPECT_EQ(Get("eaCountPar_10"), 0x8690);
  unit.ram.at(260) = 255;
  EXPECT_EQ(Get("raChanStat_4"), 255);
}

TEST_F(NodeOnKiBusTest, WritesNegativeValues) {
  Set("eaRegPar0_4", -5);
  EXPECT_THAT(unit.frames, ElementsAre(Bytes{10, 16, 144, 255, 251}));
  EXPECT_EQ(Get("eaRegPar0_4"), -5);
  Set("eaRegPar1_4", -32768);
  EXPECT_EQ(unit.eeprom.at(4242), 128);
  EXPECT_EQ(unit.eeprom.at(4243), 0);
}

TEST_F(NodeOnModbusTest, GivesAndWritesNegativeValues) {
  Unit().input[7] = 65531;
  EXPECT_EQ(Get("miIR_7"), -5);
  EXPECT_EQ(Get("raChan_4"), -5);
  Unit().input[10] = 65531;
  EXPECT_EQ(Get("miIR_10"), 65531);
  Set("mhHR_20", -550);
  EXPECT_EQ(Unit().holding[20], 64986);
  EXPECT_EQ(Get("eaRegPar0_4"), -550);
}

// Values that have no room

TEST_F(NodeOnKiBusTest, RefusesAValueThatHasNoRoomBeforeAnythingIsSent) {
  const auto failure = [this](const std::string& name, std::int32_t value) {
    return FailureOf([&] { Set(name, value); });
  };
  for (const std::int32_t value : {65536, 70000, -32769, 2147483647, -2147483647 - 1}) {
    EXPECT_THAT(failure("eaRegPar0_4", value), HasSubstr(std::to_string(value)));
    EXPECT_THAT(failure("eaCountPar_10", value), HasSubstr(std::to_string(value)));
  }
  for (const std::int32_t value : {256, -129}) EXPECT_NE(failure("eaSensorID_0", value), "") << value;
  for (const std::int32_t value : {8, -5}) EXPECT_NE(failure("eaCaseChannelUnit_4", value), "") << value;
  EXPECT_NE(FailureOf([&] { sens.Memory().WriteWord(20, 1, SensorMemory::ram, 0, 256); }), "");
  EXPECT_THAT(port.Sent(), IsEmpty());
}

TEST_F(NodeOnKiBusTest, TakesAWordWithASignOrWithout) {
  for (const std::int32_t value : {0, 1, 32767, 32768, 37302, 65535, -1, -32768}) {
    Set("eaCountPar_10", value);
    EXPECT_EQ(unit.eeprom.at(4436) * 256 + unit.eeprom.at(4437), value & 0xFFFF) << value;
    Set("eaRegPar0_4", value);
    EXPECT_EQ(unit.eeprom.at(4240) * 256 + unit.eeprom.at(4241), value & 0xFFFF) << value;
  }
}

// Part of a cell

TEST_F(NodeOnKiBusTest, WritesTheUnitOfACaseWordAndKeepsTheOtherBits) {
  for (int before = 0; before < 256; ++before) {
    for (int code = 0; code < 8; ++code) {
      unit.eeprom.at(7964) = static_cast<std::uint8_t>(before);
      Set("eaCaseChannelUnit_4", code);
      ASSERT_EQ(unit.eeprom.at(7964), (before & 0xE3) + 4 * code) << before << ", " << code;
      ASSERT_EQ(Get("eaCaseChannelUnit_4"), code);
    }
  }
  EXPECT_EQ(unit.eeprom.at(7963), 0);
  EXPECT_EQ(unit.eeprom.at(7965), 0);
}

TEST_F(NodeOnKiBusTest, WritesAWholeByteOrWordWithoutReadingIt) {
  Set("eaSensorID_0", 7);
  Set("eaCountPar_10", 0x8690);
  EXPECT_THAT(unit.frames, ElementsAre(Bytes{9, 16, 64, 7}, Bytes{10, 17, 84, 0x86, 0x90}));
}

TEST_F(NodeOnKiBusTest, DoesNotWriteWhereThePartCouldNotBeRead) {
  unit.isSilent = true;
  EXPECT_NE(FailureOf([&] { Set("eaCaseChannelUnit_4", 1); }), "");
  unit.isSilent = false;
  EXPECT_THAT(unit.frames, IsEmpty());
}

TEST_F(NodeOnModbusTest, WritesAByteOfARegisterAndKeepsTheOther) {
  // 4160 is the even byte of register 8192 + 2080.
  Unit().holding[10272] = 0xABCD;
  Set("eaSensorID_0", 0x12);
  EXPECT_EQ(Unit().holding[10272], 0x12CD);
  // 4125 is the odd byte of register 8192 + 2062.
  Unit().holding[10254] = 0xABCD;
  Set("eaUserInfo_29", 0x12);
  EXPECT_EQ(Unit().holding[10254], 0xAB12);
  EXPECT_THAT(modbus.Story(), ElementsAre("1 holding 10272", "1 holding 10272 = 4813", "1 holding 10254",
                                          "1 holding 10254 = 43794"));
}

TEST_F(NodeOnModbusTest, WritesTheUnitOfACaseWordAndKeepsTheOtherBits) {
  // 7964 is even: the high byte of register 8192 + 3982.
  Unit().holding[12174] = 0xFFFF;
  Set("eaCaseChannelUnit_4", 2);
  EXPECT_EQ(Unit().holding[12174], 0xEBFF);
  EXPECT_EQ(Get("eaCaseChannelUnit_4"), 2);
  // 7969 is odd: the low byte of register 8192 + 3984.
  Unit().holding[12176] = 0xFFFF;
  Set("eaCaseChannelUnit_9", 1);
  EXPECT_EQ(Unit().holding[12176], 0xFFE7);
}

TEST_F(NodeOnModbusTest, ReadsTheBytesOfOneCaseRegisterApart) {
  Unit().input[16] = 0x0611;
  EXPECT_EQ(Get("eaCaseChannel_4"), 6);
  EXPECT_EQ(Get("eaCaseChannel_5"), 0x11);
  EXPECT_EQ(Get("miIR_16"), 0x0611);
}

TEST_F(NodeOnModbusTest, ReadsAndWritesAWordAcrossRegistersAndKeepsItsNeighbours) {
  Unit().holding[8195] = 0xAB12;
  Unit().holding[8196] = 0x34CD;
  EXPECT_EQ(sens.Memory().ReadBytes(7, 2, SensorMemory::eeprom, 0), 0x1234);
  sens.Memory().WriteWord(7, 2, SensorMemory::eeprom, 0, 0x5678);
  EXPECT_EQ(Unit().holding[8195], 0xAB56);
  EXPECT_EQ(Unit().holding[8196], 0x78CD);
  EXPECT_THAT(modbus.Story(),
              ElementsAre("1 holding 8195+2", "1 holding 8195+2", "1 holding 8195 = 43862 30925"));
}

TEST_F(NodeOnModbusTest, WritesAWholeRegisterWithoutReadingIt) {
  Set("mhHR_20", 2500);
  Set("eaCountPar_10", 0x8690);
  EXPECT_THAT(modbus.Story(), ElementsAre("1 holding 20 = 2500", "1 holding 10410 = 34448"));
}

// What is known without asking

TEST_F(NodeOnKiBusTest, GivesWhatWasReadOrWrittenLastWithoutAsking) {
  unit.eeprom.at(4160) = 9;
  auto node = sens.Nodes().FindNode("eaSensorID_0", "");
  EXPECT_EQ(node.GetValue(true), 9);
  unit.eeprom.at(4160) = 10;
  const auto frames = unit.frames.size();
  EXPECT_EQ(node.GetValue(false), 9);
  EXPECT_EQ(sens.Nodes().FindNode("eaSensorID_0", "").GetValue(false), 9);
  EXPECT_EQ(unit.frames.size(), frames);
  EXPECT_EQ(node.GetValue(true), 10);
  EXPECT_EQ(node.GetValue(false), 10);
  node.SetValue(true, 11);
  EXPECT_EQ(node.GetValue(false), 11);
  EXPECT_EQ(unit.eeprom.at(4160), 11);
}

TEST_F(NodeOnKiBusTest, AsksForWhatIsNotKnownYet) {
  unit.eeprom.at(4160) = 9;
  EXPECT_EQ(sens.Nodes().FindNode("eaSensorID_0", "").GetValue(false), 9);
  EXPECT_EQ(unit.frames.size(), 1U);
}

TEST_F(NodeOnKiBusTest, KeepsAValueThatIsNotMeantForTheUnit) {
  unit.eeprom.at(4160) = 9;
  auto node = sens.Nodes().FindNode("eaSensorID_0", "");
  node.SetValue(false, 12);
  EXPECT_THAT(unit.frames, IsEmpty());
  EXPECT_EQ(node.GetValue(false), 12);
  EXPECT_EQ(node.GetValue(true), 9);
}

TEST_F(NodeOnKiBusTest, AFailureLeavesWhatIsKnown) {
  unit.eeprom.at(4160) = 9;
  auto node = sens.Nodes().FindNode("eaSensorID_0", "");
  node.GetValue(true);
  unit.isSilent = true;
  EXPECT_NE(FailureOf([&] { node.GetValue(true); }), "");
  EXPECT_EQ(node.GetValue(false), 9);
  EXPECT_NE(FailureOf([&] { node.SetValue(true, 12); }), "");
  EXPECT_EQ(node.GetValue(false), 9);
}

TEST_F(NodeOnKiBusTest, WhatIsKnownIsForgottenWithTheConnection) {
  unit.eeprom.at(4160) = 9;
  Get("eaSensorID_0");
  unit.eeprom.at(4160) = 10;
  sens.ConnectSensor("3", -1);
  EXPECT_EQ(sens.Nodes().FindNode("eaSensorID_0", "").GetValue(false), 10);
}

TEST_F(NodeOnKiBusTest, MarkingForAFileSendsNothing) {
  sens.Nodes().FindNode("eaRegPar0_4", "").MarkForSave(-1);
  EXPECT_THAT(port.Sent(), IsEmpty());
}

// Memory by address

TEST_F(NodeOnKiBusTest, WritesTheBitsOfAMaskInMemory) {
  unit.ram.at(383) = 0x55;
  sens.Memory().WriteWord(383, 1, SensorMemory::ram, 128, 1);
  EXPECT_EQ(unit.ram.at(383), 0xD5);
  EXPECT_EQ(sens.Memory().ReadBytes(383, 1, SensorMemory::ram, 0x70), 5);
}

TEST_F(NodeOnKiBusTest, TellsThePartNumber) {
  EXPECT_EQ(sens.Memory().PartNumber(), 154);
  unit.ram.at(65) = 0;
  EXPECT_EQ(sens.Memory().PartNumber(), 0);
  unit.ram.at(65) = 255;
  EXPECT_EQ(sens.Memory().PartNumber(), 255);
}

TEST_F(NodeOnModbusTest, TellsThePartNumber) {
  Unit().holding[4128] = 0xFF9A;
  EXPECT_EQ(sens.Memory().PartNumber(), 154);
  EXPECT_THAT(modbus.Story(), ElementsAre("1 holding 4128"));
}

TEST_F(NodeOnKiBusTest, TellsPartAndSerialNumberWithFiveDigits) {
  const auto text = [this](std::uint8_t low, std::uint8_t middle, std::uint8_t high) {
    unit.eeprom.at(8166) = low;
    unit.eeprom.at(8167) = middle;
    unit.eeprom.at(8168) = high;
    return sens.SerialNumberText();
  };
  EXPECT_EQ(text(0, 0, 0), "15400000");
  EXPECT_EQ(text(7, 0, 0), "15400007");
  EXPECT_EQ(text(57, 48, 0), "15412345");    // 48 x 256 + 57
  EXPECT_EQ(text(159, 134, 1), "15499999");  // 65536 + 134 x 256 + 159
  EXPECT_EQ(text(160, 134, 1), "154100000");
  unit.ram.at(65) = 8;
  EXPECT_EQ(text(7, 0, 0), "800007");
}

TEST_F(NodeOnModbusTest, TellsPartAndSerialNumberWithFiveDigits) {
  Unit().holding[4128] = 154;
  // 8166 is even: bytes 57 and 48, then 0 of the next register.
  Unit().holding[12275] = 57 * 256 + 48;
  Unit().holding[12276] = 0x00FF;
  EXPECT_EQ(sens.SerialNumberText(), "15412345");
}

}  // namespace
}  // namespace brelant
