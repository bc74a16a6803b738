// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/exchange.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;
using test::Bytes;
using test::Dialogue;
using testing::ElementsAre;
using testing::IsEmpty;

// One part number of each platform.
constexpr std::uint8_t kPart6 = 88;
constexpr std::uint8_t kPart61 = 85;
constexpr std::uint8_t kPart7 = 33;
constexpr std::uint8_t kPart8 = 40;

class ReadMemoryTest : public test::ExchangeTest {
 protected:
  bool Read(int selector, float address, std::uint8_t count, bool isEeprom = false, bool keepOpen = false) {
    return bus.com.ReadSensorMemory(selector, address, count, isEeprom, keepOpen);
  }
};

TEST_F(ReadMemoryTest, RamIsSplitAt128) {
  Dialogue line(port);
  line.Exchange({130, 126, 0}, {6, 1, 2, 9}).Exchange({196, 0, 196}, {6, 3, 4, 5, 6, 24});
  EXPECT_TRUE(Read(0, 126, 6));
  EXPECT_EQ(line.Trouble(), "");
  for (int i = 0; i < 6; ++i) {
    const auto at = static_cast<std::size_t>(126 + i);
    EXPECT_EQ(image.RamImage[at], i + 1);
    EXPECT_EQ(image.RamRead[at], i + 1);
    EXPECT_TRUE(image.RamValid[at]);
  }
  EXPECT_FALSE(image.RamValid[125]);
  EXPECT_FALSE(image.RamValid[132]);
  EXPECT_FALSE(image.EepromValid[126]);
}

TEST_F(ReadMemoryTest, AnOddEepromAddressBringsItsWholeWord) {
  bus.KnowPart(kPart6);
  Dialogue line(port);
  line.Exchange({138, 85, 223}, {6, 7, 8, 21});
  EXPECT_TRUE(Read(0, 171, 1, true));
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_EQ(image.EepromImage[170], 7);
  EXPECT_EQ(image.EepromImage[171], 8);
  EXPECT_EQ(image.EepromRead[170], 7);
  EXPECT_EQ(image.EepromRead[171], 8);
  EXPECT_TRUE(image.EepromValid[170]);
  EXPECT_TRUE(image.EepromValid[171]);
  EXPECT_FALSE(image.EepromValid[169]);
  EXPECT_FALSE(image.EepromValid[172]);
  EXPECT_FALSE(image.RamValid[170]);
}

TEST_F(ReadMemoryTest, AnEvenEepromAddressBringsTwoBytesToo) {
  bus.KnowPart(kPart61);
  Dialogue line(port);
  line.Exchange({138, 86, 224}, {6, 0, 6, 12});
  EXPECT_TRUE(Read(0, 172, 1, true));
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_TRUE(image.EepromValid[172]);
  EXPECT_TRUE(image.EepromValid[173]);
}

TEST_F(ReadMemoryTest, OnPlatform7OneByteIsOneByte) {
  bus.KnowPart(kPart7);
  Dialogue line(port);
  line.Exchange({137, 0, 16, 153}, {6, 5, 11});
  EXPECT_TRUE(Read(0, 16, 1, true));
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_TRUE(image.EepromValid[16]);
  EXPECT_FALSE(image.EepromValid[17]);
}

TEST_F(ReadMemoryTest, OnPlatform7ThreeBytesAreFour) {
  bus.KnowPart(kPart7);
  Dialogue line(port);
  line.Exchange({140, 3, 230, 117}, {6, 1, 2, 3, 255, 11});
  EXPECT_TRUE(Read(0, 998, 3, true));
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_EQ(image.EepromImage[1001], 255);
  EXPECT_TRUE(image.EepromValid[1001]);
}

TEST_F(ReadMemoryTest, OnPlatform7AnOddAddressBringsTheOneBefore) {
  bus.KnowPart(kPart7);
  Dialogue line(port);
  line.Exchange({138, 3, 254, 139}, {6, 9, 2, 17});
  EXPECT_TRUE(Read(0, 1023, 1, true));
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_EQ(image.EepromImage[1022], 9);
  EXPECT_EQ(image.EepromImage[1023], 2);
}

TEST_F(ReadMemoryTest, OnPlatform8NothingAboveAddressZeroIsSelected) {
  bus.KnowPart(kPart8);
  EXPECT_TRUE(Read(0, 8166, 3, true));
  EXPECT_TRUE(Read(0, 1, 2, true));
  EXPECT_TRUE(Read(31, 0, 0, true));
  EXPECT_THAT(port.Sent(), IsEmpty());
  EXPECT_EQ(session.LastError, "");
  EXPECT_FALSE(port.PortOpen());
}

TEST_F(ReadMemoryTest, OnPlatform8AtMostAddressZeroIsRead) {
  bus.KnowPart(kPart8);
  Dialogue line(port);
  line.Exchange({137, 0, 0, 137}, {6, 5, 11});
  EXPECT_TRUE(Read(30, 0, 0, true));
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(ReadMemoryTest, NeverSendsTheFrameThatUnlocks) {
  Dialogue line(port);
  line.Exchange({196, 55, 251}, {6, 1, 2, 3, 4, 16}).Exchange({193, 59, 252}, {6, 5, 11});
  EXPECT_TRUE(Read(0, 183, 5));
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_EQ(image.RamImage[187], 5);
}

TEST_F(ReadMemoryTest, ACountSelectsItsBytesAndNoOther) {
  image.ReadRequest.fill(255);
  Dialogue line(port);
  line.Exchange({130, 20, 150}, {6, 1, 2, 9});
  EXPECT_TRUE(Read(0, 20, 2));
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_EQ(image.ReadRequest[19], 0);
  EXPECT_EQ(image.ReadRequest[20], 255);
  EXPECT_EQ(image.ReadRequest[21], 255);
  EXPECT_EQ(image.ReadRequest[22], 0);
  EXPECT_EQ(image.ReadRequest[255], 0);
  EXPECT_EQ(image.ReadRequest[256], 255);
}

TEST_F(ReadMemoryTest, ACountGoesBeforeASelector) {
  Dialogue line(port);
  line.Exchange({130, 20, 150}, {6, 1, 2, 9});
  EXPECT_TRUE(Read(8, 20, 2));
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(ReadMemoryTest, ASelectorReadsItsBlock) {
  // 63, 130-131, 209-210
  Dialogue line(port);
  line.Exchange({129, 63, 192}, {6, 1, 7});
  line.Exchange({194, 2, 196}, {6, 2, 3, 11});
  line.Exchange({194, 81, 19}, {6, 4, 5, 15});
  EXPECT_TRUE(Read(3, 0, 0));
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_EQ(image.RamImage[210], 5);
}

TEST_F(ReadMemoryTest, WithNeitherItReadsWhatIsRequested) {
  image.ReadRequest[20] = 255;
  image.ReadRequest[30] = 254;  // a mask of bits selects nothing
  image.ReadRequest[40] = 1;
  image.ReadRequest[300] = 255;
  Dialogue line(port);
  line.Exchange({129, 20, 149}, {6, 1, 7});
  EXPECT_TRUE(Read(0, 0, 0));
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(ReadMemoryTest, WithNothingRequestedItSucceedsWithNothing) {
  EXPECT_TRUE(Read(0, 0, 0));
  EXPECT_THAT(port.Sent(), IsEmpty());
}

TEST_F(ReadMemoryTest, TheGapsInTheWindowComeAlong) {
  bus.KnowPart(kPart6);
  for (const std::size_t address : {36U, 37U, 41U}) image.ReadRequest[address] = 255;
  Dialogue line(port);
  line.Exchange({142, 18, 160}, {6, 1, 2, 3, 4, 5, 6, 27});
  EXPECT_TRUE(Read(0, 0, 0, true));
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_TRUE(image.EepromValid[38]);
  EXPECT_EQ(image.EepromImage[39], 4);
}

TEST_F(ReadMemoryTest, WhatLiesBeyondTheMemoryIsNotRead) {
  Dialogue line(port);
  line.Exchange({194, 126, 64}, {6, 1, 2, 9});
  EXPECT_TRUE(Read(0, 254, 6));
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(ReadMemoryTest, EepromOfAnUnknownSensorAsksForThePartNumberFirst) {
  image.RamValid[65] = false;
  Dialogue line(port);
  line.Exchange({131, 65, 196}, {6, 88, 0, 1, 95});
  line.Exchange({138, 86, 224}, {6, 0, 6, 12});
  EXPECT_TRUE(Read(0, 172, 2, true));
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_EQ(image.EepromImage[173], 6);
}

TEST_F(ReadMemoryTest, AskingForThePartNumberLeavesTheSelectionAlone) {
  image.RamValid[65] = false;
  image.ReadRequest[172] = 255;
  Dialogue line(port);
  line.Exchange({131, 65, 196}, {6, 88, 0, 1, 95});
  line.Exchange({138, 86, 224}, {6, 0, 6, 12});
  EXPECT_TRUE(Read(0, 0, 0, true));
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_EQ(image.ReadRequest[172], 255);
  EXPECT_EQ(image.ReadRequest[65], 0);
}

TEST_F(ReadMemoryTest, EepromOfASensorThatDoesNotTellItsPartFails) {
  image.RamValid[65] = false;
  EXPECT_FALSE(Read(0, 172, 2, true));
  EXPECT_EQ(session.LastError, "Can't read from sensor");
  EXPECT_EQ(RequestsToSend().size(), 100U);
  EXPECT_FALSE(port.PortOpen());
}

TEST_F(ReadMemoryTest, KeepsThePortOpenIfItWasTold) {
  Dialogue line(port);
  line.Exchange({129, 20, 149}, {6, 1, 7}).Exchange({129, 21, 150}, {6, 2, 8});
  EXPECT_TRUE(Read(0, 20, 1, false, true));
  EXPECT_TRUE(port.PortOpen());
  EXPECT_TRUE(Read(0, 21, 1, false, false));
  EXPECT_FALSE(port.PortOpen());
  EXPECT_EQ(port.Of(test::ScriptedPort::Act::open).size(), 1U);
}

TEST_F(ReadMemoryTest, KeepsThePortOpenAfterGivingUpToo) {
  EXPECT_FALSE(Read(0, 20, 1, false, true));
  EXPECT_TRUE(port.PortOpen());
}

TEST_F(ReadMemoryTest, ReportsOnlyIfItWasTold) {
  EXPECT_FALSE(bus.com.ReadSensorMemory(0, 20, 1, false, false, 2, false));
  EXPECT_EQ(session.LastError, "");
  EXPECT_FALSE(bus.com.ReadSensorMemory(0, 20, 1, false, false, 2, true));
  EXPECT_EQ(session.LastError, "Can't read from sensor");
}

TEST_F(ReadMemoryTest, TellsWhatItDoesAndHowFarItIs) {
  // 9 bytes in chunks of 6 and 3: 0 and then 6 / 9, which is 66.7 %.
  std::vector<std::pair<std::string, int>> seen;
  port.onOutput = [&](const Bytes& bytes) {
    if (bytes == Bytes{254}) seen.emplace_back(session.BusBusyText, session.BusProgress);
    if (bytes == Bytes{254}) port.Arrive({223}, milliseconds(1));
    if (bytes == Bytes{154}) port.Arrive({6, 0, 0, 0, 0, 0, 0, 6}, milliseconds(1));
    if (bytes == Bytes{157}) port.Arrive({6, 0, 0, 0, 6}, milliseconds(1));
  };
  EXPECT_TRUE(Read(0, 20, 9));
  EXPECT_THAT(seen, ElementsAre(std::pair(std::string("Reading from sensor"), 0),
                                std::pair(std::string("Reading from sensor"), 67)));
  EXPECT_EQ(session.BusBusyText, "");
}

TEST_F(ReadMemoryTest, ProgressIsAtMostAHundred) {
  // Three flags, but the gaps make the first chunk 6 bytes long.
  image.ReadRequest[20] = image.ReadRequest[25] = image.ReadRequest[40] = 255;
  std::vector<int> seen;
  port.onOutput = [&](const Bytes& bytes) {
    if (bytes == Bytes{254}) seen.push_back(session.BusProgress);
    if (bytes == Bytes{254}) port.Arrive({223}, milliseconds(1));
    if (bytes == Bytes{154}) port.Arrive({6, 0, 0, 0, 0, 0, 0, 6}, milliseconds(1));
    if (bytes == Bytes{169}) port.Arrive({6, 0, 6}, milliseconds(1));
  };
  EXPECT_TRUE(Read(0, 0, 0));
  EXPECT_THAT(seen, ElementsAre(0, 100));
}

TEST_F(ReadMemoryTest, ABusyTextDoesNotOutliveAFailure) {
  EXPECT_FALSE(Read(0, 20, 1));
  EXPECT_EQ(session.BusBusyText, "");
}

/// Reads the whole of a memory of the virtual sensor and compares every byte.
void ExpectWholeMemory(int part, bool isEeprom, std::size_t exchanges) {
  test::SensorBus bus(bench::SensorSetup{.part = part});
  const auto memory = isEeprom ? bus.port.sensor.Eeprom() : bus.port.sensor.Ram();
  bus.KnowPart(static_cast<std::uint8_t>(part));
  std::fill_n(bus.image.ReadRequest.begin(), memory.size(), std::uint8_t{255});
  ASSERT_TRUE(bus.com.ReadSensorMemory(0, 0, 0, isEeprom, false));
  EXPECT_EQ(bus.port.sensor.Frames().size(), exchanges);
  for (std::size_t i = 0; i < memory.size(); ++i) {
    ASSERT_EQ(isEeprom ? bus.image.EepromImage[i] : bus.image.RamImage[i], memory[i]) << i;
    ASSERT_TRUE(isEeprom ? bus.image.EepromValid[i] : bus.image.RamValid[i]) << i;
  }
}

TEST(ReadWholeMemory, OfEachPlatform) {
  ExpectWholeMemory(231, false, 44);
  ExpectWholeMemory(88, true, 86);
  ExpectWholeMemory(85, true, 86);
  ExpectWholeMemory(33, true, 256);
}

TEST(ReadWholeMemory, TakesItsBytesAndPausesAndHardlyMore) {
  const auto duration = [](int part, bool isEeprom, int selector) {
    test::SensorBus bus(bench::SensorSetup{.part = part, .pace = true});
    bus.KnowPart(static_cast<std::uint8_t>(part));
    const auto start = bus.clock.Now();
    EXPECT_TRUE(bus.com.ReadSensorMemory(selector, 0, 0, isEeprom, false));
    return std::chrono::duration_cast<milliseconds>(bus.clock.Now() - start).count();
  };
  // 10 bits a byte at 9600 bit/s and 5 + 8 ms an exchange.
  EXPECT_NEAR(static_cast<double>(duration(231, false, 8)), 1159, 6);
  EXPECT_NEAR(static_cast<double>(duration(88, true, 30)), 2278, 12);
}

}  // namespace
}  // namespace brelant
