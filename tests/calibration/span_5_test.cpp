// SPDX-License-Identifier: GPL-3.0-or-later
// The CO2 span of platform 5.
#include "calibration/calibration_ground.h"

namespace brelant {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kPart5 = 112;
constexpr std::size_t kTable1 = 34;
constexpr std::size_t kSpanWord = 138;
constexpr std::size_t kBackground = 216;

std::unique_ptr<CalibrationGround> MakePart(int part) {
  auto ground = std::make_unique<CalibrationGround>(bench::SensorSetup{.part = part});
  ground->ReadWhole();
  return ground;
}

/// A sensor whose table of channel 1 falls by 100 a segment down to 5000, so that 5300 lies at 12 x 4096.
/// 4096 x 27648 / 2048 is 55296, 6144 below zero gas.
std::unique_ptr<CalibrationGround> Make() {
  auto ground = MakePart(kPart5);
  ground->SetEvenTable(kTable1, 5000, 100);
  ground->SetRamWord(130, 4096);
  ground->SetRamWord(kSpanWord, 2048);
  ground->SetRamWord(70, 27648);
  ground->SetRamWord(kBackground, 57344);
  ground->SetRam(202, 127);
  ground->SetRam(234, 127);
  return ground;
}

int SpanAfter(CalibrationGround& ground, const std::string& text = "5300") {
  EXPECT_TRUE(ground.cal.CalibrateCO2Span(1, text, false)) << ground.session.LastError;
  EXPECT_EQ(ground.session.LastError, "");
  return ground.RamWord(kSpanWord);
}

TEST(SpanOf5, TheSpanWordStretchesTheMeasuredGasToTheGivenOne) {
  // 12288 x 2048 / 6144.
  EXPECT_EQ(SpanAfter(*Make()), 4096);
}

TEST(SpanOf5, TheSpanWordIsRoundedWhenItIsSplit) {
  auto ground = Make();
  // 12288 x 2048 / (61440 - 54020) = 3391.62
  ground->SetRamWord(70, 27010);
  EXPECT_EQ(SpanAfter(*ground), 3392);
}

TEST(SpanOf5, TheTemperatureCountsByThirtySeconds) {
  auto ground = Make();
  ground->SetRam(202, 127 + 4);
  ground->SetRam(234, 127 + 16);
  // 4096 / ((64 / 32 + 2048) / 2048) = 4092.004; without the 32 it would be 3971.88.
  EXPECT_EQ(SpanAfter(*ground), 4092);
  ground = Make();
  ground->SetRam(202, 127 - 64);
  ground->SetRam(234, 127 + 100);
  // 4096 / ((-200 + 2048) / 2048) = 4539.29
  EXPECT_EQ(SpanAfter(*ground), 4539);
}

TEST(SpanOf5, TheGivenGasIsTakenToTheTable) {
  // Between two entries: 5350 lies at 47104, (61440 - 47104) x 2048 / 6144 = 4778.67.
  EXPECT_EQ(SpanAfter(*Make(), "5350"), 4779);
  // Entry 0 is the highest that the table holds: 61440 x 2048 / 6144.
  EXPECT_EQ(SpanAfter(*Make(), "6500"), 20480);
}

/// No span that a sensor could work with: false with a text, and nothing is written to image or sensor.
void ExpectNoSpan(CalibrationGround& ground, const std::string& text = "5300") {
  const auto before = ground.sensor.Image();
  const auto image = ground.image;
  EXPECT_FALSE(ground.cal.CalibrateCO2Span(1, text, false)) << text;
  EXPECT_NE(ground.session.LastError, "");
  EXPECT_NE(ground.session.LastError, kCancelled);
  EXPECT_THAT(ground.Story(), ElementsAre("read R70+2", "read R234+1"));
  EXPECT_THAT(ground.Changes(before), IsEmpty());
  EXPECT_THAT(ground.ImageChanges(), IsEmpty());
  EXPECT_EQ(ground.image.RamImage, image.RamImage);
  EXPECT_EQ(ground.image.EepromImage, image.EepromImage);
  EXPECT_FALSE(ground.cal.LastChange());
  EXPECT_FALSE(ground.port.PortOpen());
}

TEST(SpanOf5, AConcentrationOfZeroGasIsRefused) {
  // It lies at 61440, so that the span word would be 0.
  ExpectNoSpan(*Make(), "5000");
}

TEST(SpanOf5, AConcentrationThatTheTableDoesNotHoldIsRefused) {
  // It lies at 65535: (61440 - 65535) x 2048 / 6144 = -1365.
  for (const char* text : {"0", "", "-300", "4899", "6501", "9000", "70000"}) ExpectNoSpan(*Make(), text);
}

TEST(SpanOf5, ASignalAboveZeroGasIsRefused) {
  for (const int signal : {30721, 31000, 65535}) {
    auto ground = Make();
    ground->SetRamWord(70, signal);
    ExpectNoSpan(*ground);
  }
}

TEST(SpanOf5, ASignalAHairBelowZeroGasIsRefused) {
  auto ground = Make();
  // 12288 x 2048 / 2 is far above 65535.
  ground->SetRamWord(70, 30719);
  ExpectNoSpan(*ground);
}

TEST(SpanOf5, TwoImpossibleReadingsDoNotMakeAPossibleOne) {
  auto ground = Make();
  // Above zero gas and above the table: -4095 x 2048 / -18560 would be 452.
  ground->SetRamWord(70, 40000);
  ExpectNoSpan(*ground, "9000");
}

TEST(SpanOf5, ASpanWordThatRoundsTo0IsRefused) {
  auto ground = Make();
  ground->SetEvenTable(kTable1, 5000, 1000);
  // 61440 - 61436 = 4: 4 x 2048 / 61440 = 0.13.
  ground->SetRamWord(70, 0);
  ExpectNoSpan(*ground, "5001");
}

TEST(SpanOf5, TheLargestSpanWordThatIsAWordIsTaken) {
  auto ground = Make();
  // 61440 - 61056 = 384: 12288 x 2048 / 384 = 65536.
  ground->SetRamWord(70, 30528);
  ExpectNoSpan(*ground);
  // 12288 x 2048 / 386 = 65196.35.
  ground = Make();
  ground->SetRamWord(70, 30527);
  EXPECT_EQ(SpanAfter(*ground), 65196);
}

TEST(SpanOf5, WhatIsReadAndSentAndInWhichOrder) {
  auto ground = Make();
  EXPECT_TRUE(ground->cal.CalibrateCO2Span(1, "5300", false));
  EXPECT_THAT(ground->Story(), ElementsAre("read R70+2", "read R234+1", "write R138+2", "save to EEPROM",
                                           "write R0+2", "save to EEPROM"));
  EXPECT_FALSE(ground->port.PortOpen());
}

TEST(SpanOf5, TheBytesOnTheWire) {
  auto ground = Make();
  ground->SetRam(0, 77);
  ground->SetRam(1, 78);
  EXPECT_TRUE(ground->cal.CalibrateCO2Span(1, "5300", false));
  EXPECT_THAT(ground->sensor.Frames(),
              ElementsAre(Bytes{130, 70, 200}, Bytes{193, 106, 43}, Bytes{66, 10, 16, 0, 92},
                          Bytes{161, 0, 161}, Bytes{2, 0, 77, 78, 157}, Bytes{161, 0, 161}));
}

TEST(SpanOf5, TheLastWriteIsOfRam0And1AsTheImageHasThem) {
  auto ground = Make();
  ground->image.RamImage[0] = 12;
  ground->image.RamImage[1] = 34;
  EXPECT_TRUE(ground->cal.CalibrateCO2Span(1, "5300", false));
  EXPECT_THAT(Slice(ground->sensor.Ram(), 0, 2), ElementsAre(12, 34));
}

TEST(SpanOf5, TheBackgroundStaysTheSameGasInTheImageAndTheSensorKeepsItsOld) {
  auto ground = Make();
  const auto before = ground->sensor.Image();
  EXPECT_TRUE(ground->cal.CalibrateCO2Span(1, "5300", false));
  // The old word stands for 5100 at 57344. Under twice the span that is 61440 - 4096 / 2.
  EXPECT_EQ(ground->image.RamWord(kBackground), 59392);
  EXPECT_EQ(ground->table.GetBackgroundWord(0), 5100);
  EXPECT_EQ(ground->RamWord(kBackground), 57344);
  // In the sensor's RAM the span word is the only change.
  auto changes = ground->Changes(before);
  std::erase_if(changes, [](const std::string& change) { return change.front() == 'E'; });
  EXPECT_EQ(changes, WordChange('R', kSpanWord, 2048, 4096));
}

TEST(SpanOf5, TheChannelPlaysNoPart) {
  for (const float channel : {0.0F, 2.0F, 11.0F, 99.0F}) {
    auto ground = Make();
    EXPECT_TRUE(ground->cal.CalibrateCO2Span(channel, "5300", false));
    EXPECT_EQ(ground->RamWord(kSpanWord), 4096);
    EXPECT_EQ(ground->RamWord(136), 2048);
    EXPECT_EQ(ground->RamWord(140), 2048);
  }
}

TEST(SpanOf5, SignalAndTemperatureAreReadAfresh) {
  auto ground = Make();
  ground->image.SetRamWord(70, 100);
  ground->image.RamImage[234] = 1;
  EXPECT_EQ(SpanAfter(*ground), 4096);
}

TEST(SpanOf5, ASignalOfZeroGasEndsBeforeAnythingIsWritten) {
  auto ground = Make();
  ground->SetRamWord(70, 30720);
  const auto before = ground->sensor.Image();
  EXPECT_FALSE(ground->cal.CalibrateCO2Span(1, "5300", false));
  EXPECT_NE(ground->session.LastError, "");
  EXPECT_THAT(ground->Story(), ElementsAre("read R70+2", "read R234+1"));
  EXPECT_THAT(ground->Changes(before), IsEmpty());
  EXPECT_THAT(ground->ImageChanges(), IsEmpty());
  EXPECT_FALSE(ground->port.PortOpen());
}

TEST(SpanOf5, ATemperatureThatLeavesNothingEndsBeforeAnythingIsWritten) {
  auto ground = Make();
  // No byte gives -2048 x 32; a poked image does: (E x D) / 32 = -2048 with E = -512.
  ground->image.RamImage[202] = 127 - 512;
  ground->SetRam(234, 255);
  EXPECT_FALSE(ground->cal.CalibrateCO2Span(1, "5300", false));
  EXPECT_NE(ground->session.LastError, "");
  EXPECT_EQ(ground->Frames(), 2);
}

TEST(SpanOf5, WithoutADefinitionNothingIsWritten) {
  auto ground = Make();
  ground->files.Remove("C:\\KVX\\DEF00112.PDT");
  ground->definitions.LoadDefinition();
  ground->session.LastError.clear();
  EXPECT_FALSE(ground->cal.CalibrateCO2Span(1, "5300", false));
  EXPECT_NE(ground->session.LastError, "");
  EXPECT_EQ(ground->Frames(), ground->ReadFrames());
  EXPECT_THAT(ground->ImageChanges(), IsEmpty());
}

TEST(SpanOf5, AFailedFirstWriteSendsNoSecondOneAndLeavesTheBackground) {
  auto ground = Make();
  ground->SilenceAfter(2);
  EXPECT_FALSE(ground->cal.CalibrateCO2Span(1, "5300", false));
  EXPECT_EQ(ground->session.LastError, "Can't save to sensor");
  EXPECT_EQ(ground->image.RamWord(kBackground), 57344);
}

Trial SpanTrial() {
  return {.make = [] { return Make(); },
          .run = [](CalibrationGround& g) { return g.cal.CalibrateCO2Span(1, "5300", false); }};
}

TEST(SpanOf5, EndsWhereTheSensorFallsSilent) {
  ExpectEndsWhereTheSensorFallsSilent(SpanTrial());
}

TEST(SpanOf5, EndsWhereTheUserCancels) {
  ExpectEndsWhereTheUserCancels(SpanTrial());
}

TEST(SpanOf5, TheSensorThenShowsTheGasThatItWasTold) {
  // The definition's table is a straight line between its entries, and so is the sensor's.
  for (const int part : {112, 120, 231}) {
    for (const int given : {5300, 5800, 6100, 6500}) {
      auto ground = MakePart(part);
      EXPECT_TRUE(ground->cal.CalibrateCO2Span(1, std::to_string(given), false)) << part;
      ground->Settle();
      EXPECT_NEAR(ground->RamWord(22), given, 2 + 0.01 * (given - 5000)) << part << " " << given;
    }
  }
}

}  // namespace
}  // namespace brelant
