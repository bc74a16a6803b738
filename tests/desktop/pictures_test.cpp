// SPDX-License-Identifier: GPL-3.0-or-later
#include <QImage>
#include <QTest>

#include <gtest/gtest.h>

#include "bench_form.h"
#include "desktop/kit/PictureButton.h"
#include "desktop/kit/Shape.h"

namespace brelant::test {
namespace {

constexpr int kWidth = 200;
constexpr int kHeight = 100;
const ShapeInk kInk{Qt::red, Qt::black, Qt::blue};

QImage Drawn(FunctionBlocks::Type type) {
  QImage image(kWidth, kHeight, QImage::Format_RGB32);
  image.fill(Qt::white);
  QPainter painter(&image);
  PaintShape(painter, QRectF(0, 0, kWidth, kHeight), type, kInk);
  return image;
}

/// Anything dark of the curve within the column, in the upper or the lower third.
bool CurveAt(const QImage& image, int x, bool high) {
  const int from = high ? 0 : kHeight * 2 / 3;
  for (int y = from; y < from + kHeight / 3; ++y) {
    if (image.pixelColor(x, y).lightness() < 60 && image.pixelColor(x, y).red() < 60) return true;
  }
  return false;
}

constexpr int kLeft = kWidth / 10;
constexpr int kRight = kWidth * 9 / 10;
constexpr int kMiddle = kHeight / 2;

bool IsAreaAt(const QImage& image, int x, int y) {
  return image.pixelColor(x, y) == QColor(Qt::blue);
}

bool IsArea(const QImage& image, int x) {
  return IsAreaAt(image, x, kMiddle);
}

struct Expected {
  FunctionBlocks::Type type;
  bool rises;
  bool areaLeft;
  bool areaRight;
};

class RampTest : public testing::TestWithParam<Expected> {};

TEST_P(RampTest, IsHighWhereTheFunctionIsAndFilledToItsAxis) {
  const auto image = Drawn(GetParam().type);
  EXPECT_EQ(CurveAt(image, kLeft, true), !GetParam().rises);
  EXPECT_EQ(CurveAt(image, kLeft, false), GetParam().rises);
  EXPECT_EQ(CurveAt(image, kRight, true), GetParam().rises);
  EXPECT_EQ(CurveAt(image, kRight, false), !GetParam().rises);
  EXPECT_EQ(IsArea(image, kLeft), GetParam().areaLeft);
  EXPECT_EQ(IsArea(image, kRight), GetParam().areaRight);
}

// A positive function lies between its curve and the axis below, a negative one between its curve and the
// axis above.
INSTANTIATE_TEST_SUITE_P(Shapes, RampTest,
                         testing::Values(Expected{FunctionBlocks::psignPslope, true, false, true},
                                         Expected{FunctionBlocks::psignNslope, false, true, false},
                                         Expected{FunctionBlocks::nsignPslope, true, true, false},
                                         Expected{FunctionBlocks::nsignNslope, false, false, true}));

constexpr int kUpper = kHeight / 4;
constexpr int kLower = kHeight * 3 / 4;

// From -100 to 100: the axis is half way up, and the area below it on one side, above it on the other.
TEST(TwoSidedTest, IsFilledToAnAxisInTheMiddle) {
  for (const auto type : {FunctionBlocks::pslope, FunctionBlocks::nslope}) {
    const auto image = Drawn(type);
    const bool rises = type == FunctionBlocks::pslope;
    EXPECT_EQ(image.pixelColor(kLeft, kMiddle), QColor(Qt::red)) << "the axis";
    EXPECT_EQ(image.pixelColor(kRight, kMiddle), QColor(Qt::red)) << "the axis";
    EXPECT_EQ(IsAreaAt(image, kLeft, kUpper), !rises) << type;
    EXPECT_EQ(IsAreaAt(image, kLeft, kLower), rises) << type;
    EXPECT_EQ(IsAreaAt(image, kRight, kUpper), rises) << type;
    EXPECT_EQ(IsAreaAt(image, kRight, kLower), !rises) << type;
    EXPECT_EQ(CurveAt(image, kRight, true), rises) << type;
    EXPECT_EQ(CurveAt(image, kLeft, true), !rises) << type;
  }
}

TEST(TwoSidedTest, ADigitalOneIsALoopAroundTheAxis) {
  for (const auto type : {FunctionBlocks::digPslope, FunctionBlocks::digNslope}) {
    const auto image = Drawn(type);
    EXPECT_TRUE(IsAreaAt(image, kWidth / 2, kUpper)) << type;
    EXPECT_TRUE(IsAreaAt(image, kWidth / 2, kLower)) << type;
    EXPECT_EQ(image.pixelColor(kWidth / 2, kMiddle), QColor(Qt::red)) << "the axis";
    EXPECT_FALSE(IsAreaAt(image, kLeft, kLower)) << type;
    EXPECT_EQ(CurveAt(image, kRight, true), type == FunctionBlocks::digPslope) << type;
  }
}

TEST(LoopTest, IsFilledBetweenItsTwoWaysOnly) {
  for (const auto type : {FunctionBlocks::digPsignPslope, FunctionBlocks::digPsignNslope,
                          FunctionBlocks::digNsignPslope, FunctionBlocks::digNsignNslope}) {
    const auto image = Drawn(type);
    EXPECT_TRUE(IsArea(image, kWidth / 2)) << type;
    EXPECT_FALSE(IsArea(image, kLeft)) << type;
    EXPECT_FALSE(IsArea(image, kRight)) << type;
    const bool rises = type == FunctionBlocks::digPsignPslope || type == FunctionBlocks::digNsignPslope;
    EXPECT_EQ(CurveAt(image, kRight, true), rises) << type;
  }
}

TEST(LoopTest, AllShapesLookDifferent) {
  for (int a = 0; a < FunctionBlocks::kTypes; ++a) {
    for (int b = 0; b < a; ++b) {
      EXPECT_NE(Drawn(static_cast<FunctionBlocks::Type>(a)), Drawn(static_cast<FunctionBlocks::Type>(b)))
          << a << " and " << b;
    }
  }
}

class PictureButtonTest : public testing::Test {
 protected:
  PictureButtonTest() {
    first.onClick = [this] {
      ++clicks;
      first.SetVisible(false);
      second.SetVisible(true);
    };
    second.SetVisible(false);
    bench.window.layout()->addWidget(&button);
    button.setFixedSize(80, 50);
    bench.Open();
  }

  BenchForm bench;
  Control& first = bench.form.Add(ControlKind::picture, "pctDigTPsign");
  Control& second = bench.form.Add(ControlKind::picture, "pctDigTNsign");
  int clicks = 0;
  int painted = -1;
  PictureButton& button = Make<PictureButton>(
      bench.window, bench.views, std::vector<Control*>{&first, &second},
      PictureButton::Face{[this](QPainter&, const QRectF&, int shown) { painted = shown; },
                          [](int shown) { return QString::number(shown); }});
};

TEST_F(PictureButtonTest, ShowsTheVisiblePictureAndClicksIt) {
  button.grab();
  EXPECT_EQ(painted, 0);
  EXPECT_EQ(button.accessibleName(), "0");
  Press(button);
  bench.Pass();
  EXPECT_EQ(clicks, 1);
  button.grab();
  EXPECT_EQ(painted, 1);
  EXPECT_EQ(button.accessibleName(), "1");
  EXPECT_EQ(button.objectName(), "pctDigTNsign");
  Press(button);
  bench.Pass();
  EXPECT_EQ(clicks, 1) << "the first picture is hidden now";
}

TEST_F(PictureButtonTest, WithNoPictureThereIsNothingToPaintOrClick) {
  first.SetVisible(false);
  bench.Pass();
  painted = -1;
  button.grab();
  EXPECT_EQ(painted, -1);
  Press(button);
  bench.Pass();
  EXPECT_EQ(clicks, 0);
}

TEST_F(PictureButtonTest, IsReachedAndClickedByKey) {
  button.setFocus(Qt::TabFocusReason);
  QTest::keyClick(&button, Qt::Key_Space);
  bench.Pass();
  EXPECT_EQ(clicks, 1);
}

}  // namespace
}  // namespace brelant::test
