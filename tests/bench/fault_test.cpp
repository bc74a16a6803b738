// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <limits>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "bench/faults.h"
#include "host.h"

namespace brelant::bench {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;

const ByteList kReply{6, 1, 2, 9};
const ByteList kReadPart{129, 65, 194};

int CountDifferences(const ByteList& a, const ByteList& b) {
  int count = 0;
  for (std::size_t i = 0; i < a.size(); ++i) count += a[i] != b[i] ? 1 : 0;
  return count;
}

TEST(Faults, OffAreNone) {
  FaultMaker faults({}, 1);
  for (int i = 0; i < 1000; ++i) {
    const SpoiltReply reply = faults.Spoil(kReply, ReplyKind::kData);
    ASSERT_EQ(reply.bytes, kReply);
    ASSERT_FALSE(reply.touched || reply.lost || reply.hung_up);
    ASSERT_EQ(reply.delay, LineTime::zero());
  }
}

TEST(Faults, RateBeyondItsRangeIsAnError) {
  EXPECT_THROW(FaultMaker({.silence = 1.1}, 1), std::invalid_argument);
  EXPECT_THROW(FaultMaker({.hang_up = -0.1}, 1), std::invalid_argument);
  EXPECT_THROW(FaultMaker({.late = std::numeric_limits<double>::quiet_NaN()}, 1), std::invalid_argument);
}

TEST(Faults, ComeAboutAsOftenAsAsked) {
  FaultMaker faults({.silence = 0.25}, 1);
  int lost = 0;
  for (int i = 0; i < 10000; ++i) lost += faults.Spoil(kReply, ReplyKind::kData).lost ? 1 : 0;
  EXPECT_NEAR(lost, 2500, 200);
}

TEST(Faults, SameSeedSameFaultsOtherSeedOthers) {
  const FaultRates rates{.wrong_byte = 0.5, .short_reply = 0.2, .noise = 0.2};
  const auto play = [&](std::uint32_t seed) {
    FaultMaker faults(rates, seed);
    std::vector<ByteList> replies;
    for (int i = 0; i < 50; ++i) replies.push_back(faults.Spoil(kReply, ReplyKind::kData).bytes);
    return replies;
  };
  EXPECT_EQ(play(7), play(7));
  EXPECT_NE(play(7), play(8));
}

TEST(Faults, WrongByteIsExactlyOne) {
  FaultMaker faults({.wrong_byte = 1}, 1);
  for (int i = 0; i < 1000; ++i) {
    const ByteList bytes = faults.Spoil(kReply, ReplyKind::kData).bytes;
    ASSERT_EQ(bytes.size(), kReply.size());
    ASSERT_EQ(CountDifferences(bytes, kReply), 1);
  }
}

TEST(Faults, ShortReplyLacksItsEnd) {
  FaultMaker faults({.short_reply = 1}, 1);
  for (int i = 0; i < 1000; ++i) {
    const ByteList bytes = faults.Spoil(kReply, ReplyKind::kData).bytes;
    ASSERT_LT(bytes.size(), kReply.size());
    ASSERT_TRUE(std::equal(bytes.begin(), bytes.end(), kReply.begin()));
  }
}

TEST(Faults, NoiseStandsBeforeTheReplyOrInItsPlace) {
  FaultMaker faults({.noise = 1}, 1);
  int before = 0;
  int instead = 0;
  for (int i = 0; i < 1000; ++i) {
    const SpoiltReply reply = faults.Spoil(kReply, ReplyKind::kData);
    const std::size_t noise = reply.bytes.size() - (reply.lost ? 0 : kReply.size());
    ASSERT_GE(noise, 1U);
    ASSERT_LE(noise, 4U);
    if (reply.lost) {
      ++instead;
    } else {
      ++before;
      ASSERT_TRUE(std::equal(kReply.rbegin(), kReply.rend(), reply.bytes.rbegin()));
    }
  }
  EXPECT_GT(before, 300);
  EXPECT_GT(instead, 300);
}

TEST(Faults, LateIsLaterThanTheHostWaits) {
  FaultMaker faults({.late = 1}, 1);
  const auto delay = [&](ReplyKind kind) { return faults.Spoil(kReply, kind).delay; };
  for (int i = 0; i < 200; ++i) {
    ASSERT_GT(delay(ReplyKind::kClearToReceive), milliseconds(100));
    ASSERT_GT(delay(ReplyKind::kData), milliseconds(200));
    ASSERT_GT(delay(ReplyKind::kWritten), milliseconds(1000));
    ASSERT_GT(delay(ReplyKind::kCommandDone), milliseconds(3000));
    ASSERT_LT(delay(ReplyKind::kCommandDone), milliseconds(3500));
  }
}

TEST(FaultySensor, Silent) {
  Host host({.part = 231, .faults = {.silence = 1}});
  EXPECT_THAT(host.Send({254}), IsEmpty());
  EXPECT_THAT(host.Send(kReadPart), IsEmpty());
  EXPECT_THAT(host.sensor.Frames(), IsEmpty());
  EXPECT_EQ(host.sensor.Count().faults, 1);
}

TEST(FaultySensor, Flags134InAReadWithAChecksumThatFits) {
  Host host({.part = 231, .faults = {.nak = 1}});
  EXPECT_THAT(host.Send({254}), ElementsAre(223));
  EXPECT_THAT(host.Send(kReadPart), ElementsAre(134, 231, 109));
}

TEST(FaultySensor, Flags134InAWriteAndACommandAndCarriesThemOut) {
  Host host({.part = 231, .faults = {.nak = 1}});
  EXPECT_THAT(host.Exchange({1, 31, 4, 36}), ElementsAre(134));
  EXPECT_EQ(host.sensor.Ram()[31], 4);
  EXPECT_THAT(host.Exchange({197, 55, 252}), ElementsAre(134));
  EXPECT_FALSE(host.sensor.Locked());
}

TEST(FaultySensor, WrongByteBefallsTheClearToReceiveToo) {
  Host host({.part = 231, .faults = {.wrong_byte = 1}});
  const ByteList clear = host.Send({254});
  ASSERT_EQ(clear.size(), 1U);
  EXPECT_NE(clear[0], 223);
  const ByteList reply = host.Send(kReadPart);
  ASSERT_EQ(reply.size(), 3U);
  EXPECT_EQ(CountDifferences(reply, {6, 231, 237}), 1);
}

TEST(FaultySensor, LateDoesNotListenUntilItHasSpoken) {
  Host host({.part = 231, .faults = {.late = 1}});
  const std::vector<TimedByte> clear = host.SendTimed({254});
  ASSERT_EQ(clear.size(), 1U);
  EXPECT_EQ(clear[0].value, 223);
  ASSERT_GT(clear[0].at, milliseconds(100));
  host.now = milliseconds(100);
  EXPECT_THAT(host.Send({254}), IsEmpty());
  // A host that takes the late byte for the answer to a later request is served.
  host.now = clear[0].at + milliseconds(8);
  const std::vector<TimedByte> reply = host.SendTimed(kReadPart);
  ASSERT_EQ(reply.size(), 3U);
  EXPECT_GT(reply[0].at, host.now + milliseconds(200));
  EXPECT_EQ(reply[2].value, 237);
}

// 32 is a word address: EEPROM 64 and 65.
TEST(BadCells, AreAcknowledgedAndNotKept) {
  Host host({.part = 217, .bad_cells = {.stuck = {65}}});
  host.Exchange({147, 0, 147});
  const int before = host.sensor.Eeprom()[65];
  EXPECT_THAT(host.Exchange({12, 32, 1, 2, 3, 4, 54}), ElementsAre(6));
  EXPECT_EQ(host.sensor.Eeprom()[64], 1);
  EXPECT_EQ(host.sensor.Eeprom()[65], before);
  EXPECT_EQ(host.sensor.Eeprom()[67], 4);
}

TEST(BadCells, RefuseTheWholeFrame) {
  Host host({.part = 217, .bad_cells = {.refused = {67}}});
  host.Exchange({147, 0, 147});
  const auto eeprom = host.sensor.Eeprom();
  const ByteList before(eeprom.begin(), eeprom.end());
  EXPECT_THAT(host.Exchange({12, 32, 1, 2, 3, 4, 54}), IsEmpty());
  EXPECT_TRUE(std::equal(before.begin(), before.end(), eeprom.begin()));
  EXPECT_THAT(host.Exchange({10, 32, 1, 2, 45}), ElementsAre(6));
  EXPECT_THAT(host.Exchange({10, 34, 1, 2, 47}), ElementsAre(6));
}

TEST(BadCells, ComeAndGo) {
  Host host({.part = 154});
  host.sensor.Bad().stuck = {4240};
  EXPECT_THAT(host.Exchange({9, 16, 144, 1, 170}), ElementsAre(6));
  EXPECT_EQ(host.sensor.Eeprom()[4240], 8);
  host.sensor.Bad() = {};
  EXPECT_THAT(host.Exchange({9, 16, 144, 1, 170}), ElementsAre(6));
  EXPECT_EQ(host.sensor.Eeprom()[4240], 1);
}

TEST(BadCells, LieInTheEeprom) {
  EXPECT_NO_THROW(VirtualSensor({.part = 231, .bad_cells = {.stuck = {511}, .refused = {511}}}));
  EXPECT_THROW(VirtualSensor({.part = 231, .bad_cells = {.stuck = {512}}}), std::invalid_argument);
  EXPECT_THROW(VirtualSensor({.part = 231, .bad_cells = {.refused = {1, 512}}}), std::invalid_argument);
}

TEST(FaultySensor, HangsUpForGood) {
  Host host({.part = 231, .faults = {.hang_up = 1}});
  EXPECT_FALSE(host.sensor.HungUp());
  EXPECT_THAT(host.Send({254}), IsEmpty());
  EXPECT_TRUE(host.sensor.HungUp());
  EXPECT_THAT(host.Send({254}), IsEmpty());
  EXPECT_EQ(host.sensor.Count().requests, 1);
}

TEST(FaultySensor, WithAllFaultsNowAndThenStillGetsThroughToThePatient) {
  Host host(
      {.part = 231,
       .faults = {
           .silence = 0.1, .wrong_byte = 0.1, .late = 0.1, .short_reply = 0.1, .noise = 0.1, .nak = 0.1}});
  int good = 0;
  for (int i = 0; i < 1000; ++i) {
    host.Pass(std::chrono::seconds(4));
    if (host.Send({254}) != ByteList{223}) continue;
    const ByteList reply = host.Send(kReadPart);
    good += reply == ByteList{6, 231, 237} || reply == ByteList{134, 231, 109} ? 1 : 0;
  }
  // Four faults spoil a byte, five a reply with 134 counted as good; a late one is late but whole.
  EXPECT_GT(good, 300);
  EXPECT_LT(good, 600);
}

}  // namespace
}  // namespace brelant::bench
