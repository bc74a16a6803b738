// SPDX-License-Identifier: GPL-3.0-or-later
#include "calibration/calibration_ground.h"

namespace brelant {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

struct Sensor {
  int part;
  std::optional<int> variant = {};
};

constexpr Sensor k61{215, 0};
constexpr Sensor k7{33};

std::unique_ptr<CalibrationGround> MakeUnread(const Sensor& sensor = k7) {
  return std::make_unique<CalibrationGround>(
      bench::SensorSetup{.part = sensor.part, .variant = sensor.variant});
}

/// Table 4 rises by 160 a segment from 0; 2090 lies at 2090 / 160 x 4096 = 53504.
std::unique_ptr<CalibrationGround> Make(const Sensor& sensor = k7) {
  auto ground = MakeUnread(sensor);
  ground->ReadWhole();
  ground->SetEvenTable(sensor.part == k7.part ? 648 : 444, 2400, -160);
  return ground;
}

// Zero

TEST(O2Zero, TheSignalBecomesTheZero) {
  auto ground = Make();
  ground->SetRamWord(38, 4660);
  const auto before = ground->sensor.Image();
  EXPECT_TRUE(ground->cal.CalibrateO2Zero());
  EXPECT_THAT(ground->sensor.Frames(), ElementsAre(Bytes{130, 38, 168}, Bytes{197, 55, 252},
                                                   Bytes{10, 2, 248, 18, 52, 74}, Bytes{169, 171, 84}));
  EXPECT_EQ(ground->Changes(before), WordChange('E', 760, 0, 4660));
  EXPECT_THAT(ground->ImageChanges(), IsEmpty());
  EXPECT_EQ(ground->session.LastError, "");
  EXPECT_FALSE(ground->port.PortOpen());
}

TEST(O2Zero, TheSignalIsReadAfresh) {
  auto ground = Make();
  ground->SetRamWord(38, 4660);
  ground->image.SetRamWord(38, 1);
  EXPECT_TRUE(ground->cal.CalibrateO2Zero());
  EXPECT_EQ(ground->EepromWord(760), 4660);
}

TEST(O2Zero, OnPlatform61TheAddressIsBehindTheMemoryAndNoByteIsSent) {
  auto ground = Make(k61);
  ground->SetRamWord(38, 4660);
  const auto before = ground->sensor.Image();
  EXPECT_TRUE(ground->cal.CalibrateO2Zero());
  EXPECT_THAT(ground->Story(), ElementsAre("read R38+2", "unlock", "lock"));
  EXPECT_THAT(ground->Changes(before), IsEmpty());
  EXPECT_EQ(ground->image.EepromWord(760), 4660);
}

// Span

TEST(O2Span, TheSpanWordTakesTheSignalToTheGivenValue) {
  auto ground = Make();
  ground->SetRamWord(38, 50000);
  const auto before = ground->sensor.Image();
  EXPECT_TRUE(ground->cal.CalibrateO2Span(2090));
  // 53504 x 2048 / 50000 = 2191.52, and the splitting rounds.
  EXPECT_THAT(ground->sensor.Frames(), ElementsAre(Bytes{130, 38, 168}, Bytes{197, 55, 252},
                                                   Bytes{10, 0, 0, 8, 144, 162}, Bytes{169, 171, 84}));
  EXPECT_EQ(ground->Changes(before), WordChange('E', 0, 2048, 2192));
  EXPECT_THAT(ground->ImageChanges(), IsEmpty());
  EXPECT_EQ(ground->session.LastError, "");
  EXPECT_FALSE(ground->port.PortOpen());
}

TEST(O2Span, TheZeroIsNotTakenOff) {
  auto ground = Make();
  ground->SetEepromWord(760, 1000);
  ground->SetRamWord(38, 53504);
  EXPECT_TRUE(ground->cal.CalibrateO2Span(2090));
  EXPECT_EQ(ground->EepromWord(0), 2048);
}

TEST(O2Span, AValueAboveTheTableLiesAt65535) {
  auto ground = Make();
  ground->SetRamWord(38, 50000);
  EXPECT_TRUE(ground->cal.CalibrateO2Span(9000));
  // 65535 x 2048 / 50000 = 2684.31
  EXPECT_EQ(ground->EepromWord(0), 2684);
}

TEST(O2Span, AWordAbove65535Becomes65535) {
  auto ground = Make();
  ground->SetRamWord(38, 1000);
  EXPECT_TRUE(ground->cal.CalibrateO2Span(2090));
  EXPECT_EQ(ground->EepromWord(0), 65535);
}

TEST(O2Span, WithoutASignalNothingIsWritten) {
  auto ground = Make();
  ground->SetRamWord(38, 0);
  EXPECT_FALSE(ground->cal.CalibrateO2Span(2090));
  EXPECT_NE(ground->session.LastError, "");
  EXPECT_THAT(ground->Story(), ElementsAre("read R38+2"));
  EXPECT_THAT(ground->ImageChanges(), IsEmpty());
  EXPECT_FALSE(ground->port.PortOpen());
}

TEST(O2Span, TheTableIsFetchedIfItIsMissing) {
  auto ground = MakeUnread();
  ground->SetRamWord(38, 53504);
  EXPECT_TRUE(ground->cal.CalibrateO2Span(2090));
  EXPECT_THAT(ground->Story(), ElementsAre("read R38+2", "read E648+34", "unlock", "write E0+2", "lock"));
  EXPECT_EQ(ground->EepromWord(0), 2048);
}

TEST(O2Span, OnPlatform61Table4IsThatOfCO2) {
  auto ground = Make(k61);
  ground->SetRamWord(38, 50000);
  EXPECT_TRUE(ground->cal.CalibrateO2Span(2090));
  EXPECT_THAT(ground->Story(), ElementsAre("read R38+2", "unlock", "write E0+2", "lock"));
  EXPECT_EQ(ground->EepromWord(0), 2192);
}

// What goes wrong on the way, and what the sensor then shows

const Trial kZero{.make = [] { return Make(); },
                  .run = [](CalibrationGround& g) { return g.cal.CalibrateO2Zero(); }};
const Trial kSpan{.make = [] { return MakeUnread(); },
                  .run = [](CalibrationGround& g) { return g.cal.CalibrateO2Span(2000); }};

TEST(O2, EndsWhereTheSensorFallsSilent) {
  ExpectEndsWhereTheSensorFallsSilent(kZero);
  ExpectEndsWhereTheSensorFallsSilent(kSpan);
}

TEST(O2, EndsWhereTheUserCancels) {
  ExpectEndsWhereTheUserCancels(kZero);
  ExpectEndsWhereTheUserCancels(kSpan);
}

TEST(O2, TheSensorThenShowsNothingAfterAZero) {
  auto ground = Make();
  ground->Settle();
  EXPECT_TRUE(ground->cal.CalibrateO2Zero());
  ground->Settle();
  EXPECT_EQ(ground->RamWord(24), 0);
}

TEST(O2, TheSensorThenShowsTheValueThatItWasTold) {
  for (const int given : {1500, 1930, 2090}) {
    auto ground = Make();
    ground->Settle();
    EXPECT_TRUE(ground->cal.CalibrateO2Span(static_cast<float>(given)));
    ground->Settle();
    EXPECT_NEAR(ground->RamWord(24), given, 1);
  }
}

}  // namespace
}  // namespace brelant
