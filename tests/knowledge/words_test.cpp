// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/knowledge.h"

namespace brelant {
namespace {

using namespace test;
using testing::IsEmpty;

class WordsTest : public KnowledgeTest {
 protected:
  /// The sensor answers each of these requests, in this order, with zeros.
  void ExpectReads(Dialogue& line, const std::vector<Bytes>& requests) {
    for (const auto& request : requests) {
      Bytes reply((request[0] & 7U) + 2U, 0);
      reply.front() = reply.back() = 6;
      line.Exchange(request, reply);
    }
  }
};

TEST_F(WordsTest, ALiveWordIsFetchedOnlyWhenItsFlagIsClear) {
  Attach(kPart5);
  image.SetRamWord(22, 5123);
  EXPECT_EQ(info.GetChannelRaw(1, false), 5123);
  EXPECT_THAT(port.Events(), IsEmpty());
  image.RamValid[23] = false;
  Dialogue line(port);
  line.Exchange({130, 22, 152}, {6, 1, 2, 9});
  EXPECT_EQ(info.GetChannelRaw(1, false), 258);
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(WordsTest, WhereTheLiveWordsOfPlatform6Lie) {
  Attach(kPart6);
  image.SetRamWord(236, 100);
  image.SetRamWord(238, 101);
  for (int channel = 2; channel <= 12; ++channel) {
    image.SetRamWord(12 + 2 * (channel - 2), static_cast<float>(100 + channel));
  }
  image.RamImage[34] = 113;
  for (int channel = 0; channel <= 13; ++channel) {
    if (channel == 13) image.RamImage[35] = 9;
    EXPECT_EQ(info.GetChannelRaw(static_cast<float>(channel), false), 100 + channel);
  }
}

TEST_F(WordsTest, ARefreshReadsTheBlocksOfPlatform5) {
  Attach(kPart5);
  Dialogue line(port);
  line.Exchange({134, 20, 154}, {6, 1, 2, 3, 4, 5, 6, 27}).Exchange({196, 108, 48}, {6, 0, 0, 0, 0, 6});
  EXPECT_EQ(info.GetChannelRaw(1, true), 3 * 256 + 4);
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(WordsTest, ARefreshReadsTheBlocksOfPlatform6) {
  Attach(kPart6);
  Dialogue line(port);
  ExpectReads(line, {{134, 12, 146}, {134, 18, 152}, {134, 24, 158}, {133, 30, 163}, {196, 108, 48}});
  EXPECT_EQ(info.GetChannelRaw(11, true), 0);
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(WordsTest, ARefreshIsNearlyAlwaysDone) {
  Attach(kPart5);
  Dialogue line(port);
  for (int i = 0; i < 2; ++i) ExpectReads(line, {{134, 20, 154}, {196, 108, 48}});
  info.GetChannelRaw(0, true);
  info.GetChannelRaw(1, true);
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(WordsTest, AfterMidnightARefreshRestsUntilYesterdaysTimeComesRoundAgain) {
  Attach(kPart5);
  image.SetRamWord(22, 5123);
  bus.clock.SetTimer(86390);
  Dialogue line(port);
  ExpectReads(line, {{134, 20, 154}, {196, 108, 48}});
  info.GetChannelRaw(0, true);
  EXPECT_EQ(line.Trouble(), "");
  image.SetRamWord(22, 5123);
  bus.clock.SetTimer(5);
  EXPECT_EQ(info.GetChannelRaw(1, true), 5123);
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(WordsTest, Platforms61And7AlwaysReadTheWord) {
  for (const auto part : {kPart61, kPart7}) {
    ScriptedBus fresh;
    Definitions none(fresh.session, fresh.image, fresh.com, fresh.machine);
    SnsInfo fresher(fresh.session, fresh.image, fresh.com, none, fresh.machine);
    fresh.image.RamValid.fill(true);
    fresh.KnowPart(part);
    Dialogue line(fresh.port);
    line.Exchange({130, 22, 152}, {6, 1, 2, 9}).Exchange({130, 22, 152}, {6, 1, 3, 10});
    EXPECT_EQ(fresher.GetChannelRaw(5, false), 258);
    EXPECT_EQ(fresher.GetChannelRaw(5, true), 259);
    EXPECT_EQ(line.Trouble(), "");
  }
}

TEST_F(WordsTest, WhereTheCalibrationWordsLie) {
  Attach(kPart5);
  image.SetRamWord(128 + 2, 1111);
  image.SetRamWord(136 + 2, 2222);
  SetRam(202, 33);
  EXPECT_EQ(info.GetZeroWord(1), 1111);
  EXPECT_EQ(info.GetSpanWord(1), 2222);
  EXPECT_EQ(info.GetTempCoefficient(1), 33);
  Attach(kPart6);
  image.SetEepromWord(46, 1234);
  image.SetEepromWord(48, 4321);
  SetEeprom(104, 44);
  SetEeprom(105, 55);
  EXPECT_EQ(info.GetZeroWord(11), 1234);
  EXPECT_EQ(info.GetZeroWord(12), 4321);
  EXPECT_EQ(info.GetZeroWord(5), 0);
  EXPECT_EQ(info.GetSpanWord(11), 0);
  EXPECT_EQ(info.GetTempCoefficient(11), 44);
  EXPECT_EQ(info.GetTempCoefficient(12), 55);
  Attach(kPart61);
  SetEeprom(83, 66);
  EXPECT_EQ(info.GetZeroWord(5), 1234);
  EXPECT_EQ(info.GetTempCoefficient(5), 66);
  EXPECT_THAT(port.Events(), IsEmpty());
}

TEST_F(WordsTest, OnPlatform5AMissingWordIsFetchedFromEepromAndTakenFromRam) {
  bus.KnowPart(kPart5);
  image.SetRamWord(130, 1111);
  Dialogue line(port);
  line.Exchange({138, 65, 203}, {6, 9, 9, 24});
  EXPECT_EQ(info.GetZeroWord(1), 1111);
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(WordsTest, SignalWordsAndDeviationsAreAlwaysReadAfresh) {
  Attach(kPart5);
  Dialogue line(port);
  line.Exchange({130, 70, 200}, {6, 1, 2, 9}).Exchange({193, 106, 43}, {6, 130, 136});
  EXPECT_EQ(info.GetSignalWord(1), 258);
  EXPECT_EQ(info.GetTempDeviation(0), 3);
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(WordsTest, SoTheyAreOnPlatform6) {
  Attach(kPart6);
  Dialogue line(port);
  line.Exchange({130, 72, 202}, {6, 1, 2, 9}).Exchange({130, 74, 204}, {6, 1, 3, 10});
  line.Exchange({193, 126, 63}, {6, 100, 106});
  EXPECT_EQ(info.GetSignalWord(11), 258);
  EXPECT_EQ(info.GetSignalWord(12), 259);
  EXPECT_EQ(info.GetSignalWord(2), 0);
  EXPECT_EQ(info.GetTempDeviation(0), -27);
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(WordsTest, SoTheyAreOnPlatform61) {
  Attach(kPart61);
  SetEeprom(165, 1);
  Dialogue line(port);
  line.Exchange({130, 40, 170}, {6, 1, 2, 9}).Exchange({130, 42, 172}, {6, 255, 254, 3});
  EXPECT_EQ(info.GetSignalWord(5), 258);
  EXPECT_EQ(info.GetTempDeviation(5), -2);
  SetEeprom(173, 3);  // a variant without a signal word
  EXPECT_EQ(info.GetSignalWord(5), 0);
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(WordsTest, AZeroWordIsSetInTheImageAndStaysThere) {
  Attach(kPart5);
  EXPECT_TRUE(info.SetZeroWord(1, false, false, 5123));
  EXPECT_EQ(image.RamImage[130], 20);
  EXPECT_EQ(image.RamImage[131], 3);
  EXPECT_TRUE(info.SetSpanWord(1, false, false, 70000));
  EXPECT_EQ(image.RamImage[138], 255);
  EXPECT_EQ(image.RamImage[139], 255);
  EXPECT_THAT(port.Events(), IsEmpty());
}

TEST_F(WordsTest, Platform5HasFiveChannelsForThem) {
  Attach(kPart5);
  info.SetZeroWord(4, false, false, 257);
  EXPECT_EQ(image.RamImage[136], 1);
  info.SetZeroWord(5, false, false, 257);
  EXPECT_EQ(image.RamImage[138], 0);
  info.SetSpanWord(5, false, false, 257);
  EXPECT_EQ(image.RamImage[146], 0);
}

TEST_F(WordsTest, OnPlatforms6And61TheZeroWordLiesInEepromAndThereIsNoSpanWord) {
  for (const auto part : {kPart6, kPart61}) {
    Attach(part);
    image.SetEepromWord(46, 0);
    const float channel = part == kPart6 ? 11 : 5;
    info.SetZeroWord(channel, false, false, 5123);
    EXPECT_EQ(image.EepromWord(46), 5123);
    info.SetSpanWord(channel, true, false, 1);
  }
  EXPECT_THAT(port.Events(), IsEmpty());
}

TEST_F(WordsTest, AWordIsSentAtOnceIfAskedFor) {
  Attach(kPart5);
  Dialogue line(port);
  line.Exchange({66, 2, 20, 3, 91}, {6}).Exchange({161, 0, 161}, {6});
  EXPECT_TRUE(info.SetZeroWord(1, true, false, 5123));
  EXPECT_EQ(line.Trouble(), "");
}

TEST_F(WordsTest, AWordOfPlatform61IsSentWithAllThatBelongsToIt) {
  Attach(kPart61);
  Dialogue line(port);
  line.Exchange({197, 55, 252}, {6}).Exchange({10, 23, 20, 3, 56}, {6});
  line.Exchange({169, 171, 84}, {6}).Exchange({145, 0, 145}, {6});
  EXPECT_TRUE(info.SetZeroWord(5, true, false, 5123));
  EXPECT_EQ(line.Trouble(), "");
}

}  // namespace
}  // namespace brelant
