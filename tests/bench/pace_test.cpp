// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host.h"

namespace brelant::bench {

static void PrintTo(const TimedByte& byte, std::ostream* out) {
  *out << int{byte.value} << " at " << byte.at.count() << " us";
}

namespace {

using std::chrono::hours;
using std::chrono::microseconds;
using std::chrono::milliseconds;
using testing::ElementsAre;

TimedByte At(std::int64_t us, std::uint8_t value) {
  return {microseconds(us), value};
}

TEST(Pace, WithoutItTheLineTakesNoTime) {
  Host host({.part = 231});
  host.Pass(milliseconds(7));
  EXPECT_THAT(host.SendTimed({254}), ElementsAre(At(7000, 223)));
  EXPECT_THAT(host.SendTimed({129, 65, 194}), ElementsAre(At(7000, 6), At(7000, 231), At(7000, 237)));
}

// A byte takes 10/9600 s = 1041.67 us. Two are 2083.33 us.
TEST(Pace, ClearToReceiveIsThereAfterTwoBytes) {
  Host host({.part = 231, .pace = true});
  EXPECT_THAT(host.SendTimed({254}), ElementsAre(At(2084, 223)));
}

TEST(Pace, BytesGivenAtOnceStandInLine) {
  Host host({.part = 231, .pace = true});
  host.Send({254});
  host.Pass(milliseconds(10));
  // The request is there at 13125, and the reply follows without a pause.
  EXPECT_THAT(host.SendTimed({129, 65, 194}), ElementsAre(At(14167, 6), At(15209, 231), At(16250, 237)));
}

TEST(Pace, BytesGivenOneByOneAreThereOneByteTimeLater) {
  Host host({.part = 231, .pace = true});
  host.Send({254});
  host.Pass(milliseconds(10));
  host.Send({129});
  host.Pass(milliseconds(2));
  host.Send({65});
  host.Pass(milliseconds(2));
  EXPECT_THAT(host.SendTimed({194}), ElementsAre(At(16084, 6), At(17125, 231), At(18167, 237)));
}

TEST(Pace, RepliesStandInLineToo) {
  Host host({.part = 231, .pace = true});
  host.Send({254});
  host.Pass(milliseconds(10));
  // A host that does not wait for the reply asks again; the answer comes behind the reply.
  EXPECT_THAT(host.SendTimed({129, 65, 194, 254}),
              ElementsAre(At(14167, 6), At(15209, 231), At(16250, 237), At(17292, 223)));
}

TEST(Pace, DoesNotDriftInALongSession) {
  Host host({.part = 231, .pace = true});
  for (int i = 0; i < 1000; ++i) {
    host.Pass(milliseconds(60));
    host.Send({254});
  }
  host.Pass(hours(1000) - host.now);
  EXPECT_THAT(host.SendTimed({254}), ElementsAre(At(3'600'000'002'084, 223)));
}

TEST(Pace, ALongBurstTakesExactlyItsBytes) {
  Host host({.part = 231, .pace = true});
  // 2999 bytes that nobody is asked to hear, then a request: 3000 bytes are 3.125 s.
  for (int i = 0; i < 2999; ++i) host.Send({0});
  EXPECT_THAT(host.SendTimed({254}), ElementsAre(At(3'126'042, 223)));
}

}  // namespace
}  // namespace brelant::bench
