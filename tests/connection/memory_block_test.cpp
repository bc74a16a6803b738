// SPDX-License-Identifier: GPL-3.0-or-later
#include "connection/both_roads.h"

namespace brelant {
namespace {

using test::Bytes;
using test::FailureOf;
using test::kCancel;
using testing::ElementsAre;
using testing::IsEmpty;

class MemoryBlockTest : public test::BothRoadsTest {
 protected:
  Bytes Block(int address, int count, int kind) { return sens.Memory().ReadBlock(address, count, kind); }
  static int Content(int address) { return address * 7 % 251; }
};

TEST_P(MemoryBlockTest, GivesTheBytesOfEitherMemoryFromAnyAddress) {
  for (const int kind : {SensorMemory::ram, SensorMemory::eeprom}) {
    for (int address = 5000; address < 5020; ++address) PutByte(kind, address, Content(address) + kind);
    for (int address = 5000; address < 5008; ++address) {
      for (int count = 1; count <= 10; ++count) {
        const auto bytes = Block(address, count, kind);
        ASSERT_EQ(bytes.size(), static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) {
          ASSERT_EQ(bytes.at(static_cast<std::size_t>(i)), Content(address + i) + kind)
              << address << " " << count;
        }
      }
    }
  }
}

TEST_P(MemoryBlockTest, GoesInAsFewTransfersAsTheRoadAllows) {
  Block(1024, 3072, SensorMemory::ram);
  if (IsModbus()) {
    // 3072 bytes are 1536 registers, 12 times 125 and 36; 4096 + 512 is the first.
    EXPECT_EQ(Transfers(), 13U);
    EXPECT_EQ(modbus.Story().front(), "1 holding 4608+125");
    EXPECT_EQ(modbus.Story().back(), "1 holding 6108+36");
  } else {
    EXPECT_EQ(Transfers(), 768U);
    // A read of 4 bytes in the wide form; 1024 is 4 x 256.
    EXPECT_EQ(kiBus->frames.front(), (Bytes{180, 4, 0}));
    EXPECT_EQ(kiBus->frames.back(), (Bytes{180, 15, 252}));
  }
}

TEST_P(MemoryBlockTest, TellsTheProgressOfTheWholeRun) {
  std::vector<int> told;
  sens.onProgress = [&](int percent) { told.push_back(percent); };
  Block(1024, IsModbus() ? 1000 : 16, SensorMemory::ram);
  EXPECT_THAT(told, ElementsAre(25, 50, 75, 100));
}

TEST_P(MemoryBlockTest, TellsEachPercentageOnce) {
  std::vector<int> told;
  sens.onProgress = [&](int percent) { told.push_back(percent); };
  Block(1024, 3000, SensorMemory::ram);
  if (IsModbus()) {
    // 12 times 125 registers
    EXPECT_THAT(told, ElementsAre(8, 16, 25, 33, 41, 50, 58, 66, 75, 83, 91, 100));
  } else {
    // 750 frames
    std::vector<int> all(101);
    std::iota(all.begin(), all.end(), 0);
    EXPECT_EQ(told, all);
  }
}

TEST_P(MemoryBlockTest, ACancelOrAnAbortEndsItBetweenTwoTransfers) {
  for (const bool isAbort : {false, true}) {
    Forget();
    sens.onProgress = [&](int percent) {
      if (percent < 50) return;
      isAbort ? sens.Abort() : void(bus.session.CancelPressed = true);
    };
    EXPECT_EQ(FailureOf([&] { Block(1024, IsModbus() ? 1000 : 16, SensorMemory::ram); }), kCancel);
    EXPECT_EQ(Transfers(), 2U);
    bus.session.CancelPressed = false;
    sens.onProgress = nullptr;
    EXPECT_EQ(FailureOf([&] { Block(1024, 4, SensorMemory::ram); }), "");
  }
}

TEST_P(MemoryBlockTest, AConnectionThatIsClosedMeanwhileEndsIt) {
  sens.onProgress = [&](int) { sens.Disconnect(); };
  EXPECT_EQ(FailureOf([&] { Block(1024, 600, SensorMemory::ram); }), kCancel);
  EXPECT_EQ(Transfers(), 1U);
}

TEST_P(MemoryBlockTest, EndsWhereTheMemoryDoes) {
  for (const int kind : {SensorMemory::ram, SensorMemory::eeprom}) {
    PutByte(kind, 8191, 77);
    EXPECT_THAT(Block(8191, 1, kind), ElementsAre(77));
    Forget();
    for (const auto& [address, count] :
         std::vector<std::pair<int, int>>{{8191, 2}, {8192, 1}, {-1, 2}, {0, 8193}, {10, 0}, {10, -1}}) {
      EXPECT_NE(FailureOf([&, a = address, c = count] { Block(a, c, kind); }), "") << address << " " << count;
    }
    EXPECT_EQ(Transfers(), 0U);
  }
}

INSTANTIATE_TEST_SUITE_P(Roads, MemoryBlockTest, testing::Bool(), test::RoadName);

}  // namespace
}  // namespace brelant
