// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/exchange.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;
using test::Bytes;
using test::SensorBus;
using testing::AnyOf;
using testing::IsEmpty;

using Operation = std::function<bool(SensorBus&)>;

/// Fails each port operation of a transfer in turn, once for that operation only and once for good.
void FailEach(const bench::SensorSetup& setup, bool partKnown, const std::set<std::string>& texts,
              const Operation& operation) {
  const auto prepare = [&](SensorBus& bus) {
    if (partKnown) bus.KnowPart(static_cast<std::uint8_t>(setup.part));
  };
  SensorBus sound(setup);
  prepare(sound);
  ASSERT_TRUE(operation(sound));
  const int operations = sound.port.Operations();
  ASSERT_GT(operations, 5);
  for (const bool staysBroken : {false, true}) {
    for (int n = 1; n <= operations; ++n) {
      SensorBus bus(setup);
      prepare(bus);
      bus.port.failAt = n;
      bus.port.staysBroken = staysBroken;
      EXPECT_FALSE(operation(bus)) << n;
      EXPECT_EQ(texts.count(bus.session.LastError), 1U) << n << ": " << bus.session.LastError;
      EXPECT_FALSE(bus.port.PortOpen()) << n;
      EXPECT_EQ(bus.session.BusBusyText, "") << n;
      EXPECT_THAT(bus.ui.messages, IsEmpty()) << n;
      for (std::size_t i = 0; i < bus.port.sensor.Eeprom().size(); ++i) {
        if (bus.image.EepromValid[i]) {
          EXPECT_EQ(bus.image.EepromRead[i], bus.port.sensor.Eeprom()[i]) << n << " at " << i;
        }
      }
    }
  }
}

constexpr const char* kReadFailed = "Can't read from sensor";
constexpr const char* kWriteFailed = "Can't save to sensor";

TEST(PortFailure, AtAnyOperationOfARamRead) {
  FailEach({.part = 231}, true, {kReadFailed},
           [](SensorBus& bus) { return bus.com.ReadSensorMemory(0, 120, 16, false, true); });
}

TEST(PortFailure, AtAnyOperationOfAnEepromReadOfAnUnknownSensor) {
  FailEach({.part = 88}, false, {kReadFailed},
           [](SensorBus& bus) { return bus.com.ReadSensorMemory(0, 30, 12, true, false); });
}

TEST(PortFailure, AtAnyOperationOfARamWrite) {
  FailEach({.part = 231}, true, {kWriteFailed, "Can't save to EEPROM"}, [](SensorBus& bus) {
    return bus.com.WriteSensorMemory(0, 124, 8, false, true, true, true, true, true);
  });
}

TEST(PortFailure, AtAnyOperationOfAnEepromWriteWithAllItsCommands) {
  FailEach(
      {.part = 88}, true, {kWriteFailed, "Can't unlock EEPROM", "Can't lock EEPROM", "Can't save to RAM"},
      [](SensorBus& bus) { return bus.com.WriteSensorMemory(0, 40, 6, true, true, true, true, true, true); });
}

TEST(PortFailure, AtAnyOperationOfAnEepromWriteToAnUnknownSensor) {
  FailEach({.part = 85}, false,
           {kReadFailed, kWriteFailed, "Can't unlock EEPROM", "Can't lock EEPROM", "Can't save to RAM"},
           [](SensorBus& bus) {
             return bus.com.WriteSensorMemory(0, 40, 6, true, true, false, true, true, true);
           });
}

TEST(PortFailure, AtAnyOperationOfACommand) {
  FailEach({.part = 85}, true, {"Can't unlock EEPROM"},
           [](SensorBus& bus) { return bus.com.SensorCommand(snscom::unlockEeprom, true); });
}

class PortFailureTest : public test::ExchangeTest {};

TEST_F(PortFailureTest, OnOpeningEndsEveryOperationWithItsText) {
  port.failOpen = true;
  EXPECT_FALSE(bus.com.ReadSensorMemory(0, 20, 1, false, true));
  EXPECT_EQ(session.LastError, kReadFailed);
  session.LastError.clear();
  EXPECT_FALSE(bus.com.WriteSensorMemory(0, 20, 1, false, false, true, true, true, true));
  EXPECT_EQ(session.LastError, kWriteFailed);
  session.LastError.clear();
  EXPECT_FALSE(bus.com.SensorCommand(snscom::lockEeprom, true));
  EXPECT_EQ(session.LastError, "Can't lock EEPROM");
  EXPECT_THAT(port.Story(), IsEmpty());
}

TEST_F(PortFailureTest, OnReopeningEndsAReadAtItsSixteenthAttempt) {
  bus.pump.After(milliseconds(500), [&] { port.failOpen = true; });
  EXPECT_FALSE(bus.com.ReadSensorMemory(0, 20, 1, false, true));
  EXPECT_EQ(RequestsToSend().size(), 15U);
  EXPECT_EQ(session.LastError, kReadFailed);
  EXPECT_FALSE(port.PortOpen());
}

TEST_F(PortFailureTest, OnReopeningEndsAWriteAtItsSixthAttempt) {
  bus.pump.After(milliseconds(200), [&] { port.failOpen = true; });
  EXPECT_FALSE(bus.com.WriteSensorMemory(0, 20, 1, false, false, true, true, true, true));
  EXPECT_EQ(RequestsToSend().size(), 5U);
  EXPECT_EQ(session.LastError, kWriteFailed);
}

TEST_F(PortFailureTest, OnReopeningEndsACommandAtItsFiftyFirstAttempt) {
  bus.pump.After(milliseconds(500), [&] { port.failOpen = true; });
  EXPECT_FALSE(bus.com.SensorCommand(snscom::lockEeprom, true));
  EXPECT_EQ(RequestsToSend().size(), 50U);
  EXPECT_EQ(session.LastError, "Can't lock EEPROM");
}

TEST_F(PortFailureTest, OfDtrStopsNoRead) {
  port.failDtr = true;
  EXPECT_FALSE(bus.com.ReadSensorMemory(0, 20, 1, false, false));
  EXPECT_EQ(RequestsToSend().size(), 100U);
}

TEST_F(PortFailureTest, DoesNotReplaceAnEarlierText) {
  port.failOpen = true;
  session.LastError = "Avbryt";
  EXPECT_FALSE(bus.com.ReadSensorMemory(0, 20, 1, false, false));
  EXPECT_EQ(session.LastError, "Avbryt");
}

TEST_F(PortFailureTest, SaysNothingWhereNoReportIsWanted) {
  port.failOpen = true;
  EXPECT_FALSE(bus.com.ReadSensorMemory(0, 20, 1, false, false, 100, false));
  EXPECT_EQ(session.LastError, "");
}

TEST_F(PortFailureTest, LeavesTheNextOperationAFreshStart) {
  port.failAt = 4;
  EXPECT_FALSE(bus.com.ReadSensorMemory(0, 20, 1, false, false));
  session.LastError.clear();
  test::Dialogue line(port);
  line.Exchange({129, 20, 149}, {6, 1, 7});
  EXPECT_TRUE(bus.com.ReadSensorMemory(0, 20, 1, false, false));
  EXPECT_EQ(line.Trouble(), "");
}

TEST(PortFailure, AnAdapterThatIsPulledOutEndsAWholeReadWithItsText) {
  for (std::uint32_t seed = 1; seed <= 20; ++seed) {
    SensorBus bus(bench::SensorSetup{.part = 88, .faults = {.hang_up = 0.01}, .seed = seed});
    bus.KnowPart(88);
    const bool done = bus.com.ReadSensorMemory(30, 0, 0, true, true);
    EXPECT_EQ(done, !bus.port.sensor.HungUp()) << seed;
    EXPECT_EQ(bus.session.LastError, done ? "" : kReadFailed) << seed;
    EXPECT_EQ(bus.port.PortOpen(), done) << seed;
  }
}

}  // namespace
}  // namespace brelant
