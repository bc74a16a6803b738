// SPDX-License-Identifier: GPL-3.0-or-later
#include "calibration/table_search.h"

#include <array>
#include <cmath>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "bench/channel_plan.h"
#include "calibration/plain_search.h"

namespace brelant {
namespace {

using namespace test;

constexpr auto kNoPass = [] {};
constexpr std::array kCurves{kPlainA, kPlainB, kPlainC, kPlainD};

void ExpectCurve(const GasCurve& curve, const GasCurve& expected) {
  EXPECT_EQ(curve.a1, expected.a1);
  EXPECT_EQ(curve.k, expected.k);
  EXPECT_EQ(curve.a2, expected.a2);
  EXPECT_EQ(curve.b, expected.b);
  EXPECT_EQ(curve.a3, expected.a3);
}

TEST(SpanCurve, OfPlatforms6And61GoesByTheCurveType) {
  const auto a = CurveOfType(1);
  const auto b = CurveOfType(2);
  const auto c = CurveOfType(9);
  ASSERT_TRUE(a && b && c);
  ExpectCurve(*a, kPlainA);
  ExpectCurve(*b, kPlainB);
  ExpectCurve(*c, kPlainC);
}

TEST(SpanCurve, OfAnyOtherTypeIsNone) {
  for (int type = 0; type < 256; ++type) {
    const bool has = type == 1 || type == 2 || type == 9;
    EXPECT_EQ(CurveOfType(static_cast<std::uint8_t>(type)).has_value(), has) << type;
  }
}

TEST(SpanCurve, OfPlatform7GoesByTheNibbleAndTheFirstAndThirdHaveTheHalvedScale) {
  constexpr std::array<float, 4> kScales{2, 1, 2, 1};
  for (std::size_t i = 0; i < kCurves.size(); ++i) {
    const auto curve = CurveOfNibble(static_cast<int>(i));
    ExpectCurve(curve.curve, kCurves[i]);
    EXPECT_EQ(curve.scale, kScales[i]) << i;
  }
}

TEST(SpanCurve, OfANibbleAbove3HasNoCoefficients) {
  for (int nibble = 4; nibble < 16; ++nibble) ExpectCurve(CurveOfNibble(nibble).curve, {});
}

// 4096 x 30000 / 2048 is 60000, 1440 below zero gas.
constexpr Measurement kAt60000{.zeroWord = 4096, .signal = 30000};

TEST(MeasuredTransmission, IsThePositionOverTheWholeScale) {
  EXPECT_EQ(MeasuredTransmission(kAt60000), 60000 / 61440.0F);
}

TEST(MeasuredTransmission, OfTheHalvedScaleSpreadsThePositionAndSqueezesItAgain) {
  auto measured = kAt60000;
  measured.scale = 2;
  // 1440 x 2 = 2880; (1 + 58560 / 61440) / 2 is the same transmission.
  EXPECT_EQ(MeasuredTransmission(measured), 0.9765625F);
}

TEST(MeasuredTransmission, IsCorrectedForTheTemperature) {
  auto measured = kAt60000;
  measured.tempCoefficient = 3;
  measured.tempDeviation = 100;
  // 1440 x (300 + 2048) / 2048 = 1650.9375.
  EXPECT_EQ(MeasuredTransmission(measured), static_cast<float>(59789.0625 / 61440));
  measured.tempDeviation = -100;
  // 1440 x (-300 + 2048) / 2048 = 1229.0625.
  EXPECT_EQ(MeasuredTransmission(measured), static_cast<float>(60210.9375 / 61440));
  measured.scale = 2;
  EXPECT_EQ(MeasuredTransmission(measured), static_cast<float>((1 + 58981.875 / 61440) / 2));
}

TEST(MeasuredTransmission, WithoutAScaleHasNoResult) {
  auto measured = kAt60000;
  measured.scale = 0;
  EXPECT_THROW(MeasuredTransmission(measured), NoResult);
}

TEST(MeasuredTransmission, IsThatOfThePlainForm) {
  for (const float scale : {1.0F, 2.0F}) {
    for (const float signal : {9000.0F, 17000.0F, 26001.0F, 30719.0F, 33333.0F}) {
      for (const float deviation : {-311.0F, 0.0F, 77.0F}) {
        for (const float coefficient : {-5.0F, 0.0F, 4.0F}) {
          const Measurement measured{4097, signal, deviation, coefficient, scale};
          const PlainMeasurement plain{4097, signal, deviation, coefficient};
          EXPECT_EQ(MeasuredTransmission(measured), PlainMeasured(plain, scale));
        }
      }
    }
  }
}

/// What the search must come to: the plain table, but for a curve that no sensor could have.
enum class Outcome { table, noResult };
Outcome ExpectAsPlain(const SpanCurve& curve, float r, float span) {
  SCOPED_TRACE(testing::Message() << "span " << span << " r " << r << " scale " << curve.scale);
  constexpr float kOffset = 5000;
  const auto plain = PlainSpanTable(curve.curve, static_cast<int>(curve.scale), r, span, kOffset);
  const bool rises = PlainExponent(curve.curve, r, span) <= 0;
  if (rises || plain.value().at(14) - kOffset > 9999) {
    EXPECT_THROW(SpanTable(curve, r, span, kOffset, kNoPass), NoResult);
    return Outcome::noResult;
  }
  EXPECT_EQ(SpanTable(curve, r, span, kOffset, kNoPass), *plain);
  return Outcome::table;
}

TEST(SpanTable, IsThatOfThePlainSearchToTheLastBit) {
  int compared = 0;
  int refused = 0;
  for (const auto& curve : kCurves) {
    for (const int scale : {1, 2}) {
      for (const float span :
           {100.0F, 171.5F, 400.0F, 1000.0F, 2000.0F, 3777.0F, 5000.0F, 9999.0F, 20000.0F}) {
        for (float r = 0.31F; r < 1.02F; r += 0.037F) {
          const auto outcome = ExpectAsPlain({curve, static_cast<float>(scale)}, r, span);
          ++(outcome == Outcome::table ? compared : refused);
        }
      }
    }
  }
  EXPECT_GT(compared, 1000);
  // One r lies above 1, for each of the curves, scales and spans.
  EXPECT_GE(refused, 4 * 2 * 9);
}

TEST(SpanTable, OfASignalAtOrAboveZeroGasHasNoResult) {
  for (const auto& curve : kCurves) {
    for (const float scale : {1.0F, 2.0F}) {
      for (const float span : {100.0F, 1000.0F, 9999.0F}) {
        for (const float r : {1.0F, std::nextafter(1.0F, 2.0F), 1.001F, 1.3F, 40.0F}) {
          EXPECT_THROW(SpanTable({curve, scale}, r, span, 5000, kNoPass), NoResult) << r;
        }
      }
    }
  }
}

TEST(SpanTable, OfANegativeConcentrationHasNoResult) {
  for (const auto& curve : kCurves) {
    for (const float span : {-0.5F, -1.0F, -400.0F, -5000.0F}) {
      for (const float r : {0.4F, 0.9F, 0.999F, 1.0F, 1.01F, 1.05F}) {
        EXPECT_THROW(SpanTable({curve, 1}, r, span, 5000, kNoPass), NoResult) << span << " " << r;
      }
    }
  }
}

TEST(SpanTable, OfACurveThatPassesTheLimitAtItsFirstPositionHasNoResult) {
  for (const auto& curve : kCurves) {
    for (const int scale : {1, 2}) {
      // With that exponent the first position, 14 of 15, lies at 9999.
      const double target = ((scale - 1) + 14 / 15.0) / scale;
      const double atLimit = std::log(target) / std::log(double{PlainTransmission(curve, 9999)});
      for (const double share : {0.001, 0.5, 0.9, 1.1, 1.5}) {
        const auto r = static_cast<float>(std::pow(double{PlainTransmission(curve, 800)}, share * atLimit));
        const auto outcome = ExpectAsPlain({curve, static_cast<float>(scale)}, r, 800);
        EXPECT_EQ(outcome == Outcome::table, share > 1) << share;
      }
    }
  }
}

TEST(SpanTable, PassesThroughTheMeasuredPoint) {
  for (const auto& curve : kCurves) {
    // A span that lies on entry 10 of the unbent curve stays there whatever the exponent: both positions
    // move.
    const float r = 10 / 15.0F;
    const auto table = SpanTable({curve, 1}, r, 500, 0, kNoPass);
    const double slope = PlainTransmission(curve, 499) - PlainTransmission(curve, 500);
    const double exponent = std::log(double{r}) / std::log(double{PlainTransmission(curve, 500)});
    // The search leaves 0.0001 of the bent transmission, which is p r / y of the curve's own.
    EXPECT_NEAR(table[10], 500, 0.0001 / (slope * exponent * r / PlainTransmission(curve, 500)) + 1.1);
  }
}

TEST(SpanTable, CarriesTheOffsetAndContinuesItsLastSegment) {
  const auto bare = SpanTable({kPlainB, 1}, 0.7F, 400, 0, kNoPass);
  const auto table = SpanTable({kPlainB, 1}, 0.7F, 400, 5000, kNoPass);
  EXPECT_EQ(bare[15], 0);
  EXPECT_EQ(bare[16], -bare[14]);
  for (std::size_t i = 0; i < 17; ++i) EXPECT_EQ(table[i], bare[i] + 5000) << i;
}

TEST(SpanTable, FallsFromEntry0ToEntry16AndStopsAbove9999) {
  for (const auto& curve : kCurves) {
    const auto table = SpanTable({curve, 1}, 0.95F, 3000, 0, kNoPass);
    for (std::size_t i = 0; i < 16; ++i) EXPECT_GE(table[i], table[i + 1]) << i;
    // The bent curve does not reach the lower positions at all.
    EXPECT_GT(table[0], 9999);
    EXPECT_LE(table[0], 9999 + 1600);
  }
}

TEST(SpanTable, YieldsAtEveryStepOfTheSearch) {
  int passes = 0;
  SpanTable({kPlainA, 1}, 0.5F, 1000, 5000, [&] { ++passes; });
  // At least one step for each of the fifteen positions, and 100 a step at the first.
  EXPECT_GT(passes, 50);
}

TEST(SpanTable, OfASearchThatNeverEndsHasNoResult) {
  // So steep that the single in which y is held cannot come within 0.0001.
  ASSERT_FALSE(PlainSpanTable(kPlainA, 1, 1e-6F, 0.1F, 5000));
  EXPECT_THROW(SpanTable({kPlainA, 1}, 1e-6F, 0.1F, 5000, kNoPass), NoResult);
}

TEST(SpanTable, OfASpanOfNoGasHasNoResult) {
  EXPECT_THROW(SpanTable({kPlainA, 1}, 0.9F, 0, 5000, kNoPass), NoResult);
}

TEST(SpanTable, WithoutACurveHasNoResult) {
  EXPECT_THROW(SpanTable({{}, 1}, 0.9F, 400, 0, kNoPass), NoResult);
}

TEST(SpanTable, OfATransmissionWithoutALogarithmHasNoResult) {
  for (const float r :
       {0.0F, -0.25F, std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN()}) {
    EXPECT_THROW(SpanTable({kPlainA, 1}, r, 400, 5000, kNoPass), NoResult) << r;
  }
}

// Definition files

GasCurve CurveOf(const bench::GasCurve& curve) {
  const auto single = [](const bench::Decimal& decimal) { return static_cast<float>(decimal.Value()); };
  return {single(curve.a1), single(curve.k), single(curve.a2), single(curve.b), single(curve.a3)};
}

TEST(DefinitionTable, IsThatOfThePlainSearchToTheLastBit) {
  int compared = 0;
  for (const int part : {104, 112, 120, 231}) {
    for (const auto& channel : bench::PlanOf(part)) {
      if (!channel.curve) continue;
      const auto curve = CurveOf(*channel.curve);
      const auto fullScale = static_cast<float>(channel.full_scale);
      EXPECT_EQ(NormalisedTable(curve, fullScale, kNoPass), PlainDefinitionTable(curve, fullScale))
          << part << " " << channel.name;
      ++compared;
    }
  }
  EXPECT_GE(compared, 8);
}

TEST(DefinitionTable, IsThatOfThePlainSearchAtOtherFullScales) {
  for (const auto& curve : kCurves) {
    for (const float fullScale : {50.0F, 333.0F, 1000.0F, 2000.0F, 5000.0F, 9999.0F, 30000.0F}) {
      EXPECT_EQ(NormalisedTable(curve, fullScale, kNoPass), PlainDefinitionTable(curve, fullScale))
          << fullScale;
    }
  }
}

}  // namespace
}  // namespace brelant
