// SPDX-License-Identifier: GPL-3.0-or-later
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "comm/SerialLink.h"
#include "platform/machine_error.h"
#include "support/bus.h"
#include "support/pauses.h"

namespace brelant {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;
using test::Lasts;
using testing::ElementsAre;

constexpr const char* kLocked = "This port is locked by other devise";
constexpr const char* kTalking = "Central unit must be set to slave mode or be disconnected.";

class SerialLinkTest : public testing::Test {
 protected:
  microseconds Elapsed() const { return bus.clock.Now() - start; }

  test::ScriptedBus bus;
  test::ScriptedPort& port = bus.port;
  microseconds start = bus.clock.Now();
};

TEST_F(SerialLinkTest, AProbeOfASilentLineSucceedsAndLeavesThePortClosed) {
  EXPECT_TRUE(bus.link.ProbePort(2.0F));
  EXPECT_EQ(bus.session.LastError, "");
  EXPECT_THAT(port.Story(), ElementsAre("open", "close"));
}

TEST_F(SerialLinkTest, AProbeEndsAtAWholeSecondOfTheClock) {
  struct Case {
    double timer;
    int lasts;
  };
  // The end is the sum of timer and 2.0, rounded; a tie goes to the even second.
  for (const auto& [timer, lasts] : {Case{36000.0, 2000}, Case{36000.4, 1600}, Case{36000.6, 2400},
                                     Case{36000.5, 1500}, Case{36001.5, 2500}}) {
    test::ScriptedBus fresh;
    fresh.clock.SetTimer(timer);
    const auto begin = fresh.clock.Now();
    EXPECT_TRUE(fresh.link.ProbePort(2.0F));
    const auto lasted = fresh.clock.Now() - begin;
    EXPECT_GE(lasted, milliseconds(lasts) - microseconds(1)) << timer;
    EXPECT_LT(lasted, milliseconds(lasts + 20)) << timer;
  }
}

TEST_F(SerialLinkTest, AProbeEndsAtTheFirstByte) {
  port.Arrive({17}, milliseconds(300));
  EXPECT_FALSE(bus.link.ProbePort(2.0F));
  EXPECT_EQ(bus.session.LastError, kTalking);
  EXPECT_FALSE(port.PortOpen());
  EXPECT_THAT(Elapsed(), Lasts(milliseconds(300)));
}

TEST_F(SerialLinkTest, AProbeThrowsAwayWhatIsThereAtTheOpening) {
  port.waitingAtOpen = {1, 2, 3};
  EXPECT_TRUE(bus.link.ProbePort(2.0F));
}

TEST_F(SerialLinkTest, AProbeEndsAtMidnight) {
  bus.clock.SetTimer(86399.0);
  EXPECT_TRUE(bus.link.ProbePort(2.0F));
  EXPECT_GE(Elapsed(), milliseconds(999));
  EXPECT_LT(Elapsed(), milliseconds(2100));
}

TEST_F(SerialLinkTest, AByteBeforeMidnightIsSeenAllTheSame) {
  bus.clock.SetTimer(86399.0);
  port.Arrive({17}, milliseconds(500));
  EXPECT_FALSE(bus.link.ProbePort(2.0F));
  EXPECT_EQ(bus.session.LastError, kTalking);
}

TEST_F(SerialLinkTest, APortThatAnotherProgramHoldsIsLocked) {
  port.failOpen = true;
  EXPECT_FALSE(bus.link.ProbePort(2.0F));
  EXPECT_EQ(bus.session.LastError, kLocked);
  EXPECT_FALSE(port.PortOpen());
  EXPECT_THAT(Elapsed(), Lasts(milliseconds(0)));
}

TEST_F(SerialLinkTest, AProbeWhosePortFailsAtAnyOperationIsLockedAndClosed) {
  ASSERT_TRUE(bus.link.ProbePort(2.0F));
  const int operations = port.Operations();
  ASSERT_GT(operations, 2);
  for (int n = 1; n <= operations; ++n) {
    test::ScriptedBus fresh;
    fresh.port.failAt = n;
    EXPECT_FALSE(fresh.link.ProbePort(2.0F)) << n;
    EXPECT_EQ(fresh.session.LastError, kLocked) << n;
    EXPECT_FALSE(fresh.port.PortOpen()) << n;
  }
}

TEST_F(SerialLinkTest, AProbeSleepsInsteadOfSpinning) {
  bus.link.ProbePort(2.0F);
  EXPECT_LT(bus.pump.Passes(), 10);
}

TEST_F(SerialLinkTest, APauseIsNeverShorterThanItsRule) {
  // A count of whole milliseconds of the tick would end these up to a millisecond early.
  for (const int offset : {0, 1, 200, 999}) {
    bus.clock.AdvanceTo(milliseconds(100 + bus.clock.Now().count() / 1000) + microseconds(offset));
    for (const int rule : {5, 8}) {
      const auto before = bus.clock.Now();
      bus.link.Open();
      bus.link.Pause(rule);
      EXPECT_THAT(bus.clock.Now() - before, Lasts(milliseconds(rule))) << offset;
    }
  }
}

TEST_F(SerialLinkTest, APauseIsNotCutShortByEventsOrBytes) {
  bus.link.Open();
  for (int i = 1; i < 8; ++i) port.Arrive({1}, milliseconds(i));
  bus.link.Pause(8);
  EXPECT_THAT(Elapsed(), Lasts(milliseconds(8)));
}

TEST_F(SerialLinkTest, AUsersActRunsInsideAPause) {
  bool clicked = false;
  bus.pump.After(milliseconds(3), [&] { clicked = true; });
  bus.link.Open();
  bus.link.Pause(5);
  EXPECT_TRUE(clicked);
}

TEST_F(SerialLinkTest, AWaitEndsWithTheByteThatIsWanted) {
  bus.link.Open();
  port.Arrive({1}, milliseconds(10));
  port.Arrive({2}, milliseconds(20));
  port.Arrive({3}, milliseconds(30));
  EXPECT_TRUE(bus.link.WaitForBytes(2, 100));
  EXPECT_THAT(Elapsed(), Lasts(milliseconds(20)));
  EXPECT_THAT(bus.link.Read(), ElementsAre(1, 2));
}

TEST_F(SerialLinkTest, AWaitLastsItsFullTime) {
  bus.link.Open();
  port.Arrive({1}, milliseconds(10));
  EXPECT_FALSE(bus.link.WaitForBytes(2, 100));
  EXPECT_THAT(Elapsed(), Lasts(milliseconds(100)));
}

TEST_F(SerialLinkTest, AByteInTheVeryLastPassCounts) {
  bus.link.Open();
  bus.pump.After(milliseconds(99), [&] {
    bus.clock.Advance(milliseconds(50));  // a handler that takes its time
    port.Receive({1});
  });
  EXPECT_TRUE(bus.link.WaitForBytes(1, 100));
  EXPECT_GE(Elapsed(), milliseconds(100));
}

TEST_F(SerialLinkTest, AWaitForWhatIsThereStillLetsEventsRun) {
  bus.link.Open();
  port.Receive({1});
  bool clicked = false;
  bus.pump.After(milliseconds(0), [&] { clicked = true; });
  EXPECT_TRUE(bus.link.WaitForBytes(1, 100));
  EXPECT_TRUE(clicked);
  EXPECT_THAT(Elapsed(), Lasts(milliseconds(0)));
}

TEST_F(SerialLinkTest, ATickThatWouldOverflowEndsTheWait) {
  bus.link.Open();
  bus.clock.SetTickCount(std::numeric_limits<std::int32_t>::max() - 4);
  EXPECT_THROW(bus.link.Pause(5), MachineError);
  EXPECT_THROW(bus.link.WaitForBytes(1, 100), MachineError);
}

TEST_F(SerialLinkTest, ATickThatJustFitsDoesNot) {
  bus.link.Open();
  bus.clock.SetTickCount(std::numeric_limits<std::int32_t>::max() - 5);
  EXPECT_NO_THROW(bus.link.Pause(5));
}

TEST_F(SerialLinkTest, AReadThatMeetsTheOverflowEndsWithItsText) {
  bus.KnowPart(101);
  bus.clock.SetTickCount(std::numeric_limits<std::int32_t>::max() - 2);
  EXPECT_FALSE(bus.com.ReadSensorMemory(0, 65, 1, false, false));
  EXPECT_EQ(bus.session.LastError, "Can't read from sensor");
  EXPECT_FALSE(port.PortOpen());
}

TEST_F(SerialLinkTest, OpensOnlyWhatIsClosedAndClosesOnlyWhatIsOpen) {
  bus.link.Close();
  bus.link.Open();
  bus.link.Open();
  bus.link.Close();
  bus.link.Close();
  EXPECT_THAT(port.Story(), ElementsAre("open", "close"));
}

TEST_F(SerialLinkTest, SendsAWholeOrSingly) {
  bus.link.Open();
  bus.link.Send(test::Bytes{1, 2, 3});
  bus.link.SendSingly(test::Bytes{4, 5});
  EXPECT_THAT(port.Story(), ElementsAre("open", "1 2 3", "4", "5"));
}

TEST_F(SerialLinkTest, WakesTheModemWithAPulseAndThreeSingleBytes) {
  bus.link.Open();
  bus.link.WakeModem();
  EXPECT_THAT(port.Story(), ElementsAre("open", "dtr on", "dtr off", "65", "84", "79"));
  EXPECT_THAT(Elapsed(), Lasts(milliseconds(0)));
}

TEST_F(SerialLinkTest, ADtrThatCannotBeSetIsIgnored) {
  bus.link.Open();
  port.failDtr = true;
  EXPECT_NO_THROW(bus.link.WakeModem());
  EXPECT_THAT(port.Story(), ElementsAre("open", "65", "84", "79"));
}

TEST_F(SerialLinkTest, SelectsThePortThatIsNamed) {
  bus.link.SetCommPort("4");
  EXPECT_EQ(port.selected, "4");
}

TEST_F(SerialLinkTest, OpensNoPortOnceTheSessionIsOver) {
  bus.session.sessionOver = true;
  EXPECT_THROW(bus.link.Open(), MachineError);
  EXPECT_FALSE(port.PortOpen());
}

TEST_F(SerialLinkTest, AWaitEndsWhenTheSessionDoes) {
  bus.link.Open();
  bus.pump.After(milliseconds(20), [&] { bus.session.sessionOver = true; });
  EXPECT_THROW(bus.link.WaitForBytes(1, 3000), MachineError);
  EXPECT_THAT(Elapsed(), Lasts(milliseconds(20)));
}

}  // namespace
}  // namespace brelant
