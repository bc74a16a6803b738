// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/exchange.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;
using test::Bytes;
using test::Dialogue;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr std::uint8_t kPart6 = 88;
constexpr std::uint8_t kPart61 = 85;
constexpr std::uint8_t kPart7 = 33;
constexpr std::uint8_t kPart8 = 40;

// Unlocking platform 6 writes its TMO counter, 0 here, first.
const Bytes kTmoWrite{65, 102, 0, 167};
const Bytes kUnlock1{147, 0, 147};
const Bytes kLock1{16, 0, 16};
const Bytes kSaveToRam1{32, 0, 32};
const Bytes kSaveToEeprom1{161, 0, 161};
const Bytes kUnlock2{197, 55, 252};
const Bytes kLock2{169, 171, 84};
const Bytes kSaveToRam2{145, 0, 145};

class WriteMemoryTest : public test::ExchangeTest {
 protected:
  /// The image and what was last read agree on a valid byte.
  void KnowEeprom(int address, float value) {
    const auto at = static_cast<std::size_t>(address);
    image.EepromImage[at] = image.EepromRead[at] = value;
    image.EepromValid[at] = true;
  }
  void KnowWholeEeprom(std::uint8_t part) {
    bus.KnowPart(part);
    for (int i = 0; i < 1024; ++i) KnowEeprom(i, static_cast<float>(i % 256));
  }
  /// EEPROM with everything that belongs to sending the settings of platforms 6 and 61.
  bool SendEeprom(int selector, float address, std::uint8_t count) {
    return bus.com.WriteSensorMemory(selector, address, count, true, true, false, true, true, false);
  }
  /// The bytes alone: no unlocking, locking or saving.
  bool WriteEeprom(float address, std::uint8_t count, bool forceAll) {
    return bus.com.WriteSensorMemory(0, address, count, true, false, false, false, false, forceAll);
  }
  bool WriteRam(float address, std::uint8_t count, bool keepOpen = false) {
    return bus.com.WriteSensorMemory(0, address, count, false, false, keepOpen, true, true, true);
  }
};

TEST_F(WriteMemoryTest, OfOneEepromWordUnlocksSendsLocksAndSaves) {
  KnowWholeEeprom(kPart6);
  image.EepromImage[36] = 240;
  image.EepromImage[37] = 0;
  Dialogue line(port);
  line.Exchange(kTmoWrite, {6}).Exchange(kUnlock1, {6});
  line.Exchange({10, 18, 240, 0, 12}, {6});
  line.Exchange(kLock1, {6}).Exchange(kSaveToRam1, {6});
  EXPECT_TRUE(SendEeprom(30, 0, 0));
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_EQ(session.LastError, "");
  EXPECT_EQ(session.BusBusyText, "");
  EXPECT_FALSE(port.PortOpen());
  EXPECT_EQ(image.EepromRead[36], 240);
  EXPECT_EQ(image.EepromRead[37], 0);
}

TEST_F(WriteMemoryTest, OfPlatform61UsesTheOtherCommandsAndNoTmoCounter) {
  KnowWholeEeprom(kPart61);
  image.EepromImage[36] = 240;
  Dialogue line(port);
  line.Exchange(kUnlock2, {6}).Exchange({10, 18, 240, 37, 49}, {6});
  line.Exchange(kLock2, {6}).Exchange(kSaveToRam2, {6});
  EXPECT_TRUE(SendEeprom(30, 0, 0));
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(WriteMemoryTest, OfNothingChangedStillUnlocksLocksAndSaves) {
  KnowWholeEeprom(kPart6);
  Dialogue line(port);
  line.Exchange(kTmoWrite, {6}).Exchange(kUnlock1, {6}).Exchange(kLock1, {6}).Exchange(kSaveToRam1, {6});
  EXPECT_TRUE(SendEeprom(30, 0, 0));
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(WriteMemoryTest, EachCommandClosesThePortAndTheNextStepOpensIt) {
  KnowWholeEeprom(kPart61);
  image.EepromImage[36] = 240;
  Dialogue line(port);
  line.Exchange(kUnlock2, {6}).Exchange({10, 18, 240, 37, 49}, {6});
  line.Exchange(kLock2, {6}).Exchange(kSaveToRam2, {6});
  EXPECT_TRUE(SendEeprom(30, 0, 0));
  EXPECT_THAT(port.Story(),
              ElementsAre("open", "254", "197", "55", "252", "close", "open", "254", "10 18 240 37 49", "254",
                          "169", "171", "84", "close", "open", "254", "145", "0", "145", "close"));
}

TEST_F(WriteMemoryTest, OnlyChangedBytesGoOut) {
  KnowWholeEeprom(kPart7);
  image.EepromImage[844] = 63;
  image.EepromImage[900] = 1;
  Dialogue line(port);
  line.Exchange({9, 3, 76, 63, 151}, {6}).Exchange({9, 3, 132, 1, 145}, {6});
  std::fill_n(image.ReadRequest.begin(), 1024, std::uint8_t{255});
  EXPECT_TRUE(bus.com.WriteSensorMemory(0, 0, 0, true, false, false, false, false, false));
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(WriteMemoryTest, AByteThatWasNeverReadCountsAsChanged) {
  KnowWholeEeprom(kPart7);
  image.EepromValid[844] = false;  // image and read agree all the same: 844 % 256 is 76
  Dialogue line(port);
  line.Exchange({9, 3, 76, 76, 164}, {6});
  EXPECT_TRUE(WriteEeprom(840, 16, false));
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(WriteMemoryTest, ForcedAllBytesGoOut) {
  KnowWholeEeprom(kPart6);
  Dialogue line(port);
  line.Exchange({12, 20, 40, 41, 42, 43, 198}, {6}).Exchange({10, 22, 44, 45, 121}, {6});
  EXPECT_TRUE(WriteEeprom(40, 6, true));
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(WriteMemoryTest, HalfAWordTakesItsKnownPartnerAlong) {
  bus.KnowPart(kPart6);
  KnowEeprom(32, 3);
  KnowEeprom(33, 9);
  image.EepromImage[32] = 7;
  Dialogue line(port);
  line.Exchange({10, 16, 7, 9, 42}, {6});
  EXPECT_TRUE(WriteEeprom(32, 1, false));
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(WriteMemoryTest, AnOddHalfTakesTheByteBeforeIt) {
  bus.KnowPart(kPart6);
  KnowEeprom(32, 7);
  KnowEeprom(33, 9);
  image.EepromImage[33] = 1;
  Dialogue line(port);
  line.Exchange({10, 16, 7, 1, 34}, {6});
  EXPECT_TRUE(WriteEeprom(33, 1, false));
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(WriteMemoryTest, HalfAWordWithAnUnknownPartnerIsRefused) {
  for (const int half : {32, 33}) {
    test::ScriptedBus fresh;
    fresh.KnowPart(kPart6);
    fresh.image.EepromValid[static_cast<std::size_t>(half)] = true;
    EXPECT_FALSE(
        fresh.com.WriteSensorMemory(0, static_cast<float>(half), 1, true, true, false, false, true, true));
    EXPECT_THAT(fresh.port.Sent(), IsEmpty());
    EXPECT_THAT(fresh.ui.Texts(), ElementsAre("Word varning "));
    EXPECT_EQ(fresh.ui.messages.at(0).icon, UserInterface::Icon::stop);
    EXPECT_EQ(fresh.ui.messages.at(0).buttons, UserInterface::Buttons::ok);
    EXPECT_EQ(fresh.session.LastError, "Can't save to sensor");
    EXPECT_FALSE(fresh.port.PortOpen());
  }
}

TEST_F(WriteMemoryTest, ARefusedHalfLeavesTheSensorUnlocked) {
  bus.KnowPart(kPart6);
  Dialogue line(port);
  line.Exchange(kTmoWrite, {6}).Exchange(kUnlock1, {6});
  EXPECT_FALSE(SendEeprom(0, 32, 1));
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_THAT(bus.ui.Texts(), ElementsAre("Word varning "));
}

TEST_F(WriteMemoryTest, BothHalvesUnknownButSelectedAreSent) {
  bus.KnowPart(kPart6);
  image.EepromImage[32] = 7;
  image.EepromImage[33] = 8;
  Dialogue line(port);
  line.Exchange({10, 16, 7, 8, 41}, {6});
  EXPECT_TRUE(WriteEeprom(32, 2, false));
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_FALSE(image.EepromValid[32]);
}

TEST_F(WriteMemoryTest, OfPlatform7KnowsNoWords) {
  bus.KnowPart(kPart7);
  image.EepromImage[33] = 1;
  Dialogue line(port);
  line.Exchange({9, 0, 33, 1, 43}, {6});
  EXPECT_TRUE(WriteEeprom(33, 1, true));
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_THAT(bus.ui.messages, IsEmpty());
}

TEST_F(WriteMemoryTest, OfPlatform7KeepsToItsPages) {
  bus.KnowPart(kPart7);
  for (int i = 846; i <= 849; ++i) image.EepromImage[static_cast<std::size_t>(i)] = 1;
  Dialogue line(port);
  line.Exchange({10, 3, 78, 1, 1, 93}, {6}).Exchange({10, 3, 80, 1, 1, 95}, {6});
  EXPECT_TRUE(WriteEeprom(846, 4, true));
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(WriteMemoryTest, OfPlatform5EepromUnlocksBeforeItIsRefused) {
  bus.KnowPart(kPart);
  Dialogue line(port);
  line.Exchange(kUnlock1, {6});
  EXPECT_FALSE(SendEeprom(0, 36, 2));
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_THAT(bus.ui.Texts(), ElementsAre("Kan inte skriva till infPlatform 5 EEPROM"));
  EXPECT_EQ(session.LastError, "Can't save to sensor");
  EXPECT_FALSE(port.PortOpen());
}

TEST_F(WriteMemoryTest, OfPlatform5EepromIsRefusedWithoutUnlockingToo) {
  bus.KnowPart(kPart);
  EXPECT_FALSE(WriteEeprom(36, 2, true));
  EXPECT_THAT(port.Sent(), IsEmpty());
  EXPECT_THAT(bus.ui.Texts(), ElementsAre("Kan inte skriva till infPlatform 5 EEPROM"));
}

TEST_F(WriteMemoryTest, OfPlatform8EepromFailsBeforeAnythingIsSent) {
  bus.KnowPart(kPart8);
  EXPECT_FALSE(SendEeprom(0, 36, 2));
  EXPECT_THAT(port.Sent(), IsEmpty());
  EXPECT_EQ(session.LastError, "Can't save to sensor");
  EXPECT_FALSE(port.PortOpen());
}

TEST_F(WriteMemoryTest, OfRamUnlocksAndLocksNothing) {
  image.RamImage[31] = 2;
  Dialogue line(port);
  line.Exchange({1, 31, 2, 34}, {6});
  EXPECT_TRUE(WriteRam(31, 1));
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(WriteMemoryTest, OfRamIsSavedIntoEeprom) {
  image.RamImage[31] = 2;
  Dialogue line(port);
  line.Exchange({1, 31, 2, 34}, {6}).Exchange(kSaveToEeprom1, {6});
  EXPECT_TRUE(bus.com.WriteSensorMemory(0, 31, 1, false, true, false, true, true, true));
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(WriteMemoryTest, OfRamIsSavedIntoEepromOnTheOtherGenerationToo) {
  bus.KnowPart(96);
  image.RamImage[31] = 2;
  Dialogue line(port);
  line.Exchange({1, 31, 2, 34}, {6}).Exchange({153, 173, 70}, {6});
  EXPECT_TRUE(bus.com.WriteSensorMemory(0, 31, 1, false, true, false, true, true, true));
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(WriteMemoryTest, OfRamSendsUnchangedBytesToo) {
  image.RamImage[31] = image.RamRead[31] = 2;
  image.RamValid[31] = true;
  Dialogue line(port);
  line.Exchange({1, 31, 2, 34}, {6});
  EXPECT_TRUE(bus.com.WriteSensorMemory(0, 31, 1, false, false, false, true, true, false));
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(WriteMemoryTest, OfRamMovesEepromReadAtTheWireAddresses) {
  for (int i = 0; i < 256; ++i) image.EepromImage[static_cast<std::size_t>(i)] = static_cast<float>(i);
  image.RamRead[31] = image.RamRead[208] = 77;
  Dialogue line(port);
  line.Exchange({1, 31, 0, 32}, {6}).Exchange({65, 80, 0, 145}, {6}).Exchange({4, 126, 0, 0, 0, 0, 130}, {6});
  EXPECT_TRUE(WriteRam(31, 1));
  EXPECT_TRUE(WriteRam(208, 1));
  EXPECT_TRUE(WriteRam(126, 4));
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_EQ(image.EepromRead[31], 31);
  EXPECT_EQ(image.EepromRead[80], 80);
  EXPECT_EQ(image.EepromRead[208], 0);
  for (const std::size_t i : {126U, 127U, 128U, 129U}) EXPECT_EQ(image.EepromRead[i], i);
  EXPECT_EQ(image.EepromRead[130], 0);
  EXPECT_EQ(image.RamRead[31], 77);
  EXPECT_EQ(image.RamRead[208], 77);
}

TEST_F(WriteMemoryTest, TheGapBytesOfRamAreWrittenAlong) {
  for (const std::size_t address : {57U, 59U, 60U}) image.ReadRequest[address] = 255;
  image.RamImage[58] = 9;
  Dialogue line(port);
  line.Exchange({4, 57, 0, 9, 0, 0, 70}, {6});
  EXPECT_TRUE(bus.com.WriteSensorMemory(0, 0, 0, false, false, false, true, true, true));
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(WriteMemoryTest, TheSettingsOfPlatform5GoOutInNineteenExchanges) {
  test::SensorBus sensor(bench::SensorSetup{.part = 231});
  sensor.KnowPart(231);
  EXPECT_TRUE(sensor.com.WriteSensorMemory(6, 0, 0, false, true, false, true, true, true));
  const std::vector<std::pair<int, int>> chunks{
      {31, 2},  {57, 4},  {61, 2},  {162, 4}, {166, 4}, {170, 4}, {174, 4}, {178, 4}, {182, 4}, {186, 4},
      {190, 4}, {194, 3}, {205, 4}, {212, 2}, {216, 4}, {220, 4}, {224, 4}, {228, 4}, {232, 1}};
  const auto frames = sensor.port.sensor.Frames();
  ASSERT_EQ(frames.size(), chunks.size() + 1);
  for (std::size_t i = 0; i < chunks.size(); ++i) {
    const auto [address, count] = chunks[i];
    const int bank = address < 128 ? 0 : 64;
    EXPECT_EQ(frames.at(i)[0], bank + count) << i;
    EXPECT_EQ(frames.at(i)[1], address - 2 * bank) << i;
    EXPECT_EQ(frames.at(i).size(), static_cast<std::size_t>(count) + 3) << i;
  }
  EXPECT_EQ(frames.back(), (Bytes{153, 173, 70}));
}

TEST_F(WriteMemoryTest, ACountDoesNotTouchTheRequest) {
  image.ReadRequest[100] = 255;
  Dialogue line(port);
  line.Exchange({1, 31, 0, 32}, {6});
  EXPECT_TRUE(WriteRam(31, 1));
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_EQ(image.ReadRequest[100], 255);
  EXPECT_EQ(image.ReadRequest[31], 0);
}

TEST_F(WriteMemoryTest, ACountGoesBeforeASelectorWhichIsSelectedAllTheSame) {
  Dialogue line(port);
  line.Exchange({1, 31, 0, 32}, {6});
  EXPECT_TRUE(bus.com.WriteSensorMemory(3, 31, 1, false, false, false, true, true, true));
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_EQ(image.ReadRequest[63], 255);
}

TEST_F(WriteMemoryTest, TheFlagsAreItsOwnWhileUnlockingWritesInItsMiddle) {
  KnowWholeEeprom(kPart6);
  image.EepromImage[36] = 240;
  image.ReadRequest[36] = 255;
  Dialogue line(port);
  line.Exchange(kTmoWrite, {6}).Exchange(kUnlock1, {6});
  line.Exchange({10, 18, 240, 37, 49}, {6});
  line.Exchange(kLock1, {6}).Exchange(kSaveToRam1, {6});
  EXPECT_TRUE(SendEeprom(0, 0, 0));
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(WriteMemoryTest, AskingForThePartNumberLeavesTheSelectionAlone) {
  KnowWholeEeprom(kPart6);
  image.RamValid[65] = false;
  image.EepromImage[36] = 240;
  image.ReadRequest[36] = 255;
  Dialogue line(port);
  line.Exchange({131, 65, 196}, {6, 85, 0, 1, 92});
  line.Exchange(kUnlock2, {6}).Exchange({10, 18, 240, 37, 49}, {6});
  line.Exchange(kLock2, {6}).Exchange(kSaveToRam2, {6});
  EXPECT_TRUE(SendEeprom(0, 0, 0));
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(WriteMemoryTest, AFailingUnlockEndsItBeforeAnyByte) {
  KnowWholeEeprom(kPart61);
  image.EepromImage[36] = 240;
  EXPECT_FALSE(SendEeprom(30, 0, 0));
  EXPECT_EQ(session.LastError, "Can't unlock EEPROM");
  EXPECT_EQ(port.Sent(), Bytes(100, 254));
  EXPECT_FALSE(port.PortOpen());
}

TEST_F(WriteMemoryTest, AFailingLockFailsItAndSkipsTheSave) {
  KnowWholeEeprom(kPart61);
  image.EepromImage[36] = 240;
  port.onOutput = [&](const Bytes& bytes) {
    if (bytes == Bytes{254}) port.Arrive({223}, milliseconds(1));
    if (bytes == Bytes{252} || bytes.size() == 5) port.Arrive({6}, milliseconds(1));
  };
  EXPECT_FALSE(SendEeprom(30, 0, 0));
  EXPECT_EQ(session.LastError, "Can't lock EEPROM");
  EXPECT_THAT(port.Story(), Not(Contains("145")));
  EXPECT_EQ(image.EepromRead[36], 240);
  EXPECT_FALSE(port.PortOpen());
}

TEST_F(WriteMemoryTest, AFailingSaveFailsIt) {
  KnowWholeEeprom(kPart61);
  port.onOutput = [&](const Bytes& bytes) {
    if (bytes == Bytes{254}) port.Arrive({223}, milliseconds(1));
    if (bytes == Bytes{252} || bytes == Bytes{84}) port.Arrive({6}, milliseconds(1));
  };
  EXPECT_FALSE(SendEeprom(30, 0, 0));
  EXPECT_EQ(session.LastError, "Can't save to RAM");
}

TEST_F(WriteMemoryTest, AFailingSaveOfRamFailsIt) {
  port.onOutput = [&](const Bytes& bytes) {
    if (bytes == Bytes{254}) port.Arrive({223}, milliseconds(1));
    if (bytes.size() == 4) port.Arrive({6}, milliseconds(1));
  };
  EXPECT_FALSE(bus.com.WriteSensorMemory(0, 31, 1, false, true, false, true, true, true));
  EXPECT_EQ(session.LastError, "Can't save to EEPROM");
}

TEST_F(WriteMemoryTest, AFailedWriteLeavesTheSensorUnlocked) {
  KnowWholeEeprom(kPart61);
  image.EepromImage[36] = 240;
  image.EepromImage[40] = 12.5F;
  Dialogue line(port);
  line.Exchange(kUnlock2, {6}).Exchange({10, 18, 240, 37, 49}, {6}).Expect({254}).Reply({223});
  EXPECT_FALSE(SendEeprom(30, 0, 0));
  EXPECT_EQ(line.Trouble(), "");
  EXPECT_EQ(session.LastError, "Can't save to sensor");
  EXPECT_EQ(image.EepromRead[36], 240);
  EXPECT_EQ(image.EepromRead[40], 40);
  EXPECT_FALSE(port.PortOpen());
}

TEST_F(WriteMemoryTest, KeepsThePortOpenIfItWasTold) {
  Dialogue line(port);
  line.Exchange({1, 31, 0, 32}, {6}).Exchange({1, 32, 0, 33}, {6});
  EXPECT_TRUE(WriteRam(31, 1, true));
  EXPECT_TRUE(port.PortOpen());
  EXPECT_TRUE(WriteRam(32, 1, false));
  EXPECT_FALSE(port.PortOpen());
  EXPECT_EQ(port.Of(test::ScriptedPort::Act::open).size(), 1U);
}

TEST_F(WriteMemoryTest, KeepsThePortOpenAfterAFailureToo) {
  EXPECT_FALSE(WriteRam(31, 1, true));
  EXPECT_TRUE(port.PortOpen());
}

TEST_F(WriteMemoryTest, TellsWhatItDoesAndHowFarItIs) {
  KnowWholeEeprom(kPart61);
  std::vector<std::pair<std::string, int>> seen;
  port.onOutput = [&](const Bytes& bytes) {
    if (bytes == Bytes{254}) {
      port.Arrive({223}, milliseconds(1));
      return;
    }
    if (bytes.size() > 1) seen.emplace_back(session.BusBusyText, session.BusProgress);
    if (bytes.size() > 1 || bytes == Bytes{252} || bytes == Bytes{84} || bytes == Bytes{145}) {
      port.Arrive({6}, milliseconds(1));
    }
  };
  // 10 bytes in chunks of 4, 4 and 2.
  EXPECT_TRUE(bus.com.WriteSensorMemory(0, 40, 10, true, true, false, true, true, true));
  const std::string sending = "Sending to sensor";
  EXPECT_THAT(seen, ElementsAre(std::pair(sending, 0), std::pair(sending, 40), std::pair(sending, 80)));
  EXPECT_EQ(session.BusBusyText, "");
}

TEST_F(WriteMemoryTest, TheStepsHaveTheirBusyTexts) {
  KnowWholeEeprom(kPart61);
  std::vector<std::string> seen;
  port.onOutput = [&](const Bytes& bytes) {
    if (bytes == Bytes{254}) port.Arrive({223}, milliseconds(1));
    if (bytes == Bytes{252} || bytes == Bytes{84} || bytes == Bytes{145}) port.Arrive({6}, milliseconds(50));
    if (bytes == Bytes{252} || bytes == Bytes{84} || bytes == Bytes{145}) {
      bus.pump.After(milliseconds(20), [&] { seen.push_back(session.BusBusyText); });
    }
  };
  // Of the last command the third byte is its first one too.
  EXPECT_TRUE(SendEeprom(30, 0, 0));
  EXPECT_THAT(seen, Contains("Unlocking EEPROM"));
  EXPECT_THAT(seen, Contains("Locking EEPROM"));
  EXPECT_THAT(seen, Contains("Saving to RAM"));
}

/// Writes the whole memory and compares what the sensor then holds.
void ExpectWholeEeprom(int part, std::size_t size, std::size_t frames) {
  test::SensorBus bus(bench::SensorSetup{.part = part});
  bus.KnowPart(static_cast<std::uint8_t>(part));
  std::fill_n(bus.image.ReadRequest.begin(), size, std::uint8_t{255});
  for (std::size_t i = 0; i < size; ++i) bus.image.EepromImage[i] = static_cast<float>((i * 7 + 3) % 256);
  ASSERT_TRUE(bus.com.WriteSensorMemory(0, 0, 0, true, false, false, true, false, true));
  EXPECT_EQ(bus.port.sensor.Frames().size(), frames);
  for (std::size_t i = 0; i < size; ++i) {
    ASSERT_EQ(bus.port.sensor.Eeprom()[i], (i * 7 + 3) % 256) << part << " at " << i;
    ASSERT_EQ(bus.image.EepromRead[i], bus.image.EepromImage[i]) << part << " at " << i;
  }
}

TEST(WriteWholeMemory, OfEachPlatform) {
  ExpectWholeEeprom(88, 512, 128 + 2);
  ExpectWholeEeprom(85, 512, 128 + 1);
  ExpectWholeEeprom(33, 1024, 256 + 1);
}

TEST(WriteWholeMemory, TakesItsBytesAndPausesAndHardlyMore) {
  test::SensorBus bus(bench::SensorSetup{.part = 85, .pace = true});
  bus.KnowPart(85);
  bus.port.sensor.Eeprom();
  ASSERT_TRUE(bus.com.SensorCommand(snscom::unlockEeprom, false));
  const auto start = bus.clock.Now();
  ASSERT_TRUE(bus.com.WriteSensorMemory(30, 0, 0, true, false, false, false, false, true));
  const auto lasted = std::chrono::duration_cast<milliseconds>(bus.clock.Now() - start).count();
  EXPECT_NEAR(static_cast<double>(lasted), 2997, 15);
}

}  // namespace
}  // namespace brelant
