// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/panel_fixture.h"

namespace brelant {
namespace {

using test::Click;
using test::Frm5Test;
using test::SampleRam;
using testing::ElementsAre;

class Frm5OutputsTest : public Frm5Test {
 protected:
  /// The fields and captions that an output has only while it is analog, by their visibility.
  std::vector<bool> AnalogParts(int output) {
    static const std::array<std::vector<int>, 2> kLabels{std::vector{42, 49, 38, 50},
                                                         std::vector{12, 15, 11, 16}};
    std::vector<bool> visible{panel.txbOutIntTime[output].Visible(), panel.txbOutBaseLine[output].Visible()};
    for (const int index : kLabels.at(static_cast<std::size_t>(output))) {
      const auto* label = panel.form.Find("Label1(" + std::to_string(index) + ")");
      visible.push_back(label != nullptr && label->Visible());
    }
    return visible;
  }

  const std::vector<bool> all = std::vector<bool>(6, true);
  const std::vector<bool> none = std::vector<bool>(6, false);
};

TEST_F(Frm5OutputsTest, AnAnalogOutputShowsAllItsParts) {
  EXPECT_EQ(AnalogParts(0), all);
  EXPECT_EQ(AnalogParts(1), all);
}

TEST_F(Frm5OutputsTest, ADigitalOutputHidesItsParts) {
  SetRam(189, {64});
  panel.FormUpdate();
  EXPECT_EQ(AnalogParts(0), none);
  EXPECT_EQ(AnalogParts(1), all);
  SetRam(189, {0});
  SetRam(193, {64});
  panel.FormUpdate();
  EXPECT_EQ(AnalogParts(0), all);
  EXPECT_EQ(AnalogParts(1), none);
}

TEST_F(Frm5OutputsTest, DigitalOverridesTheRange) {
  SetRam(57, {255});
  SetRam(189, {64});
  SetRam(193, {64});
  panel.FormUpdate();
  EXPECT_THAT(Values(panel.optOut5Digital), ElementsAre(1, 1));
  EXPECT_THAT(Values(panel.optOut5mA), ElementsAre(0, 0));
  EXPECT_THAT(Values(panel.optOut5V), ElementsAre(0, 0));
}

TEST_F(Frm5OutputsTest, EachOutputHasItsBitForTheRange) {
  SetRam(57, {2});
  panel.FormUpdate();
  EXPECT_THAT(Values(panel.optOut5mA), ElementsAre(1, 0));
  EXPECT_THAT(Values(panel.optOut5V), ElementsAre(0, 1));
  SetRam(57, {4});
  panel.FormUpdate();
  EXPECT_THAT(Values(panel.optOut5mA), ElementsAre(0, 1));
  EXPECT_THAT(Values(panel.optOut5V), ElementsAre(1, 0));
  SetRam(57, {255 - 6});
  panel.FormUpdate();
  EXPECT_THAT(Values(panel.optOut5V), ElementsAre(1, 1));
}

TEST_F(Frm5OutputsTest, HasItsTexts) {
  for (int j = 0; j < 2; ++j) {
    EXPECT_EQ(panel.optOut5V[j].Text(), "0-100%");
    EXPECT_EQ(panel.optOut5mA[j].Text(), "20-100%");
    EXPECT_EQ(panel.optOut5Digital[j].Text(), "Digital");
  }
}

TEST_F(Frm5OutputsTest, ARangeIsStoredInItsBitAndNowhereElse) {
  Click(panel.optOut5mA[0]);
  ExpectChanged(57, {0xF0 | 2 | 4});
  Click(panel.optOut5V[1]);
  ExpectChanged(57, {0xF0 | 2});
  Click(panel.optOut5V[0]);
  ExpectChanged(57, {0xF0});
  Click(panel.optOut5mA[1]);
  EXPECT_EQ(WholeRam(), SampleRam());
}

TEST_F(Frm5OutputsTest, ADigitalOutputStoresItsBitAndNoBaseLine) {
  Click(panel.optOut5Digital[1]);
  ExpectChanged(193, {64 | 4, 128, 0, 0});
  EXPECT_THAT(Values(panel.optOut5Digital), ElementsAre(0, 1));
  EXPECT_EQ(AnalogParts(1), none);
}

TEST_F(Frm5OutputsTest, ADigitalOutputKeepsItsIntegrationTime) {
  Click(panel.optOut5Digital[0]);
  EXPECT_EQ(Ram(192), 3);
  Click(panel.optOut5V[0]);
  EXPECT_EQ(panel.txbOutIntTime[0].Text(), "16");
}

TEST_F(Frm5OutputsTest, AnOutputThatIsAnalogAgainHasTheBaseLineZero) {
  Click(panel.optOut5Digital[1]);
  Click(panel.optOut5mA[1]);
  ExpectChanged(193, {4, 128, 0, 0});
  EXPECT_EQ(panel.txbOutBaseLine[1].Text(), "0");
}

TEST_F(Frm5OutputsTest, ChecksAreStoredWithTheClick) {
  Click(panel.rows.cbxFout[0][4]);
  ExpectChanged(189, {1 | 2 | 16 | 32});
  Click(panel.rows.cbxFout[0][4]);
  Click(panel.rows.cbxFout[1][0]);
  ExpectChanged(193, {1 | 4});
  Click(panel.rows.cbxFout[1][0]);
  Click(panel.trigger.cbxDigTout[0]);
  ExpectChanged(189, {1 | 2});
  Click(panel.trigger.cbxDigTout[0]);
  Click(panel.trigger.cbxDigTout[1]);
  ExpectChanged(193, {4 | 32});
}

TEST_F(Frm5OutputsTest, AnIntegrationTimeBelow2Becomes2) {
  for (const char* text : {"1.9", "0", "-8", "", "none"}) {
    test::Type(panel.txbOutIntTime[0], text);
    EXPECT_EQ(panel.txbOutIntTime[0].Text(), "2") << text;
    ExpectChanged(192, {0});
    EXPECT_EQ(ground.session.LastError, "");
  }
  test::Type(panel.txbOutIntTime[0], "2");
  ExpectChanged(192, {0});
}

TEST_F(Frm5OutputsTest, ABaseLineIsStoredWhenTheFieldIsLeft) {
  test::Type(panel.txbOutBaseLine[0], "33.4");
  EXPECT_EQ(panel.txbOutBaseLine[0].Text(), "33");
  // 0.334 x 16384 + 32768 = 38240.3
  ExpectChanged(190, {149, 96});
}

}  // namespace
}  // namespace brelant
