// SPDX-License-Identifier: GPL-3.0-or-later
// Settings that go through a file and back: a host takes the stored positions to values and to positions
// again (docs/memory-maps.md, Settings files). A new sensor's words must survive that.
#include <algorithm>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arithmetic.h"
#include "bench/channel_plan.h"
#include "bench/virtual_sensor.h"

namespace brelant::bench {
namespace {

double Again(double word, const Entries& entries, double spread) {
  const double value = TableToValue(entries, PositionOfWord(word, spread));
  return WordOfPlace(ValueToTable(entries, value), spread);
}

// The word times the zero word / 2048 is the position; the host divides by it again, and then rounds.
double BaseAgain(double base, const Entries& entries, double spread, double zero_word) {
  return std::nearbyint(Again(zero_word * base / 2048, entries, spread) * 2048 / zero_word);
}

struct Platform5Case {
  int part;
  Entries first;
  Entries second;
};

std::vector<Platform5Case> Platform5Cases() {
  const Entries none{};
  return {{104, DefinedEntries(kPrintedB, 5000), DefinedEntries(kPrintedC, 5000)},
          {112, DefinedEntries(kPrintedC, 5000), none},
          {120, DefinedEntries(kPrintedA, 2000), none},
          {231, DefinedEntries(kPrintedD, 5000), none}};
}

TEST(DefinitionTable, HasTheEntriesThatAHostComputes) {
  const ChannelPlans& plans = PlanOf(104);
  const std::array expected{DefinedEntries(kPrintedA, 2000), DefinedEntries(kPrintedB, 5000),
                            DefinedEntries(kPrintedC, 5000), DefinedEntries(kPrintedD, 5000)};
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_TRUE(std::ranges::equal(plans[i].table, expected[i])) << i;
  }
}

// The host reads the background of gas 1 at 223 and writes it at 222.
TEST(Reload, LeavesRamOfPlatform5AsItWas) {
  for (const auto& [part, first, second] : Platform5Cases()) {
    VirtualSensor sensor({.part = part});
    const std::vector<std::uint8_t> before(sensor.Ram().begin(), sensor.Ram().end());
    const double span1 = WordAt(sensor.Ram(), 138) / 2048.0;
    const double span2 = WordAt(sensor.Ram(), 140) / 2048.0;
    const double background1 = Again(WordAt(sensor.Ram(), 216), first, span1);
    const double background2 = Again(WordAt(sensor.Ram(), 223), second, span2);
    SetWord(sensor.Ram(), 216, static_cast<int>(background1));
    SetWord(sensor.Ram(), 222, static_cast<int>(background2));
    for (std::size_t at = 0; at < before.size(); ++at)
      EXPECT_EQ(sensor.Ram()[at], before[at]) << part << ' ' << at;
  }
}

TEST(Reload, OfPlatform5WithoutASecondGasFindsZeros) {
  for (const int part : {112, 120, 231}) {
    VirtualSensor sensor({.part = part});
    for (const std::size_t at : {221U, 222U, 223U, 224U}) EXPECT_EQ(sensor.Ram()[at], 0) << part << ' ' << at;
  }
}

TEST(Reload, OfPlatform5StillFindsFreshAir) {
  for (const auto& [part, first, second] : Platform5Cases()) {
    VirtualSensor sensor({.part = part});
    const double fresh = part == 104 || part == 231 ? 40 : 400;
    EXPECT_EQ(TableToValue(first, WordAt(sensor.Ram(), 216)), 5000 + fresh) << part;
    EXPECT_NEAR(WordAt(sensor.Ram(), 214), WordAt(sensor.Ram(), 216) / 2.0, 0.5) << part;
  }
}

struct EepromCase {
  int part;
  int variant;
  double scale;
  std::size_t table;
  std::size_t background;
  std::size_t base;
  double fresh;
};

const std::vector<EepromCase> kEepromCases{{217, 0, 2, 444, 38, 36, 5400},
                                           {217, 0, 2, 478, 43, 41, 5400},
                                           {223, 1, 2, 444, 38, 36, 5400},
                                           {215, 0, 1, 444, 58, 34, 5040},
                                           {215, 1, 2, 444, 58, 34, 5400}};

TEST(Reload, LeavesTheGasWordsOfPlatforms6And61AsTheyWere) {
  for (const EepromCase& c : kEepromCases) {
    VirtualSensor sensor({.part = c.part, .variant = c.variant});
    const Entries entries = EntriesAt(sensor.Eeprom(), c.table);
    const double background = WordAt(sensor.Eeprom(), c.background);
    const double base = WordAt(sensor.Eeprom(), c.base);
    EXPECT_EQ(TableToValue(entries, PositionOfWord(background, c.scale)), c.fresh) << c.part;
    EXPECT_EQ(Again(background, entries, c.scale), background) << c.part << '/' << c.variant;
    EXPECT_EQ(BaseAgain(base, entries, c.scale, 4096), base) << c.part << '/' << c.variant;
  }
}

// Platform 61 has no second gas; the host then takes table 0, that of the temperature.
TEST(Reload, LeavesTheSecondBackgroundOfPlatform61AsItWas) {
  for (const int variant : {0, 1}) {
    VirtualSensor sensor({.part = 215, .variant = variant});
    const double word = WordAt(sensor.Eeprom(), 60);
    EXPECT_EQ(Again(word, EntriesAt(sensor.Eeprom(), 308), variant + 1), word) << variant;
  }
}

TEST(Reload, BackgroundsOfPlatform7StandOnWholeValuesOfTable5) {
  VirtualSensor sensor({.part = 50});
  const Entries entries = EntriesAt(sensor.Eeprom(), 682);
  for (const std::size_t at : {976U, 978U}) {
    const double word = WordAt(sensor.Eeprom(), at);
    EXPECT_EQ(TableToValue(entries, word), 40);
    EXPECT_EQ(Again(word, entries, 1), word);
  }
}

}  // namespace
}  // namespace brelant::bench
