// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include "support/bus.h"

namespace brelant {
namespace {

using test::SensorBus;

constexpr bench::FaultRates kFaults{
    .silence = 0.05, .wrong_byte = 0.05, .late = 0.05, .short_reply = 0.05, .noise = 0.05, .nak = 0.05};
constexpr std::uint32_t kSeeds = 40;

struct Memory {
  int part;
  bool isEeprom;
};

// RAM of platform 5, EEPROM of 512 bytes in both generations, EEPROM of 1024 bytes.
constexpr Memory kMemories[] = {{231, false}, {109, false}, {88, true}, {85, true}, {33, true}};

struct Outcome {
  int done = 0;
  int failed = 0;
};

/// A sensor with faults on its line whose part number is known.
struct FaultyBus : SensorBus {
  FaultyBus(const Memory& what, std::uint32_t seed)
      : SensorBus(bench::SensorSetup{.part = what.part, .pace = true, .faults = kFaults, .seed = seed}),
        memory(what.isEeprom ? port.sensor.Eeprom() : port.sensor.Ram()) {
    KnowPart(static_cast<std::uint8_t>(what.part));
    std::fill_n(image.ReadRequest.begin(), memory.size(), std::uint8_t{255});
  }
  std::span<std::uint8_t> memory;
};

TEST(LineFaults, AReadOfTheWholeMemoryEndsWithEveryByteRightOrWithItsText) {
  Outcome outcome;
  for (const auto& what : kMemories) {
    for (std::uint32_t seed = 1; seed <= kSeeds; ++seed) {
      FaultyBus bus(what, seed);
      const bool done = bus.com.ReadSensorMemory(0, 0, 0, what.isEeprom, false);
      EXPECT_FALSE(bus.port.PortOpen());
      EXPECT_EQ(bus.session.LastError, done ? "" : "Can't read from sensor") << what.part << ", " << seed;
      EXPECT_GT(bus.port.sensor.Count().faults, 0);
      EXPECT_EQ(bus.port.sensor.Count().refused, 0);
      ++(done ? outcome.done : outcome.failed);
      for (std::size_t i = 0; done && i < bus.memory.size(); ++i) {
        ASSERT_EQ(what.isEeprom ? bus.image.EepromImage[i] : bus.image.RamImage[i], bus.memory[i])
            << "part " << what.part << ", seed " << seed << ", address " << i;
      }
    }
  }
  // A hundred attempts outlast these faults.
  EXPECT_GT(outcome.done, 9 * outcome.failed);
}

TEST(LineFaults, AWriteOfTheWholeMemoryEndsWithEveryByteRightOrWithAText) {
  const std::set<std::string> texts{"Can't save to sensor", "Can't unlock EEPROM", "Can't lock EEPROM",
                                    "Can't save to RAM"};
  Outcome outcome;
  for (const auto& what : kMemories) {
    if (!what.isEeprom) continue;
    for (std::uint32_t seed = 1; seed <= kSeeds; ++seed) {
      FaultyBus bus(what, seed);
      for (std::size_t i = 0; i < bus.memory.size(); ++i) {
        bus.image.EepromImage[i] = static_cast<float>((i * 11 + seed) % 256);
      }
      const bool done = bus.com.WriteSensorMemory(0, 0, 0, true, true, false, true, true, true);
      EXPECT_FALSE(bus.port.PortOpen());
      ++(done ? outcome.done : outcome.failed);
      if (!done) {
        EXPECT_EQ(texts.count(bus.session.LastError), 1U) << bus.session.LastError;
        continue;
      }
      EXPECT_EQ(bus.session.LastError, "");
      for (std::size_t i = 0; i < bus.memory.size(); ++i) {
        ASSERT_EQ(bus.memory[i], (i * 11 + seed) % 256)
            << "part " << what.part << ", seed " << seed << ", address " << i;
      }
    }
  }
  EXPECT_GT(outcome.done, outcome.failed);
}

TEST(LineFaults, AWriteOfTheSettingsOfPlatform5EndsWithEveryByteRightOrWithAText) {
  Outcome outcome;
  for (std::uint32_t seed = 1; seed <= kSeeds; ++seed) {
    FaultyBus bus({231, false}, seed);
    bus.com.SelectBlock(6);
    const auto selected = bus.image.ReadRequest;
    for (std::size_t i = 0; i < 256; ++i) bus.image.RamImage[i] = bus.memory[i];
    for (std::size_t i = 162; i < 197; ++i) bus.image.RamImage[i] = static_cast<float>((i * 11 + seed) % 256);
    const bool done = bus.com.WriteSensorMemory(6, 0, 0, false, true, false, true, true, true);
    EXPECT_FALSE(bus.port.PortOpen());
    ++(done ? outcome.done : outcome.failed);
    if (!done) {
      EXPECT_NE(bus.session.LastError, "");
      continue;
    }
    for (std::size_t i = 0; i < 256; ++i) {
      if (selected[i] == 255) {
        ASSERT_EQ(bus.memory[i], bus.image.RamImage[i]) << "seed " << seed << ", address " << i;
      }
    }
  }
  EXPECT_GT(outcome.done, outcome.failed);
}

/// Each kind of fault alone, so often that all retries are needed.
TEST(LineFaults, OneKindAloneIsOutlastedOrTold) {
  const bench::FaultRates kinds[] = {{.silence = 0.5},     {.wrong_byte = 0.5}, {.late = 0.3},
                                     {.short_reply = 0.5}, {.noise = 0.5},      {.nak = 1}};
  for (const auto& faults : kinds) {
    for (std::uint32_t seed = 1; seed <= 5; ++seed) {
      SensorBus bus(bench::SensorSetup{.part = 231, .pace = true, .faults = faults, .seed = seed});
      const bool done = bus.com.ReadSensorMemory(0, 120, 30, false, false);
      EXPECT_TRUE(done);
      for (std::size_t i = 120; done && i < 150; ++i) {
        ASSERT_EQ(bus.image.RamImage[i], bus.port.sensor.Ram()[i]) << seed << " at " << i;
      }
    }
  }
}

}  // namespace
}  // namespace brelant
