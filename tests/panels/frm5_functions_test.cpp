// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/panel_fixture.h"

namespace brelant {
namespace {

using test::Click;
using test::Frm5Test;
using test::SampleRam;

class Frm5FunctionsTest : public Frm5Test {
 protected:
  /// The one picture of a function that is visible, by its name.
  std::string Picture(int function) {
    std::string found;
    const auto ending = "(" + std::to_string(function) + ")";
    for (const auto& control : panel.form.Controls()) {
      const auto& name = control.Name();
      if (control.Visible() && name.starts_with("pctF") && name.ends_with(ending)) {
        EXPECT_EQ(found, "");
        found = name.substr(0, name.size() - ending.size());
      }
    }
    return found;
  }
  void ClickPicture(int function) {
    EXPECT_TRUE(Click(*panel.form.Find(Picture(function) + "(" + std::to_string(function) + ")")));
  }
};

TEST_F(Frm5FunctionsTest, ShowsThePicturesOfTheSample) {
  EXPECT_EQ(Picture(0), "pctFPsignPslope");
  EXPECT_EQ(Picture(1), "pctFPsignNslope");
  EXPECT_EQ(Picture(2), "pctFNsignPslope");
  EXPECT_EQ(Picture(3), "pctFNsignNslope");
  EXPECT_EQ(Picture(4), "pctFPsignPslope");
}

TEST_F(Frm5FunctionsTest, AClickStoresTheNextShape) {
  ClickPicture(0);
  EXPECT_EQ(Picture(0), "pctFNsignNslope");
  ExpectChanged(162, {1, 21, 24, 25, 0});
  ClickPicture(0);
  EXPECT_EQ(Picture(0), "pctFNsignPslope");
  ExpectChanged(162, {1, 21, 24, 153, 0});
  ClickPicture(0);
  EXPECT_EQ(Picture(0), "pctFPsignNslope");
  ExpectChanged(162, {1, 149, 24, 25, 0});
  ClickPicture(0);
  EXPECT_EQ(Picture(0), "pctFPsignPslope");
  EXPECT_EQ(WholeRam(), SampleRam());
}

TEST_F(Frm5FunctionsTest, AClickStepsThroughTheDigitalShapes) {
  SetRam(189, {64 | 1});
  panel.FormUpdate();
  EXPECT_EQ(Picture(0), "pctFDigPsignPslope");
  for (const char* next :
       {"pctFDigPsignNslope", "pctFDigNsignPslope", "pctFDigNsignNslope", "pctFDigPsignPslope"}) {
    ClickPicture(0);
    EXPECT_EQ(Picture(0), next);
  }
}

TEST_F(Frm5FunctionsTest, EverySignAndSlopeHasItsPictureInBothClasses) {
  struct Case {
    int first;
    int third;
    const char* analog;
    const char* digital;
  };
  for (const auto& [first, third, analog, digital] :
       {Case{149, 153, "pctFPsignPslope", "pctFDigPsignPslope"},
        Case{149, 25, "pctFPsignNslope", "pctFDigPsignNslope"},
        Case{21, 153, "pctFNsignPslope", "pctFDigNsignPslope"},
        Case{21, 25, "pctFNsignNslope", "pctFDigNsignNslope"}}) {
    SetRam(163, {first, 24, third, 0});
    SetRam(189, {1});
    panel.FormUpdate();
    EXPECT_EQ(Picture(0), analog);
    SetRam(189, {64 | 1});
    panel.FormUpdate();
    EXPECT_EQ(Picture(0), digital);
  }
}

TEST_F(Frm5FunctionsTest, OneDigitalOutputMakesAFunctionDigital) {
  SetRam(189, {1 | 2});
  SetRam(193, {64 | 2 | 4});
  panel.FormUpdate();
  EXPECT_EQ(Picture(0), "pctFPsignPslope");
  EXPECT_EQ(Picture(1), "pctFDigPsignNslope");
  EXPECT_EQ(Picture(2), "pctFDigNsignPslope");
  EXPECT_EQ(Picture(3), "pctFNsignNslope");
}

TEST_F(Frm5FunctionsTest, AnOutputThatBecomesDigitalTurnsThePicturesOfItsFunctions) {
  EXPECT_TRUE(Click(panel.optOut5Digital[1]));
  EXPECT_EQ(Picture(2), "pctFDigNsignPslope");
  EXPECT_EQ(Picture(0), "pctFPsignPslope");
  // The flags of function 2 are what they were.
  EXPECT_EQ(Ram(172, 5), (std::vector<int>{2, 21, 24, 149, 224}));
  EXPECT_TRUE(Click(panel.optOut5V[1]));
  EXPECT_EQ(Picture(2), "pctFNsignPslope");
  EXPECT_EQ(Ram(172, 5), (std::vector<int>{2, 21, 24, 149, 224}));
}

TEST_F(Frm5FunctionsTest, FeedingADigitalOutputTurnsThePicture) {
  SetRam(193, {64 | 4});
  panel.FormUpdate();
  EXPECT_EQ(Picture(3), "pctFNsignNslope");
  EXPECT_TRUE(Click(panel.rows.cbxFout[1][3]));
  EXPECT_EQ(Picture(3), "pctFDigNsignNslope");
  EXPECT_EQ(Ram(193), 64 | 4 | 8);
  EXPECT_TRUE(Click(panel.rows.cbxFout[1][3]));
  EXPECT_EQ(Picture(3), "pctFNsignNslope");
  EXPECT_EQ(Ram(193), 64 | 4);
}

}  // namespace
}  // namespace brelant
