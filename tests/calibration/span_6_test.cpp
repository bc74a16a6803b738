// SPDX-License-Identifier: GPL-3.0-or-later
// The CO2 span of platforms 6 and 61.
#include "calibration/calibration_ground.h"

namespace brelant {
namespace {

using namespace test;
using std::chrono::seconds;
using testing::AllOf;
using testing::ElementsAre;
using testing::Gt;
using testing::IsEmpty;
using testing::Le;

constexpr int kPart6 = 88;
constexpr int kPart61 = 215;
constexpr std::size_t kGasTable = 444;

/// A sensor that has been read, with its gas words and its live words set.
struct Sensor {
  int part = kPart6;
  std::optional<int> variant = {};
  float Channel() const { return part == kPart61 ? 5 : 11; }
  std::size_t SignalAt() const { return part == kPart61 ? 40 : 72; }
};

std::unique_ptr<CalibrationGround> Make(const Sensor& sensor) {
  auto ground =
      std::make_unique<CalibrationGround>(bench::SensorSetup{.part = sensor.part, .variant = sensor.variant});
  ground->ReadWhole();
  return ground;
}

/// The table that must be in the sensor, offset 5000 included.
Bytes Expected(const GasCurve& curve, int F, const PlainMeasurement& measured, float cs) {
  const auto table = PlainSpanTable(curve, F, PlainMeasured(measured, F), cs, 5000);
  EXPECT_TRUE(table);
  return table ? TableBytes(*table) : Bytes();
}

TEST(SpanOf6, SendsTheTableTwiceWithTheSignalReadAfreshEachTime) {
  auto ground = Make({});
  EXPECT_TRUE(ground->cal.CalibrateCO2Span(11, "6000", false)) << ground->session.LastError;
  EXPECT_THAT(ground->Story(),
              ElementsAre("read R254+1",  //
                          "read R72+2", "write R230+1", "unlock", "write E444+34", "lock", "save to RAM",
                          "read R72+2", "write R230+1", "unlock", "write E444+34", "lock", "save to RAM"));
  EXPECT_TRUE(ground->sensor.Locked());
  EXPECT_EQ(ground->session.LastError, "");
  EXPECT_FALSE(ground->port.PortOpen());
}

TEST(SpanOf61, ReadsTheChannelAfterEachPass) {
  for (const int variant : {0, 1}) {
    auto ground = Make({kPart61, variant});
    EXPECT_TRUE(ground->cal.CalibrateCO2Span(5, "6000", false)) << ground->session.LastError;
    EXPECT_THAT(ground->Story(),
                ElementsAre("read R42+2",  //
                            "read R40+2", "unlock", "write E444+34", "lock", "save to RAM", "read R22+2",
                            "read R40+2", "unlock", "write E444+34", "lock", "save to RAM", "read R22+2"));
  }
}

TEST(SpanOf6, TheTableIsThatOfTheCurveTypeAndOfTheScale) {
  const std::pair<int, GasCurve> curves[] = {{1, kPlainA}, {2, kPlainB}, {9, kPlainC}};
  for (const auto& [type, curve] : curves) {
    for (const int F : {1, 2}) {
      auto ground = Make({});
      ground->SetEeprom(58, type);
      ground->SetEeprom(165, F == 2 ? 3 : 1);
      ground->SetEepromWord(46, 4100);
      ground->SetRamWord(72, 27000);
      auto memory = ground->sensor.Image();
      EXPECT_TRUE(ground->cal.CalibrateCO2Span(11, "5900", false)) << ground->session.LastError;
      const auto expected = Expected(curve, F, {4100, 27000}, 900);
      EXPECT_EQ(Slice(ground->sensor.Eeprom(), kGasTable, 34), expected) << type << " " << F;
      // And nothing else is another.
      std::copy(expected.begin(), expected.end(), memory.begin() + 256 + kGasTable);
      EXPECT_THAT(ground->Changes(memory), IsEmpty());
      EXPECT_THAT(ground->ImageChanges(), IsEmpty());
    }
  }
}

TEST(SpanOf61, TheTableIsThatOfTheVariant) {
  auto oxygen = Make({kPart61, 0});
  oxygen->SetRamWord(40, 25000);
  EXPECT_TRUE(oxygen->cal.CalibrateCO2Span(5, "6500", false));
  EXPECT_EQ(Slice(oxygen->sensor.Eeprom(), kGasTable, 34), Expected(kPlainB, 1, {4096, 25000}, 1500));
  auto ppm = Make({kPart61, 1});
  ppm->SetRamWord(40, 25000);
  EXPECT_TRUE(ppm->cal.CalibrateCO2Span(5, "6500", false));
  EXPECT_EQ(Slice(ppm->sensor.Eeprom(), kGasTable, 34), Expected(kPlainC, 2, {4096, 25000}, 1500));
}

TEST(SpanOf6, Entry15IsZeroGasAndEntry16ContinuesTheLastSegment) {
  auto ground = Make({});
  EXPECT_TRUE(ground->cal.CalibrateCO2Span(11, "6000", false));
  EXPECT_EQ(ground->EepromWord(kGasTable + 30), 5000);
  EXPECT_EQ(ground->EepromWord(kGasTable + 32), 10000 - ground->EepromWord(kGasTable + 28));
}

TEST(SpanOf6, TheTemperatureCorrectsThePosition) {
  auto ground = Make({});
  ground->SetEeprom(104, 130);
  ground->SetRam(254, 87);
  ground->SetRamWord(72, 27000);
  // Live values of the image count for nothing.
  ground->image.RamImage[254] = 127;
  ground->image.SetRamWord(72, 30000);
  EXPECT_TRUE(ground->cal.CalibrateCO2Span(11, "5900", false));
  const auto expected = Expected(kPlainA, 2, {4096, 27000, -40, 3}, 900);
  EXPECT_NE(expected, Expected(kPlainA, 2, {4096, 27000}, 900));
  EXPECT_EQ(Slice(ground->sensor.Eeprom(), kGasTable, 34), expected);
}

TEST(SpanOf61, TheTemperatureDeviationIsASignedWord) {
  auto ground = Make({kPart61, 1});
  ground->SetEeprom(83, 125);
  ground->SetRamWord(42, 65536 - 50);
  ground->SetRamWord(40, 27000);
  EXPECT_TRUE(ground->cal.CalibrateCO2Span(5, "5900", false));
  EXPECT_EQ(Slice(ground->sensor.Eeprom(), kGasTable, 34), Expected(kPlainC, 2, {4096, 27000, -50, -2}, 900));
}

TEST(SpanOf6, TheSecondGasHasItsOwnWordsAndItsOwnTable) {
  auto ground = Make({});
  ground->SetEeprom(59, 2);
  ground->SetEepromWord(48, 4200);
  ground->SetEeprom(105, 128);
  ground->SetRam(254, 227);
  ground->SetRamWord(74, 26000);
  auto memory = ground->sensor.Image();
  EXPECT_TRUE(ground->cal.CalibrateCO2Span(12, "5400", false)) << ground->session.LastError;
  const auto expected = Expected(kPlainB, 2, {4200, 26000, 100, 1}, 400);
  EXPECT_EQ(Slice(ground->sensor.Eeprom(), 478, 34), expected);
  std::copy(expected.begin(), expected.end(), memory.begin() + 256 + 478);
  EXPECT_THAT(ground->Changes(memory), IsEmpty());
}

TEST(SpanOf6, TheSpanMayHaveAFraction) {
  auto ground = Make({});
  ground->SetRamWord(72, 27000);
  EXPECT_TRUE(ground->cal.CalibrateCO2Span(11, "5900.5 ppm", false));
  EXPECT_EQ(Slice(ground->sensor.Eeprom(), kGasTable, 34), Expected(kPlainA, 2, {4096, 27000}, 900.5F));
}

TEST(SpanOf6, TheSecondPassRunsOnTheSignalOfItsOwnTimeAndOnTheSameSpan) {
  auto ground = Make({});
  ground->SetRamWord(72, 27000);
  Bytes first;
  // 1 + 1 reads, TMO, unlocking, 9 chunks, locking, saving.
  ground->AfterFrame(15, [&] {
    first = Slice(ground->sensor.Eeprom(), kGasTable, 34);
    // A live value that follows the new table must not be taken for the span.
    ground->sensor.Ram()[30] = 99;
  });
  ground->pump.OnPass([&] {
    if (!first.empty() && ground->Frames() == 15) bench::PutWord(ground->sensor.Ram(), 72, 26000);
    return false;
  });
  EXPECT_TRUE(ground->cal.CalibrateCO2Span(11, "5900", false));
  EXPECT_EQ(first, Expected(kPlainA, 2, {4096, 27000}, 900));
  EXPECT_EQ(Slice(ground->sensor.Eeprom(), kGasTable, 34), Expected(kPlainA, 2, {4096, 26000}, 900));
}

TEST(SpanOf6, WaitsTwoAndAHalfSecondsBehindEachPass) {
  auto ground = Make({});
  std::chrono::microseconds saved{};
  std::chrono::microseconds readAgain{};
  ground->AfterFrame(15, [&] { saved = ground->clock.Now(); });
  ground->AfterFrame(16, [&] { readAgain = ground->clock.Now(); });
  EXPECT_TRUE(ground->cal.CalibrateCO2Span(11, "6000", false));
  const auto end = ground->clock.Now();
  // Until the time of day is above the end, by no more than a millisecond; pauses of 5 and 8 ms come before
  // the frame of the read.
  EXPECT_THAT(readAgain - saved, AllOf(Gt(milliseconds(2500 + 13)), Le(milliseconds(2501 + 13))));
  const auto sent = ground->port.Of(ScriptedPort::Act::output).back().at;
  EXPECT_THAT(end - sent, AllOf(Gt(milliseconds(2500)), Le(milliseconds(2501))));
}

TEST(SpanOf6, TheWaitYieldsToTheEventLoop) {
  auto ground = Make({});
  int ticks = 0;
  const auto timer = ground->pump.Every(milliseconds(100), [&] { ++ticks; });
  EXPECT_TRUE(ground->cal.CalibrateCO2Span(11, "6000", false));
  EXPECT_GE(ticks, 50);
}

TEST(SpanOf6, AWaitThatEndsBeforeMidnightEnds) {
  auto ground = Make({});
  ground->AfterFrame(15, [&] { ground->clock.SetTimer(86400 - 2.6); });
  EXPECT_TRUE(ground->cal.CalibrateCO2Span(11, "6000", false));
}

TEST(SpanOf6, AWaitThatReachesMidnightEndsOnlyWithACancel) {
  for (const int frame : {15, 29}) {
    auto ground = Make({});
    ground->AfterFrame(frame, [&] {
      ground->clock.SetTimer(86400 - 2.4);
      ground->pump.After(seconds(3600), [&] { ground->Cancel(); });
    });
    const auto start = ground->clock.Now();
    EXPECT_FALSE(ground->cal.CalibrateCO2Span(11, "6000", false));
    EXPECT_GE(ground->clock.Now() - start, seconds(3600));
    EXPECT_LT(ground->clock.Now() - start, seconds(3600 + 10));
    EXPECT_EQ(ground->session.LastError, kCancelled);
    EXPECT_EQ(ground->Frames(), frame);
    EXPECT_FALSE(ground->port.PortOpen());
  }
}

TEST(SpanOf6, ACancelInAWaitEndsItAtOnce) {
  for (const int frame : {15, 29}) {
    auto ground = Make({});
    std::chrono::microseconds cancelled{};
    ground->AfterFrame(frame, [&] {
      ground->pump.After(milliseconds(1000), [&] {
        cancelled = ground->clock.Now();
        ground->Cancel();
      });
    });
    EXPECT_FALSE(ground->cal.CalibrateCO2Span(11, "6000", false));
    EXPECT_EQ(ground->clock.Now(), cancelled);
    EXPECT_EQ(ground->session.LastError, kCancelled);
    EXPECT_EQ(ground->Frames(), frame);
  }
}

TEST(SpanOf6, TheEndOfTheSessionEndsAWait) {
  auto ground = Make({});
  std::chrono::microseconds over{};
  ground->AfterFrame(15, [&] {
    ground->pump.After(milliseconds(1000), [&] {
      over = ground->clock.Now();
      ground->session.sessionOver = true;
    });
  });
  EXPECT_FALSE(ground->cal.CalibrateCO2Span(11, "6000", false));
  EXPECT_EQ(ground->clock.Now(), over);
  EXPECT_EQ(ground->Frames(), 15);
  EXPECT_FALSE(ground->port.PortOpen());
}

TEST(SpanOf6, ACurveTypeWithoutACurveIsRefusedBeforeAnythingIsSent) {
  for (const int type : {0, 3, 8, 10, 255}) {
    auto ground = Make({});
    ground->SetEeprom(58, type);
    EXPECT_FALSE(ground->cal.CalibrateCO2Span(11, "6000", false));
    EXPECT_EQ(ground->session.LastError, "Sensor = 0, ");
    EXPECT_EQ(ground->Frames(), 0);
    EXPECT_THAT(ground->ImageChanges(), IsEmpty());
  }
}

TEST(SpanOf61, AVariantWithoutACurveIsRefusedToo) {
  auto ground = Make({kPart61, 1});
  ground->SetEeprom(173, 3);
  EXPECT_FALSE(ground->cal.CalibrateCO2Span(5, "6000", false));
  EXPECT_EQ(ground->session.LastError, "Sensor = 0, ");
  EXPECT_EQ(ground->Frames(), 0);
}

TEST(SpanOf61, APartWithoutAScaleFactorEndsBeforeAnythingIsWritten) {
  // 215 alone has one.
  for (const int part : {80, 85, 208, 214}) {
    for (const int variant : {0, 1}) {
      auto ground = Make({part, variant});
      EXPECT_FALSE(ground->cal.CalibrateCO2Span(5, "6000", false)) << part;
      EXPECT_NE(ground->session.LastError, "");
      EXPECT_EQ(ground->Frames(), ground->ReadFrames());
      EXPECT_THAT(ground->ImageChanges(), IsEmpty());
      EXPECT_FALSE(ground->port.PortOpen());
    }
  }
}

/// Not computable: false with a text, and nothing is written to image or sensor.
void ExpectNoResult(CalibrationGround& ground, float channel, const std::string& span) {
  const auto before = ground.sensor.Image();
  EXPECT_FALSE(ground.cal.CalibrateCO2Span(channel, span, false));
  EXPECT_NE(ground.session.LastError, "");
  EXPECT_NE(ground.session.LastError, kCancelled);
  EXPECT_EQ(ground.Frames(), ground.ReadFrames());
  EXPECT_THAT(ground.Changes(before), IsEmpty());
  EXPECT_THAT(ground.ImageChanges(), IsEmpty());
  EXPECT_FALSE(ground.port.PortOpen());
}

TEST(SpanOf6, ASpanOfNoGasEndsBeforeAnythingIsWritten) {
  ExpectNoResult(*Make({}), 11, "5000");
  ExpectNoResult(*Make({kPart61, 0}), 5, "5000");
}

TEST(SpanOf6, APositionBelowTheScaleEndsBeforeAnythingIsWritten) {
  // Without a signal s is 61440 - 61440 x F: r = (F - 1 + 1 - F) / F = 0, and 0 has no logarithm.
  auto none = Make({});
  none->SetRamWord(72, 0);
  ExpectNoResult(*none, 11, "6000");
  auto noZeroWord = Make({});
  noZeroWord->SetEepromWord(46, 0);
  ExpectNoResult(*noZeroWord, 11, "6000");
  // Hot: (100 x 20 + 2048) / 2048 spreads the position below 0.
  auto hot = Make({kPart61, 0});
  hot->SetRamWord(40, 15000);
  hot->SetRamWord(42, 100);
  hot->SetEeprom(83, 147);
  ExpectNoResult(*hot, 5, "6000");
}

TEST(SpanOf6, AConcentrationBelowZeroGasEndsBeforeAnythingIsWritten) {
  for (const char* span : {"4999", "4000", "0", "", "-400"}) {
    ExpectNoResult(*Make({}), 11, span);
    ExpectNoResult(*Make({kPart61, 1}), 5, span);
  }
}

TEST(SpanOf6, ASignalAtOrAboveZeroGasOrAHairBelowItEndsBeforeAnythingIsWritten) {
  // 4096 x 30720 / 2048 is zero gas.
  for (const int signal : {30719, 30720, 30721, 32000, 65535}) {
    for (const Sensor& sensor : {Sensor{}, Sensor{kPart61, 0}, Sensor{kPart61, 1}}) {
      auto ground = Make(sensor);
      ground->SetRamWord(sensor.SignalAt(), signal);
      ExpectNoResult(*ground, sensor.Channel(), "6000");
    }
  }
}

TEST(SpanOf6, AGasThatIsGoneBeforeTheSecondPassLeavesTheTableOfTheFirst) {
  auto ground = Make({});
  ground->SetRamWord(72, 27000);
  ground->AfterFrame(15, [&] { bench::PutWord(ground->sensor.Ram(), 72, 30720); });
  EXPECT_FALSE(ground->cal.CalibrateCO2Span(11, "5900", false));
  EXPECT_NE(ground->session.LastError, "");
  EXPECT_NE(ground->session.LastError, kCancelled);
  // The signal of the second pass, and nothing behind it.
  EXPECT_EQ(ground->Frames(), 16);
  EXPECT_EQ(Slice(ground->sensor.Eeprom(), kGasTable, 34), Expected(kPlainA, 2, {4096, 27000}, 900));
  EXPECT_THAT(ground->ImageChanges(), IsEmpty());
  EXPECT_FALSE(ground->cal.LastChange());
  EXPECT_FALSE(ground->port.PortOpen());
}

// The port at the end

TEST(SpanOf6, ThePortOfARefusedCalibrationIsClosedUnlessItIsToStayOpen) {
  for (const bool keep : {false, true}) {
    auto ground = Make({});
    ground->SetEeprom(58, 0);
    ground->link.Open();
    EXPECT_FALSE(ground->cal.CalibrateCO2Span(11, "6000", keep));
    EXPECT_EQ(ground->port.PortOpen(), keep);
  }
}

TEST(SpanOf6, ThePortStaysOpenBehindAWriteThatFailsIfItIsToStayOpen) {
  for (const bool keep : {false, true}) {
    auto ground = Make({});
    ground->SilenceAfter(8);
    EXPECT_FALSE(ground->cal.CalibrateCO2Span(11, "6000", keep));
    EXPECT_EQ(ground->session.LastError, "Can't save to sensor");
    EXPECT_EQ(ground->port.PortOpen(), keep);
  }
}

TEST(SpanOf6, ThePortIsClosedByTheSaveEvenIfItIsToStayOpen) {
  auto ground = Make({});
  EXPECT_TRUE(ground->cal.CalibrateCO2Span(11, "6000", true));
  EXPECT_FALSE(ground->port.PortOpen());
}

TEST(Span, OfAnyOtherPlatformIsDoneAtOnceAndChangesNothing) {
  for (const std::uint8_t part : {33, 40, 154}) {
    for (const bool keep : {false, true}) {
      auto ground = Make({.part = 33});
      ground->KnowPart(part);
      ground->link.Open();
      EXPECT_TRUE(ground->cal.CalibrateCO2Span(5, "6000", keep));
      EXPECT_EQ(ground->session.LastError, "");
      EXPECT_EQ(ground->Frames(), 0);
      EXPECT_EQ(ground->port.PortOpen(), keep);
    }
  }
}

// What goes wrong on the way

Trial ReadTrial(const Sensor& sensor) {
  return {.make = [sensor] { return Make(sensor); },
          .run = [channel = sensor.Channel()](
                     CalibrationGround& g) { return g.cal.CalibrateCO2Span(channel, "6000", false); },
          // The last frame of platform 61 reads a value of which nothing is made.
          .idleFrames = sensor.part == kPart61 ? 1 : 0};
}

/// Of the image nothing is known but the part number, so that everything is fetched.
Trial UnreadTrial(const Sensor& sensor) {
  auto trial = ReadTrial(sensor);
  trial.make = [sensor] {
    return std::make_unique<CalibrationGround>(
        bench::SensorSetup{.part = sensor.part, .variant = sensor.variant});
  };
  return trial;
}

TEST(SpanOf6, EndsWhereTheSensorFallsSilent) {
  ExpectEndsWhereTheSensorFallsSilent(ReadTrial({}));
  ExpectEndsWhereTheSensorFallsSilent(UnreadTrial({}));
}

TEST(SpanOf61, EndsWhereTheSensorFallsSilent) {
  for (const int variant : {0, 1}) {
    ExpectEndsWhereTheSensorFallsSilent(ReadTrial({kPart61, variant}));
    ExpectEndsWhereTheSensorFallsSilent(UnreadTrial({kPart61, variant}));
  }
}

TEST(SpanOf6, AFailureOfTheSecondPassLeavesTheTableOfTheFirst) {
  auto ground = Make({});
  ground->SetRamWord(72, 27000);
  ground->SilenceAfter(15);
  EXPECT_FALSE(ground->cal.CalibrateCO2Span(11, "5900", false));
  EXPECT_EQ(ground->session.LastError, "Can't read from sensor");
  EXPECT_EQ(Slice(ground->sensor.Eeprom(), kGasTable, 34), Expected(kPlainA, 2, {4096, 27000}, 900));
  EXPECT_THAT(ground->ImageChanges(), IsEmpty());
}

TEST(SpanOf6, AFailedWriteLeavesTheSensorUnlocked) {
  auto ground = Make({});
  ground->SilenceAfter(8);
  EXPECT_FALSE(ground->cal.CalibrateCO2Span(11, "6000", false));
  EXPECT_FALSE(ground->sensor.Locked());
}

TEST(SpanOf6, EndsWhereTheUserCancels) {
  ExpectEndsWhereTheUserCancels(ReadTrial({}));
  ExpectEndsWhereTheUserCancels(UnreadTrial({}));
}

TEST(SpanOf61, EndsWhereTheUserCancels) {
  ExpectEndsWhereTheUserCancels(ReadTrial({kPart61, 1}));
  ExpectEndsWhereTheUserCancels(UnreadTrial({kPart61, 0}));
}

TEST(SpanOf6, ACancelInTheSearchLeavesAllAsItWas) {
  ExpectCancelInASearchLeavesAllAsItWas(ReadTrial({}));
  ExpectCancelInASearchLeavesAllAsItWas(UnreadTrial({kPart61, 0}));
}

// What the sensor then shows

TEST(SpanOf6, TheSensorThenShowsTheGasThatItWasTold) {
  for (const int given : {5400, 5800, 6050, 6400, 7000}) {
    auto ground = Make({});
    EXPECT_TRUE(ground->cal.CalibrateCO2Span(11, std::to_string(given), false));
    ground->Settle();
    // Between two entries the table is a straight line and the curve is not.
    EXPECT_NEAR(ground->RamWord(30), given, 2 + 0.02 * (given - 5000)) << given;
  }
}

TEST(SpanOf61, TheSensorThenShowsTheGasThatItWasTold) {
  for (const int variant : {0, 1}) {
    for (const int given : {5400, 6000, 6800, 7500}) {
      auto ground = Make({kPart61, variant});
      EXPECT_TRUE(ground->cal.CalibrateCO2Span(5, std::to_string(given), false));
      ground->Settle();
      EXPECT_NEAR(ground->RamWord(22), given, 2 + 0.03 * (given - 5000)) << variant << " " << given;
    }
  }
}

}  // namespace
}  // namespace brelant
