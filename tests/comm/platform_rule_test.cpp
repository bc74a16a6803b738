// SPDX-License-Identifier: GPL-3.0-or-later
#include "comm/platform_rule.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/bus.h"
#include "support/dialogue.h"

namespace brelant {
namespace {

struct Range {
  int first;
  int last;
  int platform;
};

// Every part number, once without bit 7 and once with it.
constexpr Range kRanges[] = {
    {0, 31, 0},    {32, 39, 7},   {40, 47, 8},   {48, 63, 7},    {64, 79, 0},   {80, 87, 61},
    {88, 95, 6},   {96, 127, 5},  {128, 153, 0}, {154, 154, 9},  {155, 159, 0}, {160, 167, 7},
    {168, 175, 8}, {176, 191, 7}, {192, 207, 0}, {208, 215, 61}, {216, 223, 6}, {224, 255, 5},
};

int ExpectedPlatform(int part) {
  for (const auto& range : kRanges) {
    if (part >= range.first && part <= range.last) return range.platform;
  }
  return -1;
}

/// Generation 2 on platform 5: bits 3 and 4 of the part number both clear.
int ExpectedGeneration(int part) {
  switch (ExpectedPlatform(part)) {
    case 5:
      return (part >= 96 && part <= 103) || (part >= 224 && part <= 231) ? 2 : 1;
    case 6:
      return 1;
    case 61:
    case 7:
      return 2;
    default:
      return 0;
  }
}

TEST(PlatformOfPart, OfEveryPartNumber) {
  for (int part = 0; part < 256; ++part) {
    EXPECT_EQ(PlatformOfPart(static_cast<std::uint8_t>(part)), ExpectedPlatform(part)) << part;
  }
}

TEST(ProtocolGenerationOfPart, OfEveryPartNumber) {
  for (int part = 0; part < 256; ++part) {
    EXPECT_EQ(ProtocolGenerationOfPart(static_cast<std::uint8_t>(part)), ExpectedGeneration(part)) << part;
  }
}

TEST(GetPartNumber, FetchesThreeBytesOnce) {
  test::ScriptedBus bus;
  test::Dialogue line(bus.port);
  line.Exchange({131, 65, 196}, {6, 101, 0, 123, 230});
  EXPECT_EQ(bus.com.GetPartNumber(), 101);
  EXPECT_EQ(bus.com.GetPartNumber(), 101);
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_FALSE(bus.port.PortOpen());
  EXPECT_TRUE(bus.image.RamValid[65] && bus.image.RamValid[66] && bus.image.RamValid[67]);
  EXPECT_EQ(bus.image.RamImage[67], 123);
}

TEST(GetPartNumber, IsZeroWhenTheReadFails) {
  test::ScriptedBus bus;
  EXPECT_EQ(bus.com.GetPartNumber(), 0);
  EXPECT_EQ(bus.session.LastError, "Can't read from sensor");
}

TEST(GetPlatform, SaysSoWhenTheProductIsUnknown) {
  test::ScriptedBus bus;
  bus.KnowPart(26);
  EXPECT_EQ(bus.com.GetPlatform(), 0);
  EXPECT_EQ(bus.session.LastError, "Unknown product");
  bus.session.LastError = "an earlier text";
  EXPECT_EQ(bus.com.GetPlatform(), 0);
  EXPECT_EQ(bus.session.LastError, "an earlier text");
}

TEST(GetPlatform, FollowsTheImage) {
  test::ScriptedBus bus;
  bus.KnowPart(154);
  EXPECT_EQ(bus.com.GetPlatform(), 9);
  bus.KnowPart(88);
  EXPECT_EQ(bus.com.GetPlatform(), 6);
  EXPECT_EQ(bus.session.LastError, "");
}

TEST(GetProtocolGeneration, SaysSoWhenThereIsNone) {
  for (const std::uint8_t part : {40, 154}) {
    test::ScriptedBus bus;
    bus.KnowPart(part);
    EXPECT_EQ(bus.com.GetProtocolGeneration(), 0);
    EXPECT_EQ(bus.session.LastError, "Unkown protokol");
    bus.session.LastError = "an earlier text";
    bus.com.GetProtocolGeneration();
    EXPECT_EQ(bus.session.LastError, "an earlier text");
  }
}

}  // namespace
}  // namespace brelant
