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
    for (std::size_t i = 0; i < 17; ++i) {
      SetWord(sensor.Eeprom(), table + 2 * i, WordAt(sensor.Eeprom(), table + 2 * i) + 150);
    }
    sensor.Advance(seconds(0));
    EXPECT_EQ(WordAt(sensor.Ram(), value), expected) << part;
  }
}

// The O2 span word is table position x 2048 / signal; table 4 lies at 648.
TEST(OxygenSpan, PutsTheReadingOnTheToldValue) {
  VirtualSensor sensor({.part = 50});
  const Entries table = EntriesAt(sensor.Eeprom(), 648);
  for (const double told : {1500.0, 2090.0}) {
    const double word = std::nearbyint(ValueToTable(table, told) * 2048 / WordAt(sensor.Ram(), 38));
    SetWord(sensor.Eeprom(), 0, static_cast<int>(word));
    sensor.Advance(seconds(0));
    EXPECT_NEAR(WordAt(sensor.Ram(), 24), told, 1) << told;
  }
}

TEST(OxygenZero, PutsTheReadingOnZero) {
  VirtualSensor sensor({.part = 50});
  SetWord(sensor.Eeprom(), 760, WordAt(sensor.Ram(), 38));
  sensor.Advance(seconds(0));
  EXPECT_EQ(WordAt(sensor.Ram(), 24), 0);
}

}  // namespace
}  // namespace brelant::bench
