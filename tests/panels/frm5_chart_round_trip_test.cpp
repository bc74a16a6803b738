// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <map>
#include <random>
#include <set>

#include "panels/frm5_chart_fixture.h"

namespace brelant {
namespace {

using test::ChartTest;
using test::RamBytes;
using test::SampleChartRam;

/// Whatever a sensor holds: a form that is filled, taken and filled again shows the same, and leaves alone
/// what it does not show. Where the rules of a field break this, the image is kept clear of it and the rule
/// is named.
class ChartRoundTripTest : public ChartTest {
 protected:
  RamBytes AnyRam() {
    auto ram = SampleChartRam();
    for (std::size_t i = 0; i < ram.size(); ++i) {
      const bool identity = i >= 65 && i <= 67;
      if (!identity) ram[i] = Any();
    }
    for (std::size_t record = 162; record < 187; record += 5) {
      // A word that the grain of a temperature or a band carries past 32767 loses its top bit.
      for (const std::size_t high : {record + 1, record + 3}) {
        ram[high] = static_cast<std::uint8_t>((ram[high] & 128) | std::min(ram[high] & 127, 124));
      }
    }
    const bool twa = Any() % 2 == 0;
    const bool farenheit = Any() % 2 == 0;
    ram[162] = twa ? 3 : static_cast<std::uint8_t>(Any() | 4);
    // The form stores nothing else there, so a finer type of channel 0 does not survive it.
    ram[205] = twa ? 243 : farenheit ? 32 : 16;
    if (twa) ram[207] = static_cast<std::uint8_t>((farenheit ? 32 : 16) | (Any() & 15));
    return ram;
  }
  std::uint8_t Any() { return static_cast<std::uint8_t>(random() & 255); }

  std::map<std::string, std::string> Shown() {
    std::map<std::string, std::string> shown;
    for (const auto& control : panel.form.Controls()) {
      shown[control.Name()] = control.Text() + " value " + std::to_string(control.Value()) +
                              (control.Visible() ? " visible" : " hidden");
    }
    // The variant becomes 3.
    shown.erase("txbVersion");
    // With TWA off the first level is shown through one channel and stored through another.
    if (panel.cbxTWAonP0.Value() == 0) shown.erase("txbKelLevel(0)");
    return shown;
  }

  std::mt19937 random{5};
};

TEST_F(ChartRoundTripTest, AFormShowsTheSameAgain) {
  for (int round = 0; round < 400; ++round) {
    const auto ram = AnyRam();
    ground.Load(ram);
    panel.FormUpdate();
    const auto shown = Shown();
    ASSERT_TRUE(panel.FormRead());
    panel.FormUpdate();
    ASSERT_EQ(Shown(), shown) << "round " << round << " 206 " << int{ram[206]};
  }
}

TEST_F(ChartRoundTripTest, AFormLeavesAloneWhatItDoesNotShow) {
  std::set<std::size_t> fields{31, 162, 189, 205, 207, 208, 226};
  for (std::size_t record = 162; record < 187; record += 5) {
    for (std::size_t i = 1; i < 5; ++i) fields.insert(record + i);
  }
  for (int round = 0; round < 400; ++round) {
    const auto ram = AnyRam();
    ground.Load(ram);
    panel.FormUpdate();
    ASSERT_TRUE(panel.FormRead());
    const auto taken = WholeRam();
    for (std::size_t i = 0; i < ram.size(); ++i) {
      if (fields.count(i) == 0) {
        ASSERT_EQ(taken[i], ram[i]) << i;
      }
    }
    ASSERT_EQ(taken[189], ram[189]);
    for (std::size_t record = 162; record < 187; record += 5) {
      for (const std::size_t high : {record + 1, record + 3}) ASSERT_EQ(taken[high] & 128, ram[high] & 128);
    }
    ASSERT_EQ(taken[162], ram[162] == 3 ? 3 : 1);
    ASSERT_EQ(ground.image.RamImage[256], 0);
    ASSERT_EQ(ground.image.RamImage[257], 0);
  }
}

TEST_F(ChartRoundTripTest, ASecondReadingOfTheFormChangesNothingMore) {
  for (int round = 0; round < 400; ++round) {
    ground.Load(AnyRam());
    panel.FormUpdate();
    // With TWA off the first level falls a few times before it settles.
    for (int reading = 0; reading < 8; ++reading) {
      panel.FormRead();
      panel.FormUpdate();
    }
    const auto settled = WholeRam();
    panel.FormRead();
    ASSERT_EQ(WholeRam(), settled) << "round " << round;
  }
}

TEST_F(ChartRoundTripTest, TheBandsFollowTheLevels) {
  for (int round = 0; round < 400; ++round) {
    ground.Load(AnyRam());
    panel.FormUpdate();
    panel.FormRead();
    // Words are 15 bits, so a band below 0 goes round.
    const auto band = [this](std::size_t record) { return (Word(record + 3) - Word(record + 1)) & 32767; };
    ASSERT_EQ(band(162), 10);
    ASSERT_EQ(band(167), 10);
    ASSERT_EQ(band(172), 0);
    ASSERT_EQ(band(177), 100);
    ASSERT_EQ(band(182), 100);
  }
}

}  // namespace
}  // namespace brelant
