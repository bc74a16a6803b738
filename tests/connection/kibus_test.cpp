// SPDX-License-Identifier: GPL-3.0-or-later
#include "connection/connection_fixture.h"

namespace brelant {
namespace {

using test::Bytes;
using test::FailureOf;
using test::kSilent;
using testing::IsEmpty;

class BrecomOnKiBusTest : public test::DialogueTest {
 protected:
  std::int32_t Ram(int address, int width, int mask = 0) {
    return sens.Memory().ReadBytes(address, width, SensorMemory::ram, mask);
  }
  std::int32_t Eeprom(int address, int width) {
    return sens.Memory().ReadBytes(address, width, SensorMemory::eeprom, 0);
  }
};

TEST_F(BrecomOnKiBusTest, ConnectsByReadingThePartNumberOfTheOnlyUnit) {
  line.Exchange({129, 65, 194}, {6, 154, 160}, 254);
  EXPECT_FALSE(sens.Connected());
  sens.ConnectSensor("7", -1);
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_TRUE(sens.Connected());
  EXPECT_EQ(port.selected, "7");
  EXPECT_TRUE(port.PortOpen());
  EXPECT_FALSE(modbus.IsOpen());
}

TEST_F(BrecomOnKiBusTest, AddressesTheUnitThatIsAskedFor) {
  for (const int id : {1, 3, 29}) {
    Attach(id, static_cast<std::uint8_t>(224 + id));
    ExpectRead({129, 20}, {7}, static_cast<std::uint8_t>(224 + id));
    EXPECT_EQ(Ram(20, 1), 7);
    EXPECT_EQ(line.Trouble(), "") << id;
  }
}

TEST_F(BrecomOnKiBusTest, DoesNotLookAtTheIdOfTheSession) {
  bus.session.SensorId = 12;
  Attach(-1, 254);
  Attach(3, 227);
}

TEST_F(BrecomOnKiBusTest, HoldsThePortUntilItIsDisconnected) {
  Attach();
  ExpectRead({129, 20}, {7});
  Ram(20, 1);
  EXPECT_TRUE(port.PortOpen());
  sens.Disconnect();
  EXPECT_FALSE(port.PortOpen());
  EXPECT_FALSE(sens.Connected());
  sens.CloseConnection();
  EXPECT_EQ(FailureOf([&] { Ram(20, 1); }), "There is no connection.");
  EXPECT_EQ(FailureOf([&] { sens.Memory().WriteWord(20, 1, SensorMemory::ram, 0, 1); }),
            "There is no connection.");
}

TEST_F(BrecomOnKiBusTest, GoesAwayWithoutLeavingThePortOpen) {
  {
    BRECOM other({bus.session, bus.link, bus.files, modbus, names, settings});
    line.Exchange({129, 65, 194}, {6, 154, 160});
    other.ConnectSensor("3", -1);
    EXPECT_TRUE(port.PortOpen());
  }
  EXPECT_FALSE(port.PortOpen());
}

TEST_F(BrecomOnKiBusTest, FailsWhereNobodyAnswersAndClosesThePort) {
  EXPECT_EQ(FailureOf([&] { sens.ConnectSensor("3", -1); }), kSilent);
  EXPECT_FALSE(port.PortOpen());
  EXPECT_FALSE(sens.Connected());
  EXPECT_EQ(RequestsToSend(), 10U);
  EXPECT_EQ(bus.session.LastError, "");
}

TEST_F(BrecomOnKiBusTest, FailsWhereThePortCannotBeHad) {
  port.failOpen = true;
  EXPECT_EQ(FailureOf([&] { sens.ConnectSensor("3", -1); }), "The port cannot be had");
  EXPECT_FALSE(sens.Connected());
}

TEST_F(BrecomOnKiBusTest, ConnectsAnewAfterAFailure) {
  test::KiBusUnit unit(port);
  unit.isSilent = true;
  EXPECT_EQ(FailureOf([&] { sens.ConnectSensor("3", -1); }), kSilent);
  unit.isSilent = false;
  sens.ConnectSensor("3", -1);
  EXPECT_TRUE(sens.Connected());
}

// Form R

TEST_F(BrecomOnKiBusTest, ReadsRamBelow128InBank0) {
  Attach();
  line.Exchange({130, 20, 150}, {6, 5, 220, 231});  // 5 x 256 + 220
  EXPECT_EQ(Ram(20, 2), 1500);
  line.Exchange({129, 127, 0}, {6, 9, 15});
  EXPECT_EQ(Ram(127, 1), 9);
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(BrecomOnKiBusTest, ReadsRamBelow256InBank64) {
  Attach();
  line.Exchange({194, 0, 194}, {6, 1, 2, 9});
  EXPECT_EQ(Ram(128, 2), 258);
  line.Exchange({193, 127, 64}, {6, 9, 15});
  EXPECT_EQ(Ram(255, 1), 9);
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(BrecomOnKiBusTest, ReadsAWordAcrossTheBanksInTwoFrames) {
  Attach();
  line.Exchange({129, 127, 0}, {6, 1, 7}).Exchange({193, 0, 193}, {6, 2, 8});
  EXPECT_EQ(Ram(127, 2), 258);
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(BrecomOnKiBusTest, WritesRamInItsBank) {
  Attach();
  line.Exchange({2, 20, 5, 220, 247}, {6}).Exchange({65, 127, 9, 201}, {6});
  sens.Memory().WriteWord(20, 2, SensorMemory::ram, 0, 1500);
  sens.Memory().WriteWord(255, 1, SensorMemory::ram, 0, 9);
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(BrecomOnKiBusTest, WritesAWordAcrossTheBanksInTwoFrames) {
  Attach();
  line.Exchange({1, 127, 1, 129}, {6}).Exchange({65, 0, 2, 67}, {6});
  sens.Memory().WriteWord(127, 2, SensorMemory::ram, 0, 258);
  EXPECT_EQ(line.Trouble(), "");
}

// The wide form

TEST_F(BrecomOnKiBusTest, ReadsRamFrom256InTheWideForm) {
  Attach();
  // 128 + 48 + 1; 260 = 1 x 256 + 4.
  line.Exchange({177, 1, 4, 182}, {6, 3, 9});
  EXPECT_EQ(Get("raChanStat_4"), 3);
  // 128 + 48 + 2; 304 = 1 x 256 + 48.
  line.Exchange({178, 1, 48, 227}, {6, 1, 2, 9});
  EXPECT_EQ(Get("raGenStat_8"), 258);
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(BrecomOnKiBusTest, ReadsTheBitOfTheStateByte) {
  Attach();
  // 383 = 1 x 256 + 127; 177 + 1 + 127 = 305.
  line.Exchange({177, 1, 127, 49}, {6, 128, 134}).Exchange({177, 1, 127, 49}, {6, 127, 133});
  EXPECT_EQ(Ram(383, 1, 128), 1);
  EXPECT_EQ(Ram(383, 1, 128), 0);
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(BrecomOnKiBusTest, ReadsAWordAcrossTheFormsInTwoFrames) {
  Attach();
  line.Exchange({193, 127, 64}, {6, 1, 7}).Exchange({177, 1, 0, 178}, {6, 2, 8});
  EXPECT_EQ(Ram(255, 2), 258);
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(BrecomOnKiBusTest, WritesRamFrom256InTheWideForm) {
  Attach();
  // 48 + 2.
  line.Exchange({50, 1, 48, 0, 2, 101}, {6});
  Set("raGenStat_8", 2);
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(BrecomOnKiBusTest, WritesAWordAcrossTheFormsInTwoFrames) {
  Attach();
  line.Exchange({65, 127, 1, 193}, {6}).Exchange({49, 1, 0, 2, 52}, {6});
  sens.Memory().WriteWord(255, 2, SensorMemory::ram, 0, 258);
  EXPECT_EQ(line.Trouble(), "");
}

// Form L

TEST_F(BrecomOnKiBusTest, ReadsEepromInFormL) {
  Attach();
  // 4125 = 16 x 256 + 29.
  line.Exchange({137, 16, 29, 182}, {6, 3, 9});
  EXPECT_EQ(Get("eaUserInfo_29"), 3);
  // 4240 = 16 x 256 + 144; 138 + 16 + 144 = 298.
  line.Exchange({138, 16, 144, 42}, {6, 9, 196, 211});
  EXPECT_EQ(Get("eaRegPar0_4"), 2500);
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(BrecomOnKiBusTest, ReadsAWordAcrossThePagesInOneFrame) {
  Attach();
  line.Exchange({138, 0, 15, 153}, {6, 1, 2, 9});
  EXPECT_EQ(Eeprom(15, 2), 258);
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(BrecomOnKiBusTest, WritesEepromInFormL) {
  Attach();
  line.Exchange({10, 16, 144, 9, 196, 119}, {6});  // 375 less 256
  Set("eaRegPar0_4", 2500);
  // 4160 = 16 x 256 + 64.
  line.Exchange({9, 16, 64, 12, 101}, {6});
  Set("eaSensorID_0", 12);
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(BrecomOnKiBusTest, WritesAWordAcrossThePagesInTwoFrames) {
  Attach();
  line.Exchange({9, 0, 15, 1, 25}, {6}).Exchange({9, 0, 16, 2, 27}, {6});
  sens.Memory().WriteWord(15, 2, SensorMemory::eeprom, 0, 258);
  // 4367 = 17 x 256 + 15.
  line.Exchange({9, 17, 15, 1, 42}, {6}).Exchange({9, 17, 16, 2, 44}, {6});
  sens.Memory().WriteWord(4367, 2, SensorMemory::eeprom, 0, 258);
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(BrecomOnKiBusTest, EveryFrameOfEveryPlaceIsThatOfTheUnitsOwnReading) {
  Attach();
  test::KiBusUnit unit(port);
  for (std::size_t i = 0; i < unit.ram.size(); ++i) unit.ram.at(i) = static_cast<std::uint8_t>(7 * i + 3);
  for (std::size_t i = 0; i < unit.eeprom.size(); ++i)
    unit.eeprom.at(i) = static_cast<std::uint8_t>(5 * i + i / 256);
  for (int address = 0; address < 511; ++address) {
    const auto at = static_cast<std::size_t>(address);
    ASSERT_EQ(Ram(address, 2), unit.ram.at(at) * 256 + unit.ram.at(at + 1)) << address;
    sens.Memory().WriteWord(address, 2, SensorMemory::ram, 0, 258);
    ASSERT_EQ(unit.ram.at(at), 1) << address;
    ASSERT_EQ(unit.ram.at(at + 1), 2) << address;
  }
  for (int address = 4080; address < 4130; ++address) {
    const auto at = static_cast<std::size_t>(address);
    ASSERT_EQ(Eeprom(address, 2), unit.eeprom.at(at) * 256 + unit.eeprom.at(at + 1)) << address;
    sens.Memory().WriteWord(address, 2, SensorMemory::eeprom, 0, 258);
    ASSERT_EQ(unit.eeprom.at(at), 1) << address;
    ASSERT_EQ(unit.eeprom.at(at + 1), 2) << address;
  }
}

// Retries

TEST_F(BrecomOnKiBusTest, TriesAgainUntilTheReplyIsRight) {
  Attach();
  const Bytes kRequest{129, 20, 149};
  line.Expect({254});                    // silence
  line.Expect({254}).Reply({222});       // no clear to receive
  line.Exchange(kRequest, {6, 7});       // too short
  line.Exchange(kRequest, {21, 7, 28});  // no ACK
  line.Exchange(kRequest, {6, 8, 13});   // wrong checksum
  line.Exchange(kRequest, {6, 7, 13});
  EXPECT_EQ(Ram(20, 1), 7);
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(BrecomOnKiBusTest, GivesAReadUpAfterTenAttempts) {
  Attach();
  EXPECT_EQ(FailureOf([&] { Ram(20, 1); }), kSilent);
  EXPECT_EQ(RequestsToSend(), 10U);
  EXPECT_TRUE(port.PortOpen());
  EXPECT_TRUE(sens.Connected());
}

TEST_F(BrecomOnKiBusTest, GivesAWriteUpAfterTenAttempts) {
  Attach();
  EXPECT_EQ(FailureOf([&] { Set("eaSensorID_0", 12); }), kSilent);
  EXPECT_EQ(RequestsToSend(), 10U);
}

TEST_F(BrecomOnKiBusTest, NeverWritesBehindAFrameThatWasNotTaken) {
  Attach();
  const Bytes kFirst{1, 127, 1, 129};
  for (int attempt = 0; attempt < 10; ++attempt) line.Exchange(kFirst, {21});
  EXPECT_EQ(FailureOf([&] { sens.Memory().WriteWord(127, 2, SensorMemory::ram, 0, 258); }), kSilent);
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_EQ(RequestsToSend(), 10U);
}

TEST_F(BrecomOnKiBusTest, AWrongReplyGivesNoValue) {
  Attach();
  for (int attempt = 0; attempt < 10; ++attempt) line.Exchange({129, 20, 149}, {6, 8, 13});
  EXPECT_EQ(FailureOf([&] { Ram(20, 1); }), kSilent);
}

TEST_F(BrecomOnKiBusTest, TakesAnAckWithItsFlag) {
  Attach();
  line.Exchange({129, 20, 149}, {134, 7, 141});
  EXPECT_EQ(Ram(20, 1), 7);
  EXPECT_TRUE(bus.session.NakSeen);
}

TEST_F(BrecomOnKiBusTest, DoesNotMindAnErrorThatStands) {
  bus.session.LastError = "Avbryt";
  Attach();
  ExpectRead({129, 20}, {7});
  EXPECT_EQ(Ram(20, 1), 7);
}

TEST_F(BrecomOnKiBusTest, ReachesNoRegisters) {
  Attach();
  EXPECT_THAT(FailureOfGet("miIR_7"), testing::HasSubstr("miIR_7"));
  EXPECT_THAT(port.Sent(), IsEmpty());
}

// Protocols

TEST_F(BrecomOnKiBusTest, LeavesKiBusWhenModbusIsSelectedBehindTheConnection) {
  modbus.units[1].holding[4128] = 154;
  Attach();
  sens.SelectModbus(1);
  EXPECT_FALSE(port.PortOpen());
  EXPECT_TRUE(modbus.IsOpen());
  EXPECT_EQ(modbus.port, "3");
  EXPECT_TRUE(sens.Connected());
  EXPECT_EQ(sens.Memory().PartNumber(), 154);
  EXPECT_THAT(port.Sent(), IsEmpty());
}

TEST_F(BrecomOnKiBusTest, KeepsTheIdWhenModbusIsSelectedBehindTheConnection) {
  modbus.units[3].holding[4128] = 154;
  Attach(3, 227);
  sens.SelectModbus(1);
  EXPECT_THAT(modbus.Story(), testing::Each("3 holding 4128"));
  EXPECT_EQ(sens.Memory().PartNumber(), 154);
}

TEST_F(BrecomOnKiBusTest, StaysOnKiBusWhenModbusIsNotSelected) {
  Attach();
  sens.SelectModbus(0);
  EXPECT_THAT(port.Story(), IsEmpty());
  EXPECT_TRUE(sens.Connected());
}

TEST_F(BrecomOnKiBusTest, IsNoConnectionAnyMoreWhereNobodyAnswersOnModbus) {
  Attach();
  EXPECT_NE(FailureOf([&] { sens.SelectModbus(1); }), "");
  EXPECT_FALSE(sens.Connected());
  EXPECT_FALSE(port.PortOpen());
  EXPECT_FALSE(modbus.IsOpen());
}

// The log

TEST_F(BrecomOnKiBusTest, LogsEachReadAndOnlyTheRequestsOfFormR) {
  Attach();
  bus.session.TrafficLogOn = true;
  ExpectRead({129, 20}, {7});
  Ram(20, 1);
  ExpectRead({177, 1, 4}, {3});
  Get("raChanStat_4");
  ExpectRead({137, 16, 29}, {3});
  Get("eaUserInfo_29");
  EXPECT_EQ(bus.files.Text("C:\\KVX\\ComLogg.txt"),
            "READ(0 20 1 False)\r\n RTS(254) CTR(223) MR(129 20 149) DC(6 7 13)\n"
            "READ(0 260 1 False)\r\n RTS(254) CTR(223) DC(6 3 9)\n"
            "READ(0 4125 1 True)\r\n RTS(254) CTR(223) DC(6 3 9)\n");
}

// The end of the session

TEST_F(BrecomOnKiBusTest, EndsWithTheSession) {
  Attach();
  bus.session.sessionOver = true;
  EXPECT_NE(FailureOf([&] { Ram(20, 1); }), "");
  EXPECT_THAT(port.Sent(), IsEmpty());
  sens.Disconnect();
  EXPECT_FALSE(port.PortOpen());
}

TEST_F(BrecomOnKiBusTest, AnAdapterThatIsPulledOutIsAFailure) {
  Attach();
  port.failAt = port.Operations() + 1;
  port.staysBroken = true;
  EXPECT_NE(FailureOf([&] { Ram(20, 1); }), "");
  sens.Disconnect();
  EXPECT_FALSE(port.PortOpen());
}

}  // namespace
}  // namespace brelant
