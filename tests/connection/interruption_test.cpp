// SPDX-License-Identifier: GPL-3.0-or-later
#include <tuple>

#include "connection/connection_fixture.h"

namespace brelant {
namespace {

using test::FailureOf;
using test::kCancel;
using testing::IsEmpty;

/// Passes of the pump that no operation here outlasts.
constexpr int kPasses = 60;

using Operation = std::function<void(BRECOM&)>;

struct NamedOperation {
  const char* name;
  Operation operation;
};

void ReadTemperature(BRECOM& sens) {
  sens.Nodes().FindNode("raChan_4", "").GetValue(true);
}
void ReadAcrossBanks(BRECOM& sens) {
  sens.Memory().ReadBytes(127, 2, SensorMemory::ram, 0);
}
void WriteLevel(BRECOM& sens) {
  sens.Nodes().FindNode("eaRegPar0_4", "").SetValue(true, 2500);
}
void WriteUnit(BRECOM& sens) {
  sens.Nodes().FindNode("eaCaseChannelUnit_4", "").SetValue(true, 2);
}
void WriteAcrossPages(BRECOM& sens) {
  sens.Memory().WriteWord(15, 2, SensorMemory::eeprom, 0, 258);
}
void ReadSerialNumber(BRECOM& sens) {
  sens.SerialNumberText();
}
void ReadAnnounced(BRECOM& sens) {
  sens.Nodes().Announce({"raChan_4", "raChan_5"});
  sens.Nodes().FindNode("raChan_4", "").GetValue(true);
  sens.Nodes().FindNode("raChan_5", "").GetValue(true);
}

const std::vector<NamedOperation>& Operations() {
  static const std::vector<NamedOperation> operations{{"a read", ReadTemperature},
                                                      {"a read of two frames", ReadAcrossBanks},
                                                      {"a write", WriteLevel},
                                                      {"a write of a part", WriteUnit},
                                                      {"a write of two frames", WriteAcrossPages},
                                                      {"the serial number", ReadSerialNumber},
                                                      {"announced names", ReadAnnounced}};
  return operations;
}

/// A machine of its own for each attempt: on either protocol, with a unit that answers or none.
class Ground {
 public:
  Ground(bool isModbus, bool isSilent) {
    FillRegisters();
    sens.SelectModbus(isModbus ? 1 : 0);
    sens.ConnectSensor("3", -1);
    unit.isSilent = isSilent;
    if (isSilent) bus.modbus.units.clear();
  }

  bool AnyPortOpen() const { return bus.port.PortOpen() || bus.modbus.IsOpen(); }
  /// Bytes or requests on the line.
  std::size_t Traffic() const { return bus.port.Sent().size() + bus.modbus.Requests().size(); }
  void Revive() {
    unit.isSilent = false;
    FillRegisters();
  }

  test::ScriptedBus bus;
  NameTable names = NameTable::Standard();
  test::KiBusUnit unit{bus.port};
  BRECOM sens{{bus.session, bus.link, bus.files, bus.modbus, names, {}}};

 private:
  /// Those that the operations touch.
  void FillRegisters() {
    auto& registers = bus.modbus.units[1];
    for (const int number : {6, 7}) registers.input[number] = 0;
    for (const int number : {20, 4128, 4159, 4160, 8199, 8200, 12174, 12275, 12276}) {
      registers.holding[number] = 0;
    }
  }
};

/// On both protocols, with an answering and with a silent unit.
class InterruptionTest : public testing::TestWithParam<std::tuple<bool, bool>> {
 protected:
  /// Runs each operation with the event in each pass in turn, for as long as there are passes for it to come
  /// in. `check` sees how the operation ended; it is not called when the event came too late.
  void Each(const std::function<void(Ground&)>& event,
            const std::function<void(Ground&, const std::string& failure)>& check) {
    const auto [isModbus, isSilent] = GetParam();
    int interrupted = 0;
    for (const auto& each : Operations()) {
      for (int pass = 1; pass <= kPasses; ++pass) {
        SCOPED_TRACE(std::string(each.name) + ", pass " + std::to_string(pass));
        Ground ground(isModbus, isSilent);
        bool happened = false;
        ground.bus.pump.InPass(pass, [&] {
          happened = true;
          event(ground);
        });
        const auto failure = FailureOf([&] { each.operation(ground.sens); });
        if (!happened) break;
        ++interrupted;
        check(ground, failure);
        if (HasFailure()) return;
      }
    }
    EXPECT_GT(interrupted, 7);
  }
};

TEST_P(InterruptionTest, ADisconnectEndsTheOperationAndLeavesNothingOpen) {
  Each([](Ground& ground) { ground.sens.Disconnect(); },
       [](Ground& ground, const std::string& failure) {
         EXPECT_EQ(failure, kCancel);
         EXPECT_FALSE(ground.sens.Connected());
         EXPECT_FALSE(ground.AnyPortOpen());
       });
}

TEST_P(InterruptionTest, NothingGoesOutBehindADisconnect) {
  std::size_t traffic = 0;
  Each(
      [&](Ground& ground) {
        ground.sens.CloseConnection();
        traffic = ground.Traffic();
      },
      [&](Ground& ground, const std::string&) { EXPECT_EQ(ground.Traffic(), traffic); });
}

TEST_P(InterruptionTest, AnAbortEndsTheOperationAndKeepsTheConnection) {
  Each([](Ground& ground) { ground.sens.Abort(); },
       [](Ground& ground, const std::string& failure) {
         EXPECT_EQ(failure, kCancel);
         EXPECT_TRUE(ground.sens.Connected());
         EXPECT_TRUE(ground.AnyPortOpen());
         ground.Revive();
         EXPECT_EQ(FailureOf([&] { ReadTemperature(ground.sens); }), "");
       });
}

TEST_P(InterruptionTest, AnAbortWaitsForOneAttemptAtMost) {
  std::chrono::microseconds aborted{};
  Each(
      [&](Ground& ground) {
        ground.sens.Abort();
        aborted = ground.bus.clock.Now();
      },
      [&](Ground& ground, const std::string&) {
        // The longest attempt is a frame whose answer does not come, and the pause before the next one.
        EXPECT_LE(ground.bus.clock.Now() - aborted, std::chrono::milliseconds(1100));
      });
}

TEST_P(InterruptionTest, ACancelEndsTheOperationSoonAndKeepsTheConnection) {
  std::chrono::microseconds cancelled{};
  Each(
      [&](Ground& ground) {
        ground.bus.session.CancelPressed = true;
        cancelled = ground.bus.clock.Now();
      },
      [&](Ground& ground, const std::string& failure) {
        EXPECT_EQ(failure, kCancel);
        EXPECT_LE(ground.bus.clock.Now() - cancelled, std::chrono::milliseconds(1100));
        EXPECT_TRUE(ground.sens.Connected());
        EXPECT_TRUE(ground.AnyPortOpen());
        ground.Revive();
        ground.bus.session.CancelPressed = false;
        EXPECT_EQ(FailureOf([&] { ReadTemperature(ground.sens); }), "");
      });
}

TEST_P(InterruptionTest, AConnectionThatIsMadeInsideAnOperationIsNotItsOwn) {
  Each(
      [&](Ground& ground) {
        ground.Revive();
        ground.sens.Disconnect();
        ground.sens.ConnectSensor("4", -1);
        ground.unit.frames.clear();
        ground.bus.modbus.Forget();
      },
      [&](Ground& ground, const std::string& failure) {
        EXPECT_EQ(failure, kCancel);
        EXPECT_TRUE(ground.sens.Connected());
        EXPECT_TRUE(ground.AnyPortOpen());
        EXPECT_THAT(ground.unit.frames, IsEmpty());
        EXPECT_THAT(ground.bus.modbus.Requests(), IsEmpty());
        EXPECT_EQ(FailureOf([&] { ReadTemperature(ground.sens); }), "");
      });
}

TEST_P(InterruptionTest, NothingGoesOutBehindTheEndOfTheSession) {
  std::size_t traffic = 0;
  Each(
      [&](Ground& ground) {
        ground.bus.session.sessionOver = true;
        traffic = ground.Traffic();
      },
      [&](Ground& ground, const std::string&) {
        EXPECT_EQ(ground.Traffic(), traffic);
        ground.Revive();
        EXPECT_NE(FailureOf([&] { ReadTemperature(ground.sens); }), "");
        EXPECT_NE(FailureOf([&] { WriteLevel(ground.sens); }), "");
        EXPECT_EQ(ground.Traffic(), traffic);
        ground.sens.Disconnect();
        EXPECT_FALSE(ground.AnyPortOpen());
        EXPECT_NE(FailureOf([&] { ground.sens.ConnectSensor("3", -1); }), "");
        EXPECT_FALSE(ground.AnyPortOpen());
        EXPECT_FALSE(ground.sens.Connected());
      });
}

INSTANTIATE_TEST_SUITE_P(Roads, InterruptionTest, testing::Combine(testing::Bool(), testing::Bool()));

class InterruptedTest : public test::KiBusUnitTest {};

TEST_F(InterruptedTest, AnAbortOfNothingIsNoAbortOfTheNextOperation) {
  sens.Abort();
  EXPECT_EQ(FailureOfGet("raChan_4"), "");
}

TEST_F(InterruptedTest, TheProgressIsToldInEachTransferAndMayAbortIt) {
  std::vector<int> told;
  sens.onProgress = [&](int percent) { told.push_back(percent); };
  Get("raChan_4");
  EXPECT_THAT(told, testing::Not(IsEmpty()));
  told.clear();
  Set("eaSensorID_0", 5);
  EXPECT_THAT(told, testing::Not(IsEmpty()));
  EXPECT_THAT(told, testing::Each(testing::AllOf(testing::Ge(0), testing::Le(100))));
  sens.onProgress = [&](int) { sens.Abort(); };
  EXPECT_EQ(FailureOfGet("raChan_4"), kCancel);
  EXPECT_TRUE(sens.Connected());
}

TEST_F(InterruptedTest, TheProgressMayCloseTheConnection) {
  sens.onProgress = [&](int) { sens.Disconnect(); };
  EXPECT_EQ(FailureOfGet("raChan_4"), kCancel);
  EXPECT_FALSE(sens.Connected());
  EXPECT_FALSE(port.PortOpen());
}

TEST_F(InterruptedTest, AnOperationInsideAnOperationLeavesBothRight) {
  unit.ram.at(21) = 7;
  unit.eeprom.at(4160) = 9;
  for (int pass = 1; pass < 5; ++pass) {
    bool happened = false;
    bus.pump.InPass(pass, [&] {
      happened = true;
      EXPECT_EQ(Get("eaSensorID_0"), 9);
    });
    EXPECT_EQ(Get("raChan_4"), 7);
    EXPECT_TRUE(happened) << pass;
  }
}

/// Before anything is connected.
class InterruptedStartTest : public test::ConnectionTest {
 protected:
  void PutUnits() { modbus.units[1].holding[4128] = 154; }
};

TEST_F(InterruptedStartTest, ADisconnectEndsTheConnecting) {
  for (const int isModbus : {0, 1}) {
    for (int pass = 1; pass < 4; ++pass) {
      PutUnits();
      test::KiBusUnit unit(port);
      sens.SelectModbus(isModbus);
      bool happened = false;
      bus.pump.InPass(pass, [&] {
        happened = true;
        sens.Disconnect();
      });
      const auto failure = FailureOf([&] { sens.ConnectSensor("3", -1); });
      if (!happened) bus.pump.DoEvents();
      if (!happened || failure.empty()) break;
      EXPECT_EQ(failure, kCancel) << isModbus << ", " << pass;
      EXPECT_FALSE(sens.Connected());
      EXPECT_FALSE(port.PortOpen());
      EXPECT_FALSE(modbus.IsOpen());
    }
    sens.Disconnect();
  }
}

TEST_F(InterruptedStartTest, AConnectionThatIsMadeInsideTheConnectingStays) {
  for (const int isModbus : {0, 1}) {
    PutUnits();
    test::KiBusUnit unit(port);
    sens.Disconnect();
    sens.SelectModbus(isModbus);
    bus.pump.InPass(1, [&] { sens.ConnectSensor("4", -1); });
    EXPECT_EQ(FailureOf([&] { sens.ConnectSensor("3", -1); }), kCancel) << isModbus;
    EXPECT_TRUE(sens.Connected()) << isModbus;
    EXPECT_EQ(isModbus == 1 ? modbus.port : port.selected, "4");
    EXPECT_EQ(FailureOf([&] { sens.Memory().PartNumber(); }), "") << isModbus;
  }
}

TEST_F(InterruptedStartTest, ACancelEndsTheConnecting) {
  for (const int isModbus : {0, 1}) {
    sens.SelectModbus(isModbus);
    bus.session.CancelPressed = false;
    const auto start = bus.clock.Now();
    bus.pump.After(std::chrono::milliseconds(300), [&] { bus.session.CancelPressed = true; });
    EXPECT_EQ(FailureOf([&] { sens.ConnectSensor("3", -1); }), kCancel);
    EXPECT_FALSE(sens.Connected());
    EXPECT_FALSE(port.PortOpen());
    EXPECT_FALSE(modbus.IsOpen());
    EXPECT_LE(bus.clock.Now() - start, std::chrono::milliseconds(501));
  }
}

TEST_F(InterruptedStartTest, AnAbortEndsTheConnecting) {
  bus.pump.After(std::chrono::milliseconds(300), [&] { sens.Abort(); });
  EXPECT_EQ(FailureOf([&] { sens.ConnectSensor("3", -1); }), kCancel);
  EXPECT_FALSE(sens.Connected());
  EXPECT_FALSE(port.PortOpen());
  EXPECT_LE(bus.clock.Now(), std::chrono::milliseconds(500));
}

}  // namespace
}  // namespace brelant
