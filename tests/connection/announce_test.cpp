// SPDX-License-Identifier: GPL-3.0-or-later
#include "connection/connection_fixture.h"

namespace brelant {
namespace {

using test::Bytes;
using test::FailureOf;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Kind = ModbusMaster::Failure::Kind;

class AnnouncedOnModbusTest : public test::ModbusUnitTest {
 protected:
  void Announce(const std::vector<std::string>& list) { sens.Nodes().Announce(list); }
};

class AnnouncedOnKiBusTest : public test::KiBusUnitTest {
 protected:
  void Announce(const std::vector<std::string>& list) { sens.Nodes().Announce(list); }
};

TEST_F(AnnouncedOnModbusTest, ReadsNothingByItself) {
  Announce({"miIR_6", "miIR_7"});
  EXPECT_THAT(modbus.Story(), IsEmpty());
}

TEST_F(AnnouncedOnModbusTest, RegistersThatLieTogetherAreReadTogether) {
  Unit().input[6] = 800;
  Unit().input[7] = 2150;
  Announce({"miIR_6", "miIR_7"});
  EXPECT_EQ(Get("miIR_6"), 800);
  EXPECT_EQ(Get("miIR_7"), 2150);
  EXPECT_THAT(modbus.Story(), ElementsAre("1 input 6+2"));
}

TEST_F(AnnouncedOnModbusTest, TheOrderOfAskingIsFree) {
  Unit().input[6] = 800;
  Unit().input[7] = 2150;
  Announce({"raChan_4", "raChan_5"});
  EXPECT_EQ(Get("raChan_4"), 2150);
  EXPECT_EQ(Get("raChan_5"), 800);
  EXPECT_THAT(modbus.Story(), ElementsAre("1 input 6+2"));
}

TEST_F(AnnouncedOnModbusTest, GapsAndOtherBanksAreReadApart) {
  for (const int number : {20, 21, 23, 24}) Unit().holding[number] = static_cast<std::uint16_t>(100 + number);
  Unit().input[20] = 9;
  Announce({"mhHR_20", "mhHR_21", "mhHR_23", "mhHR_24", "miIR_20"});
  for (const int number : {20, 21, 23, 24}) EXPECT_EQ(Get("mhHR_" + std::to_string(number)), 100 + number);
  EXPECT_EQ(Get("miIR_20"), 9);
  EXPECT_THAT(modbus.Story(), ElementsAre("1 holding 20+2", "1 holding 23+2", "1 input 20"));
}

TEST_F(AnnouncedOnModbusTest, AWholeTableIsOneRequest) {
  std::vector<std::string> table;
  for (int i = 0; i < 16; ++i) {
    table.push_back("eaTable3_" + std::to_string(i));
    Unit().holding[10544 + i] = static_cast<std::uint16_t>(1000 + i);
  }
  Announce(table);
  for (int i = 15; i >= 0; --i) EXPECT_EQ(Get("eaTable3_" + std::to_string(i)), 1000 + i);
  EXPECT_THAT(modbus.Story(), ElementsAre("1 holding 10544+16"));
}

TEST_F(AnnouncedOnModbusTest, NoRequestIsLongerThanAFrameHolds) {
  std::vector<std::string> registers;
  for (int i = 0; i < 300; ++i) registers.push_back("mhHR_" + std::to_string(8192 + i));
  for (int i = 0; i < 300; ++i) Unit().holding[8192 + i] = static_cast<std::uint16_t>(i);
  Announce(registers);
  for (int i = 0; i < 300; ++i) ASSERT_EQ(Get("mhHR_" + std::to_string(8192 + i)), i);
  EXPECT_THAT(modbus.Story(), ElementsAre("1 holding 8192+125", "1 holding 8317+125", "1 holding 8442+50"));
}

TEST_F(AnnouncedOnModbusTest, AValueIsGivenOnce) {
  Unit().input[6] = 800;
  Unit().input[7] = 2150;
  Announce({"miIR_6", "miIR_7"});
  EXPECT_EQ(Get("miIR_6"), 800);
  Unit().input[6] = 801;
  Unit().input[7] = 2151;
  EXPECT_EQ(Get("miIR_6"), 801);
  EXPECT_EQ(Get("miIR_7"), 2150);
  EXPECT_EQ(Get("miIR_7"), 2151);
  EXPECT_THAT(modbus.Story(), ElementsAre("1 input 6+2", "1 input 6", "1 input 7"));
}

TEST_F(AnnouncedOnModbusTest, WhatIsNotAnnouncedIsReadByItself) {
  Announce({"miIR_6", "miIR_7"});
  Get("miIR_9");
  Get("miIR_6");
  EXPECT_THAT(modbus.Story(), ElementsAre("1 input 9", "1 input 6+2"));
}

TEST_F(AnnouncedOnModbusTest, AFailureForgetsWhatWasAnnounced) {
  Unit().input[7] = 2150;
  Announce({"miIR_6", "miIR_7", "miIR_9", "miIR_10"});
  modbus.Fail({Kind::exception});
  EXPECT_EQ(FailureOfGet("miIR_6"), "virtual exception");
  modbus.Forget();
  Get("miIR_7");
  Get("miIR_9");
  EXPECT_THAT(modbus.Story(), ElementsAre("1 input 7", "1 input 9"));
}

TEST_F(AnnouncedOnModbusTest, AFailureForgetsWhatHasComeAlready) {
  Announce({"miIR_6", "miIR_7", "miIR_9"});
  Get("miIR_6");
  modbus.Fail({Kind::exception});
  EXPECT_EQ(FailureOfGet("miIR_9"), "virtual exception");
  Unit().input[7] = 2151;
  EXPECT_EQ(Get("miIR_7"), 2151);
}

TEST_F(AnnouncedOnModbusTest, AnnouncingAnewForgetsWhatWasAnnounced) {
  Announce({"miIR_6", "miIR_7"});
  Get("miIR_6");
  Unit().input[7] = 2151;
  Announce({"miIR_9"});
  EXPECT_EQ(Get("miIR_7"), 2151);
  modbus.Forget();
  Announce({});
  Get("miIR_6");
  EXPECT_THAT(modbus.Story(), ElementsAre("1 input 6"));
}

TEST_F(AnnouncedOnModbusTest, AWriteIsSeenByTheReadBehindIt) {
  Unit().holding[20] = 1;
  Unit().holding[21] = 2;
  Announce({"mhHR_20", "mhHR_21"});
  Get("mhHR_20");
  Set("mhHR_21", 5);
  EXPECT_EQ(Get("mhHR_21"), 5);
}

TEST_F(AnnouncedOnModbusTest, AnUnknownNameIsAFailure) {
  EXPECT_THAT(FailureOf([&] { Announce({"miIR_6", "raChan_6"}); }), testing::HasSubstr("'raChan_6'"));
}

TEST_F(AnnouncedOnModbusTest, WhatIsKnownWithoutAskingComesFromTheUnitTheSameWay) {
  Unit().input[7] = 2150;
  Announce({"miIR_6", "miIR_7"});
  Get("miIR_6");
  Get("miIR_7");
  modbus.Forget();
  EXPECT_EQ(sens.Nodes().FindNode("miIR_7", "").GetValue(false), 2150);
  EXPECT_THAT(modbus.Story(), IsEmpty());
}

TEST_F(AnnouncedOnKiBusTest, BytesThatLieTogetherAreReadInOneFrame) {
  unit.ram.at(260) = 3;
  unit.ram.at(261) = 5;
  Announce({"raChanStat_9", "raChanStat_4", "raChanStat_5"});
  EXPECT_EQ(Get("raChanStat_4"), 3);
  EXPECT_EQ(Get("raChanStat_5"), 5);
  EXPECT_EQ(Get("raChanStat_9"), 0);
  EXPECT_THAT(unit.frames, ElementsAre(Bytes{178, 1, 4}, Bytes{177, 1, 9}));
}

TEST_F(AnnouncedOnKiBusTest, AFrameHoldsAtMost4Bytes) {
  for (std::size_t i = 0; i < 6; ++i) unit.PutWord(4240 + 2 * i, static_cast<int>(100 + i));
  const std::vector<std::string> kLevels{"eaRegPar0_4", "eaRegPar1_4", "eaRegPar0_5",
                                         "eaRegPar1_5", "eaRegPar0_6", "eaRegPar1_6"};
  Announce(kLevels);
  for (std::size_t i = 0; i < kLevels.size(); ++i) EXPECT_EQ(Get(kLevels.at(i)), 100 + static_cast<int>(i));
  // 4240, 4244 and 4248 are 16 x 256 + 144, 148 and 152.
  EXPECT_THAT(unit.frames, ElementsAre(Bytes{140, 16, 144}, Bytes{140, 16, 148}, Bytes{140, 16, 152}));
}

TEST_F(AnnouncedOnKiBusTest, ThreeBytesOfEepromAre2And1) {
  for (std::size_t i = 1; i <= 3; ++i) unit.eeprom.at(4400 + i) = static_cast<std::uint8_t>(i + 3);
  Announce({"eaMenuItemMPar1_0", "eaMenuItemMPar2_0", "eaMenuItemMPar3_0"});
  EXPECT_EQ(Get("eaMenuItemMPar1_0"), 4);
  EXPECT_EQ(Get("eaMenuItemMPar2_0"), 5);
  EXPECT_EQ(Get("eaMenuItemMPar3_0"), 6);
  // 4401 is 17 x 256 + 49.
  EXPECT_THAT(unit.frames, ElementsAre(Bytes{138, 17, 49}, Bytes{137, 17, 51}));
}

TEST_F(AnnouncedOnKiBusTest, BothLiveWordsOfAPairAreOneFrame) {
  unit.ram.at(21) = 7;
  unit.ram.at(23) = 9;
  Announce({"raChan_4", "raChan_5", "raChan_8"});
  EXPECT_EQ(Get("raChan_4"), 7);
  EXPECT_EQ(Get("raChan_8"), 0);
  EXPECT_EQ(Get("raChan_5"), 9);
  EXPECT_THAT(unit.frames, ElementsAre(Bytes{132, 20}, Bytes{130, 28}));
}

TEST_F(AnnouncedOnKiBusTest, AFailureForgetsWhatWasAnnounced) {
  Announce({"raChanStat_4", "raChanStat_5"});
  unit.isSilent = true;
  EXPECT_NE(FailureOfGet("raChanStat_4"), "");
  unit.isSilent = false;
  Get("raChanStat_5");
  EXPECT_THAT(unit.frames, ElementsAre(Bytes{177, 1, 5}));
}

TEST_F(AnnouncedOnKiBusTest, IsForgottenWithTheConnection) {
  Announce({"raChanStat_4", "raChanStat_5"});
  Get("raChanStat_4");
  sens.ConnectSensor("3", -1);
  unit.frames.clear();
  Get("raChanStat_5");
  EXPECT_THAT(unit.frames, SizeIs(1));
}

}  // namespace
}  // namespace brelant
