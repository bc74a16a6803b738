// SPDX-License-Identifier: GPL-3.0-or-later
// The CO2 zero of all platforms, by zero gas, fresh air and another known gas.
#include "calibration/calibration_ground.h"

namespace brelant {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr float kPlatform = snsCal::kPlatformChannel;
constexpr int kZeroGas = snsCal::zeroGas;
constexpr int kFreshAir = snsCal::freshAir;
constexpr int kOther = snsCal::otherGas;

struct Sensor {
  int part;
  std::optional<int> variant = {};
};

std::unique_ptr<CalibrationGround> Make(const Sensor& sensor) {
  auto ground =
      std::make_unique<CalibrationGround>(bench::SensorSetup{.part = sensor.part, .variant = sensor.variant});
  ground->ReadWhole();
  return ground;
}

constexpr Sensor k5{112};
constexpr Sensor k6{88};
constexpr Sensor k61{215, 1};
constexpr Sensor k7{33};

bool Zero(CalibrationGround& ground, int kind = kZeroGas, const std::string& text = "") {
  return ground.cal.CalibrateCO2Zero(kPlatform, false, kind, text);
}

/// The zero word in the sensor's EEPROM after a calibration of channel 99.
int ZeroWordAfter(CalibrationGround& ground, int kind, const std::string& text = "") {
  EXPECT_TRUE(Zero(ground, kind, text)) << ground.session.LastError;
  EXPECT_EQ(ground.session.LastError, "");
  EXPECT_FALSE(ground.port.PortOpen());
  return ground.EepromWord(46);
}

/// Not computable: false with a text, and nothing is written to image or sensor.
void ExpectNoResult(CalibrationGround& ground, int kind, const std::string& text = "") {
  const auto before = ground.sensor.Image();
  EXPECT_FALSE(Zero(ground, kind, text));
  EXPECT_NE(ground.session.LastError, "");
  EXPECT_EQ(ground.Frames(), ground.ReadFrames());
  EXPECT_THAT(ground.Changes(before), IsEmpty());
  EXPECT_THAT(ground.ImageChanges(), IsEmpty());
  EXPECT_FALSE(ground.port.PortOpen());
}

// Zero gas

TEST(ZeroOf6, TheBytesOnTheWire) {
  auto ground = Make(k6);
  ground->SetRamWord(72, 30720);
  ground->SetRam(230, 5);
  EXPECT_TRUE(Zero(*ground));
  EXPECT_THAT(ground->sensor.Frames(),
              ElementsAre(Bytes{130, 72, 202}, Bytes{65, 102, 5, 172}, Bytes{147, 0, 147},
                          Bytes{10, 23, 16, 0, 49}, Bytes{16, 0, 16}, Bytes{32, 0, 32}));
  EXPECT_FALSE(ground->port.PortOpen());
}

TEST(ZeroOf61, TheBytesOnTheWire) {
  auto ground = Make(k61);
  ground->SetRamWord(40, 30720);
  EXPECT_TRUE(Zero(*ground));
  EXPECT_THAT(ground->sensor.Frames(),
              ElementsAre(Bytes{130, 40, 170}, Bytes{197, 55, 252}, Bytes{10, 23, 16, 0, 49},
                          Bytes{169, 171, 84}, Bytes{145, 0, 145}));
}

TEST(ZeroOf5, TheBytesOnTheWire) {
  auto ground = Make(k5);
  ground->SetRamWord(70, 30720);
  EXPECT_TRUE(Zero(*ground));
  EXPECT_THAT(ground->sensor.Frames(),
              ElementsAre(Bytes{130, 70, 200}, Bytes{66, 2, 16, 0, 84}, Bytes{161, 0, 161}));
}

TEST(ZeroOf7, TheBytesOnTheWireAndNoSave) {
  auto ground = Make(k7);
  ground->SetRamWord(40, 30720);
  EXPECT_TRUE(Zero(*ground));
  EXPECT_THAT(ground->sensor.Frames(), ElementsAre(Bytes{130, 40, 170}, Bytes{197, 55, 252},
                                                   Bytes{10, 0, 14, 16, 0, 40}, Bytes{169, 171, 84}));
  EXPECT_FALSE(ground->port.PortOpen());
}

TEST(Zero, TheZeroWordAndNothingElseChanges) {
  auto six = Make(k6);
  six->SetRamWord(72, 29000);
  const auto before6 = six->sensor.Image();
  EXPECT_TRUE(Zero(*six));
  // 125829120 / 29000 = 4338.93
  EXPECT_EQ(six->EepromWord(46), 4338);
  EXPECT_EQ(six->Changes(before6), WordChange('E', 46, 4096, 4338));
  EXPECT_THAT(six->ImageChanges(), IsEmpty());
  auto seven = Make(k7);
  seven->SetRamWord(40, 29000);
  const auto before7 = seven->sensor.Image();
  EXPECT_TRUE(Zero(*seven));
  EXPECT_EQ(seven->Changes(before7), WordChange('E', 14, 4096, 4338));
  EXPECT_THAT(seven->ImageChanges(), IsEmpty());
}

TEST(Zero, TheZeroWordIsTruncated) {
  // 125829120 / 26000 = 4839.58, / 31999 = 3932.28
  for (const auto& [signal, word] : {std::pair{26000, 4839}, {31999, 3932}, {4096, 30720}}) {
    auto six = Make(k6);
    six->SetRamWord(72, signal);
    EXPECT_EQ(ZeroWordAfter(*six, kZeroGas), word);
    auto five = Make(k5);
    five->SetRamWord(70, signal);
    EXPECT_TRUE(Zero(*five));
    EXPECT_EQ(five->RamWord(130), word);
    auto seven = Make(k7);
    seven->SetRamWord(40, signal);
    EXPECT_TRUE(Zero(*seven));
    EXPECT_EQ(seven->EepromWord(14), word);
  }
}

TEST(Zero, AWordAbove65535Becomes65535) {
  // 125829120 / 1000 = 125829
  auto six = Make(k6);
  six->SetRamWord(72, 1000);
  EXPECT_EQ(ZeroWordAfter(*six, kZeroGas), 65535);
  auto seven = Make(k7);
  seven->SetRamWord(40, 1000);
  EXPECT_TRUE(Zero(*seven));
  EXPECT_EQ(seven->EepromWord(14), 65535);
}

TEST(Zero, WithoutASignalNothingIsWritten) {
  for (const int kind : {kZeroGas, kFreshAir, kOther}) {
    auto five = Make(k5);
    five->SetRamWord(70, 0);
    ExpectNoResult(*five, kind, "400");
    auto six = Make(k6);
    six->SetRamWord(72, 0);
    ExpectNoResult(*six, kind, "400");
    auto seven = Make(k7);
    seven->SetRamWord(40, 0);
    ExpectNoResult(*seven, kind, "400");
  }
}

TEST(Zero, TheSignalIsReadAfresh) {
  auto six = Make(k6);
  six->SetRamWord(72, 30720);
  six->image.SetRamWord(72, 20000);
  EXPECT_EQ(ZeroWordAfter(*six, kZeroGas), 4096);
  auto seven = Make(k7);
  seven->SetRamWord(40, 30720);
  seven->image.SetRamWord(40, 20000);
  EXPECT_TRUE(Zero(*seven));
  EXPECT_EQ(seven->EepromWord(14), 4096);
}

TEST(ZeroOf7, TheKindPlaysNoPart) {
  for (const int kind : {-1, kZeroGas, kFreshAir, kOther, 7}) {
    auto ground = Make(k7);
    ground->SetRamWord(40, 29000);
    EXPECT_TRUE(Zero(*ground, kind, "400"));
    EXPECT_EQ(ground->EepromWord(14), 4338) << kind;
  }
}

TEST(Zero, OfAnyOtherKindTheWordIs0) {
  for (const int kind : {-1, 3, 99}) {
    EXPECT_EQ(ZeroWordAfter(*Make(k6), kind), 0);
    EXPECT_EQ(ZeroWordAfter(*Make(k61), kind), 0);
    auto five = Make(k5);
    EXPECT_TRUE(Zero(*five, kind));
    EXPECT_EQ(five->RamWord(130), 0);
  }
}

// Fresh air

TEST(ZeroOf6, FreshAirPutsTheReadingAtTheStoredBackground) {
  auto ground = Make(k6);
  ground->SetRamWord(72, 30000);
  // 61440 - 4096 x 2 lies on entry 13, whatever that holds, and comes back as 57344.
  ground->SetEepromWord(38, 57344);
  // 57344 x 2048 / 30000 = 3914.68
  EXPECT_EQ(ZeroWordAfter(*ground, kFreshAir), 3914);
}

TEST(ZeroOf6, FreshAirRoundsOnEveryWayThroughTheTable) {
  auto ground = Make(k6);
  ground->SetEvenTable(444, 5000, 100);
  ground->SetRamWord(72, 2048);
  ground->SetEepromWord(38, 60000);
  // x = 61440 - 1440 x 2 = 58560 shows 5070.3125, so 5070. That is at 58572.8, so 58573.
  // 61440 - 2867 / 2 = 60006.5, and the even neighbour is 60006.
  EXPECT_EQ(ZeroWordAfter(*ground, kFreshAir), 60006);
}

TEST(ZeroOf6, FreshAirWithScaleFactor1) {
  auto ground = Make(k6);
  ground->SetEvenTable(444, 5000, 100);
  ground->SetEeprom(165, 1);
  ground->SetRamWord(72, 2048);
  ground->SetEepromWord(38, 58560);
  EXPECT_EQ(ZeroWordAfter(*ground, kFreshAir), 58573);
}

TEST(ZeroOf61, FreshAirIsThatOfItsOwnWords) {
  auto ground = Make(k61);
  ground->SetEvenTable(444, 5000, 100);
  ground->SetRamWord(40, 2048);
  ground->SetEepromWord(58, 60000);
  EXPECT_EQ(ZeroWordAfter(*ground, kFreshAir), 60006);
}

TEST(ZeroOf5, FreshAirGoesThroughTheSpanWord) {
  auto ground = Make(k5);
  ground->SetEvenTable(34, 5000, 100);
  ground->SetRamWord(138, 4096);
  ground->SetRamWord(70, 2048);
  ground->SetRamWord(216, 60000);
  EXPECT_TRUE(Zero(*ground, kFreshAir));
  EXPECT_EQ(ground->RamWord(130), 60006);
}

TEST(Zero, FreshAirIsNotZeroGas) {
  auto air = Make(k6);
  auto gas = Make(k6);
  air->SetRamWord(72, 29000);
  gas->SetRamWord(72, 29000);
  EXPECT_LT(ZeroWordAfter(*air, kFreshAir), ZeroWordAfter(*gas, kZeroGas));
}

// Another gas

TEST(ZeroOf6, AGivenGasIsTakenToTheTableWithItsOffset) {
  auto ground = Make(k6);
  ground->SetEvenTable(444, 5000, 100);
  ground->SetRamWord(72, 2048);
  // 5400 lies on entry 11: 61440 - 16384 / 2.
  EXPECT_EQ(ZeroWordAfter(*ground, kOther, "400 ppm"), 53248);
}

TEST(ZeroOf61, AGivenGasIsInTheUnitOfTheChannel) {
  auto ground = Make({215, 0});
  ground->SetEvenTable(444, 5000, 100);
  ground->SetRamWord(40, 2048);
  // 0.4 % in thousandths is 400 above the offset; the scale is whole.
  EXPECT_EQ(ZeroWordAfter(*ground, kOther, "0,4"), 45056);
}

TEST(ZeroOf5, AGivenGasGoesThroughTheSpanWord) {
  auto ground = Make(k5);
  ground->SetEvenTable(34, 5000, 100);
  ground->SetRamWord(138, 4096);
  ground->SetRamWord(70, 2048);
  EXPECT_TRUE(Zero(*ground, kOther, "400"));
  EXPECT_EQ(ground->RamWord(130), 53248);
  // 61440 - 16384 x 2048 / 3001 = 50258.92 is rounded before the zero word is truncated.
  ground->SetRamWord(138, 3001);
  EXPECT_TRUE(Zero(*ground, kOther, "400"));
  EXPECT_EQ(ground->RamWord(130), 50259);
}

TEST(Zero, AGivenGasAboveTheTableLiesBehindZeroGas) {
  auto ground = Make(k6);
  ground->SetEvenTable(444, 5000, 100);
  ground->SetRamWord(72, 30720);
  // 65535 stands for a value in no segment: 61440 + 4095 / 2 = 63487.5, to the even 63488.
  // 63488 x 2048 / 30720 = 4232.53
  EXPECT_EQ(ZeroWordAfter(*ground, kOther, "9000"), 4232);
}

TEST(Zero, WithoutAScaleOnlyZeroGasCanBeComputed) {
  for (const int part : {80, 85, 214}) {
    auto ground = Make({part, 1});
    ground->SetRamWord(40, 29000);
    EXPECT_EQ(ZeroWordAfter(*ground, kZeroGas), 4338);
    ExpectNoResult(*Make({part, 1}), kFreshAir);
    ExpectNoResult(*Make({part, 1}), kOther, "400");
  }
}

TEST(ZeroOf5, WithoutASpanWordOnlyZeroGasCanBeComputed) {
  const auto make = [] {
    auto ground = Make(k5);
    ground->SetRamWord(138, 0);
    return ground;
  };
  EXPECT_TRUE(Zero(*make(), kZeroGas));
  ExpectNoResult(*make(), kFreshAir);
  ExpectNoResult(*make(), kOther, "400");
}

// Channels

TEST(Zero, AChannelOfItsOwnHasItsOwnWords) {
  auto six = Make(k6);
  six->SetRamWord(74, 29000);
  const auto before = six->sensor.Image();
  EXPECT_TRUE(six->cal.CalibrateCO2Zero(12, false, kZeroGas, ""));
  EXPECT_EQ(six->Changes(before), WordChange('E', 48, 4096, 4338));
  auto five = Make(k5);
  five->SetRamWord(72, 29000);
  EXPECT_TRUE(five->cal.CalibrateCO2Zero(2, false, kZeroGas, ""));
  EXPECT_EQ(five->RamWord(132), 4338);
  EXPECT_EQ(five->RamWord(130), 4096);
}

TEST(Zero, Channel99IsTheCO2ChannelOfThePlatform) {
  auto six = Make(k6);
  EXPECT_TRUE(Zero(*six));
  EXPECT_EQ(six->Story().front(), "read R72+2");
  auto five = Make(k5);
  EXPECT_TRUE(Zero(*five));
  EXPECT_THAT(five->Story(), ElementsAre("read R70+2", "write R130+2", "save to EEPROM"));
  for (const int variant : {0, 1}) {
    auto ground = Make({215, variant});
    EXPECT_TRUE(Zero(*ground));
    EXPECT_THAT(ground->Story(), ElementsAre("read R40+2", "unlock", "write E46+2", "lock", "save to RAM"));
  }
}

TEST(ZeroOf61, Channel99OfAnyOtherVariantIsChannel0WhichHasNoSignal) {
  auto ground = Make(k61);
  ground->SetEeprom(173, 3);
  ExpectNoResult(*ground, kZeroGas);
  EXPECT_EQ(ground->Frames(), 0);
}

TEST(ZeroOf61, Channel0HasNoZeroWordToSendEither) {
  auto ground = Make(k61);
  ground->SetEeprom(173, 3);
  EXPECT_TRUE(Zero(*ground, 3));
  EXPECT_EQ(ground->Frames(), 0);
  EXPECT_THAT(ground->ImageChanges(), IsEmpty());
}

TEST(ZeroOf7, AChannelOtherThan99HasNoSignal) {
  auto ground = Make(k7);
  EXPECT_FALSE(ground->cal.CalibrateCO2Zero(5, false, kZeroGas, ""));
  EXPECT_NE(ground->session.LastError, "");
  EXPECT_EQ(ground->Frames(), 0);
}

TEST(Zero, OfAnyOtherPlatformHasNoSignal) {
  for (const std::uint8_t part : {40, 154}) {
    auto ground = Make(k7);
    ground->KnowPart(part);
    EXPECT_FALSE(Zero(*ground));
    EXPECT_NE(ground->session.LastError, "");
    EXPECT_EQ(ground->Frames(), 0);
  }
}

// The port at the end

TEST(Zero, ThePortOfAFailedCalibrationIsClosedUnlessItIsToStayOpen) {
  for (const bool keep : {false, true}) {
    auto ground = Make(k61);
    ground->SetEeprom(173, 3);
    ground->link.Open();
    EXPECT_FALSE(ground->cal.CalibrateCO2Zero(kPlatform, keep, kZeroGas, ""));
    EXPECT_EQ(ground->port.PortOpen(), keep);
  }
}

TEST(Zero, ThePortStaysOpenBehindAWriteThatFailsIfItIsToStayOpen) {
  for (const bool keep : {false, true}) {
    auto ground = Make(k6);
    ground->SilenceAfter(3);
    EXPECT_TRUE(ground->cal.CalibrateCO2Zero(kPlatform, keep, kZeroGas, ""));
    EXPECT_EQ(ground->session.LastError, "Can't save to sensor");
    EXPECT_EQ(ground->port.PortOpen(), keep);
  }
}

// What goes wrong on the way

/// Platforms 5, 6 and 61: whether the last write succeeded shows in LastError only.
Trial ZeroTrial(const Sensor& sensor, int kind, bool read) {
  return {.make =
              [=] {
                return read ? Make(sensor)
                            : std::make_unique<CalibrationGround>(
                                  bench::SensorSetup{.part = sensor.part, .variant = sensor.variant});
              },
          .run = [kind](CalibrationGround& g) { return Zero(g, kind, "0.4"); },
          .trueAfterFailedWrite = sensor.part != k7.part};
}

TEST(Zero, EndsWhereTheSensorFallsSilent) {
  for (const int kind : {kZeroGas, kFreshAir, kOther}) {
    ExpectEndsWhereTheSensorFallsSilent(ZeroTrial(k5, kind, true));
    for (const bool read : {true, false}) {
      ExpectEndsWhereTheSensorFallsSilent(ZeroTrial(k6, kind, read));
      ExpectEndsWhereTheSensorFallsSilent(ZeroTrial(k61, kind, read));
      ExpectEndsWhereTheSensorFallsSilent(ZeroTrial({215, 0}, kind, read));
      ExpectEndsWhereTheSensorFallsSilent(ZeroTrial(k7, kind, read));
    }
  }
}

TEST(Zero, EndsWhereTheUserCancels) {
  for (const int kind : {kZeroGas, kFreshAir, kOther}) {
    ExpectEndsWhereTheUserCancels(ZeroTrial(k5, kind, true));
    for (const bool read : {true, false}) {
      ExpectEndsWhereTheUserCancels(ZeroTrial(k6, kind, read));
      ExpectEndsWhereTheUserCancels(ZeroTrial(k61, kind, read));
      ExpectEndsWhereTheUserCancels(ZeroTrial(k7, kind, read));
    }
  }
}

// What the sensor then shows

/// The live CO2 value of channel 99, with its offset if it has one.
int LiveGas(CalibrationGround& ground) {
  ground.Settle();
  return ground.RamWord(ground.sensor.Platform() == 6 ? 30 : 22);
}

TEST(Zero, TheSensorThenShowsNoGas) {
  for (const auto& sensor : {k5, Sensor{120}, Sensor{231}, k6, k61, Sensor{215, 0}, Sensor{85, 1}, k7}) {
    auto ground = Make(sensor);
    EXPECT_TRUE(Zero(*ground));
    // The truncated word leaves the position up to signal / 2048 short.
    EXPECT_NEAR(LiveGas(*ground), sensor.part == k7.part ? 0 : 5000, 5) << sensor.part;
  }
}

TEST(Zero, TheSensorThenShowsTheBackground) {
  for (const auto& sensor : {k5, Sensor{120}, k6, k61, Sensor{215, 0}}) {
    auto ground = Make(sensor);
    const float background = ground->table.GetBackgroundWord(0);
    EXPECT_TRUE(Zero(*ground, kFreshAir));
    EXPECT_NEAR(LiveGas(*ground), background, 6) << sensor.part;
  }
}

TEST(Zero, TheSensorThenShowsTheGasThatItWasTold) {
  for (const auto& sensor : {k5, Sensor{120}, k6, k61}) {
    for (const int given : {400, 900, 1500}) {
      auto ground = Make(sensor);
      EXPECT_TRUE(Zero(*ground, kOther, std::to_string(given)));
      EXPECT_NEAR(LiveGas(*ground), 5000 + given, 8 + 0.01 * given) << sensor.part;
    }
  }
}

}  // namespace
}  // namespace brelant
