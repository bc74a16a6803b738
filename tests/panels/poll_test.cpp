// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/loop_act.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::AllOf;
using testing::ElementsAre;
using testing::Ge;
using testing::Lt;

constexpr const char* kNoSensor = "No sensor detected, entering simulated mode.";

class PollTest : public test::LoopTest {
 protected:
  /// Polls take that long and succeed; the times of the day at which they begin are kept.
  void PollsTake(milliseconds duration) {
    panel.onPoll = [this, duration] {
      begins.push_back(ground.clock.Timer());
      ground.clock.Advance(duration);
      return true;
    };
  }
  /// From the start of one poll to the start of the next, in seconds.
  std::vector<double> Periods() const {
    std::vector<double> periods;
    for (std::size_t i = 1; i < begins.size(); ++i) periods.push_back(begins[i] - begins[i - 1]);
    return periods;
  }

  std::vector<double> begins;
};

/// More than that many seconds, and hardly more.
auto JustAfter(double moment) {
  return AllOf(Ge(moment), Lt(moment + 0.02));
}

TEST_F(PollTest, TheFirstPollComesAtOnce) {
  const double start = ground.clock.Timer();
  PollsTake(milliseconds(10));
  Run(seconds(1));
  EXPECT_THAT(begins, ElementsAre(JustAfter(start)));
}

TEST_F(PollTest, PollsBeginEveryTwoSeconds) {
  PollsTake(milliseconds(700));
  Run(milliseconds(8500));
  EXPECT_THAT(Periods(), ElementsAre(JustAfter(2), JustAfter(2), JustAfter(2), JustAfter(2)));
}

TEST_F(PollTest, APollLongerThanThePeriodIsFollowedByTheNextAtOnce) {
  PollsTake(milliseconds(3100));
  Run(milliseconds(9500));
  EXPECT_THAT(Periods(), ElementsAre(JustAfter(3.1), JustAfter(3.1), JustAfter(3.1)));
}

TEST_F(PollTest, ThePeriodMustBeExceeded) {
  PollsTake(milliseconds(0));
  Run(milliseconds(2100));
  ASSERT_EQ(begins.size(), 2U);
  EXPECT_GT(begins[1], begins[0] + 2.0);
}

TEST_F(PollTest, EventsInBetweenDoNotHastenThePoll) {
  PollsTake(milliseconds(10));
  for (int i = 1; i < 40; ++i) After(milliseconds(i * 100), [] {});
  Run(milliseconds(4100));
  EXPECT_THAT(Periods(), ElementsAre(JustAfter(2), JustAfter(2)));
}

TEST_F(PollTest, AfterEnteringLiveModeTheFirstPollIsSkipped) {
  panel.SimMode(false);
  EXPECT_EQ(session.LastError, "Avbryt");
  const double start = ground.clock.Timer();
  PollsTake(milliseconds(10));
  Run(milliseconds(2500));
  EXPECT_THAT(begins, ElementsAre(JustAfter(start + 2)));
  EXPECT_TRUE(ground.ui.messages.empty());
}

TEST_F(PollTest, APollIsSkippedWhileThereIsAnErrorWhichIsThenCleared) {
  PollsTake(milliseconds(10));
  After(seconds(1), [this] { session.LastError = "some trouble"; });
  std::string before;
  std::string after;
  After(milliseconds(1990), [&] { before = session.LastError; });
  After(milliseconds(2050), [&] { after = session.LastError; });
  Run(milliseconds(4500));
  EXPECT_THAT(Periods(), ElementsAre(JustAfter(4)));
  EXPECT_EQ(before, "some trouble");
  EXPECT_EQ(after, "");
  EXPECT_TRUE(ground.ui.messages.empty());
}

TEST_F(PollTest, TheFirstPollAfterMidnightComesTwoSecondsAfterIt) {
  ground.clock.SetTimer(86398.5);
  PollsTake(milliseconds(10));
  Run(seconds(8));
  EXPECT_THAT(begins, ElementsAre(JustAfter(86398.5), JustAfter(2), JustAfter(4), JustAfter(6)));
}

TEST_F(PollTest, PollingGoesOnPastMidnight) {
  for (const double start : {86396.3, 86397.0, 86399.9}) {
    begins.clear();
    ground.clock.SetTimer(start);
    PollsTake(milliseconds(10));
    Run(seconds(20));
    EXPECT_GE(begins.size(), 9U) << start;
    EXPECT_FALSE(panel.cbxSimulated.Value());
  }
}

TEST_F(PollTest, AnIdlePanelSleepsFromPollToPoll) {
  const int before = ground.pump.Passes();
  Run(seconds(60));
  EXPECT_EQ(panel.acts.size(), 30U);
  EXPECT_LT(ground.pump.Passes() - before, 100);
}

TEST_F(PollTest, ASimulatedPanelSleepsFromEventToEvent) {
  panel.SimMode(true);
  const int before = ground.pump.Passes();
  Run(seconds(60));
  EXPECT_LT(ground.pump.Passes() - before, 10);
}

TEST_F(PollTest, AFailedPollIsToldAndEndsInSimulatedMode) {
  panel.onPoll = [this] {
    session.LastError = "Can't read from sensor";
    return false;
  };
  Run(seconds(10));
  EXPECT_THAT(panel.acts, ElementsAre("poll"));
  ASSERT_EQ(ground.ui.messages.size(), 1U);
  const auto& message = ground.ui.messages.front();
  EXPECT_EQ(message.text, kNoSensor);
  EXPECT_EQ(message.buttons, UserInterface::Buttons::ok);
  EXPECT_EQ(message.title, "");
  EXPECT_EQ(panel.cbxSimulated.Value(), 1);
  EXPECT_EQ(panel.form.Caption(), "KVX3.0 Simulated mode");
  EXPECT_EQ(session.LastError, "");
}

TEST_F(PollTest, AFailureWithoutATextIsToldToo) {
  panel.onPoll = [] { return false; };
  Run(seconds(3));
  EXPECT_THAT(ground.ui.Texts(), ElementsAre(kNoSensor));
  EXPECT_EQ(panel.cbxSimulated.Value(), 1);
}

TEST_F(PollTest, ACancelledPollIsNotToldAndPollingGoesOn) {
  panel.onPoll = [this] {
    session.LastError = "Avbryt";
    return false;
  };
  Run(milliseconds(4500));
  EXPECT_THAT(panel.acts, ElementsAre("poll", "poll", "poll"));
  EXPECT_TRUE(ground.ui.messages.empty());
  EXPECT_EQ(panel.cbxSimulated.Value(), 0);
  EXPECT_EQ(session.LastError, "");
}

TEST_F(PollTest, WhatAGoodPollLeavesInTheErrorIsClearedSilently) {
  panel.onPoll = [this] {
    session.LastError = "odd";
    return true;
  };
  Run(milliseconds(2500));
  EXPECT_THAT(panel.acts, ElementsAre("poll", "poll"));
  EXPECT_TRUE(ground.ui.messages.empty());
}

TEST_F(PollTest, SimulatedModePollsNothing) {
  panel.SimMode(true);
  After(seconds(3), [] {});
  Run(seconds(10));
  EXPECT_TRUE(panel.acts.empty());
  EXPECT_GT(panel.simulations, 0);
}

TEST_F(PollTest, LiveModeSimulatesNothing) {
  Run(seconds(10));
  EXPECT_EQ(panel.simulations, 0);
}

TEST_F(PollTest, AfterLeavingSimulatedModeByHandAPollThatFailsBringsItBack) {
  panel.SimMode(true);
  panel.onPoll = [this] {
    session.LastError = "Can't read from sensor";
    return false;
  };
  After(seconds(10), [this] { EXPECT_TRUE(test::Click(panel.cbxSimulated)); });
  std::vector<int> values;
  After(seconds(11), [&] { values.push_back(panel.cbxSimulated.Value()); });
  After(seconds(13), [&] { values.push_back(panel.cbxSimulated.Value()); });
  Run(seconds(20));
  EXPECT_THAT(values, ElementsAre(0, 1));
  EXPECT_THAT(panel.acts, ElementsAre("poll"));
  EXPECT_THAT(ground.ui.Texts(), ElementsAre(kNoSensor));
}

TEST_F(PollTest, AfterLeavingSimulatedModeByHandASensorIsPolledAgain) {
  panel.SimMode(true);
  After(seconds(10), [this] { test::Click(panel.cbxSimulated); });
  Run(milliseconds(16500));
  // The message of the mode change holds off the poll at 10 s; those at 12, 14 and 16 s come.
  EXPECT_THAT(panel.acts, ElementsAre("poll", "poll", "poll"));
  EXPECT_TRUE(ground.ui.messages.empty());
}

}  // namespace
}  // namespace brelant
