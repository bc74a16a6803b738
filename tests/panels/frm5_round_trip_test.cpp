// SPDX-License-Identifier: GPL-3.0-or-later
#include <map>
#include <random>
#include <set>

#include "panels/panel_fixture.h"

namespace brelant {
namespace {

using test::Frm5Test;
using test::RamBytes;
using test::SampleRam;

/// Whatever a sensor holds: a form that is filled, taken and filled again shows the same, and leaves alone
/// what it does not show. Where the rules of a field break this, the image is kept clear of it and the rule
/// is named.
class Frm5RoundTripTest : public Frm5Test {
 protected:
  RamBytes AnyRam() {
    auto ram = SampleRam();
    for (const std::size_t address : {31U, 32U, 57U, 187U, 188U, 205U, 206U, 207U, 208U})
      ram[address] = Any();
    for (std::size_t i = 162; i < 187; ++i) ram[i] = Any();
    for (std::size_t i = 189; i < 197; ++i) ram[i] = Any();
    for (std::size_t i = 162; i < 187; i += 5) {
      // A word that the grain of a temperature carries past 32767 loses its top bit.
      for (const std::size_t high : {i + 1, i + 3}) ram[high] = LimitedTo(ram[high], 124);
    }
    for (const std::size_t exponent : {192U, 196U}) {
      // A time from 1e15 on is shown with an exponent, which the reading of a typed number drops.
      ram[exponent] = static_cast<std::uint8_t>(ram[exponent] % 49);
    }
    // With a low nibble there, the unit of channel 0 follows R207, which the form itself rewrites.
    ram[205] = static_cast<std::uint8_t>(ram[205] & 0xF0);
    // Channel 4 is called OFF like channel 3, and the search for a caption goes over channels 0 to 3.
    if ((ram[207] & 15) == 4) ram[207] = 0;
    return ram;
  }
  std::uint8_t Any() { return static_cast<std::uint8_t>(random() & 255); }
  static std::uint8_t LimitedTo(std::uint8_t byte, int sevenBits) {
    return static_cast<std::uint8_t>((byte & 128) | std::min(byte & 127, sevenBits));
  }

  std::map<std::string, std::string> Shown() {
    std::map<std::string, std::string> shown;
    for (const auto& control : panel.form.Controls()) {
      shown[control.Name()] = control.Text() + " value " + std::to_string(control.Value()) +
                              (control.Visible() ? " visible" : " hidden");
    }
    // The cut of the trigger level creeps toward 0, see its own test.
    for (const char* name : {"txbDigTlevel", "pctDigTPsign", "pctDigTNsign"}) shown.erase(name);
    for (int j = 0; j < 2; ++j) {
      // A digital output stores the base line 0, whatever its hidden field shows.
      if (panel.optOut5Digital[j].Value() == 1) shown.erase(panel.txbOutBaseLine[j].Name());
    }
    return shown;
  }

  std::mt19937 random{20};
};

TEST_F(Frm5RoundTripTest, AFormShowsTheSameAgain) {
  for (int round = 0; round < 400; ++round) {
    ground.Load(AnyRam());
    panel.FormUpdate();
    const auto shown = Shown();
    ASSERT_TRUE(panel.FormRead());
    panel.FormUpdate();
    ASSERT_EQ(Shown(), shown) << "round " << round;
  }
}

TEST_F(Frm5RoundTripTest, AFormLeavesAloneWhatItDoesNotShow) {
  std::set<std::size_t> fields{31, 32, 57, 187, 188, 207, 208};
  for (std::size_t i = 162; i < 187; ++i) fields.insert(i);
  for (std::size_t i = 189; i < 197; ++i) fields.insert(i);
  for (int round = 0; round < 400; ++round) {
    auto ram = AnyRam();
    for (std::size_t i = 0; i < ram.size(); ++i) {
      const bool identity = i >= 65 && i <= 67;
      if (!identity && i != 205 && i != 226 && fields.count(i) == 0) ram[i] = Any();
    }
    ground.Load(ram);
    panel.FormUpdate();
    ASSERT_TRUE(panel.FormRead());
    const auto taken = WholeRam();
    for (std::size_t i = 0; i < ram.size(); ++i) {
      if (fields.count(i) == 0) {
        ASSERT_EQ(taken[i], ram[i]) << i;
      }
    }
    ASSERT_EQ(taken[57] | 6, ram[57] | 6);
    for (std::size_t i = 162; i < 187; i += 5) ASSERT_EQ(taken[i], ram[i]) << i;
    ASSERT_EQ(ground.image.RamImage[256], 0);
    ASSERT_EQ(ground.image.RamImage[257], 0);
  }
}

TEST_F(Frm5RoundTripTest, ASecondReadingOfTheFormChangesNothingMore) {
  for (int round = 0; round < 400; ++round) {
    ground.Load(AnyRam());
    // The trigger level needs more than one reading to settle.
    SetRam(188, {37});
    panel.FormUpdate();
    panel.FormRead();
    panel.FormUpdate();
    const auto settled = WholeRam();
    panel.FormRead();
    ASSERT_EQ(WholeRam(), settled) << "round " << round;
  }
}

TEST_F(Frm5RoundTripTest, TheTriggerLevelCreepsTowardZero) {
  // 39 / 127 is 30.7 %, shown as 30; 30 % is 38.1, and 38 / 127 is 29.9 %, shown as 29.
  SetRam(188, {39});
  panel.FormUpdate();
  EXPECT_EQ(panel.trigger.txbDigTlevel.Text(), "30");
  panel.FormRead();
  EXPECT_EQ(Ram(188), 38);
  panel.FormUpdate();
  EXPECT_EQ(panel.trigger.txbDigTlevel.Text(), "29");
  panel.FormRead();
  EXPECT_EQ(Ram(188), 37);
}

}  // namespace
}  // namespace brelant
