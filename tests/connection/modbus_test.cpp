// SPDX-License-Identifier: GPL-3.0-or-later
#include "connection/connection_fixture.h"

namespace brelant {
namespace {

using test::FailureOf;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Kind = ModbusMaster::Failure::Kind;

class BrecomOnModbusTest : public test::ModbusUnitTest {};

/// Before anything is connected.
class ModbusStartTest : public test::ConnectionTest {
 protected:
  void PutUnit(int id) { modbus.units[id].holding[4128] = 154; }
};

TEST_F(ModbusStartTest, ConnectsByReadingThePartNumberOfTheUnit) {
  PutUnit(5);
  sens.SelectModbus(1);
  EXPECT_FALSE(modbus.IsOpen());
  sens.ConnectSensor("/dev/ttyUSB0", 5);
  EXPECT_TRUE(sens.Connected());
  EXPECT_TRUE(modbus.IsOpen());
  EXPECT_EQ(modbus.port, "/dev/ttyUSB0");
  EXPECT_FALSE(port.PortOpen());
  EXPECT_THAT(port.Story(), IsEmpty());
  // RAM 65 is the low byte of register 4096 + 32.
  EXPECT_THAT(modbus.Story(), ElementsAre("5 holding 4128"));
}

TEST_F(ModbusStartTest, TheOnlyUnitIsUnit1) {
  PutUnit(1);
  sens.SelectModbus(1);
  sens.ConnectSensor("3", -1);
  EXPECT_THAT(modbus.Story(), ElementsAre("1 holding 4128"));
}

TEST_F(ModbusStartTest, TheLineAndTheOnlyUnitCanBeSet) {
  PutUnit(17);
  settings = {{19200, ModbusMaster::Parity::even, 2}, 17};
  BRECOM other({bus.session, bus.link, bus.files, modbus, names, settings});
  other.SelectModbus(1);
  other.ConnectSensor("3", -1);
  EXPECT_THAT(modbus.Story(), ElementsAre("17 holding 4128"));
  EXPECT_EQ(modbus.line.baud, 19200);
  EXPECT_EQ(modbus.line.parity, ModbusMaster::Parity::even);
  EXPECT_EQ(modbus.line.stopBits, 2);
}

TEST_F(ModbusStartTest, TheLineIsThatOfKiBusWhenNothingIsSet) {
  PutUnit(1);
  sens.SelectModbus(1);
  sens.ConnectSensor("3", -1);
  EXPECT_EQ(modbus.line.baud, 9600);
  EXPECT_EQ(modbus.line.parity, ModbusMaster::Parity::none);
  EXPECT_EQ(modbus.line.stopBits, 1);
}

TEST_F(ModbusStartTest, FailsWhereAnotherUnitIsOnTheLineAndClosesThePort) {
  PutUnit(1);
  sens.SelectModbus(1);
  EXPECT_EQ(FailureOf([&] { sens.ConnectSensor("3", 9); }), "virtual silence");
  EXPECT_FALSE(sens.Connected());
  EXPECT_FALSE(modbus.IsOpen());
  EXPECT_THAT(modbus.Story(), testing::AllOf(SizeIs(4), Each("9 holding 4128")));
}

TEST_F(ModbusStartTest, FailsWhereThePortCannotBeHad) {
  PutUnit(1);
  modbus.failOpen = true;
  sens.SelectModbus(1);
  EXPECT_EQ(FailureOf([&] { sens.ConnectSensor("3", -1); }), "virtual port failure");
  EXPECT_FALSE(sens.Connected());
  EXPECT_THAT(modbus.Story(), IsEmpty());
}

TEST_F(ModbusStartTest, TheProtocolMayBeChosenAfterTheConnection) {
  PutUnit(1);
  sens.ConnectSensor("3", -1);
  EXPECT_FALSE(sens.Connected());
  EXPECT_FALSE(port.PortOpen());
  EXPECT_FALSE(modbus.IsOpen());
  EXPECT_EQ(FailureOfGet("raChanStat_4"), "The unit does not answer on KiBus.");
  sens.SelectModbus(1);
  EXPECT_TRUE(sens.Connected());
  EXPECT_TRUE(modbus.IsOpen());
  // Once to see that it is there, and once to attach.
  EXPECT_THAT(modbus.Story(), ElementsAre("1 holding 4128", "1 holding 4128"));
  EXPECT_EQ(sens.Memory().PartNumber(), 154);
}

TEST_F(ModbusStartTest, AUnitThatIsOnNeitherProtocolEndsTheConnection) {
  PutUnit(1);
  EXPECT_EQ(FailureOf([&] { sens.ConnectSensor("3", 9); }), test::kSilent);
  EXPECT_THAT(modbus.Story(), ElementsAre("9 holding 4128"));
  EXPECT_FALSE(modbus.IsOpen());
  sens.SelectModbus(1);
  EXPECT_FALSE(sens.Connected());
}

TEST_F(ModbusStartTest, ADisconnectionForgetsTheUnitOfTheOtherProtocol) {
  PutUnit(1);
  sens.ConnectSensor("3", -1);
  sens.Disconnect();
  sens.SelectModbus(1);
  EXPECT_FALSE(sens.Connected());
  EXPECT_FALSE(modbus.IsOpen());
}

TEST_F(ModbusStartTest, ANumberOfModbusOtherThan1IsKiBus) {
  test::KiBusUnit unit(port);
  sens.SelectModbus(0);
  sens.ConnectSensor("3", -1);
  EXPECT_TRUE(port.PortOpen());
  EXPECT_FALSE(modbus.IsOpen());
}

TEST_F(ModbusStartTest, GoesBackToKiBus) {
  PutUnit(1);
  test::KiBusUnit unit(port);
  sens.SelectModbus(1);
  sens.ConnectSensor("3", -1);
  sens.SelectModbus(0);
  EXPECT_FALSE(modbus.IsOpen());
  EXPECT_TRUE(port.PortOpen());
  EXPECT_EQ(Get("raChanStat_4"), 0);
}

TEST_F(BrecomOnModbusTest, HoldsThePortUntilItIsDisconnected) {
  Get("miIR_7");
  EXPECT_TRUE(modbus.IsOpen());
  sens.Disconnect();
  EXPECT_FALSE(modbus.IsOpen());
  EXPECT_FALSE(sens.Connected());
  EXPECT_EQ(FailureOfGet("miIR_7"), "There is no connection.");
}

TEST_F(BrecomOnModbusTest, ReadsInputAndHoldingRegisters) {
  Unit().input[10] = 0x1234;
  Unit().holding[20] = 2500;
  EXPECT_EQ(Get("miIR_10"), 0x1234);
  EXPECT_EQ(Get("mhHR_20"), 2500);
  EXPECT_THAT(modbus.Story(), ElementsAre("1 input 10", "1 holding 20"));
}

TEST_F(BrecomOnModbusTest, ReadsParametersThroughTheirRegisters) {
  Unit().input[7] = 2150;
  Unit().holding[21] = 500;
  Unit().holding[10254] = 0x0B03;
  EXPECT_EQ(Get("raChan_4"), 2150);
  EXPECT_EQ(Get("eaRegPar1_4"), 500);
  EXPECT_EQ(Get("eaUserInfo_29"), 3);
  EXPECT_THAT(modbus.Story(), ElementsAre("1 input 7", "1 holding 21", "1 holding 10254"));
}

TEST_F(BrecomOnModbusTest, ReadsTheBitOfTheStateByteThroughTheWindow) {
  // 383 is the odd byte of register 4096 + 191.
  Unit().holding[4287] = 0x7F80;
  EXPECT_EQ(sens.Memory().ReadBytes(383, 1, SensorMemory::ram, 128), 1);
  Unit().holding[4287] = 0x807F;
  EXPECT_EQ(sens.Memory().ReadBytes(383, 1, SensorMemory::ram, 128), 0);
}

TEST_F(BrecomOnModbusTest, WritesHoldingRegisters) {
  Set("mhHR_20", 2500);
  EXPECT_EQ(Unit().holding[20], 2500);
  EXPECT_THAT(modbus.Story(), ElementsAre("1 holding 20 = 2500"));
}

TEST_F(BrecomOnModbusTest, WritesNoInputRegister) {
  EXPECT_EQ(FailureOf([&] { Set("miIR_7", 5); }), "An input register is read only.");
  EXPECT_EQ(FailureOf([&] { Set("raChan_4", 5); }), "An input register is read only.");
  EXPECT_THAT(modbus.Story(), IsEmpty());
}

// Retries

TEST_F(BrecomOnModbusTest, TriesAgainAfterSilenceAndGarbage) {
  Unit().input[7] = 2150;
  modbus.Fail({Kind::silence, Kind::broken, Kind::silence});
  EXPECT_EQ(Get("miIR_7"), 2150);
  EXPECT_THAT(modbus.Story(), testing::AllOf(SizeIs(4), Each("1 input 7")));
  modbus.Forget();
  modbus.Fail({Kind::broken, Kind::broken, Kind::silence});
  Set("mhHR_20", 2500);
  EXPECT_EQ(Unit().holding[20], 2500);
  EXPECT_THAT(modbus.Story(), testing::AllOf(SizeIs(4), Each("1 holding 20 = 2500")));
}

TEST_F(BrecomOnModbusTest, GivesUpAfterFourAttemptsWithTheLastText) {
  modbus.Fail({Kind::silence, Kind::silence, Kind::silence, Kind::broken});
  EXPECT_EQ(FailureOfGet("miIR_7"), "virtual garbage");
  EXPECT_THAT(modbus.Story(), SizeIs(4));
  EXPECT_TRUE(sens.Connected());
  modbus.Forget();
  modbus.Fail({Kind::silence, Kind::silence, Kind::silence, Kind::silence});
  EXPECT_EQ(FailureOf([&] { Set("mhHR_20", 5); }), "virtual silence");
  EXPECT_THAT(modbus.Story(), SizeIs(4));
}

TEST_F(BrecomOnModbusTest, TakesAnExceptionAsTheAnswerThatItIs) {
  modbus.Fail({Kind::exception});
  EXPECT_EQ(FailureOfGet("miIR_7"), "virtual exception");
  EXPECT_THAT(modbus.Story(), SizeIs(1));
  modbus.Forget();
  // A register that the unit does not have.
  EXPECT_EQ(FailureOfGet("miIR_40"), "virtual exception");
  EXPECT_EQ(FailureOf([&] { Set("mhHR_40", 5); }), "virtual exception");
  EXPECT_THAT(modbus.Story(), ElementsAre("1 input 40", "1 holding 40 = 5"));
  EXPECT_TRUE(sens.Connected());
}

TEST_F(BrecomOnModbusTest, DoesNotTryAgainWithoutAPort) {
  modbus.Fail({Kind::port});
  EXPECT_EQ(FailureOfGet("miIR_7"), "virtual port failure");
  EXPECT_THAT(modbus.Story(), SizeIs(1));
}

TEST_F(BrecomOnModbusTest, CountsTheAttemptsOfEachRequestAnew) {
  for (int i = 0; i < 3; ++i) {
    modbus.Fail({Kind::silence, Kind::silence, Kind::silence, {}});
    EXPECT_EQ(FailureOfGet("miIR_7"), "");
  }
  EXPECT_THAT(modbus.Story(), SizeIs(12));
}

}  // namespace
}  // namespace brelant
