// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "play.h"

namespace brelant::test {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::seconds;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class WaitTest : public PlayTest {
 protected:
  /// Virtual time that the script takes, and its status.
  struct Outcome {
    int status;
    double time;
  };
  Outcome Take(const std::vector<std::string>& lines) {
    session.processOver = false;
    const auto start = clock.Now();
    const int status = Play(lines);
    return {status, static_cast<double>((clock.Now() - start).count()) / 1e6};
  }
  void ExpectTime(const Outcome& outcome, int status, double time) {
    EXPECT_EQ(outcome.status, status) << errors;
    // A wake-up may be some milliseconds late, and never early.
    EXPECT_GE(outcome.time, time);
    EXPECT_LE(outcome.time, time + 0.01);
  }
  void ShowMessage() { user.MessageBox("m", UserInterface::Buttons::ok, "", UserInterface::Icon::none); }
};

TEST_F(WaitTest, LetsTimePass) {
  ExpectTime(Take({"wait 2.5"}), 0, 2.5);
  ExpectTime(Take({"wait 0"}), 0, 0);
}

TEST_F(WaitTest, NothingElseIsCarriedOutMeanwhile) {
  microseconds clicked{0};
  button.onClick = [&] { clicked = clock.Now(); };
  const auto start = clock.Now();
  Take({"wait 3", "click btn"});
  EXPECT_GE(clicked - start, seconds(3));
}

TEST_F(WaitTest, ForAForm) {
  pump.After(seconds(4), [this] { second.Show(); });
  ExpectTime(Take({"wait form frmB"}), 0, 4);
  ExpectTime(Take({"wait form frmA"}), 0, 0);
}

TEST_F(WaitTest, ForAFormThatDoesNotCome) {
  ExpectTime(Take({"wait form frmB"}), 1, 60);
  EXPECT_THAT(errors, HasSubstr("it has not happened within 60 s"));
  ExpectTime(Take({"wait form frmB 1.5"}), 1, 1.5);
  ExpectTime(Take({"wait form frmC 1"}), 1, 1);
}

TEST_F(WaitTest, ForAMessage) {
  pump.After(seconds(3), [this] { ShowMessage(); });
  ExpectTime(Take({"wait message"}), 0, 3);
  ExpectTime(Take({"wait message 2"}), 1, 2);
}

TEST_F(WaitTest, AMessageThatCameWithTheActCounts) {
  button.onClick = [this] { ShowMessage(); };
  ExpectTime(Take({"click btn", "wait message 5"}), 0, 0);
}

TEST_F(WaitTest, EachMessageCountsOnce) {
  button.onClick = [this] { ShowMessage(); };
  ExpectTime(Take({"click btn", "wait message 5", "wait message 5"}), 1, 5);
  button.onClick = [this] {
    ShowMessage();
    ShowMessage();
  };
  ExpectTime(Take({"click btn", "wait message 5", "wait message 5"}), 0, 0);
}

TEST_F(WaitTest, AMessageFromBeforeTheActDoesNotCount) {
  auto& quiet = first.Add(ControlKind::button, "btnQuiet");
  quiet.onClick = [] {};
  button.onClick = [this] { ShowMessage(); };
  ExpectTime(Take({"click btn", "click btnQuiet", "wait message 5"}), 1, 5);
}

TEST_F(WaitTest, ForProgress) {
  pump.After(seconds(1), [this] { msg.ShowProgress("Please wait", true, nullptr); });
  pump.After(seconds(2), [this] { msg.ShowProgress("Sending to sensor", true, nullptr); });
  pump.After(seconds(3), [this] { msg.ShowProgress("", true, nullptr); });
  ExpectTime(Take({"wait progress Sending to sensor"}), 0, 2);
  msg.ShowProgress("", true, nullptr);
  ExpectTime(Take({"wait progress Reading from sensor 4"}), 1, 4);
}

TEST_F(WaitTest, ProgressThatCameAndWentWithTheActCounts) {
  button.onClick = [this] {
    msg.ShowProgress("Sending to sensor", true, nullptr);
    msg.ShowProgress("", true, nullptr);
  };
  ExpectTime(Take({"click btn", "wait progress Sending to sensor", "wait progress \"\""}), 0, 0);
  ExpectTime(Take({"click btn", "wait progress Sending to sensor 5", "wait progress Sending to sensor 5"}), 1,
             5);
}

TEST_F(WaitTest, ForTheProgressBoxToClose) {
  button.onClick = [this] {
    msg.ShowProgress("Please wait", true, nullptr);
    pump.After(seconds(6), [this] { msg.ShowProgress("", true, nullptr); });
  };
  ExpectTime(Take({"click btn", "wait progress \"\""}), 0, 6);
}

TEST_F(WaitTest, ABoxThatIsAboutToOpenIsNotClosed) {
  button.onClick = [this] {
    session.PanelCommand = 1;
    pump.After(seconds(1), [this] { msg.ShowProgress("Please wait", true, nullptr); });
    pump.After(seconds(2), [this] {
      session.PanelCommand = 0;
      msg.ShowProgress("", true, nullptr);
    });
  };
  ExpectTime(Take({"click btn", "wait progress \"\""}), 0, 2);
}

TEST_F(WaitTest, ForIdle) {
  session.PanelCommand = 3;
  session.BusBusyText = "Sending to sensor";
  pump.After(seconds(1), [this] { msg.ShowProgress("Please wait", true, nullptr); });
  pump.After(seconds(2), [this] { session.PanelCommand = 0; });
  pump.After(seconds(3), [this] { session.BusBusyText.clear(); });
  pump.After(seconds(4), [this] { msg.ShowProgress("", true, nullptr); });
  ExpectTime(Take({"wait idle"}), 0, 4);
  ExpectTime(Take({"wait idle"}), 0, 0);
  session.PanelCommand = 3;
  ExpectTime(Take({"wait idle"}), 1, 60);
}

TEST_F(WaitTest, WithoutAFormNothingIsIdle) {
  pump.After(seconds(2), [this] { first.Show(); });
  ExpectTime(Take({"close", "wait idle"}), 0, 2);
}

TEST_F(WaitTest, ForPolls) {
  session.polls = 7;
  const auto timer = pump.Every(seconds(2), [this] { ++session.polls; });
  ExpectTime(Take({"wait poll"}), 0, 2);
  ExpectTime(Take({"wait poll 3"}), 0, 6);
}

TEST_F(WaitTest, ManyPollsMayTakeLongerThanTheLimitOfOne) {
  const auto timer = pump.Every(seconds(2), [this] { ++session.polls; });
  ExpectTime(Take({"wait poll 100"}), 0, 200);
}

TEST_F(WaitTest, WithoutPollsItFails) {
  pump.After(seconds(5), [this] { ++session.polls; });
  ExpectTime(Take({"wait poll 2"}), 1, 65);
  ExpectTime(Take({"wait poll 2 3"}), 1, 3);
}

TEST_F(WaitTest, AProcessThatEndsFirstFailsTheWait) {
  pump.After(seconds(1), [this] { session.processOver = true; });
  ExpectTime(Take({"wait form frmB"}), 1, 1);
  EXPECT_THAT(errors, HasSubstr("the process has ended"));
}

TEST_F(WaitTest, AProcessMayEndWhileTimePasses) {
  pump.After(seconds(1), [this] { session.processOver = true; });
  ExpectTime(Take({"wait 5"}), 0, 1);
}

}  // namespace
}  // namespace brelant::test
