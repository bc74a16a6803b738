// SPDX-License-Identifier: GPL-3.0-or-later
#include "calibration/calibration_ground.h"

namespace brelant {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr float kPlatform = snsCal::kPlatformChannel;

struct Sensor {
  int part;
  std::optional<int> variant = {};
};

constexpr Sensor k5{112};
constexpr Sensor k6{222};
constexpr Sensor k61{215, 1};
constexpr Sensor k7{33};

std::unique_ptr<CalibrationGround> MakeUnread(const Sensor& sensor) {
  return std::make_unique<CalibrationGround>(
      bench::SensorSetup{.part = sensor.part, .variant = sensor.variant});
}
std::unique_ptr<CalibrationGround> Make(const Sensor& sensor) {
  auto ground = MakeUnread(sensor);
  ground->ReadWhole();
  return ground;
}

bool Calibrate(CalibrationGround& ground, float value) {
  return ground.cal.CalibrateTemperature(value, kPlatform, false);
}

/// The 17 words of a table that moves by an amount, as two's complement.
Bytes Moved(CalibrationGround& ground, std::size_t address, int delta) {
  Bytes bytes;
  for (std::size_t i = 0; i < 17; ++i) {
    const int word = (ground.EepromWord(address + 2 * i) + delta + 65536) % 65536;
    bytes.push_back(static_cast<std::uint8_t>(word / 256));
    bytes.push_back(static_cast<std::uint8_t>(word % 256));
  }
  return bytes;
}

/// All seventeen entries of the table move by that much, and nothing else changes.
void ExpectMoves(CalibrationGround& ground, float value, float channel, std::size_t table, int delta) {
  auto memory = ground.sensor.Image();
  const auto expected = Moved(ground, table, delta);
  EXPECT_TRUE(ground.cal.CalibrateTemperature(value, channel, false)) << ground.session.LastError;
  EXPECT_EQ(ground.session.LastError, "");
  EXPECT_FALSE(ground.port.PortOpen());
  EXPECT_EQ(Slice(ground.sensor.Eeprom(), table, 34), expected);
  std::copy(expected.begin(), expected.end(), memory.begin() + 256 + static_cast<std::ptrdiff_t>(table));
  EXPECT_THAT(ground.Changes(memory), IsEmpty());
  EXPECT_THAT(ground.ImageChanges(), IsEmpty());
}

// Platform 5

TEST(TemperatureOf5, MovesTheZeroWordOfChannel0ByTheDifference) {
  auto ground = Make(k5);
  ground->SetRamWord(20, 7200);
  // 25.00 is 7500; 4096 + 300.
  EXPECT_TRUE(Calibrate(*ground, 25));
  EXPECT_THAT(ground->sensor.Frames(), ElementsAre(Bytes{66, 0, 17, 44, 127}, Bytes{161, 0, 161}));
  EXPECT_EQ(ground->image.RamWord(128), 4396);
  EXPECT_EQ(ground->session.LastError, "");
  EXPECT_FALSE(ground->port.PortOpen());
}

TEST(TemperatureOf5, MayMoveDownAndByAFraction) {
  auto ground = Make(k5);
  ground->SetRamWord(20, 7200);
  // 19.5 is 6950.
  EXPECT_TRUE(Calibrate(*ground, 19.5F));
  EXPECT_EQ(ground->RamWord(128), 4096 - 250);
}

TEST(TemperatureOf5, TheChannelPlaysNoPart) {
  for (const float channel : {0.0F, 1.0F, 3.0F}) {
    auto ground = Make(k5);
    ground->SetRamWord(20, 7200);
    EXPECT_TRUE(ground->cal.CalibrateTemperature(25, channel, false));
    EXPECT_EQ(ground->RamWord(128), 4396);
    EXPECT_EQ(ground->RamWord(130), 4096);
  }
}

TEST(TemperatureOf5, AFahrenheitChannelTakesFahrenheit) {
  auto ground = Make(k5);
  // Type 2 by RAM 205.
  ground->SetRam(205, 2 * 16);
  ground->SetRamWord(20, 7000);
  // 77 F are 25 C.
  EXPECT_TRUE(Calibrate(*ground, 77));
  EXPECT_EQ(ground->RamWord(128), 4096 + 500);
}

TEST(TemperatureOf5, AFailedWriteIsAFailure) {
  auto ground = Make(k5);
  ground->SilenceAfter(0);
  EXPECT_FALSE(Calibrate(*ground, 25));
  EXPECT_EQ(ground->session.LastError, "Can't save to sensor");
  EXPECT_FALSE(ground->port.PortOpen());
}

// Platform 6

TEST(TemperatureOf6, MovesTheWholeTableByTheDifference) {
  auto ground = Make(k6);
  ground->SetRamWord(12, 7000);
  // 22.5 is 7250.
  ExpectMoves(*ground, 22.5F, kPlatform, 308, 250);
  EXPECT_THAT(ground->Story(), ElementsAre("write R230+1", "unlock", "write E308+34", "lock", "save to RAM"));
}

TEST(TemperatureOf6, MovesItDownToo) {
  auto ground = Make(k6);
  ground->SetRamWord(12, 7400);
  ExpectMoves(*ground, 22.5F, kPlatform, 308, -150);
}

TEST(TemperatureOf6, TheChannelGoesByThePartNumber) {
  for (const auto& [part, address] : {std::pair<int, std::size_t>{221, 12}, {222, 12}, {223, 14}}) {
    auto ground = Make({part});
    ground->SetRamWord(12, 6000);
    ground->SetRamWord(14, 6000);
    ground->SetRamWord(address, 7000);
    ExpectMoves(*ground, 22, kPlatform, 308, 200);
  }
}

TEST(TemperatureOf6, AnyOtherPartTakesChannel0WhichIsAnOutput) {
  for (const int part : {88, 95, 216, 220}) {
    auto ground = Make({part});
    ground->SetRamWord(236, 1000);
    // The divider of an output is 163, and it has no offset: 22 x 163 = 3586.
    ExpectMoves(*ground, 22, kPlatform, 308, 2586);
  }
}

TEST(TemperatureOf6, AChannelOtherThan99IsNotTakenOver) {
  for (const float channel : {0.0F, 2.0F, 3.0F}) {
    auto ground = Make(k6);
    ground->SetRamWord(236, 1000);
    ExpectMoves(*ground, 22, channel, 308, 2586);
  }
}

TEST(TemperatureOf6, AChannelInFahrenheitTakesFahrenheit) {
  auto ground = Make(k6);
  ground->SetEeprom(220, 128 | 2 << 2 | 2);
  ground->SetRamWord(12, 7000);
  // 71.6 F are 22 C.
  ExpectMoves(*ground, 71.6F, kPlatform, 308, 200);
}

TEST(TemperatureOf6, TheRightTemperatureRewritesTheSameTable) {
  auto ground = Make(k6);
  ground->SetRamWord(12, 7200);
  ExpectMoves(*ground, 22, kPlatform, 308, 0);
  EXPECT_THAT(ground->Story(), ElementsAre("write R230+1", "unlock", "write E308+34", "lock", "save to RAM"));
}

TEST(TemperatureOf6, AnEntryAbove65535Becomes65535) {
  auto ground = Make(k6);
  ground->SetEepromWord(308 + 32, 65500);
  ground->SetRamWord(12, 7000);
  EXPECT_TRUE(Calibrate(*ground, 22.5F));
  EXPECT_EQ(ground->EepromWord(308 + 32), 65535);
  EXPECT_EQ(ground->EepromWord(308 + 30), 3000 + 15 * 500 + 250);
}

TEST(TemperatureOf6, WhatIsMissingIsFetched) {
  auto ground = MakeUnread(k6);
  ground->SetRamWord(12, 7000);
  ExpectMoves(*ground, 22.5F, kPlatform, 308, 250);
}

// Platform 61

TEST(TemperatureOf61, ReadsTwiceAndTheSecondReadingCounts) {
  auto ground = Make(k61);
  ground->SetRamWord(20, 7000);
  ground->AfterFrame(1, [&] { bench::PutWord(ground->sensor.Ram(), 20, 7100); });
  const auto expected = Moved(*ground, 308, 150);
  EXPECT_TRUE(Calibrate(*ground, 22.5F));
  EXPECT_EQ(Slice(ground->sensor.Eeprom(), 308, 34), expected);
  EXPECT_THAT(ground->Story(),
              ElementsAre("read R20+2", "read R20+2", "unlock", "write E308+34", "lock", "save to RAM"));
}

TEST(TemperatureOf61, BothVariantsTakeChannel4AndAnyOtherChannel0) {
  for (const int variant : {0, 1}) {
    auto ground = Make({215, variant});
    ground->SetRamWord(20, 7000);
    ExpectMoves(*ground, 22.5F, kPlatform, 308, 250);
  }
  auto ground = Make(k61);
  ground->SetEeprom(173, 3);
  ground->SetRamWord(12, 10);
  // Channel 0 is of no kind at all: scale 1, no offset.
  ExpectMoves(*ground, 22, kPlatform, 308, 12);
}

TEST(TemperatureOf61, APartWithoutAScaleFactorCanBeCalibrated) {
  auto ground = Make({85});
  ground->SetRamWord(20, 7000);
  ExpectMoves(*ground, 22.5F, kPlatform, 308, 250);
}

// Platform 7

TEST(TemperatureOf7, MovesItsTable0WithoutASave) {
  auto ground = Make(k7);
  ground->SetRamWord(20, 2000);
  ExpectMoves(*ground, 22.5F, kPlatform, 512, 250);
  EXPECT_THAT(ground->Story(), ElementsAre("read R20+2", "read R20+2", "unlock", "write E512+34", "lock"));
  EXPECT_EQ(ground->sensor.Count().saves, 0);
}

TEST(TemperatureOf7, AnEntryBelow0IsTwosComplement) {
  auto ground = Make(k7);
  ground->SetRamWord(20, 2000);
  EXPECT_TRUE(Calibrate(*ground, 19));
  EXPECT_EQ(ground->EepromWord(512), 65536 - 100);
  EXPECT_EQ(ground->EepromWord(514), 300);
}

TEST(TemperatureOf7, BelowZeroBothAreWords) {
  auto ground = Make(k7);
  // -4 is read, -5 is given.
  ground->SetRamWord(20, 65536 - 400);
  ExpectMoves(*ground, -5, kPlatform, 512, -100);
}

TEST(TemperatureOf7, AcrossZeroEveryEntryMovesByTheSameSignedAmount) {
  struct Case {
    int reading;
    float told;
    int delta;
  };
  for (const auto& [reading, told, delta] :
       {Case{50, -0.5F, -100}, Case{-50, 0.5F, 100}, Case{50, 0, -50}, Case{-50, 0, 50}, Case{0, -0.5F, -50},
        Case{0, 0.5F, 50}, Case{2000, -20, -4000}, Case{-2000, 20, 4000}}) {
    SCOPED_TRACE(testing::Message() << reading << " told " << told);
    auto ground = Make(k7);
    // -850, -750 ... 750: some cross 0 on the way, some stay on their side of it.
    for (int i = 0; i < 17; ++i) {
      ground->SetEepromWord(512 + 2 * static_cast<std::size_t>(i), (65536 - 850 + 100 * i) % 65536);
    }
    ground->SetRamWord(20, (reading + 65536) % 65536);
    ExpectMoves(*ground, told, kPlatform, 512, delta);
    // Two of them by hand.
    EXPECT_EQ(ground->EepromWord(512 + 2 * 8), (65536 - 50 + delta) % 65536);
    EXPECT_EQ(ground->EepromWord(512 + 2 * 9), (65536 + 50 + delta) % 65536);
  }
}

TEST(TemperatureOf7, AChannelOtherThan99IsNotTakenOver) {
  auto ground = Make(k7);
  ground->SetRamWord(12, 10);
  ExpectMoves(*ground, 22, 4, 512, 12);
}

// The rest

TEST(Temperature, OfAnyOtherPlatformChangesNothing) {
  for (const bool keep : {false, true}) {
    auto ground = Make(k7);
    ground->KnowPart(40);
    ground->link.Open();
    EXPECT_TRUE(ground->cal.CalibrateTemperature(22, kPlatform, keep));
    EXPECT_EQ(ground->session.LastError, "");
    EXPECT_EQ(ground->Frames(), 0);
    EXPECT_THAT(ground->ImageChanges(), testing::ElementsAre("R65: 40, was 33"));
    EXPECT_EQ(ground->port.PortOpen(), keep);
  }
}

Trial TemperatureTrial(const Sensor& sensor, bool read) {
  return {.make = [=] { return read ? Make(sensor) : MakeUnread(sensor); },
          .run = [](CalibrationGround& g) { return Calibrate(g, 25); }};
}

TEST(Temperature, EndsWhereTheSensorFallsSilent) {
  ExpectEndsWhereTheSensorFallsSilent(TemperatureTrial(k5, true));
  for (const bool read : {true, false}) {
    for (const auto& sensor : {k6, Sensor{223}, Sensor{88}, k61, k7}) {
      ExpectEndsWhereTheSensorFallsSilent(TemperatureTrial(sensor, read));
    }
  }
}

TEST(Temperature, EndsWhereTheUserCancels) {
  ExpectEndsWhereTheUserCancels(TemperatureTrial(k5, true));
  for (const bool read : {true, false}) {
    for (const auto& sensor : {k6, k61, k7}) ExpectEndsWhereTheUserCancels(TemperatureTrial(sensor, read));
  }
}

TEST(Temperature, TheSensorThenShowsWhatItWasTold) {
  for (const auto& sensor : {k5, k6, k61, k7}) {
    for (const float given : {18.0F, 23.5F, 31.0F}) {
      auto ground = Make(sensor);
      EXPECT_TRUE(Calibrate(*ground, given));
      ground->Settle();
      const std::size_t live = sensor.part == k6.part ? 12 : 20;
      const int offset = sensor.part == k7.part ? 0 : 5000;
      EXPECT_NEAR(ground->RamWord(live), offset + given * 100, 1) << sensor.part;
    }
  }
}

}  // namespace
}  // namespace brelant
