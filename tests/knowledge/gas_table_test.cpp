// SPDX-License-Identifier: GPL-3.0-or-later
#include "knowledge/gas_curve.h"
#include "support/knowledge.h"

namespace brelant {
namespace {

using namespace test;

constexpr auto kNoPass = [] {};

/// y(c) once more, in double throughout.
double Transmission(const GasCurve& g, double c) {
  const double k = g.k;
  const double b = g.b;
  return g.a1 * std::exp(k * c) + g.a2 * std::exp(k * b * c) + g.a3 * std::exp(k * b * b * c) + 1 - g.a1 -
         g.a2 - g.a3;
}

// Coefficients of the sizes that sensors have.
const GasCurve kCurves[] = {
    {1, -1e-4F, 0, 0, 0},
    {0.115081F, -0.00185441F, 0.42264F, 0.114645F, 0.2415F},
    {0.124038F, -0.00162505F, 0.390136F, 0.130051F, 0.213468F},
};

TEST(GasCurve, IsOneWithoutGas) {
  for (const auto& curve : kCurves) EXPECT_EQ(curve.At(0), 1.0F);
}

TEST(GasCurve, IsComputedInDoubleAndHeldInSingle) {
  for (const auto& curve : kCurves) {
    for (const float c : {1.0F, 100.0F, 2500.5F, 9999.0F}) {
      EXPECT_EQ(curve.At(c), static_cast<float>(Transmission(curve, c)));
    }
  }
}

TEST(GasCurve, WithoutAValueThrows) {
  EXPECT_THROW((GasCurve{1, 1, 0, 0, 0}.At(1e6F)), NoResult);
}

TEST(GasTable, Entry15StandsForNoGas) {
  for (const auto& curve : kCurves) EXPECT_EQ(NormalisedTable(curve, 5000, kNoPass)[15], 5000);
}

TEST(GasTable, Entry0StandsForFullScale) {
  for (const auto& curve : kCurves) {
    for (const float fullScale : {2000.0F, 5000.0F, 9999.0F}) {
      // Within the concentrations at which less than one part of 61440 is left.
      const auto entry = NormalisedTable(curve, fullScale, kNoPass)[0];
      const double yFull = Transmission(curve, fullScale);
      const double slope = (Transmission(curve, fullScale - 1) - yFull) / (1 - yFull) * 61440;
      EXPECT_NEAR(entry, fullScale + 5000, 1 / slope + 1);
    }
  }
  // From 32768 in halving steps a whole full scale is met exactly.
  EXPECT_EQ(NormalisedTable(kCurves[0], 10000, kNoPass)[0], 15000);
}

TEST(GasTable, EachEntryIsWhereTheCurveReachesItsPosition) {
  for (const auto& curve : kCurves) {
    for (const float fullScale : {2000.0F, 5000.0F, 9999.0F}) {
      const auto table = NormalisedTable(curve, fullScale, kNoPass);
      const double yFull = curve.At(fullScale);
      const auto position = [&](double c) { return (Transmission(curve, c) - yFull) / (1 - yFull) * 61440; };
      // The single in which y is held is worth about this much of a position.
      const double grain = 61440 * 6e-8 / (1 - yFull);
      for (std::size_t i = 1; i < 16; ++i) {
        const double x = 4096.0 * static_cast<double>(i);
        const double c = table[i] - 5000.0;
        EXPECT_EQ(c, std::trunc(c));
        EXPECT_GE(position(c), x - grain) << i;
        EXPECT_LT(position(c + 1), x + 1 + grain) << i;
      }
    }
  }
}

TEST(GasTable, Entry16ContinuesTheLastSegment) {
  for (const auto& curve : kCurves) {
    const auto table = NormalisedTable(curve, 5000, kNoPass);
    EXPECT_EQ(table[16], 2 * table[15] - table[14]);
    EXPECT_LT(table[16], table[15]);
  }
}

TEST(GasTable, TheSearchYieldsAtEveryStep) {
  int passes = 0;
  NormalisedTable(kCurves[0], 10000, [&] { ++passes; });
  EXPECT_GE(passes, 16);
}

TEST(GasTable, AFullScaleThatLeavesNoRangeHasNoTable) {
  EXPECT_THROW(NormalisedTable(kCurves[0], 0, kNoPass), NoResult);
}

TEST(GasTable, ByStepsTheSearchMustMeetEachStepExactly) {
  // The last target, y = 1, is met only at a concentration of 0 or so close that y is 1 in single.
  const auto table = SteppedTable({1, -1e-4F, 0, 0, 0}, 0.5F, kNoPass);
  if (table) {
    EXPECT_EQ((*table)[15], 5000);
    for (std::size_t i = 0; i < 16; ++i) {
      const double target = 1 - static_cast<double>(15 - i) * 0.5 / 15;
      EXPECT_NEAR((*table)[i] - 5000, -1e4 * std::log(target), 1.1) << i;
    }
  }
}

TEST(GasTable, ByStepsAStepOutOfReachHasNoTable) {
  // y never falls below 1 - a1 = 0.5, and the first target is 0.25.
  EXPECT_EQ(SteppedTable({0.5F, -1e-2F, 0, 0, 0}, 0.75F, kNoPass), std::nullopt);
}

class GasTableTest : public KnowledgeTest {
 protected:
  bool AllZero(int first, int last) const {
    for (int i = first; i <= last; ++i) {
      if (image.EepromImage[static_cast<std::size_t>(i)] != 0) return false;
    }
    return true;
  }
};

TEST_F(GasTableTest, ATableLiesWhereItsPlatformHasIt) {
  bus.KnowPart(kPart5);
  EXPECT_TRUE(definitions.BuildGasTable(2, kCurves[0], 10000, 0));
  EXPECT_EQ(image.EepromWord(68), 15000);
  EXPECT_EQ(image.EepromWord(68 + 30), 5000);
  EXPECT_TRUE(AllZero(0, 67));
  EXPECT_TRUE(AllZero(68 + 34, 8194));
  bus.com.ClearImage(30);
  bus.KnowPart(kPart6);
  EXPECT_TRUE(definitions.BuildGasTable(4, kCurves[0], 10000, 0));
  EXPECT_EQ(image.EepromWord(308 + 4 * 34), 15000);
  EXPECT_EQ(image.EepromWord(308 + 4 * 34 + 30), 5000);
  EXPECT_FALSE(image.EepromValid[308 + 4 * 34]);
}

TEST_F(GasTableTest, AChannelWithoutACurveChangesNothing) {
  bus.KnowPart(kPart5);
  EXPECT_FALSE(definitions.BuildGasTable(1, {0, 0, 0, 0.5F, 0.5F}, 10000, 0));
  EXPECT_TRUE(AllZero(0, 8194));
}

TEST_F(GasTableTest, OneCoefficientOfTheThreeIsEnough) {
  bus.KnowPart(kPart5);
  EXPECT_TRUE(definitions.BuildGasTable(1, kCurves[0], 10000, 0));
}

}  // namespace
}  // namespace brelant
