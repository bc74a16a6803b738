// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "panels/FunctionBlocks.h"

namespace brelant {
namespace {

using testing::ElementsAre;

class FunctionBlocksTest : public testing::Test {
 protected:
  /// Numbers of the pictures of a function that are visible.
  std::vector<int> Visible(int function) {
    static constexpr std::array<const char*, 12> kPictures{
        "pctFDigPsignPslope", "pctFDigPsignNslope", "pctFDigNsignPslope", "pctFDigNsignNslope",
        "pctFNsignNslope",    "pctFNsignPslope",    "pctFPsignNslope",    "pctFPsignPslope",
        "pctFPslope",         "pctFNslope",         "pctFDigPslope",      "pctFDigNslope"};
    std::vector<int> visible;
    for (std::size_t type = 0; type < kPictures.size(); ++type) {
      const auto name = std::string(kPictures[type]) + "(" + std::to_string(function) + ")";
      if (form.Find(name)->Visible()) visible.push_back(static_cast<int>(type));
    }
    return visible;
  }
  std::vector<int> Step(int times) {
    std::vector<int> types;
    for (int i = 0; i < times; ++i) {
      blocks.FunkTypeUpdate(0, true, false, false);
      EXPECT_EQ(Visible(0).size(), 1U);
      types.push_back(Visible(0).front());
    }
    return types;
  }

  Screen screen;
  Form form{screen, "form", ""};
  FunctionClass kind = FunctionClass::analog;
  int changes = 0;
  FunctionBlocks blocks{form, 2, FunctionBlocks::kTypes, [this](int) { return kind; }, [this] { ++changes; }};
};

TEST_F(FunctionBlocksTest, NothingIsVisibleAtFirst) {
  EXPECT_THAT(Visible(0), ElementsAre());
  EXPECT_EQ(blocks.VisibleType(0), std::nullopt);
}

TEST_F(FunctionBlocksTest, ChoosesThePictureByClassSignAndSlope) {
  struct Case {
    FunctionClass kind;
    bool sign;
    bool slope;
    int type;
  };
  const auto digital = FunctionClass::digital;
  const auto analog = FunctionClass::analog;
  const auto noSign = FunctionClass::unsignedAnalog;
  const auto digitalNoSign = FunctionClass::unsignedDigital;
  for (const auto& [function, sign, slope, type] :
       {Case{digital, true, true, 0}, Case{digital, true, false, 1}, Case{digital, false, true, 2},
        Case{digital, false, false, 3}, Case{analog, false, false, 4}, Case{analog, false, true, 5},
        Case{analog, true, false, 6}, Case{analog, true, true, 7}, Case{noSign, true, true, 8},
        Case{noSign, false, true, 8}, Case{noSign, true, false, 9}, Case{noSign, false, false, 9},
        Case{digitalNoSign, true, true, 10}, Case{digitalNoSign, false, true, 10},
        Case{digitalNoSign, true, false, 11}, Case{digitalNoSign, false, false, 11}}) {
    kind = function;
    blocks.FunkTypeUpdate(1, false, sign, slope);
    EXPECT_THAT(Visible(1), ElementsAre(type));
    EXPECT_THAT(Visible(0), ElementsAre());
  }
}

TEST_F(FunctionBlocksTest, ReadsSignAndSlopeFromThePicture) {
  struct Case {
    int type;
    bool sign;
    bool slope;
  };
  for (const auto& [type, sign, slope] :
       {Case{0, true, true}, Case{1, true, false}, Case{2, false, true}, Case{3, false, false},
        Case{4, false, false}, Case{5, false, true}, Case{6, true, false}, Case{7, true, true}}) {
    kind = type < 4 ? FunctionClass::digital : FunctionClass::analog;
    blocks.FunkTypeUpdate(0, false, sign, slope);
    ASSERT_THAT(Visible(0), ElementsAre(type));
    bool readSign = !sign;
    bool readSlope = !slope;
    blocks.FunkTypeRead(0, readSign, readSlope);
    EXPECT_EQ(readSign, sign) << type;
    EXPECT_EQ(readSlope, slope) << type;
  }
}

TEST_F(FunctionBlocksTest, APictureWithoutASignTellsTheSlopeOnly) {
  for (const auto function : {FunctionClass::unsignedAnalog, FunctionClass::unsignedDigital}) {
    kind = function;
    for (const bool slope : {true, false}) {
      blocks.FunkTypeUpdate(0, false, true, slope);
      for (const bool before : {true, false}) {
        bool sign = before;
        bool readSlope = !slope;
        blocks.FunkTypeRead(0, sign, readSlope);
        EXPECT_EQ(readSlope, slope);
        EXPECT_EQ(sign, before);
      }
    }
  }
}

TEST_F(FunctionBlocksTest, StepsThroughTheDigitalGroup) {
  kind = FunctionClass::digital;
  blocks.FunkTypeUpdate(0, false, true, true);
  EXPECT_THAT(Step(5), ElementsAre(1, 2, 3, 0, 1));
}

TEST_F(FunctionBlocksTest, StepsThroughTheAnalogGroup) {
  blocks.FunkTypeUpdate(0, false, false, false);
  EXPECT_THAT(Step(5), ElementsAre(5, 6, 7, 4, 5));
}

TEST_F(FunctionBlocksTest, StepsThroughTheGroupWithoutASign) {
  kind = FunctionClass::unsignedAnalog;
  blocks.FunkTypeUpdate(0, false, false, true);
  EXPECT_THAT(Step(3), ElementsAre(9, 8, 9));
}

TEST_F(FunctionBlocksTest, StepsThroughTheDigitalGroupWithoutASign) {
  kind = FunctionClass::unsignedDigital;
  blocks.FunkTypeUpdate(0, false, false, true);
  EXPECT_THAT(Step(3), ElementsAre(11, 10, 11));
}

TEST_F(FunctionBlocksTest, APanelWithoutDigitalShapesWithoutASignHasNoPicturesOfThem) {
  Form other{screen, "other", ""};
  const FunctionBlocks usual(
      other, 1, FunctionBlocks::kUsualTypes, [](int) { return FunctionClass::analog; }, [] {});
  EXPECT_NE(other.Find("pctFNslope(0)"), nullptr);
  EXPECT_EQ(other.Find("pctFDigPslope(0)"), nullptr);
  EXPECT_EQ(other.Find("pctFDigNslope(0)"), nullptr);
}

TEST_F(FunctionBlocksTest, AStepIntoAnotherGroupBeginsAtItsFirst) {
  blocks.FunkTypeUpdate(0, false, true, false);
  kind = FunctionClass::digital;
  EXPECT_THAT(Step(1), ElementsAre(0));
  kind = FunctionClass::unsignedAnalog;
  EXPECT_THAT(Step(1), ElementsAre(8));
  kind = FunctionClass::unsignedDigital;
  EXPECT_THAT(Step(1), ElementsAre(10));
  kind = FunctionClass::analog;
  EXPECT_THAT(Step(1), ElementsAre(4));
}

TEST_F(FunctionBlocksTest, AStepIgnoresSignAndSlope) {
  blocks.FunkTypeUpdate(0, false, false, false);
  blocks.FunkTypeUpdate(0, true, true, true);
  EXPECT_THAT(Visible(0), ElementsAre(5));
}

TEST_F(FunctionBlocksTest, AFirstStepBeginsAtTheFirst) {
  EXPECT_THAT(Step(1), ElementsAre(4));
}

TEST_F(FunctionBlocksTest, AClickStepsOnAndTellsThePanel) {
  blocks.FunkTypeUpdate(0, false, true, true);
  blocks.FunkTypeUpdate(1, false, true, true);
  EXPECT_TRUE(form.Click(*form.Find("pctFPsignPslope(0)")));
  EXPECT_THAT(Visible(0), ElementsAre(4));
  EXPECT_THAT(Visible(1), ElementsAre(7));
  EXPECT_EQ(changes, 1);
  EXPECT_FALSE(form.Click(*form.Find("pctFPsignPslope(0)")));
  EXPECT_EQ(changes, 1);
}

}  // namespace
}  // namespace brelant
