// SPDX-License-Identifier: GPL-3.0-or-later
#include <cmath>
#include <stdexcept>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arithmetic.h"
#include "bench/product.h"
#include "bench/virtual_sensor.h"

namespace brelant::bench {
namespace {

TEST(Product, PlatformOfEveryPartNumber) {
  for (int part = 0; part < 256; ++part) {
    const int low = part & 127;
    int expected = 0;
    if (low >= 96) expected = 5;
    if (low >= 88 && low <= 95) expected = 6;
    if (low >= 80 && low <= 87) expected = 61;
    if (low >= 40 && low <= 47) expected = 8;
    if ((low >= 32 && low <= 39) || (low >= 48 && low <= 63)) expected = 7;
    if (part == 154) expected = 9;
    EXPECT_EQ(PlatformOfPart(part), expected) << part;
  }
}

TEST(Product, GenerationFollowsThePartNumber) {
  for (const int part : {96, 103, 224, 231}) EXPECT_EQ(VirtualSensor({.part = part}).Generation(), 2) << part;
  for (const int part : {104, 112, 120, 127, 232, 255}) {
    EXPECT_EQ(VirtualSensor({.part = part}).Generation(), 1) << part;
  }
  EXPECT_EQ(VirtualSensor({.part = 88}).Generation(), 1);
  EXPECT_EQ(VirtualSensor({.part = 80}).Generation(), 2);
  EXPECT_EQ(VirtualSensor({.part = 32}).Generation(), 2);
  EXPECT_EQ(VirtualSensor({.part = 154}).Generation(), 0);
  EXPECT_EQ(VirtualSensor({.part = 40}).Generation(), 0);
}

TEST(Setup, ThatCannotBeIsRefused) {
  for (const int part : {-1, 256, 0, 26, 64, 79, 153, 155}) {
    EXPECT_THROW(VirtualSensor({.part = part}), std::invalid_argument) << part;
  }
  EXPECT_THROW(VirtualSensor({.part = 231, .id = 0}), std::invalid_argument);
  EXPECT_THROW(VirtualSensor({.part = 231, .id = 30}), std::invalid_argument);
  EXPECT_THROW(VirtualSensor({.part = 231, .variant = 256}), std::invalid_argument);
  EXPECT_THROW(VirtualSensor({.part = 217, .variant = 6}), std::invalid_argument);
  EXPECT_THROW(VirtualSensor({.part = 221, .variant = 0}), std::invalid_argument);
  EXPECT_THROW(VirtualSensor({.part = 215, .variant = 2}), std::invalid_argument);
}

TEST(Settings, PartNumberStandsInRam65) {
  for (const int part : {231, 104, 217, 222, 215, 50, 154}) {
    VirtualSensor sensor({.part = part});
    EXPECT_EQ(sensor.Ram()[65], part);
  }
}

TEST(Settings, EepromOfPlatforms6And61HoldsThePartNumberToo) {
  for (const int part : {217, 222, 215}) {
    VirtualSensor sensor({.part = part});
    EXPECT_EQ(sensor.Eeprom()[164], part);
  }
}

TEST(Settings, IdStandsWhereThePlatformKeepsIt) {
  EXPECT_EQ(VirtualSensor({.part = 231, .id = 12}).Ram()[208], 12);
  EXPECT_EQ(VirtualSensor({.part = 217, .id = 12}).Eeprom()[32], 12);
  EXPECT_EQ(VirtualSensor({.part = 215, .id = 12}).Eeprom()[32], 12);
  EXPECT_EQ(VirtualSensor({.part = 50, .id = 12}).Eeprom()[16], 12);
}

TEST(Settings, SerialNumberByPlatform) {
  VirtualSensor five({.part = 231});
  VirtualSensor six({.part = 217});
  VirtualSensor seven({.part = 50});
  EXPECT_EQ(WordAt(five.Ram(), 66), 1042);
  EXPECT_EQ(WordAt(six.Eeprom(), 170), 1042);
  EXPECT_EQ(seven.Eeprom()[998] + seven.Eeprom()[999] * 256 + seven.Eeprom()[1000] * 65536, 1042);
}

// How a host tells the variant of platforms 6 and 61.
int ToldVariant(ConstBytes eeprom, int part) {
  if ((eeprom[165] & 1) == 0 && eeprom[173] == 0) return 4;
  if (part == 221) return 5;
  if ((eeprom[90] & 1) != 0) return 2;
  return eeprom[173] == 6 ? 0 : eeprom[173];
}

TEST(Settings, VariantIsToldAsAsked) {
  for (const int variant : {0, 1, 2, 3, 4, 5}) {
    VirtualSensor sensor({.part = 217, .variant = variant});
    EXPECT_EQ(ToldVariant(sensor.Eeprom(), 217), variant);
  }
  for (const int variant : {0, 1}) {
    VirtualSensor sensor({.part = 215, .variant = variant});
    EXPECT_EQ(ToldVariant(sensor.Eeprom(), 215), variant);
  }
  EXPECT_EQ(VirtualSensor({.part = 231, .variant = 3}).Ram()[226], 3);
  EXPECT_EQ(VirtualSensor({.part = 50, .variant = 1}).Eeprom()[1023], 1);
}

TEST(Settings, UsualVariant) {
  EXPECT_EQ(VirtualSensor({.part = 231}).Ram()[226], 0);
  EXPECT_EQ(VirtualSensor({.part = 50}).Eeprom()[1023], 2);
  EXPECT_EQ(ToldVariant(VirtualSensor({.part = 217}).Eeprom(), 217), 0);
  EXPECT_EQ(ToldVariant(VirtualSensor({.part = 221}).Eeprom(), 221), 5);
  EXPECT_EQ(ToldVariant(VirtualSensor({.part = 222}).Eeprom(), 222), 1);
  EXPECT_EQ(ToldVariant(VirtualSensor({.part = 223}).Eeprom(), 223), 1);
}

TEST(Settings, EepromOfPlatform5IsACopyOfRam) {
  VirtualSensor sensor({.part = 231});
  for (const std::size_t at : {31U, 57U, 65U, 130U, 162U, 189U, 205U, 208U, 226U}) {
    EXPECT_EQ(sensor.Eeprom()[at], sensor.Ram()[at]) << at;
  }
}

TEST(Settings, TablesFallToNoGasAtEntry15) {
  struct Case {
    int part;
    std::size_t table;
    int none;
  };
  for (const auto& [part, table, none] : {Case{217, 444, 5000}, Case{215, 444, 5000}, Case{50, 580, 0}}) {
    VirtualSensor sensor({.part = part});
    for (std::size_t entry = 0; entry < 15; ++entry) {
      EXPECT_GE(WordAt(sensor.Eeprom(), table + 2 * entry), WordAt(sensor.Eeprom(), table + 2 * entry + 2));
    }
    EXPECT_EQ(WordAt(sensor.Eeprom(), table + 30), none);
    EXPECT_GT(WordAt(sensor.Eeprom(), table + 28), none);
    // Entry 16 continues the segment from 14 to 15; it may be below zero.
    const int step = WordAt(sensor.Eeprom(), table + 28) - none;
    EXPECT_EQ(WordAt(sensor.Eeprom(), table + 32), (none - step) & 0xFFFF);
  }
}

TEST(Settings, TableOfCurveAWithTheHalvedScale) {
  // The entries 14 and 7 belong to transmissions of 29/30 and 11/15.
  VirtualSensor sensor({.part = 217});
  for (const auto& [entry, transmission] : {std::pair{14U, 29.0 / 30}, std::pair{7U, 11.0 / 15}}) {
    const int c = WordAt(sensor.Eeprom(), 444 + 2 * entry) - 5000;
    EXPECT_GE(kPrintedA.At(c), transmission) << entry;
    EXPECT_LT(kPrintedA.At(c + 1), transmission) << entry;
  }
}

TEST(Image, GoesOutAndComesBack) {
  VirtualSensor first({.part = 50, .id = 3});
  first.Eeprom()[900] = 77;
  first.Ram()[192] = 9;
  const std::vector<std::uint8_t> image = first.Image();
  ASSERT_EQ(image.size(), 256U + 1024U);
  EXPECT_EQ(image[65], 50);
  EXPECT_EQ(image[256 + 900], 77);

  VirtualSensor second({.part = 50});
  EXPECT_TRUE(second.Restore(image));
  EXPECT_EQ(second.Eeprom()[900], 77);
  EXPECT_EQ(second.Id(), 9);
}

TEST(Image, ComesBackLockedAsAfterPowerOn) {
  VirtualSensor sensor({.part = 50});
  for (const std::uint8_t byte : {254, 197, 55, 252}) sensor.Receive(byte, std::chrono::microseconds(0));
  ASSERT_FALSE(sensor.Locked());
  EXPECT_TRUE(sensor.Restore(sensor.Image()));
  EXPECT_TRUE(sensor.Locked());
}

TEST(Image, OfAnotherSensorIsRefused) {
  VirtualSensor sensor({.part = 231, .id = 3});
  EXPECT_FALSE(sensor.Restore(VirtualSensor({.part = 104, .id = 4}).Image()));
  EXPECT_FALSE(sensor.Restore(VirtualSensor({.part = 50}).Image()));
  EXPECT_FALSE(sensor.Restore({}));
  EXPECT_EQ(sensor.Id(), 3);
}

TEST(Id, CanBeSet) {
  VirtualSensor sensor({.part = 50});
  sensor.SetId(29);
  EXPECT_EQ(sensor.Id(), 29);
  EXPECT_EQ(sensor.Eeprom()[16], 29);
  EXPECT_THROW(sensor.SetId(30), std::invalid_argument);
}

}  // namespace
}  // namespace brelant::bench
