// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <initializer_list>
#include <numeric>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host.h"

namespace brelant::bench {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kPlatform5 = 231;
constexpr int kPlatform6 = 217;
constexpr int kPlatform61 = 215;
constexpr int kPlatform7 = 50;

void Poke(Bytes memory, std::size_t address, std::initializer_list<std::uint8_t> bytes) {
  std::ranges::copy(bytes, memory.subspan(address).begin());
}

ByteList Peek(ConstBytes memory, std::size_t address, std::size_t count) {
  const ConstBytes bytes = memory.subspan(address, count);
  return {bytes.begin(), bytes.end()};
}

TEST(Request, IsAnsweredForItsIdAndForTheBroadcast) {
  Host host({.part = kPlatform5, .id = 3});
  EXPECT_THAT(host.Send({227}), ElementsAre(223));
  EXPECT_THAT(host.Send({254}), ElementsAre(223));
  EXPECT_EQ(host.sensor.Count().requests, 2);
}

TEST(Request, IsNotAnsweredForAnotherId) {
  Host host({.part = kPlatform5, .id = 3});
  EXPECT_THAT(host.Send({224}), IsEmpty());
  EXPECT_THAT(host.Send({226}), IsEmpty());
  EXPECT_THAT(host.Send({253}), IsEmpty());
  EXPECT_EQ(host.sensor.Count().requests, 0);
}

TEST(Request, OfAnotherSensorTakesTheClearToReceiveBack) {
  Host host({.part = kPlatform5, .id = 3});
  host.Send({227, 228});
  EXPECT_THAT(host.Send({129, 65, 194}), IsEmpty());
}

TEST(Request, InPlaceOfAFrameStartsOver) {
  Host host({.part = kPlatform5});
  EXPECT_THAT(host.Send({254, 254}), ElementsAre(223, 223));
  EXPECT_THAT(host.Send({129, 65, 194}), ElementsAre(6, 231, 237));
}

TEST(Request, ModemEscapeIsNotOne) {
  Host host({.part = kPlatform5});
  EXPECT_THAT(host.Send({65, 84, 79}), IsEmpty());
  EXPECT_THAT(host.Send({254}), ElementsAre(223));
}

TEST(Frame, WithoutARequestIsNotHeard) {
  Host host({.part = kPlatform5});
  EXPECT_THAT(host.Send({129, 65, 194}), IsEmpty());
  EXPECT_THAT(host.sensor.Frames(), IsEmpty());
}

TEST(Frame, NeedsARequestEach) {
  Host host({.part = kPlatform5});
  EXPECT_THAT(host.Exchange({129, 65, 194}), ElementsAre(6, 231, 237));
  EXPECT_THAT(host.Send({129, 65, 194}), IsEmpty());
}

TEST(Frame, WithAWrongChecksumGetsNoReplyAndIsRecorded) {
  Host host({.part = kPlatform5});
  EXPECT_THAT(host.Exchange({129, 65, 195}), IsEmpty());
  EXPECT_THAT(host.sensor.Frames(), ElementsAre(ElementsAre(129, 65, 195)));
  EXPECT_EQ(host.sensor.Count().wrong_checksums, 1);
  EXPECT_EQ(host.sensor.Count().refused, 0);
}

TEST(Frame, AWriteWithAWrongChecksumChangesNothing) {
  Host host({.part = kPlatform5});
  host.sensor.Ram()[31] = 2;
  EXPECT_THAT(host.Exchange({1, 31, 4, 37}), IsEmpty());
  EXPECT_EQ(host.sensor.Ram()[31], 2);
}

TEST(Frame, SurvivesAPauseOf50Milliseconds) {
  Host host({.part = kPlatform5});
  host.Send({254});
  host.Pass(milliseconds(50));
  host.Send({129, 65});
  host.Pass(milliseconds(50));
  EXPECT_THAT(host.Send({194}), ElementsAre(6, 231, 237));
}

TEST(Frame, IsForgottenAfterALongerSilence) {
  Host host({.part = kPlatform5});
  host.Send({254, 129, 65});
  host.Pass(milliseconds(51));
  EXPECT_THAT(host.Send({194}), IsEmpty());
  EXPECT_THAT(host.sensor.Frames(), IsEmpty());
}

TEST(Frame, ModemEscapeAfterASilenceIsNoFrame) {
  // 65 84 79 and the request of ID 4, 228 = their sum, would make a good write to RAM 212.
  Host host({.part = kPlatform5, .id = 4});
  const std::uint8_t before = host.sensor.Ram()[212];
  ASSERT_NE(before, 79);
  host.Send({228});
  host.Pass(milliseconds(105));
  EXPECT_THAT(host.Send({65, 84, 79, 228}), ElementsAre(223));
  EXPECT_EQ(host.sensor.Ram()[212], before);
}

TEST(ReadRam, LowerHalf) {
  Host host({.part = kPlatform5});
  Poke(host.sensor.Ram(), 20, {1, 2, 3, 4, 5, 250});
  EXPECT_THAT(host.Exchange({134, 20, 154}), ElementsAre(6, 1, 2, 3, 4, 5, 250, 15));
}

TEST(ReadRam, UpperHalfByItsBankBit) {
  Host host({.part = kPlatform6});
  Poke(host.sensor.Ram(), 197, {1, 2, 3, 4});
  EXPECT_THAT(host.Exchange({196, 69, 9}), ElementsAre(6, 1, 2, 3, 4, 16));
}

TEST(ReadRam, UpToTheMiddleButNotAcross) {
  Host host({.part = kPlatform61});
  Poke(host.sensor.Ram(), 123, {1, 2, 3, 4, 5, 6});
  EXPECT_THAT(host.Exchange({133, 123, 0}), ElementsAre(6, 1, 2, 3, 4, 5, 21));
  EXPECT_THAT(host.Exchange({134, 123, 1}), IsEmpty());
  EXPECT_EQ(host.sensor.Count().refused, 1);
}

TEST(ReadRam, HasNoAddressByteAbove127) {
  Host host({.part = kPlatform7});
  EXPECT_THAT(host.Exchange({129, 128, 1}), IsEmpty());
  EXPECT_THAT(host.Exchange({193, 128, 65}), IsEmpty());
  EXPECT_EQ(host.sensor.Count().refused, 2);
}

TEST(WriteRam, LowerHalf) {
  Host host({.part = kPlatform5});
  EXPECT_THAT(host.Exchange({1, 31, 4, 36}), ElementsAre(6));
  EXPECT_EQ(host.sensor.Ram()[31], 4);
}

TEST(WriteRam, UpperHalfByItsBankBit) {
  Host host({.part = kPlatform7});
  EXPECT_THAT(host.Exchange({66, 100, 7, 8, 181}), ElementsAre(6));
  EXPECT_THAT(Peek(host.sensor.Ram(), 228, 2), ElementsAre(7, 8));
}

TEST(WriteRam, GoesAcrossTheMiddle) {
  Host host({.part = kPlatform5});
  EXPECT_THAT(host.Exchange({4, 126, 10, 20, 30, 40, 230}), ElementsAre(6));
  EXPECT_THAT(Peek(host.sensor.Ram(), 126, 4), ElementsAre(10, 20, 30, 40));
}

TEST(WriteRam, NeedsNoUnlocking) {
  Host host({.part = kPlatform6});
  ASSERT_TRUE(host.sensor.Locked());
  EXPECT_THAT(host.Exchange({65, 102, 1, 168}), ElementsAre(6));
  EXPECT_EQ(host.sensor.Ram()[230], 1);
}

TEST(WriteRam, OfTheIdCountsFromTheNextRequest) {
  Host host({.part = kPlatform5, .id = 1});
  EXPECT_THAT(host.Exchange({65, 80, 5, 150}), ElementsAre(6));
  EXPECT_THAT(host.Send({225}), IsEmpty());
  EXPECT_THAT(host.Send({229}), ElementsAre(223));
}

TEST(ReadEeprom, ByWordAddress) {
  Host host({.part = kPlatform6});
  Poke(host.sensor.Eeprom(), 100, {1, 2, 3, 250});
  EXPECT_THAT(host.Exchange({140, 50, 190}), ElementsAre(6, 1, 2, 3, 250, 6));
}

TEST(ReadEeprom, ByWordAddressUpToTheEnd) {
  Host host({.part = kPlatform61});
  Poke(host.sensor.Eeprom(), 510, {11, 22});
  EXPECT_THAT(host.Exchange({138, 255, 137}), ElementsAre(6, 11, 22, 39));
  EXPECT_THAT(host.Exchange({140, 255, 139}), IsEmpty());
}

TEST(ReadEeprom, ByWordAddressIsInWholeWords) {
  Host host({.part = kPlatform61});
  EXPECT_THAT(host.Exchange({137, 50, 187}), IsEmpty());
  EXPECT_THAT(host.Exchange({139, 50, 189}), IsEmpty());
  EXPECT_EQ(host.sensor.Count().refused, 2);
}

TEST(ReadEeprom, OfPlatform5IsByWordAddressToo) {
  Host host({.part = kPlatform5});
  EXPECT_EQ(host.sensor.Eeprom().size(), 512U);
  Poke(host.sensor.Eeprom(), 162, {9, 8});
  EXPECT_THAT(host.Exchange({138, 81, 219}), ElementsAre(6, 9, 8, 23));
}

TEST(ReadEeprom, ByLongAddress) {
  Host host({.part = kPlatform7});
  EXPECT_EQ(host.sensor.Eeprom().size(), 1024U);
  Poke(host.sensor.Eeprom(), 998, {1, 2, 3, 4});
  EXPECT_THAT(host.Exchange({140, 3, 230, 117}), ElementsAre(6, 1, 2, 3, 4, 16));
  EXPECT_THAT(host.Exchange({137, 3, 231, 115}), ElementsAre(6, 2, 8));
}

TEST(ReadEeprom, ByLongAddressNotPastTheEnd) {
  Host host({.part = kPlatform7});
  EXPECT_THAT(host.Exchange({137, 4, 0, 141}), IsEmpty());
  EXPECT_THAT(host.Exchange({138, 3, 255, 140}), IsEmpty());
  EXPECT_EQ(host.sensor.Count().refused, 2);
}

TEST(WriteEeprom, ByWordAddress) {
  Host host({.part = kPlatform6});
  EXPECT_THAT(host.Exchange({147, 0, 147}), ElementsAre(6));
  EXPECT_THAT(host.Exchange({10, 50, 7, 9, 76}), ElementsAre(6));
  EXPECT_THAT(host.Exchange({12, 51, 1, 2, 3, 4, 73}), ElementsAre(6));
  EXPECT_THAT(Peek(host.sensor.Eeprom(), 100, 6), ElementsAre(7, 9, 1, 2, 3, 4));
}

TEST(WriteEeprom, ByWordAddressIsInWholeWords) {
  Host host({.part = kPlatform6});
  host.Exchange({147, 0, 147});
  EXPECT_THAT(host.Exchange({9, 50, 7, 66}), IsEmpty());
  EXPECT_NE(host.sensor.Eeprom()[100], 7);
}

TEST(WriteEeprom, ByLongAddress) {
  Host host({.part = kPlatform7});
  host.Exchange({197, 55, 252});
  EXPECT_THAT(host.Exchange({12, 3, 66, 1, 2, 3, 4, 91}), ElementsAre(6));
  EXPECT_THAT(Peek(host.sensor.Eeprom(), 834, 4), ElementsAre(1, 2, 3, 4));
}

TEST(WriteEeprom, ThatLeavesItsPageComesInAtThePagesBeginning) {
  Host host({.part = kPlatform7});
  host.Exchange({197, 55, 252});
  Poke(host.sensor.Eeprom(), 992, {0, 0});
  Poke(host.sensor.Eeprom(), 1008, {77, 78});
  EXPECT_THAT(host.Exchange({12, 3, 238, 1, 2, 3, 4, 7}), ElementsAre(6));
  EXPECT_THAT(Peek(host.sensor.Eeprom(), 1006, 2), ElementsAre(1, 2));
  EXPECT_THAT(Peek(host.sensor.Eeprom(), 992, 2), ElementsAre(3, 4));
  EXPECT_THAT(Peek(host.sensor.Eeprom(), 1008, 2), ElementsAre(77, 78));
}

TEST(WriteEeprom, ByWordAddressKnowsNoPages) {
  Host host({.part = kPlatform61});
  host.Exchange({197, 55, 252});
  EXPECT_THAT(host.Exchange({12, 7, 1, 2, 3, 4, 29}), ElementsAre(6));
  EXPECT_THAT(Peek(host.sensor.Eeprom(), 14, 4), ElementsAre(1, 2, 3, 4));
}

// Whatever comes in, the sensor stays within its memories (the sanitizers look) and can be asked again.
TEST(AnyBytes, LeaveASensorThatAnswers) {
  for (const int part : {kPlatform5, kPlatform6, kPlatform61, kPlatform7}) {
    Host host({.part = part});
    std::mt19937 random(1);
    for (int i = 0; i < 20000; ++i) {
      ByteList frame(1 + random() % 8);
      for (std::uint8_t& byte : frame) byte = static_cast<std::uint8_t>(random());
      frame.push_back(static_cast<std::uint8_t>(std::accumulate(frame.begin(), frame.end(), 0)));
      host.Exchange(frame);
      if (i % 100 == 0) host.sensor.Advance(host.now);
      host.Pass(milliseconds(60));
    }
    EXPECT_GT(host.sensor.Count().frames, 1000);
    EXPECT_THAT(host.Send({254}), ElementsAre(223));
  }
}

TEST(Record, HoldsEveryFrameInOrder) {
  Host host({.part = kPlatform7});
  host.Exchange({129, 65, 194});
  host.Exchange({137, 3, 231, 115});
  host.Exchange({1, 31, 4, 36});
  EXPECT_THAT(host.sensor.Frames(), ElementsAre(ElementsAre(129, 65, 194), ElementsAre(137, 3, 231, 115),
                                                ElementsAre(1, 31, 4, 36)));
  EXPECT_EQ(host.sensor.Count().frames, 3);
  host.sensor.ForgetFrames();
  EXPECT_THAT(host.sensor.Frames(), IsEmpty());
}

}  // namespace
}  // namespace brelant::bench
