// SPDX-License-Identifier: GPL-3.0-or-later
// The CO2 span of platform 7.
#include <algorithm>

#include "calibration/calibration_ground.h"

namespace brelant {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kPart7 = 33;
constexpr std::size_t kTable = 580;

struct Curve {
  GasCurve curve;
  int F;
};
const std::array<Curve, 4> kCurves{{{kPlainA, 2}, {kPlainB, 1}, {kPlainC, 2}, {kPlainD, 1}}};

std::unique_ptr<CalibrationGround> Make() {
  auto ground = std::make_unique<CalibrationGround>(bench::SensorSetup{.part = kPart7});
  ground->ReadWhole();
  ground->SetRamWord(40, 25000);
  return ground;
}

std::unique_ptr<CalibrationGround> MakeUnread() {
  return std::make_unique<CalibrationGround>(bench::SensorSetup{.part = kPart7});
}

/// r is computed for a factor of 1, whatever the search is done for.
Bytes Expected(const Curve& curve, const PlainMeasurement& measured, float cs) {
  const auto table = PlainSpanTable(curve.curve, curve.F, PlainMeasured(measured, 1), cs, 0);
  EXPECT_TRUE(table);
  return table ? TableBytes(*table) : Bytes();
}

TEST(SpanOf7, WhatIsReadAndSentAndInWhichOrder) {
  auto ground = Make();
  EXPECT_TRUE(ground->cal.CalibrateCO2SpanPlatform7(900)) << ground->session.LastError;
  // Odd addresses take the even one before them along; nothing is saved.
  EXPECT_THAT(ground->Story(), ElementsAre("read E1002+2", "read E14+2", "read E880+4", "read E976+2",
                                           "read R42+2", "read R40+2", "read E580+34", "unlock",
                                           "write E580+34", "lock", "unlock", "write E976+2", "lock"));
  EXPECT_TRUE(ground->sensor.Locked());
  EXPECT_EQ(ground->sensor.Count().saves, 0);
  EXPECT_EQ(ground->session.LastError, "");
  EXPECT_FALSE(ground->port.PortOpen());
}

TEST(SpanOf7, ThePortStaysOpenUntilAllIsRead) {
  auto ground = Make();
  EXPECT_TRUE(ground->cal.CalibrateCO2SpanPlatform7(900));
  int requests = 0;
  for (const auto& word : ground->port.Story()) {
    if (word == "close") break;
    requests += word == "254" ? 1 : 0;
  }
  // Six short reads, and 34 bytes by 4.
  EXPECT_EQ(requests, 6 + 9);
}

TEST(SpanOf7, TheTableIsThatOfTheNibble) {
  for (std::size_t nibble = 0; nibble < kCurves.size(); ++nibble) {
    auto ground = Make();
    // The low nibble plays no part.
    ground->SetEeprom(1003, static_cast<int>(nibble) * 16 + 11);
    ground->SetEepromWord(14, 4100);
    auto memory = ground->sensor.Image();
    EXPECT_TRUE(ground->cal.CalibrateCO2SpanPlatform7(900)) << ground->session.LastError;
    const auto expected = Expected(kCurves[nibble], {4100, 25000}, 900);
    EXPECT_EQ(Slice(ground->sensor.Eeprom(), kTable, 34), expected) << nibble;
    std::copy(expected.begin(), expected.end(), memory.begin() + 256 + kTable);
    EXPECT_THAT(ground->Changes(memory), IsEmpty());
    EXPECT_THAT(ground->ImageChanges(), IsEmpty());
  }
}

TEST(SpanOf7, TheHalvedScaleCountsInTheSearchAndNotInTheMeasurement) {
  for (const std::size_t nibble : {0U, 2U}) {
    auto ground = Make();
    ground->SetEeprom(1003, static_cast<int>(nibble) * 16);
    EXPECT_TRUE(ground->cal.CalibrateCO2SpanPlatform7(900));
    const auto table = Slice(ground->sensor.Eeprom(), kTable, 34);
    const PlainMeasurement measured{4096, 25000};
    const auto& curve = kCurves[nibble].curve;
    const auto other = [&](int F, float r) { return TableBytes(*PlainSpanTable(curve, F, r, 900, 0)); };
    EXPECT_EQ(table, other(2, PlainMeasured(measured, 1)));
    EXPECT_NE(table, other(2, (PlainMeasured(measured, 1) + 1) / 2));
    EXPECT_NE(table, other(1, PlainMeasured(measured, 1)));
  }
}

TEST(SpanOf7, TheMeasurementIsThatOfScale1ToItsLastBit) {
  // With scale 2 it is the same number but for its rounding, which tells here.
  const PlainMeasurement measured{4099, 20872, 41, 1};
  const auto table = [&](int F) {
    return TableBytes(*PlainSpanTable(kPlainA, 2, PlainMeasured(measured, F), 900, 0));
  };
  ASSERT_NE(table(1), table(2));
  auto ground = Make();
  ground->SetEeprom(1003, 0);
  ground->SetEepromWord(14, 4099);
  ground->SetEeprom(881, 1);
  ground->SetRamWord(40, 20872);
  ground->SetRamWord(42, 41);
  EXPECT_TRUE(ground->cal.CalibrateCO2SpanPlatform7(900));
  EXPECT_EQ(Slice(ground->sensor.Eeprom(), kTable, 34), table(1));
}

TEST(SpanOf7, TheScaleWordPlaysNoPart) {
  auto ground = Make();
  ground->SetEepromWord(762, 4096);
  EXPECT_TRUE(ground->cal.CalibrateCO2SpanPlatform7(900));
  EXPECT_EQ(Slice(ground->sensor.Eeprom(), kTable, 34), Expected(kCurves[3], {4096, 25000}, 900));
}

TEST(SpanOf7, TemperatureWordsAreSigned) {
  for (const int coefficient : {3, -3}) {
    for (const int deviation : {40, -40}) {
      auto ground = Make();
      ground->SetEeprom(881, coefficient < 0 ? coefficient + 256 : coefficient);
      ground->SetRamWord(42, deviation < 0 ? deviation + 65536 : deviation);
      EXPECT_TRUE(ground->cal.CalibrateCO2SpanPlatform7(900));
      const PlainMeasurement measured{4096, 25000, static_cast<double>(deviation),
                                      static_cast<double>(coefficient)};
      EXPECT_EQ(Slice(ground->sensor.Eeprom(), kTable, 34), Expected(kCurves[3], measured, 900));
    }
  }
}

TEST(SpanOf7, EverythingIsReadAfresh) {
  auto ground = Make();
  for (const int address : {14, 881, 976, 580, 1003}) {
    ground->image.EepromImage.at(static_cast<std::size_t>(address)) = 1;
  }
  ground->image.SetRamWord(40, 1);
  ground->image.SetRamWord(42, 1);
  EXPECT_TRUE(ground->cal.CalibrateCO2SpanPlatform7(900));
  EXPECT_EQ(Slice(ground->sensor.Eeprom(), kTable, 34), Expected(kCurves[3], {4096, 25000}, 900));
}

TEST(SpanOf7, Entry15Is0AndEntry16IsNegativeInTwosComplement) {
  auto ground = Make();
  EXPECT_TRUE(ground->cal.CalibrateCO2SpanPlatform7(900));
  const int entry14 = ground->EepromWord(kTable + 28);
  EXPECT_GT(entry14, 0);
  EXPECT_EQ(ground->EepromWord(kTable + 30), 0);
  EXPECT_EQ(ground->EepromWord(kTable + 32), 65536 - entry14);
}

TEST(SpanOf7, TheOtherTablesStayAsTheyWere) {
  auto ground = Make();
  const auto before = Slice(ground->sensor.Eeprom(), 0, 1024);
  EXPECT_TRUE(ground->cal.CalibrateCO2SpanPlatform7(900));
  for (const std::size_t table : {512U, 546U, 614U, 648U, 682U}) {
    EXPECT_EQ(Slice(ground->sensor.Eeprom(), table, 34), Slice(before, table, 34)) << table;
  }
}

TEST(SpanOf7, WhatIsMissingForTheBackgroundIsFetched) {
  auto ground = MakeUnread();
  ground->SetRamWord(40, 25000);
  EXPECT_TRUE(ground->cal.CalibrateCO2SpanPlatform7(900));
  const auto story = ground->Story();
  EXPECT_THAT(story, testing::IsSupersetOf({"read E762+2", "read E682+34"}));
  EXPECT_EQ(Slice(ground->sensor.Eeprom(), kTable, 34), Expected(kCurves[3], {4096, 25000}, 900));
}

/// Not computable: false with a text, and nothing is written to image or sensor.
void ExpectNoResult(CalibrationGround& ground, float span) {
  const auto before = ground.sensor.Image();
  EXPECT_FALSE(ground.cal.CalibrateCO2SpanPlatform7(span));
  EXPECT_NE(ground.session.LastError, "");
  EXPECT_EQ(ground.Frames(), 15);
  EXPECT_EQ(ground.ReadFrames(), 15);
  EXPECT_THAT(ground.Changes(before), IsEmpty());
  EXPECT_THAT(ground.ImageChanges(), IsEmpty());
  EXPECT_FALSE(ground.port.PortOpen());
}

TEST(SpanOf7, ANibbleAbove3HasNoCurveAndEndsBeforeAnythingIsWritten) {
  for (int nibble = 4; nibble < 16; ++nibble) {
    auto ground = Make();
    ground->SetEeprom(1003, nibble * 16);
    ExpectNoResult(*ground, 900);
  }
}

TEST(SpanOf7, ASpanOfNoGasEndsBeforeAnythingIsWritten) {
  ExpectNoResult(*Make(), 0);
}

TEST(SpanOf7, NoSignalEndsBeforeAnythingIsWritten) {
  auto ground = Make();
  ground->SetRamWord(40, 0);
  ExpectNoResult(*ground, 900);
}

TEST(SpanOf7, AConcentrationBelowZeroGasEndsBeforeAnythingIsWritten) {
  for (const float span : {-0.5F, -400.0F, -5000.0F}) ExpectNoResult(*Make(), span);
}

TEST(SpanOf7, ASignalAtOrAboveZeroGasOrAHairBelowItEndsBeforeAnythingIsWritten) {
  // 4096 x 30720 / 2048 is zero gas.
  for (const int signal : {30719, 30720, 30721, 32000, 65535}) {
    for (int nibble = 0; nibble < 4; ++nibble) {
      auto ground = Make();
      ground->SetEeprom(1003, nibble * 16);
      ground->SetRamWord(40, signal);
      ExpectNoResult(*ground, 900);
    }
  }
}

Trial SpanTrial(std::unique_ptr<CalibrationGround> (*make)()) {
  return {.make = make, .run = [](CalibrationGround& g) { return g.cal.CalibrateCO2SpanPlatform7(900); }};
}

TEST(SpanOf7, EndsWhereTheSensorFallsSilent) {
  ExpectEndsWhereTheSensorFallsSilent(SpanTrial(&Make));
  ExpectEndsWhereTheSensorFallsSilent(SpanTrial(&MakeUnread));
}

TEST(SpanOf7, EndsWhereTheUserCancels) {
  ExpectEndsWhereTheUserCancels(SpanTrial(&Make));
  ExpectEndsWhereTheUserCancels(SpanTrial(&MakeUnread));
}

TEST(SpanOf7, ACancelInTheSearchLeavesAllAsItWas) {
  ExpectCancelInASearchLeavesAllAsItWas(SpanTrial(&Make));
}

/// The live value behind a calibration with that gas.
int LiveGasAfter(int nibble, int scaleWord, int given) {
  auto ground = Make();
  ground->SetEeprom(1003, nibble * 16);
  ground->SetEepromWord(762, scaleWord);
  ground->Settle();
  EXPECT_TRUE(ground->cal.CalibrateCO2SpanPlatform7(static_cast<float>(given)));
  ground->Settle();
  return ground->RamWord(22);
}

TEST(SpanOf7, TheSensorThenShowsTheGasThatItWasTold) {
  for (int nibble = 0; nibble < 4; ++nibble) {
    // The curves with the halved scale are those of sensors that spread it.
    const int scaleWord = nibble % 2 == 0 ? 4096 : 2048;
    for (const int given : {500, 1000, 1800, 2500}) {
      EXPECT_NEAR(LiveGasAfter(nibble, scaleWord, given), given, 2 + 0.03 * given) << nibble;
    }
  }
}

TEST(SpanOf7, ItShowsAnotherIfCurveAndScaleWordDoNotBelongTogether) {
  EXPECT_LT(LiveGasAfter(0, 2048, 1800), 1500);
  EXPECT_GT(LiveGasAfter(3, 4096, 1800), 2100);
}

}  // namespace
}  // namespace brelant
