// SPDX-License-Identifier: GPL-3.0-or-later
// New calibration words in a sensor, and what it reads then. The words are computed as a host does
// (docs/memory-maps.md, Calibration).
#include <optional>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arithmetic.h"
#include "bench/virtual_sensor.h"

namespace brelant::bench {
namespace {

using std::chrono::seconds;

/// Where a sensor keeps what its CO2 value is made of.
struct Path {
  int part;
  int variant;
  double scale;
  bool zero_in_ram;
  std::size_t zero;
  std::size_t signal;
  std::size_t value;
  std::optional<std::size_t> table;  ///< EEPROM; the host's own on platform 5
  double offset;
};

const std::vector<Path> kPaths{
    {231, 0, 1, true, 130, 70, 22, std::nullopt, 5000}, {231, 3, 1, true, 130, 70, 22, std::nullopt, 5000},
    {217, 0, 2, false, 46, 72, 30, 444, 5000},          {215, 0, 1, false, 46, 40, 22, 444, 5000},
    {215, 1, 2, false, 46, 40, 22, 444, 5000},          {50, 2, 1, false, 14, 40, 22, 580, 0}};

class Sensor : public VirtualSensor {
 public:
  explicit Sensor(const Path& path)
      : VirtualSensor({.part = path.part, .variant = path.variant}), path_(path) {}

  Entries Table() {
    return path_.table ? EntriesAt(Eeprom(), *path_.table) : DefinedEntries(kPrintedD, 5000);
  }
  double Signal() { return WordAt(Ram(), path_.signal); }
  double ZeroWord() { return WordAt(path_.zero_in_ram ? Ram() : Eeprom(), path_.zero); }
  double Position(double scale) { return PositionOfWord(ZeroWord() * Signal() / 2048, scale); }
  void SetZero(double word) {
    SetWord(path_.zero_in_ram ? Ram() : Eeprom(), path_.zero, static_cast<int>(word));
    Advance(seconds(0));
  }
  double Reading() {
    Advance(seconds(0));
    return WordAt(Ram(), path_.value);
  }

 private:
  Path path_;
};

TEST(Reading, IsTheTableAtThePositionOfTheSignal) {
  for (const Path& path : kPaths) {
    Sensor sensor(path);
    for (const int t : {0, 7, 100, 1000}) {
      sensor.Advance(seconds(t));
      const double value = Interpolated(sensor.Table(), sensor.Position(path.scale));
      EXPECT_NEAR(WordAt(sensor.Ram(), path.value), value, 0.501)
          << path.part << '/' << path.variant << ' ' << t;
    }
  }
}

TEST(ZeroCalibration, WithZeroGasPutsTheReadingOnZero) {
  for (const Path& path : kPaths) {
    Sensor sensor(path);
    sensor.SetZero(std::trunc(125829120 / sensor.Signal()));
    // The word is cut, so the position may be short of 61440 by up to the signal / 2048.
    EXPECT_LE(sensor.Position(1), 61440);
    EXPECT_EQ(sensor.Reading(), TableToValue(sensor.Table(), sensor.Position(path.scale)));
    EXPECT_NEAR(sensor.Reading(), path.offset, 2) << path.part << '/' << path.variant;
  }
}

TEST(ZeroCalibration, WithAKnownGasPutsTheReadingThere) {
  for (const Path& path : kPaths) {
    Sensor sensor(path);
    const double told = path.offset + 700;
    const double target = WordOfPlace(ValueToTable(sensor.Table(), told), path.scale);
    sensor.SetZero(std::trunc(target * 2048 / sensor.Signal()));
    EXPECT_NEAR(sensor.Reading(), told, 5) << path.part << '/' << path.variant;
    EXPECT_EQ(sensor.Reading(), TableToValue(sensor.Table(), sensor.Position(path.scale)));
  }
}

TEST(SpanCalibration, OfPlatform5IsASpanWord) {
  for (const double told : {6000.0, 6830.0, 8000.0}) {
    Sensor sensor(kPaths.front());
    const double x = sensor.ZeroWord() * sensor.Signal() / 2048;
    const double word = std::nearbyint((61440 - ValueToTable(sensor.Table(), told)) * 2048 / (61440 - x));
    SetWord(sensor.Ram(), 138, static_cast<int>(word));
    EXPECT_NEAR(sensor.Reading(), told, 2) << told;
    EXPECT_EQ(sensor.Reading(), TableToValue(sensor.Table(), sensor.Position(word / 2048)));
  }
}

/// The table that passes through transmission r at concentration cs: y(c)^p.
Entries BentEntries(const PrintedCurve& curve, double scale, double cs, double r, double offset) {
  const double p = std::log(r) / std::log(curve.At(cs));
  Entries entries{};
  double c = 0;
  for (std::size_t i = 15; i-- > 0;) {
    const double w = (scale - 1 + static_cast<double>(i) / 15) / scale;
    while (std::pow(curve.At(c), p) > w && c < 9999) c += 0.01;
    entries[i] = std::trunc(c) + offset;
  }
  entries[15] = offset;
  entries[16] = entries[15] - (entries[14] - entries[15]);
  return entries;
}

struct SpanCase {
  Path path;
  PrintedCurve curve;
  double told;  ///< without offset
};

// The gas stands still while the table is changed; the reading moves to what the host was told, as near as
// straight lines between the points of a curve can be.
TEST(SpanCalibration, OfTheOthersIsATable) {
  for (const auto& [path, curve, told] :
       {SpanCase{kPaths[2], kPrintedA, 1200}, SpanCase{kPaths[3], kPrintedB, 2000},
        SpanCase{kPaths[4], kPrintedC, 900}, SpanCase{kPaths[5], kPrintedD, 1500}}) {
    Sensor sensor(path);
    const double r = (path.scale - 1 + sensor.Position(path.scale) / 61440) / path.scale;
    const Entries bent = BentEntries(curve, path.scale, told, r, path.offset);
    for (std::size_t i = 0; i < bent.size(); ++i) {
      SetWord(sensor.Eeprom(), *path.table + 2 * i, (static_cast<int>(bent[i]) + 65536) % 65536);
    }
    EXPECT_NEAR(sensor.Reading(), path.offset + told, told / 30) << path.part << '/' << path.variant;
    EXPECT_EQ(sensor.Reading(), TableToValue(bent, sensor.Position(path.scale)));
  }
}

TEST(Scale, OfPlatform6IsItsOptionBit) {
  Sensor sensor(kPaths[2]);
  ASSERT_EQ(sensor.Eeprom()[165] & 2, 2);
  sensor.Eeprom()[165] &= 253;
  EXPECT_EQ(sensor.Reading(), TableToValue(sensor.Table(), sensor.Position(1)));
}

TEST(Scale, OfPlatform7IsItsScaleWord) {
  Sensor sensor(kPaths[5]);
  ASSERT_EQ(WordAt(sensor.Eeprom(), 762), 2048);
  sensor.SetZero(125829120 / sensor.Signal() * 0.9);
  SetWord(sensor.Eeprom(), 762, 4096);
  EXPECT_EQ(sensor.Reading(), TableToValue(sensor.Table(), sensor.Position(2)));
}

TEST(TemperatureWords, AreNeutral) {
  Sensor five(kPaths[0]);
  EXPECT_EQ(five.Ram()[202], 127);
  EXPECT_EQ(five.Ram()[234], 127);
  Sensor six(kPaths[2]);
  EXPECT_EQ(six.Eeprom()[104], 127);
  EXPECT_EQ(six.Ram()[254], 127);
  Sensor sixty_one(kPaths[3]);
  EXPECT_EQ(sixty_one.Eeprom()[83], 127);
  EXPECT_EQ(WordAt(sixty_one.Ram(), 42), 0);
  Sensor seven(kPaths[5]);
  EXPECT_EQ(seven.Eeprom()[881], 0);
  EXPECT_EQ(WordAt(seven.Ram(), 42), 0);
}

// At the start it is 22 C everywhere; a calibration to 23.5 C moves the word or the table by 150.
TEST(TemperatureCalibration, OfPlatform5IsAnAddendOfTheZeroWord) {
  VirtualSensor sensor({.part = 231, .variant = 3});
  SetWord(sensor.Ram(), 128, WordAt(sensor.Ram(), 128) + 150);
  sensor.Advance(seconds(0));
  EXPECT_EQ(WordAt(sensor.Ram(), 20), 5000 + 2350);
}

void MoveTable(VirtualSensor& sensor, std::size_t table, int delta) {
  for (std::size_t at = table; at < table + 34; at += 2) {
    SetWord(sensor.Eeprom(), at, (WordAt(sensor.Eeprom(), at) + delta + 65536) % 65536);
  }
  sensor.Advance(seconds(0));
}

TEST(TemperatureCalibration, OfTheOthersMovesTable0) {
  struct Case {
    int part;
    std::size_t table;
    std::size_t value;
    double expected;
  };
  for (const auto& [part, table, value, expected] : {Case{222, 308, 12, 7350}, Case{223, 308, 14, 7200},
                                                     Case{215, 308, 20, 7350}, Case{50, 512, 20, 2350}}) {
    VirtualSensor sensor({.part = part});
    MoveTable(sensor, table, 150);
    EXPECT_EQ(WordAt(sensor.Ram(), value), expected) << part;
  }
}

TEST(TemperatureCalibration, OfPlatform61IsTheSameInBothVariants) {
  VirtualSensor sensor({.part = 215, .variant = 1});
  MoveTable(sensor, 308, -250);
  EXPECT_EQ(WordAt(sensor.Ram(), 20), 5000 + 1950);
}

// From 22 C to -1 C: the entries below 23 C become negative, those above stay positive.
TEST(TemperatureCalibration, OfPlatform7GoesBelowZero) {
  VirtualSensor sensor({.part = 50});
  MoveTable(sensor, 512, -2300);
  EXPECT_EQ(WordAt(sensor.Eeprom(), 512), 65536 - 2300);
  EXPECT_EQ(WordAt(sensor.Ram(), 20), 65536 - 100);
}

// The O2 span word is table position x 2048 / signal; table 4 lies at 648.
double OxygenSpanWord(VirtualSensor& sensor, std::size_t table, double told) {
  const Entries entries = EntriesAt(sensor.Eeprom(), table);
  return std::nearbyint(ValueToTable(entries, told) * 2048 / WordAt(sensor.Ram(), 38));
}

void SetOxygen(VirtualSensor& sensor, std::size_t address, double word) {
  SetWord(sensor.Eeprom(), address, static_cast<int>(word));
  sensor.Advance(seconds(0));
}

TEST(OxygenSpan, PutsTheReadingOnTheToldValue) {
  VirtualSensor sensor({.part = 50});
  for (const double told : {1500.0, 2090.0}) {
    SetOxygen(sensor, 0, OxygenSpanWord(sensor, 648, told));
    EXPECT_NEAR(WordAt(sensor.Ram(), 24), told, 1) << told;
  }
}

TEST(OxygenZero, PutsTheReadingOnZero) {
  VirtualSensor sensor({.part = 50});
  SetOxygen(sensor, 760, WordAt(sensor.Ram(), 38));
  EXPECT_EQ(WordAt(sensor.Ram(), 24), 0);
}

// The zero is taken away before the span counts, and the signal is told without either.
TEST(OxygenZero, AndSpanActTogether) {
  VirtualSensor sensor({.part = 50});
  const double signal = WordAt(sensor.Ram(), 38);
  SetOxygen(sensor, 760, 1000);
  SetOxygen(sensor, 0, 2500);
  EXPECT_EQ(WordAt(sensor.Ram(), 38), signal);
  const Entries table = EntriesAt(sensor.Eeprom(), 648);
  EXPECT_EQ(WordAt(sensor.Ram(), 24), std::lround(Interpolated(table, (signal - 1000) * 2500 / 2048)));
}

// The host takes table 4 on platform 61 too, where it is that of CO2, at 444.
TEST(OxygenSpan, OfPlatform61PutsTheReadingOnTheToldValue) {
  VirtualSensor sensor({.part = 215});
  ASSERT_EQ(WordAt(sensor.Eeprom(), 0), 2048);
  for (const double told : {5000.0 + 1500, 5000.0 + 2090}) {
    SetOxygen(sensor, 0, OxygenSpanWord(sensor, 444, told));
    EXPECT_NEAR(WordAt(sensor.Ram(), 24), told, 3) << told;
    const double x = WordAt(sensor.Ram(), 38) * static_cast<double>(WordAt(sensor.Eeprom(), 0)) / 2048;
    EXPECT_NEAR(WordAt(sensor.Ram(), 24), Interpolated(EntriesAt(sensor.Eeprom(), 444), x), 0.501) << told;
  }
}

TEST(OxygenSpan, OfPlatform61IsNotSpoiltByANewTableOfCO2) {
  Sensor sensor(kPaths[3]);
  const Entries bent = BentEntries(kPrintedB, 1, 2000, sensor.Position(1) / 61440, 5000);
  const int before = WordAt(sensor.Ram(), 24);
  for (std::size_t i = 0; i < bent.size(); ++i) {
    SetWord(sensor.Eeprom(), 444 + 2 * i, (static_cast<int>(bent[i]) + 65536) % 65536);
  }
  sensor.Advance(seconds(0));
  EXPECT_NEAR(WordAt(sensor.Ram(), 24), before, 1);
}

// After one calibration of each kind the readings are what the host was told; a temperature has nothing to do
// with the gases.
TEST(AllCalibrations, OneAfterTheOther) {
  for (const Path& path : {kPaths[3], kPaths[5]}) {
    Sensor sensor(path);
    const bool seven = path.part == 50;
    sensor.SetZero(std::trunc(125829120 / sensor.Signal()));
    const double zero_reading = sensor.Reading();
    sensor.SetZero(std::trunc(WordOfPlace(ValueToTable(sensor.Table(), path.offset + 1200), 1) * 2048 /
                              sensor.Signal()));
    const Entries bent =
        BentEntries(seven ? kPrintedD : kPrintedB, 1, 1600, sensor.Position(1) / 61440, path.offset);
    for (std::size_t i = 0; i < bent.size(); ++i) {
      SetWord(sensor.Eeprom(), *path.table + 2 * i, (static_cast<int>(bent[i]) + 65536) % 65536);
    }
    MoveTable(sensor, seven ? 512 : 308, 100);
    SetOxygen(sensor, 0, OxygenSpanWord(sensor, seven ? 648 : 444, path.offset + 1800));
    EXPECT_NEAR(zero_reading, path.offset, 2) << path.part;
    EXPECT_NEAR(sensor.Reading(), path.offset + 1600, 50) << path.part;
    EXPECT_EQ(WordAt(sensor.Ram(), 20), path.offset + 2300) << path.part;
    EXPECT_NEAR(WordAt(sensor.Ram(), 24), path.offset + 1800, 3) << path.part;
  }
}

}  // namespace
}  // namespace brelant::bench
