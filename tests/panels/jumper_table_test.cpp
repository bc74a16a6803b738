// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/platform6/jumper_table.h"

#include <cmath>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "knowledge/gas_curve.h"

namespace brelant::platform6 {
namespace {

/// A table that a person can follow: function 1 climbs from -100 % at 0 to 100 % at 1000, function 4 from 0
/// at 20 % of it to 100 at 60 %.
class JumperTableTest : public testing::Test {
 protected:
  JumperTableTest() {
    ends.A(1) = 0;
    ends.B(1) = 1000;
    ends.A(2) = 100;
    ends.B(2) = 300;
    ends.A(3) = 20;
    ends.B(3) = 60;
    ends.A(4) = 20;
    ends.B(4) = 60;
    ends.A(5) = 10;
    ends.B(5) = 90;
    ends.A(6) = -30;
    ends.B(6) = 50;
  }
  JumperCorners Corners(float offset = 0) {
    return CornersOf(ends, offset, [this] { ++passes; });
  }
  JumperSettings Settings() {
    return SettingsOf(corners, [this] { ++passes; });
  }

  FunctionEnds ends;
  /// A = 300, B = 650, C = 1000, D = 200, E = 550, F = 400, G = 250, I = 500, K = 600.
  JumperCorners corners{300, 650.0F, 1000, 200, 550.0F, 400, 250, 500, 600.0F};
  int passes = 0;
};

// One function

TEST_F(JumperTableTest, TheFirstThreeFunctionsHaveTwoSides) {
  for (const auto& [x, percent] :
       {std::pair{-50.0, -100.0}, std::pair{0.0, -100.0}, std::pair{250.0, -50.0}, std::pair{500.0, 0.0},
        std::pair{1000.0, 100.0}, std::pair{2000.0, 100.0}}) {
    EXPECT_DOUBLE_EQ(ends.GetFunkResult(1, x), percent) << x;
  }
  EXPECT_DOUBLE_EQ(ends.GetFunkResult(2, 250), 50);
  EXPECT_DOUBLE_EQ(ends.GetFunkResult(3, 30), -50);
}

TEST_F(JumperTableTest, TheOthersStandOnTheFirstOne) {
  // At 650 function 1 gives 30 %: (30 - 20) / 40.
  EXPECT_DOUBLE_EQ(ends.GetFunkResult(4, 650), 25);
  EXPECT_DOUBLE_EQ(ends.GetFunkResult(4, 500), 0);
  EXPECT_DOUBLE_EQ(ends.GetFunkResult(4, 900), 100);
  EXPECT_DOUBLE_EQ(ends.GetFunkResult(5, 750), 50);
  EXPECT_DOUBLE_EQ(ends.GetFunkResult(6, 450), 25);
}

TEST_F(JumperTableTest, AFaultIs0) {
  for (int i = 1; i <= 6; ++i) {
    auto equal = ends;
    equal.A(i) = equal.B(i);
    EXPECT_EQ(equal.GetFunkResult(i, 777), 0) << i;
  }
  // A fault of function 1 is the 0 on which the others stand: (0 + 30) / 80.
  ends.B(1) = 0;
  EXPECT_DOUBLE_EQ(ends.GetFunkResult(6, 500), 37.5);
}

// From the functions to the corners

TEST_F(JumperTableTest, TheCornersOfAHandMadeTable) {
  const auto shown = Corners();
  EXPECT_FLOAT_EQ(shown.A, 500);
  EXPECT_FLOAT_EQ(shown.C, 1000);
  EXPECT_FLOAT_EQ(shown.D, 200);
  EXPECT_FLOAT_EQ(shown.F, 300);
  EXPECT_FLOAT_EQ(shown.G, 60);
  EXPECT_FLOAT_EQ(shown.I, 500);
  // y + (y - 20) x 2.5 = 100 at y = 42.857 %: x = 500 + 5 y.
  EXPECT_NEAR(shown.B.value(), 714.286, 0.001);
  EXPECT_NEAR(shown.K.value(), 750, 0.001);
}

TEST_F(JumperTableTest, TheSecondSearchIsTheFirstOneAgain) {
  // By functions 5 and 2 it would be another place.
  const auto shown = Corners();
  EXPECT_EQ(shown.E, shown.B);
  ends.A(5) = 0;
  ends.B(2) = 5000;
  EXPECT_EQ(Corners().E, shown.B);
}

TEST_F(JumperTableTest, TheThirdSearchLooksForTheLevelOfFunction6LessTheOffset) {
  // y - 10 = 50.
  EXPECT_NEAR(Corners(10).K.value(), 800, 0.001);
  EXPECT_NEAR(Corners(-40).K.value(), 550, 0.001);
  ends.B(6) = -60;
  EXPECT_NEAR(Corners().K.value(), 200, 0.001);
}

TEST_F(JumperTableTest, ASearchThatHitsStopsThere) {
  // At x = 0 function 1 is at 0 % and function 4 at 100 %.
  ends.A(1) = -1000;
  ends.A(4) = -100;
  ends.B(4) = 0;
  ends.B(6) = 0;
  const auto shown = Corners();
  EXPECT_EQ(shown.B, 0.0F);
  EXPECT_EQ(shown.K, 0.0F);
  EXPECT_EQ(passes, 3);
}

TEST_F(JumperTableTest, ASearchBeginsWith9999AndHalves) {
  // Never reached: from 0 up by 9999, 4999.5 and so on. Downward the same.
  ends.B(6) = 101;
  EXPECT_FLOAT_EQ(Corners().K.value(), 19998);
  ends.B(6) = -101;
  EXPECT_FLOAT_EQ(Corners().K.value(), -19998);
  // Until the step is 0 in single precision.
  ends.B(6) = 101;
  passes = 0;
  Corners();
  int steps = 0;
  for (float step = 9999; step != 0; step /= 2) ++steps;
  EXPECT_GE(passes, steps);
  EXPECT_LE(passes, 3 * steps);
}

TEST_F(JumperTableTest, ASearchThatEndsWithoutANumberGivesNothing) {
  ends.A(1) = std::numeric_limits<float>::quiet_NaN();
  const auto shown = Corners();
  EXPECT_FALSE(shown.B.has_value());
  EXPECT_FALSE(shown.E.has_value());
  EXPECT_FALSE(shown.K.has_value());
}

// From the corners to the functions

TEST_F(JumperTableTest, TheFunctionsOfHandMadeCorners) {
  const auto settings = Settings();
  EXPECT_FLOAT_EQ(settings.ends.A(1), -1000);
  EXPECT_FLOAT_EQ(settings.ends.B(1), 1000);
  EXPECT_FLOAT_EQ(settings.ends.A(2), 0);
  EXPECT_FLOAT_EQ(settings.ends.B(2), 400);
  EXPECT_FLOAT_EQ(settings.ends.A(3), 150);
  EXPECT_FLOAT_EQ(settings.ends.B(3), 250);
  EXPECT_FLOAT_EQ(settings.ends.A(4), 30);
  // At 650 function 1 gives 65 %, so function 4 gives 35 %: (65 - 30) / (B - 30) = 0.35.
  EXPECT_NEAR(settings.ends.B(4), 130, 0.001);
  EXPECT_FLOAT_EQ(settings.ends.A(5), 20);
  // Function 2 is full at 550, so function 5 must give nothing: the search ends at its far end.
  EXPECT_FLOAT_EQ(settings.ends.A(6), 40);
  EXPECT_FLOAT_EQ(settings.ends.B(6), 50);
  // 60 % - offset = 50 %.
  EXPECT_NEAR(settings.jumperOffset, 10, 0.0001);
}

TEST_F(JumperTableTest, TheFifthFunctionIsFittedWithTheSecond) {
  corners.F = 800;
  corners.D = 400;
  corners.E = 700;
  const auto settings = Settings();
  EXPECT_FLOAT_EQ(settings.ends.A(2), 0);
  EXPECT_FLOAT_EQ(settings.ends.A(5), 40);
  // At 700 function 2 gives 75 % and function 1 70 %: (70 - 40) / (B - 40) = 0.25.
  EXPECT_NEAR(settings.ends.B(5), 160, 0.01);
  EXPECT_NEAR(settings.ends.GetFunkResult(5, 700) + settings.ends.GetFunkResult(2, 700), 100, 0.005);
}

TEST_F(JumperTableTest, TheFifthSearchEndsCloseToFullButAfterTheStepOfThatTurn) {
  // Function 2 gives 50 % at 600, function 1 60 %; (60 - 20) / (B - 20) must be a half, so B is 100. It
  // begins at 21, where 150 % is above: 271, 146, 83.5, 114.75 and so on.
  corners.D = 200;
  corners.F = 1000;  // A(2) = -600: (600 + 600) / 1600 x 200 - 100 = 50
  corners.E = 600.0F;
  const auto settings = Settings();
  EXPECT_FLOAT_EQ(settings.ends.A(2), -600);
  float b = 21;
  float step = 250;
  while (true) {
    const double r = std::min((60.0 - 20) / (static_cast<double>(b) - 20) * 100, 100.0) + 50;
    b += r > 100 ? step : r < 100 ? -step : 0;
    if (r > 99.9999 && r < 100.0001) break;
    step /= 2;
  }
  // The last step is taken although the sum was close enough before it.
  EXPECT_FLOAT_EQ(settings.ends.B(5), b);
  EXPECT_NEAR(b, 100, 0.01);
}

TEST_F(JumperTableTest, TheFifthSearchTakesItsFirstStepEvenWhereItBeginsCloseToFull) {
  // At 205 function 1 gives 20.5 %, so function 5 begins with half of the way from 20 to 21; with F = 210
  // function 2 gives the other half, and one single beside that it is 0.00008 off.
  corners.D = 200;
  corners.E = 205.0F;
  for (const float beside : {200.0F, 220.0F}) {
    corners.F = std::nextafter(210.0F, beside);
    const auto settings = Settings();
    const double function2 = settings.ends.GetFunkResult(2, 205);
    EXPECT_NEAR(function2, 50, 0.0001);
    EXPECT_GT(std::abs(function2 - 50), 0.00001);
    EXPECT_EQ(settings.ends.B(5), beside < 210 ? 21 + 250 : 21 - 250);
  }
}

TEST_F(JumperTableTest, TheFourthFunctionIsSearchedFrom100In50s) {
  // Where function 1 gives -50 % and function 4 nothing the sum is below, and B(4) falls: 100 - 50 - 25 - ...
  corners.A = 0;
  corners.B = -500.0F;
  EXPECT_NEAR(Settings().ends.B(4), 0, 0.0001);
  // Above, it climbs to 200.
  corners.A = -2000;
  corners.B = 900.0F;
  EXPECT_NEAR(Settings().ends.B(4), 200, 0.0001);
}

TEST_F(JumperTableTest, TheOffsetIsSearchedFrom0In100s) {
  corners.K = 2000.0F;
  corners.I = -3000;
  // 100 - offset = -300 is out of reach: 100 + 50 + ... = 200.
  EXPECT_NEAR(Settings().jumperOffset, 200, 0.0001);
  corners.I = 3000;
  corners.K = -2000.0F;
  EXPECT_NEAR(Settings().jumperOffset, -200, 0.0001);
}

TEST_F(JumperTableTest, WithoutCThereAreNoFunctions) {
  corners.C = 0;
  EXPECT_THROW(Settings(), NoResult);
}

TEST_F(JumperTableTest, TheReachableCornersComeBackButA) {
  const auto settings = Settings();
  const auto shown = CornersOf(settings.ends, settings.jumperOffset, [] {});
  // A(1) is -C: the middle is 0 whatever A was.
  EXPECT_EQ(shown.A, 0);
  EXPECT_NEAR(shown.B.value(), 650, 0.01);
  EXPECT_FLOAT_EQ(shown.C, 1000);
  EXPECT_FLOAT_EQ(shown.D, 200);
  EXPECT_FLOAT_EQ(shown.F, 400);
  EXPECT_FLOAT_EQ(shown.G, 250);
  EXPECT_FLOAT_EQ(shown.I, 500);
  EXPECT_NEAR(shown.K.value(), 600, 0.01);
}

TEST_F(JumperTableTest, EveryTurnLetsEventsRun) {
  Settings();
  EXPECT_GT(passes, 100);
}

}  // namespace
}  // namespace brelant::platform6
