// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host.h"

namespace brelant::bench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kPlatform5First = 104;
constexpr int kPlatform5Second = 231;
constexpr int kPlatform6 = 217;
constexpr int kPlatform61 = 215;
constexpr int kPlatform7 = 50;

TEST(Lock, IsOnAfterPowerOn) {
  for (const int part : {kPlatform5First, kPlatform5Second, kPlatform6, kPlatform61, kPlatform7}) {
    EXPECT_TRUE(VirtualSensor({.part = part}).Locked()) << part;
  }
}

TEST(Lock, OfTheFirstGeneration) {
  for (const int part : {kPlatform5First, kPlatform6}) {
    Host host({.part = part});
    EXPECT_EQ(host.sensor.Generation(), 1);
    EXPECT_THAT(host.Exchange({147, 0, 147}), ElementsAre(6));
    EXPECT_FALSE(host.sensor.Locked());
    EXPECT_THAT(host.Exchange({16, 0, 16}), ElementsAre(6));
    EXPECT_TRUE(host.sensor.Locked());
  }
}

TEST(Lock, OfTheSecondGeneration) {
  for (const int part : {kPlatform5Second, kPlatform61, kPlatform7}) {
    Host host({.part = part});
    EXPECT_EQ(host.sensor.Generation(), 2);
    EXPECT_THAT(host.Exchange({197, 55, 252}), ElementsAre(6));
    EXPECT_FALSE(host.sensor.Locked());
    EXPECT_THAT(host.Exchange({169, 171, 84}), ElementsAre(6));
    EXPECT_TRUE(host.sensor.Locked());
  }
}

TEST(Lock, UnlockOfTheSecondGenerationIsAReadToTheFirst) {
  Host host({.part = kPlatform5First});
  for (std::uint8_t i = 0; i < 5; ++i) host.sensor.Ram()[183U + i] = static_cast<std::uint8_t>(i + 1);
  EXPECT_THAT(host.Exchange({197, 55, 252}), ElementsAre(6, 1, 2, 3, 4, 5, 21));
  EXPECT_TRUE(host.sensor.Locked());
}

TEST(Lock, OtherReadsOfThatLengthAreNoUnlock) {
  Host host({.part = kPlatform5Second});
  for (std::uint8_t i = 0; i < 5; ++i) host.sensor.Ram()[184U + i] = static_cast<std::uint8_t>(i + 1);
  EXPECT_THAT(host.Exchange({197, 56, 253}), ElementsAre(6, 1, 2, 3, 4, 5, 21));
  EXPECT_TRUE(host.sensor.Locked());
}

TEST(Lock, KeepsAWriteOut) {
  Host host({.part = kPlatform6});
  const std::uint8_t before = host.sensor.Eeprom()[100];
  EXPECT_THAT(host.Exchange({10, 50, 7, 9, 76}), IsEmpty());
  EXPECT_EQ(host.sensor.Eeprom()[100], before);
  EXPECT_EQ(host.sensor.Count().refused, 1);
}

TEST(Lock, KeepsAWriteOutAgainAfterLocking) {
  Host host({.part = kPlatform7});
  host.Exchange({197, 55, 252});
  EXPECT_THAT(host.Exchange({9, 0, 16, 5, 30}), ElementsAre(6));
  host.Exchange({169, 171, 84});
  EXPECT_THAT(host.Exchange({9, 0, 16, 6, 31}), IsEmpty());
  EXPECT_EQ(host.sensor.Eeprom()[16], 5);
}

TEST(Command, OfTheOtherGenerationIsRefused) {
  Host first({.part = kPlatform6});
  for (const ByteList& frame : {ByteList{145, 0, 145}, {153, 173, 70}, {169, 171, 84}, {185, 1, 186}}) {
    EXPECT_THAT(first.Exchange(frame), IsEmpty());
  }
  EXPECT_EQ(first.sensor.Count().refused, 4);
  Host second({.part = kPlatform61});
  for (const ByteList& frame : {ByteList{32, 0, 32}, {16, 0, 16}, {147, 0, 147}}) {
    EXPECT_THAT(second.Exchange(frame), IsEmpty());
  }
  EXPECT_EQ(second.sensor.Count().refused, 3);
}

TEST(Command, NeedsItsParameter) {
  Host host({.part = kPlatform61});
  EXPECT_THAT(host.Exchange({153, 172, 69}), IsEmpty());
  EXPECT_THAT(host.Exchange({197, 54, 251}), testing::SizeIs(7));  // a read of RAM 182
  EXPECT_TRUE(host.sensor.Locked());
}

TEST(Command, NeedsItsChecksum) {
  Host host({.part = kPlatform61});
  EXPECT_THAT(host.Exchange({197, 55, 251}), IsEmpty());
  EXPECT_TRUE(host.sensor.Locked());
  EXPECT_EQ(host.sensor.Count().wrong_checksums, 1);
}

// A function of platform 5 lies at RAM 162 and is kept at the same place in EEPROM.
void SavesAndFetchesOnPlatform5(int part, const ByteList& to_eeprom, const ByteList& to_ram) {
  Host host({.part = part});
  host.sensor.Ram()[162] = 2;
  EXPECT_THAT(host.Exchange(to_eeprom), ElementsAre(6));
  EXPECT_EQ(host.sensor.Eeprom()[162], 2);
  host.sensor.Ram()[162] = 1;
  EXPECT_THAT(host.Exchange(to_ram), ElementsAre(6));
  EXPECT_EQ(host.sensor.Ram()[162], 2);
  EXPECT_EQ(host.sensor.Count().saves, 2);
}

TEST(Save, OfTheFirstGenerationIsDoneThoughTheEepromIsLocked) {
  SavesAndFetchesOnPlatform5(kPlatform5First, {161, 0, 161}, {32, 0, 32});
}

TEST(Save, OfTheSecondGenerationIsDoneThoughTheEepromIsLocked) {
  SavesAndFetchesOnPlatform5(kPlatform5Second, {153, 173, 70}, {145, 0, 145});
}

TEST(Save, ToRamLeavesTheLiveValues) {
  Host host({.part = kPlatform5Second});
  host.sensor.Ram()[20] = 99;
  host.sensor.Ram()[197] = 98;
  host.Exchange({145, 0, 145});
  EXPECT_EQ(host.sensor.Ram()[20], 99);
  EXPECT_EQ(host.sensor.Ram()[197], 98);
}

TEST(Save, ToRamBringsTheIdOfEepromIntoForce) {
  Host six({.part = kPlatform6, .id = 1});
  six.sensor.Eeprom()[32] = 7;
  EXPECT_THAT(six.Send({231}), IsEmpty());
  six.Exchange({32, 0, 32});
  EXPECT_THAT(six.Send({231}), ElementsAre(223));

  Host seven({.part = kPlatform7, .id = 1});
  seven.sensor.Eeprom()[16] = 8;
  seven.Exchange({145, 0, 145});
  EXPECT_THAT(seven.Send({232}), ElementsAre(223));
}

TEST(Save, ToRamBringsTheCalibrationBaseToItsPlaceInRam) {
  Host six({.part = kPlatform6});
  six.sensor.Eeprom()[36] = 12;
  six.sensor.Eeprom()[41] = 13;
  six.Exchange({32, 0, 32});
  EXPECT_EQ(six.sensor.Ram()[212], 12);
  EXPECT_EQ(six.sensor.Ram()[217], 13);

  Host sixty_one({.part = kPlatform61});
  sixty_one.sensor.Eeprom()[34] = 14;
  sixty_one.Exchange({145, 0, 145});
  EXPECT_EQ(sixty_one.sensor.Ram()[210], 14);
}

TEST(SaveId, StoresTheIdAndNothingElse) {
  Host host({.part = kPlatform5Second, .id = 1});
  host.sensor.Ram()[208] = 9;
  host.sensor.Ram()[31] = 4;
  ASSERT_NE(host.sensor.Eeprom()[31], 4);
  EXPECT_THAT(host.Exchange({161, 0, 161}), ElementsAre(6));
  EXPECT_EQ(host.sensor.Eeprom()[208], 9);
  EXPECT_NE(host.sensor.Eeprom()[31], 4);
}

TEST(AverageReset, BeginsTheAverageAnew) {
  Host host({.part = kPlatform5Second});
  const auto word = [&](std::size_t at) { return host.sensor.Ram()[at] * 256 + host.sensor.Ram()[at + 1]; };
  // A quarter of the wave: CO2 is high, its average since power-on is not yet.
  host.sensor.Advance(std::chrono::seconds(13));
  ASSERT_GT(word(22), word(26) + 100);
  EXPECT_THAT(host.Exchange({185, 1, 186}), ElementsAre(6));
  EXPECT_NEAR(word(26), word(22), 1);
  EXPECT_EQ(host.sensor.Count().twa_resets, 1);
}

}  // namespace
}  // namespace brelant::bench
