// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/z7731_fixture.h"

namespace brelant {
namespace {

using test::kGreen;
using test::kRed;

/// A state, the level and the value that it follows, and on which side the alarm lies.
struct Rule {
  int state;
  int level;
  int value;
  bool isLow;
};

const std::vector<Rule> kRules{{0, 0, 1, false}, {1, 1, 1, false}, {2, 2, 2, false},
                               {3, 3, 0, true},  {4, 4, 0, false}, {7, 8, 6, true},
                               {8, 7, 6, false}, {5, 5, 5, true},  {6, 6, 5, true}};

class Z7731SimulateTest : public test::Z7731Test {
 protected:
  Z7731SimulateTest() { EXPECT_TRUE(StartSimulated()); }

  /// One pass with these texts.
  std::string StateOf(const Rule& rule, const std::string& value, const std::string& level) {
    panel.txbCHact[rule.value].SetText(value);
    panel.txbKelLevel[rule.level].SetText(level);
    panel.Simulate();
    const auto& state = panel.txbStatus[rule.state];
    EXPECT_EQ(state.Back(), state.Text() == "ALARM" ? kRed : kGreen) << rule.state;
    return state.Text();
  }
};

TEST_F(Z7731SimulateTest, EachAlarmComparesItsValueWithItsLevel) {
  for (const auto& rule : kRules) {
    EXPECT_EQ(StateOf(rule, "20.5", "20.6"), rule.isLow ? "ALARM" : "OK") << rule.state;
    EXPECT_EQ(StateOf(rule, "20.6", "20.6"), "ALARM") << rule.state;
    EXPECT_EQ(StateOf(rule, "20.7", "20.6"), rule.isLow ? "OK" : "ALARM") << rule.state;
  }
}

TEST_F(Z7731SimulateTest, OtherFieldsCountForNothing) {
  for (const auto& rule : kRules) {
    for (auto* field : panel.txbCHact) field->SetText(rule.isLow ? "-9999" : "9999");
    for (auto* level : panel.txbKelLevel) level->SetText(rule.isLow ? "9999" : "-9999");
    EXPECT_EQ(StateOf(rule, rule.isLow ? "10.1" : "9.9", "10"), "OK") << rule.state;
  }
}

TEST_F(Z7731SimulateTest, BothDecimalMarksAreTaken) {
  const Rule high{4, 4, 0, false};
  EXPECT_EQ(StateOf(high, "12,5", "12.5"), "ALARM");
  EXPECT_EQ(StateOf(high, "12.4", "12,5"), "OK");
  EXPECT_EQ(StateOf(high, "12,6", "12,5"), "ALARM");
  EXPECT_EQ(StateOf(high, "-1,5", "-1.6"), "ALARM");
}

TEST_F(Z7731SimulateTest, ComparesInSinglePrecision) {
  // The first one is none of the singles; it becomes the second one.
  EXPECT_EQ(StateOf({4, 4, 0, false}, "16777216", "16777217"), "ALARM");
  EXPECT_EQ(StateOf({3, 3, 0, true}, "16777217", "16777216"), "ALARM");
  EXPECT_EQ(StateOf({4, 4, 0, false}, "20.60000001", "20.60000002"), "ALARM");
}

TEST_F(Z7731SimulateTest, NoNumberIsNought) {
  EXPECT_EQ(StateOf({4, 4, 0, false}, "", "0"), "ALARM");
  EXPECT_EQ(StateOf({4, 4, 0, false}, "hot", "0.1"), "OK");
}

TEST_F(Z7731SimulateTest, ATypedValueIsComparedAtOnce) {
  After(std::chrono::seconds(1), [this] { test::Type(panel.txbCHact[1], "20000"); });
  After(std::chrono::seconds(2), [this] {
    EXPECT_EQ(panel.txbStatus[0].Text(), "ALARM");
    EXPECT_EQ(panel.txbStatus[1].Text(), "ALARM");
    EXPECT_EQ(panel.txbStatus[2].Text(), "OK");
    test::Type(panel.txbKelLevel[1], "30000");
  });
  After(std::chrono::seconds(3), [this] { EXPECT_EQ(panel.txbStatus[1].Text(), "OK"); });
  Run(std::chrono::seconds(4));
  EXPECT_EQ(panel.txbKelLevel[1].Text(), "30000");
  EXPECT_TRUE(Told().empty());
}

TEST_F(Z7731SimulateTest, AnIdlePanelSleeps) {
  const int before = ground.pump.Passes();
  Run(std::chrono::seconds(60));
  EXPECT_LT(ground.pump.Passes() - before, 10);
}

}  // namespace
}  // namespace brelant
