// SPDX-License-Identifier: GPL-3.0-or-later
#include "calibration/calibration_ground.h"
#include "calibration/frmCalCurve.h"

namespace brelant {
namespace {

using test::CalibrationGround;

constexpr int kPart6 = 88;

/// 15 segments that fall by 100 to 5000 at zero gas, and one more behind it.
GasTable EvenTable() {
  GasTable table{};
  for (std::size_t i = 0; i < table.size(); ++i)
    table[i] = static_cast<float>(6500 - 100 * static_cast<int>(i));
  return table;
}

TEST(ResponseOf, GoesFromZeroGasDownToTheFirstEntry) {
  const auto points = ResponseOf(EvenTable());
  ASSERT_EQ(points.size(), 16U);
  EXPECT_EQ(points.front().signal, 61440);
  EXPECT_EQ(points.front().value, 5000);
  EXPECT_EQ(points.back().signal, 0);
  EXPECT_EQ(points.back().value, 6500);
}

TEST(ResponseOf, PutsTheEntriesOverTheSignalsThatReachThem) {
  // Zero word 4096 doubles a signal, so 61440 is reached at 30720.
  const auto points = ResponseOf(EvenTable(), 4096, 1);
  ASSERT_EQ(points.size(), 16U);
  EXPECT_EQ(points[0].signal, 30720);
  EXPECT_EQ(points[1].signal, 28672);
  EXPECT_EQ(points[15].signal, 0);
}

TEST(ResponseOf, TakesTheSpreadIntoAccount) {
  // Position 0 lies half way down the signal at scale 2, and beyond signal 0 at a half.
  EXPECT_EQ(ResponseOf(EvenTable(), 2048, 2).back().signal, 30720);
  const auto points = ResponseOf(EvenTable(), 2048, 0.5);
  EXPECT_EQ(points.size(), 8U);  // 61440 - 8192 i for i = 0 to 7
  EXPECT_EQ(points.back().signal, 4096);
}

TEST(ResponseOf, NeedsAZeroWordAndASpread) {
  EXPECT_TRUE(ResponseOf(EvenTable(), 0, 1).empty());
  EXPECT_TRUE(ResponseOf(EvenTable(), 2048, 0).empty());
}

/// A platform 6 sensor that was read, at zero gas with a zero word that is a little off.
class LastChangeTest : public testing::Test {
 protected:
  LastChangeTest() {
    ground.SetEvenTable(444, 5000, 100);
    ground.SetEepromWord(46, 4000);
    ground.SetRamWord(72, 30720);
    ground.ReadWhole();
    ground.SetRamWord(72, 30720);
  }

  CalibrationGround ground{bench::SensorSetup{.part = kPart6}};
  Screen screen;
};

TEST_F(LastChangeTest, AZeroCalibrationMovesTheResponseUnderTheSameTable) {
  ASSERT_TRUE(ground.cal.CalibrateCO2Zero(99, false, snsCal::zeroGas, ""));
  const auto& change = ground.cal.LastChange();
  ASSERT_TRUE(change);
  EXPECT_EQ(change->channel, 11);
  EXPECT_NEAR(change->before.front().signal, 61440.0 * 2048 / 4000, 1);
  EXPECT_EQ(change->after.front().signal, 30720);
  EXPECT_EQ(change->before.front().value, change->after.front().value);
  EXPECT_EQ(change->measured.signal, 30720);
  EXPECT_EQ(change->measured.value, 5000);
}

TEST_F(LastChangeTest, ACalibrationThatFailsLeavesNone) {
  ASSERT_TRUE(ground.cal.CalibrateCO2Zero(99, false, snsCal::zeroGas, ""));
  ground.SilenceAfter(ground.Frames());
  ground.cal.CalibrateCO2Zero(99, false, snsCal::zeroGas, "");
  EXPECT_FALSE(ground.cal.LastChange());
}

TEST_F(LastChangeTest, ATemperatureIsShownOverThePosition) {
  ground.SetEvenTable(308, 5000, 100);
  ground.SetRamWord(236, 5650);
  const auto wanted = ground.info.TextToRaw("7", 0, false);
  ASSERT_TRUE(ground.cal.CalibrateTemperature(7, 99, false));
  const auto& change = ground.cal.LastChange();
  ASSERT_TRUE(change);
  EXPECT_TRUE(change->overPosition);
  EXPECT_EQ(change->before.front().signal, 61440);
  EXPECT_EQ(change->after.front().value - change->before.front().value, wanted - 5650);
  EXPECT_EQ(change->measured.value, wanted);
}

TEST_F(LastChangeTest, WhatTheImageDoesNotHoldIsNotFetched) {
  ground.image.EepromValid[500] = false;
  const int frames = ground.Frames();
  ASSERT_TRUE(ground.cal.CalibrateCO2Zero(99, false, snsCal::zeroGas, ""));
  EXPECT_FALSE(ground.cal.LastChange());
  // The TMO counter's write, unlock, one word, lock and save, and the read of the signal before them.
  EXPECT_EQ(ground.Frames() - frames, 6);
}

TEST_F(LastChangeTest, TheFormShowsTheNumbersAsTexts) {
  frmCalCurve view(ground.info, screen);
  view.Take({11, false, {{30720, 5000}, {28672.4F, 5100}}, {{30720, 5010}}, {29000, 5050}});
  const auto text = [&](float raw) { return ground.info.RawToText(raw, 11, false, true); };
  EXPECT_EQ(view.lblChannel.Text(), "CO2 (" + ground.info.GetChannelUnit(11) + ")");
  EXPECT_EQ(view.lblBeforeSignal[0].Text(), "30720");
  EXPECT_EQ(view.lblBeforeSignal[1].Text(), "28672");
  EXPECT_EQ(view.lblBeforeValue[1].Text(), text(5100));
  EXPECT_EQ(view.lblBeforeSignal[2].Text(), "");
  EXPECT_EQ(view.lblAfterValue[0].Text(), text(5010));
  EXPECT_EQ(view.lblAfterSignal[1].Text(), "");
  EXPECT_EQ(view.lblSignal.Text(), "Signal");
  EXPECT_EQ(view.lblMeasuredSignal.Text(), "29000");
  EXPECT_EQ(view.lblMeasuredValue.Text(), text(5050));
}

}  // namespace
}  // namespace brelant
