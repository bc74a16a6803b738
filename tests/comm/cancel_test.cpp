// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/bus.h"
#include "support/pauses.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;
using test::Bytes;
using test::SensorBus;

/// What the Cancel button of the progress box does.
void Cancel(Session& session) {
  session.CancelPressed = true;
  session.LastError = "Avbryt";
}

/// How many bytes of the memory came: the first bytes, without a gap, as the sensor holds them.
std::size_t BytesRead(const SensorBus& bus, const std::vector<std::uint8_t>& memory) {
  std::size_t read = 0;
  while (read < memory.size() && bus.image.EepromValid[read]) {
    EXPECT_EQ(bus.image.EepromImage[read], memory[read]) << read;
    EXPECT_EQ(bus.image.EepromRead[read], memory[read]) << read;
    ++read;
  }
  for (std::size_t i = read; i < memory.size(); ++i) {
    EXPECT_FALSE(bus.image.EepromValid[i]) << i;
    EXPECT_EQ(bus.image.EepromImage[i], 0) << i;
  }
  return read;
}

std::vector<std::uint8_t> Copy(std::span<const std::uint8_t> memory) {
  return {memory.begin(), memory.end()};
}

const bench::SensorSetup kPlatform6{.part = 88, .pace = true};
const bench::SensorSetup kPlatform61{.part = 85, .pace = true};

TEST(Cancel, InAnyPassOfAReadLeavesWhatCameAndSaysAvbryt) {
  bool finished = false;
  for (int pass = 1; !finished; pass += 37) {
    SensorBus bus(kPlatform6);
    bus.KnowPart(88);
    const auto memory = Copy(bus.port.sensor.Eeprom());
    std::size_t framesThen = 0;
    finished = true;
    bus.pump.InPass(pass, [&] {
      finished = false;
      framesThen = bus.port.sensor.Frames().size();
      Cancel(bus.session);
    });
    const bool done = bus.com.ReadSensorMemory(30, 0, 0, true, false);
    const auto read = BytesRead(bus, memory);
    EXPECT_EQ(done, read == memory.size()) << pass;
    EXPECT_EQ(bus.session.LastError, finished ? "" : "Avbryt") << pass;
    EXPECT_EQ(bus.session.BusBusyText, "") << pass;
    EXPECT_FALSE(bus.port.PortOpen()) << pass;
    // The exchange that runs is ended, none is begun.
    if (!finished) {
      EXPECT_LE(bus.port.sensor.Frames().size(), framesThen + 1) << pass;
    }
  }
}

TEST(Cancel, OfAReadOfASilentSensorEndsItBeforeTheNextAttempt) {
  test::ScriptedBus bus;
  const auto start = bus.clock.Now();
  bus.pump.After(milliseconds(250), [&] { Cancel(bus.session); });
  EXPECT_FALSE(bus.com.ReadSensorMemory(0, 65, 3, false, false));
  EXPECT_EQ(bus.session.LastError, "Avbryt");
  EXPECT_EQ(bus.port.Sent(), Bytes(3, 254));
  // Two attempts of 105 ms, the third runs to its end, and the pause before the fourth.
  EXPECT_THAT(bus.clock.Now() - start, test::Lasts(milliseconds(3 * 105 + 5)));
}

TEST(Cancel, InAnyPassOfAWriteLeavesTheChunksSentSoFarAndNoLockOrSave) {
  bool finished = false;
  for (int pass = 1; !finished; pass += 53) {
    SensorBus bus(kPlatform61);
    bus.KnowPart(85);
    const auto before = Copy(bus.port.sensor.Eeprom());
    Bytes wanted = before;
    for (std::size_t i = 0; i < wanted.size(); ++i) {
      wanted[i] = static_cast<std::uint8_t>(255 - before[i]);
      bus.image.EepromImage[i] = wanted[i];
      bus.image.EepromRead[i] = before[i];
      bus.image.EepromValid[i] = true;
    }
    bool lockedWhenCancelled = false;
    std::size_t framesThen = 0;
    finished = true;
    bus.pump.InPass(pass, [&] {
      finished = false;
      framesThen = bus.port.sensor.Frames().size();
      lockedWhenCancelled = framesThen > 1 && bus.port.sensor.Locked();
      Cancel(bus.session);
    });
    const bool done = bus.com.WriteSensorMemory(30, 0, 0, true, true, false, true, true, true);
    const auto frames = bus.port.sensor.Frames();
    EXPECT_EQ(bus.session.LastError, finished ? "" : "Avbryt") << pass;
    EXPECT_EQ(bus.session.BusBusyText, "") << pass;
    EXPECT_FALSE(bus.port.PortOpen()) << pass;
    // Unlocking, 128 chunks, locking, saving.
    EXPECT_EQ(done, frames.size() == 131) << pass;
    if (!finished) {
      EXPECT_LE(frames.size(), framesThen + 1) << pass;
    }
    if (!finished && !lockedWhenCancelled && frames.size() > 1 && frames.size() <= 129) {
      EXPECT_FALSE(bus.port.sensor.Locked()) << pass;
    }
    if (frames.size() < 130) {
      const std::size_t sent = frames.empty() ? 0 : (frames.size() - 1) * 4;
      for (std::size_t i = 0; i < wanted.size(); ++i) {
        ASSERT_EQ(bus.port.sensor.Eeprom()[i], i < sent ? wanted[i] : before[i]) << pass << " at " << i;
        ASSERT_EQ(bus.image.EepromRead[i], i < sent ? wanted[i] : before[i]) << pass << " at " << i;
      }
    }
  }
}

TEST(Cancel, OfAWriteOfRamSavesNothing) {
  SensorBus bus(bench::SensorSetup{.part = 231, .pace = true});
  bus.KnowPart(231);
  bus.pump.After(milliseconds(100), [&] { Cancel(bus.session); });
  EXPECT_FALSE(bus.com.WriteSensorMemory(6, 0, 0, false, true, false, true, true, true));
  EXPECT_EQ(bus.session.LastError, "Avbryt");
  EXPECT_EQ(bus.port.sensor.Count().saves, 0);
  EXPECT_GT(bus.port.sensor.Frames().size(), 2U);
  EXPECT_LT(bus.port.sensor.Frames().size(), 10U);
}

TEST(Cancel, WhileUnlockingSendsNoByteOfTheWrite) {
  test::ScriptedBus bus;
  bus.KnowPart(85);
  bus.pump.After(milliseconds(50), [&] { Cancel(bus.session); });
  EXPECT_FALSE(bus.com.WriteSensorMemory(0, 36, 2, true, true, false, true, true, true));
  EXPECT_EQ(bus.session.LastError, "Avbryt");
  EXPECT_EQ(bus.port.Sent(), Bytes(3, 254));
}

TEST(SessionOver, InAnyPassOfAReadEndsItAndOpensNothingMore) {
  bool finished = false;
  for (int pass = 1; !finished; pass += 101) {
    SensorBus bus(kPlatform6);
    bus.KnowPart(88);
    std::size_t storyThen = 0;
    finished = true;
    bus.pump.InPass(pass, [&] {
      finished = false;
      bus.session.sessionOver = true;
      bus.link.Close();
      storyThen = bus.port.Events().size();
    });
    const bool done = bus.com.ReadSensorMemory(30, 0, 0, true, false);
    EXPECT_EQ(done, finished) << pass;
    EXPECT_FALSE(bus.port.PortOpen()) << pass;
    if (!finished) {
      EXPECT_EQ(bus.port.Events().size(), storyThen) << pass;
    }
  }
}

}  // namespace
}  // namespace brelant
