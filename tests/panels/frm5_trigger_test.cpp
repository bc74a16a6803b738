// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/loop_act.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using test::Click;
using test::Frm5Test;

/// The simulated trigger, on a panel whose first output shows its level.
class Frm5TriggerTest : public Frm5Test {
 protected:
  Frm5TriggerTest() {
    SetRam(189, {32, 128, 0, 0});
    panel.SimMode(true);
    panel.FormUpdate();
  }

  void After(milliseconds delay, std::function<void()> act) { ground.pump.After(delay, std::move(act)); }
  void Run(std::chrono::microseconds span) { test::RunLoop(ground, panel, span); }
  void Trigger() { EXPECT_TRUE(Click(panel.trigger.btnDigTrig)); }
};

TEST_F(Frm5TriggerTest, TheButtonIsThereInSimulatedModeOnly) {
  EXPECT_TRUE(panel.trigger.btnDigTrig.Visible());
  panel.SimMode(false);
  EXPECT_FALSE(panel.trigger.btnDigTrig.Visible());
  EXPECT_FALSE(Click(panel.trigger.btnDigTrig));
}

TEST_F(Frm5TriggerTest, NoBarIsShownAtFirst) {
  EXPECT_FALSE(panel.trigger.linDigTPsign.Visible());
  EXPECT_FALSE(panel.trigger.linDigTNsign.Visible());
}

TEST_F(Frm5TriggerTest, TheBarOfTheSignInForceIsShown) {
  Trigger();
  EXPECT_TRUE(panel.trigger.linDigTPsign.Visible());
  EXPECT_FALSE(panel.trigger.linDigTNsign.Visible());
}

TEST_F(Frm5TriggerTest, TheBarOfANegativeSignIsShown) {
  SetRam(188, {128 + 37});
  panel.FormUpdate();
  Trigger();
  EXPECT_FALSE(panel.trigger.linDigTPsign.Visible());
  EXPECT_TRUE(panel.trigger.linDigTNsign.Visible());
}

TEST_F(Frm5TriggerTest, TheBarMovesInProportionAndGoesAtTheEnd) {
  std::vector<int> bars;
  std::vector<std::string> outputs;
  const auto look = [&] {
    bars.push_back(panel.trigger.linDigTPsign.Visible() ? panel.trigger.linDigTPsign.Value() : -1);
    outputs.push_back(panel.txbOutOut[0].Text());
  };
  After(milliseconds(1000), [&] { Trigger(); });
  // 2.5 s: a quarter, a half, nine tenths, and over.
  for (const int moment : {500, 1625, 2250, 3250, 3600}) After(milliseconds(moment), look);
  Run(seconds(5));
  ASSERT_EQ(bars.size(), 5U);
  EXPECT_EQ(bars[0], -1);
  EXPECT_NEAR(bars[1], 25, 3);
  EXPECT_NEAR(bars[2], 50, 3);
  EXPECT_NEAR(bars[3], 90, 3);
  EXPECT_EQ(bars[4], -1);
  EXPECT_EQ(outputs, (std::vector<std::string>{"0", "29", "29", "29", "0"}));
}

TEST_F(Frm5TriggerTest, TheTriggerEndsAtItsTime) {
  std::vector<bool> visible;
  const auto look = [&] { visible.push_back(panel.trigger.linDigTPsign.Visible()); };
  Trigger();
  After(milliseconds(2490), look);
  After(milliseconds(2560), look);
  Run(seconds(4));
  EXPECT_EQ(visible, (std::vector<bool>{true, false}));
}

TEST_F(Frm5TriggerTest, ANegativeTriggerEndsToo) {
  SetRam(188, {128 + 37});
  SetRam(189, {32, 192, 0, 0});
  panel.FormUpdate();
  std::vector<std::string> outputs;
  const auto look = [&] { outputs.push_back(panel.txbOutOut[0].Text()); };
  Trigger();
  After(milliseconds(1250), [&] {
    EXPECT_NEAR(panel.trigger.linDigTNsign.Value(), 50, 3);
    look();
  });
  After(milliseconds(2600), look);
  Run(seconds(3));
  EXPECT_FALSE(panel.trigger.linDigTNsign.Visible());
  // 100 less twice 29.
  EXPECT_EQ(outputs, (std::vector<std::string>{"42", "100"}));
}

TEST_F(Frm5TriggerTest, MinutesLastSixtyTimesAsLong) {
  SetRam(187, {128 + 10});
  panel.FormUpdate();
  std::vector<int> bars;
  const auto look = [&] {
    bars.push_back(panel.trigger.linDigTPsign.Visible() ? panel.trigger.linDigTPsign.Value() : -1);
  };
  Trigger();
  After(seconds(75), look);
  After(seconds(149), look);
  After(seconds(151), look);
  Run(seconds(155));
  ASSERT_EQ(bars.size(), 3U);
  EXPECT_NEAR(bars[0], 50, 1);
  EXPECT_NEAR(bars[1], 99, 1);
  EXPECT_EQ(bars[2], -1);
}

TEST_F(Frm5TriggerTest, AnyUnitButSecondsIsMinutes) {
  panel.trigger.lblDigTunit.SetText("hours");
  bool visible = false;
  Trigger();
  After(seconds(140), [&] { visible = panel.trigger.linDigTPsign.Visible(); });
  Run(seconds(141));
  EXPECT_TRUE(visible);
}

TEST_F(Frm5TriggerTest, ATimeOfZeroTriggersNothing) {
  panel.trigger.txbDigTtime.SetText("0");
  Trigger();
  EXPECT_FALSE(panel.trigger.linDigTPsign.Visible());
  EXPECT_FALSE(panel.trigger.linDigTNsign.Visible());
}

TEST_F(Frm5TriggerTest, ANegativeTimeIsOverAtOnce) {
  panel.trigger.txbDigTtime.SetText("-5");
  Trigger();
  EXPECT_TRUE(panel.trigger.linDigTPsign.Visible());
  Run(milliseconds(100));
  EXPECT_FALSE(panel.trigger.linDigTPsign.Visible());
}

TEST_F(Frm5TriggerTest, ASecondPressDoesNotProlongIt) {
  bool visible = true;
  Trigger();
  After(seconds(2), [&] { Trigger(); });
  After(milliseconds(2600), [&] { visible = panel.trigger.linDigTPsign.Visible(); });
  Run(seconds(3));
  EXPECT_FALSE(visible);
}

TEST_F(Frm5TriggerTest, ItCanBeTriggeredAgain) {
  bool visible = false;
  Trigger();
  After(seconds(3), [&] { Trigger(); });
  After(seconds(4), [&] { visible = panel.trigger.linDigTPsign.Visible(); });
  Run(seconds(5));
  EXPECT_TRUE(visible);
}

TEST_F(Frm5TriggerTest, WithATimeOfZeroTheRoundsLeaveARunningTriggerAlone) {
  std::vector<bool> visible;
  const auto look = [&] { visible.push_back(panel.trigger.linDigTPsign.Visible()); };
  Trigger();
  After(seconds(1), [&] { test::Type(panel.trigger.txbDigTtime, "0"); });
  After(seconds(4), look);
  After(seconds(5), [&] { test::Type(panel.trigger.txbDigTtime, "1"); });
  After(seconds(6), look);
  Run(seconds(7));
  EXPECT_EQ(visible, (std::vector<bool>{true, false}));
}

TEST_F(Frm5TriggerTest, LeavingSimulatedModeDoesNotTouchTheBar) {
  Trigger();
  panel.SimMode(false);
  EXPECT_TRUE(panel.trigger.linDigTPsign.Visible());
}

TEST_F(Frm5TriggerTest, MidnightDoesNotEndIt) {
  ground.clock.SetTimer(86399.0);
  std::vector<bool> visible;
  const auto look = [&] { visible.push_back(panel.trigger.linDigTPsign.Visible()); };
  Trigger();
  After(milliseconds(2400), look);
  After(milliseconds(2600), look);
  Run(seconds(3));
  EXPECT_EQ(visible, (std::vector<bool>{true, false}));
}

}  // namespace
}  // namespace brelant
