// SPDX-License-Identifier: GPL-3.0-or-later
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "comm/kibus.h"

namespace brelant::kibus {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

constexpr int kRam = 256;
constexpr int kWords = 512;
constexpr int kLong = 1024;

std::vector<bool> Flags(int size, const std::set<int>& addresses) {
  std::vector<bool> flags(static_cast<std::size_t>(size));
  for (const int address : addresses) flags.at(static_cast<std::size_t>(address)) = true;
  return flags;
}

std::set<int> FromTo(int first, int last) {
  std::set<int> addresses;
  for (int i = first; i <= last; ++i) addresses.insert(i);
  return addresses;
}

TEST(PlanRead, OfNothingIsNothing) {
  EXPECT_THAT(PlanRead(Flags(kRam, {}), false), ElementsAre());
  EXPECT_THAT(PlanRead(Flags(1, {}), true), ElementsAre());
}

TEST(PlanRead, OfRamIsCutAt128) {
  EXPECT_THAT(PlanRead(Flags(kRam, FromTo(126, 131)), false), ElementsAre(Chunk{126, 2}, Chunk{128, 4}));
  EXPECT_THAT(PlanRead(Flags(kRam, FromTo(122, 128)), false), ElementsAre(Chunk{122, 6}, Chunk{128, 1}));
  for (int start = 123; start < 128; ++start) {
    EXPECT_EQ(PlanRead(Flags(kRam, FromTo(start, 140)), false).front(), (Chunk{start, 128 - start})) << start;
  }
  EXPECT_THAT(PlanRead(Flags(kRam, {127, 128}), false), ElementsAre(Chunk{127, 1}, Chunk{128, 1}));
  EXPECT_THAT(PlanRead(Flags(kRam, {125, 130}), false), ElementsAre(Chunk{125, 3}, Chunk{130, 1}));
}

TEST(PlanRead, TakesTheGapsInItsWindowAlong) {
  EXPECT_THAT(PlanRead(Flags(kRam, {57, 59, 60, 61, 62}), false), ElementsAre(Chunk{57, 6}));
  EXPECT_THAT(PlanRead(Flags(kRam, {10, 13}), false), ElementsAre(Chunk{10, 4}));
  EXPECT_THAT(PlanRead(Flags(kRam, {10, 16}), false), ElementsAre(Chunk{10, 1}, Chunk{16, 1}));
}

TEST(PlanRead, OfTheBlocksThatThePollReads) {
  EXPECT_THAT(PlanRead(Flags(kRam, FromTo(20, 27)), false), ElementsAre(Chunk{20, 6}, Chunk{26, 2}));
}

TEST(PlanRead, StopsAtTheEndOfTheMemory) {
  EXPECT_THAT(PlanRead(Flags(kRam, FromTo(253, 255)), false), ElementsAre(Chunk{253, 3}));
  EXPECT_THAT(PlanRead(Flags(kWords, FromTo(508, 511)), true), ElementsAre(Chunk{508, 4}));
  EXPECT_THAT(PlanRead(Flags(kLong, FromTo(1022, 1023)), true), ElementsAre(Chunk{1022, 2}));
  EXPECT_THAT(PlanRead(Flags(1, {0}), true), ElementsAre(Chunk{0, 1}));
}

/// The length that each of the patterns of flags ahead must give, by its farthest flag.
void ExpectLengths(int size, bool isEeprom, int start, const std::vector<int>& lengths) {
  const int patterns = 1 << (lengths.size() - 1);
  for (int pattern = 0; pattern < patterns; ++pattern) {
    std::set<int> addresses{start};
    int length = lengths[0];
    for (std::size_t ahead = 1; ahead < lengths.size(); ++ahead) {
      if ((pattern >> (ahead - 1) & 1) == 0) continue;
      addresses.insert(start + static_cast<int>(ahead));
      length = lengths[ahead];
    }
    EXPECT_EQ(PlanRead(Flags(size, addresses), isEeprom).front(), (Chunk{start, length})) << pattern;
  }
}

TEST(PlanRead, TakesTheLengthOfTheFarthestFlag) {
  ExpectLengths(kRam, false, 20, {1, 2, 3, 4, 5, 6});
  ExpectLengths(kRam, false, 128, {1, 2, 3, 4, 5, 6});
  ExpectLengths(kWords, true, 40, {2, 2, 4, 4, 6, 6});
  ExpectLengths(kLong, true, 40, {1, 2, 4, 4});
}

TEST(PlanRead, OfLongEepromLooksNoFartherThanThreeAhead) {
  EXPECT_THAT(PlanRead(Flags(kLong, {40, 44, 45}), true), ElementsAre(Chunk{40, 1}, Chunk{44, 2}));
  EXPECT_THAT(PlanRead(Flags(kLong, FromTo(924, 932)), true),
              ElementsAre(Chunk{924, 4}, Chunk{928, 4}, Chunk{932, 1}));
}

TEST(PlanRead, OfWholeMemoriesTakesThePrescribedNumberOfExchanges) {
  EXPECT_EQ(PlanRead(Flags(kRam, FromTo(0, 255)), false).size(), 44U);
  EXPECT_EQ(PlanRead(Flags(kWords, FromTo(0, 511)), true).size(), 86U);
  EXPECT_EQ(PlanRead(Flags(kLong, FromTo(0, 1023)), true).size(), 256U);
}

TEST(PlanRead, NeverFormsTheFrameThatUnlocks) {
  EXPECT_THAT(PlanRead(Flags(kRam, FromTo(183, 187)), false), ElementsAre(Chunk{183, 4}, Chunk{187, 1}));
  EXPECT_THAT(PlanRead(Flags(kRam, {183, 187}), false), ElementsAre(Chunk{183, 4}, Chunk{187, 1}));
  EXPECT_THAT(PlanRead(Flags(kRam, {10, 183, 187, 200}), false),
              ElementsAre(Chunk{10, 1}, Chunk{183, 4}, Chunk{187, 1}, Chunk{200, 1}));
}

TEST(PlanRead, LeavesTheNeighboursOfThatFrameWhole) {
  EXPECT_THAT(PlanRead(Flags(kRam, FromTo(183, 188)), false), ElementsAre(Chunk{183, 6}));
  EXPECT_THAT(PlanRead(Flags(kRam, FromTo(183, 186)), false), ElementsAre(Chunk{183, 4}));
  EXPECT_THAT(PlanRead(Flags(kRam, FromTo(182, 186)), false), ElementsAre(Chunk{182, 5}));
  EXPECT_THAT(PlanRead(Flags(kRam, FromTo(184, 188)), false), ElementsAre(Chunk{184, 5}));
}

TEST(PlanRead, FormsNoCommandFrameAnywhere) {
  const std::vector<Frame> commands{{32, 0, 32},    {161, 0, 161},  {16, 0, 16},
                                    {147, 0, 147},  {145, 0, 145},  {153, 173, 70},
                                    {169, 171, 84}, {197, 55, 252}, {185, 1, 186}};
  for (int start = 0; start < 256; ++start) {
    for (int last = start; last < std::min(start + 6, 256); ++last) {
      for (const auto& chunk : PlanRead(Flags(kRam, FromTo(start, last)), false)) {
        EXPECT_THAT(commands, Not(Contains(ReadRequest(AddressForm::R, chunk)))) << start << " to " << last;
      }
    }
  }
}

TEST(PlanWrite, OfRamTakesUpToFourAndHasNoRuleAt128) {
  EXPECT_THAT(PlanWrite(Flags(kRam, FromTo(126, 131)), false), ElementsAre(Chunk{126, 4}, Chunk{130, 2}));
  EXPECT_THAT(PlanWrite(Flags(kRam, {57, 59, 60, 61, 62}), false), ElementsAre(Chunk{57, 4}, Chunk{61, 2}));
  EXPECT_THAT(PlanWrite(Flags(kRam, {10, 14}), false), ElementsAre(Chunk{10, 1}, Chunk{14, 1}));
  EXPECT_THAT(PlanWrite(Flags(kRam, {10, 12}), false), ElementsAre(Chunk{10, 3}));
  EXPECT_THAT(PlanWrite(Flags(kRam, FromTo(183, 187)), false), ElementsAre(Chunk{183, 4}, Chunk{187, 1}));
}

TEST(PlanWrite, OfWordEepromTakesWholeWords) {
  EXPECT_THAT(PlanWrite(Flags(kWords, {36, 37}), true), ElementsAre(Chunk{36, 2}));
  EXPECT_THAT(PlanWrite(Flags(kWords, {36, 37, 38, 39}), true), ElementsAre(Chunk{36, 4}));
  EXPECT_THAT(PlanWrite(Flags(kWords, {36, 37, 40, 41}), true), ElementsAre(Chunk{36, 2}, Chunk{40, 2}));
  EXPECT_EQ(PlanWrite(Flags(kWords, FromTo(0, 511)), true).size(), 128U);
}

TEST(PlanWrite, OfWordEepromKnowsNoPages) {
  EXPECT_THAT(PlanWrite(Flags(kWords, FromTo(14, 17)), true), ElementsAre(Chunk{14, 4}));
}

TEST(PlanWrite, OfLongEepromStaysInThePageOfItsFirstByte) {
  EXPECT_THAT(PlanWrite(Flags(kLong, FromTo(846, 849)), true), ElementsAre(Chunk{846, 2}, Chunk{848, 2}));
  EXPECT_THAT(PlanWrite(Flags(kLong, FromTo(844, 848)), true), ElementsAre(Chunk{844, 4}, Chunk{848, 1}));
  EXPECT_THAT(PlanWrite(Flags(kLong, {15, 16}), true), ElementsAre(Chunk{15, 1}, Chunk{16, 1}));
  EXPECT_THAT(PlanWrite(Flags(kLong, {13, 14, 16}), true), ElementsAre(Chunk{13, 2}, Chunk{16, 1}));
  EXPECT_THAT(PlanWrite(Flags(kLong, {20, 22}), true), ElementsAre(Chunk{20, 3}));
}

TEST(PlanWrite, StopsAtTheEndOfTheMemory) {
  EXPECT_THAT(PlanWrite(Flags(kRam, {254, 255}), false), ElementsAre(Chunk{254, 2}));
  EXPECT_THAT(PlanWrite(Flags(kLong, {1023}), true), ElementsAre(Chunk{1023, 1}));
}

}  // namespace
}  // namespace brelant::kibus
