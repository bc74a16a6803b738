// SPDX-License-Identifier: GPL-3.0-or-later
#include <array>
#include <map>
#include <random>

#include "panels/frm61_fixture.h"

namespace brelant {
namespace {

using test::Bytes;
using test::Frm61Test;
using test::Product61;
using test::PutBytes;
using test::Sample7;
using testing::ElementsAre;

/// Whatever a sensor holds: a form that is filled, taken and filled again shows the same, and leaves alone
/// what it does not show. On platform 7 the image may hold any variant by then.
class Frm61RoundTripTest : public Frm61Test, public testing::WithParamInterface<Product61> {
 protected:
  static constexpr int kRounds = 400;

  static bool IsOn7() { return GetParam().platform == 7; }
  static bool HasFixedAlarms() { return !IsOn7() && GetParam().variant == 0; }
  std::uint8_t Any() { return static_cast<std::uint8_t>(random() & 255); }

  Bytes AnyEeprom() {
    Bytes eeprom(IsOn7() ? 1024 : 512);
    for (auto& byte : eeprom) byte = Any();
    const std::size_t kinds = IsOn7() ? 792 : 218;
    for (std::size_t i = 0; i < 16; ++i) {
      // A text in F is cut on its way back and creeps, see its own test.
      if ((eeprom[kinds + i] & 28) == 8) eeprom[kinds + i] ^= 4;
    }
    if (IsOn7()) {
      eeprom[1023] = static_cast<std::uint8_t>(GetParam().variant);
      return eeprom;
    }
    eeprom[90] = static_cast<std::uint8_t>(eeprom[90] & ~1);
    eeprom[164] = test::kPart61;
    eeprom[165] = static_cast<std::uint8_t>(eeprom[165] | 1);
    // 6 is another name of variant 0.
    eeprom[173] = static_cast<std::uint8_t>(GetParam().variant == 0 && Any() > 128 ? 6 : GetParam().variant);
    return eeprom;
  }
  void Take(const Bytes& eeprom) {
    size = eeprom.size();
    Load(GetParam().Part(), eeprom);
    ASSERT_TRUE(panel.FormUpdateInit());
    ASSERT_TRUE(panel.FormUpdate());
  }
  std::map<std::string, std::string> Shown() {
    std::map<std::string, std::string> shown;
    for (const auto& control : panel.form.Controls()) {
      shown[control.Name()] = control.Text() + " value " + std::to_string(control.Value()) +
                              (control.Visible() ? " visible" : " hidden");
    }
    return shown;
  }

  /// A raw number as its text keeps it: dividing cuts toward zero.
  static int Kept(int raw, int divider) { return raw / divider * divider; }
  /// What a form that is filled and taken leaves of the bytes, computed without it.
  static Bytes Taken(Bytes eeprom) {
    if (IsOn7()) {
      TakeOn7(eeprom);
    } else if (HasFixedAlarms()) {
      TakeFixedAlarms(eeprom);
    }
    return eeprom;
  }
  static void PutWord(Bytes& eeprom, std::size_t at, int word) {
    PutBytes(eeprom, at, {static_cast<std::uint8_t>(word / 256), static_cast<std::uint8_t>(word % 256)});
  }
  static void TakeFixedAlarms(Bytes& eeprom) {
    for (const std::size_t at : {76U, 78U, 80U, 84U}) {
      const int kind = eeprom[at < 80 ? 223 : 224];
      const int offset = kind >= 128 ? 5000 : 0;
      const int divider = std::array{1, 10, 100, 163}.at(static_cast<std::size_t>(kind / 32 % 4));
      PutWord(eeprom, at, Kept(eeprom[at] * 256 + eeprom[at + 1] - offset, divider) + offset);
    }
  }
  static void TakeOn7(Bytes& eeprom) {
    for (std::size_t k = 0; k < 3; ++k) {
      const std::size_t at = 834 + 6 * k;
      const int kind = eeprom[792 + eeprom[925 + 2 * k] % 16];
      const int divider = std::array{1, 10, 16, 163}.at(static_cast<std::size_t>(kind / 32 % 4));
      // Bit 7 of a level's first byte is cleared and the constant is stored anew.
      PutWord(eeprom, at, Kept(eeprom[at] % 128 * 256 + eeprom[at + 1], divider));
      PutBytes(eeprom, at + 4, {63, 255});
    }
    // The panel marks the layout. Displays of 9 and above stay, as those below do.
    eeprom[1023] = 2;
  }

  std::mt19937 random{61};
};
INSTANTIATE_TEST_SUITE_P(, Frm61RoundTripTest,
                         testing::Values(Product61{61, 0}, Product61{61, 1}, Product61{7, 1}, Product61{7, 2},
                                         Product61{7, 0}, Product61{7, 3}, Product61{7, 255}),
                         test::ProductName);

TEST_P(Frm61RoundTripTest, AFormShowsTheSameAgain) {
  for (int round = 0; round < kRounds; ++round) {
    Take(AnyEeprom());
    const auto shown = Shown();
    ASSERT_TRUE(panel.FormRead());
    ASSERT_TRUE(panel.FormUpdate());
    ASSERT_EQ(Shown(), shown) << "round " << round;
  }
}

TEST_P(Frm61RoundTripTest, AFormTakesWhatItShowsToTheGrainAndLeavesTheRest) {
  for (int round = 0; round < kRounds; ++round) {
    const auto before = AnyEeprom();
    Take(before);
    const auto ram = ground.image.RamImage;
    const auto valid = ground.image.EepromValid;
    ASSERT_TRUE(panel.FormRead());
    const auto after = Eeprom();
    const auto expected = Taken(before);
    for (std::size_t i = 0; i < before.size(); ++i) ASSERT_EQ(after[i], expected[i]) << i << " in " << round;
    // Nothing behind the EEPROM and nothing in RAM.
    for (std::size_t i = before.size(); i < before.size() + 512; ++i) {
      ASSERT_EQ(ground.image.EepromImage[i], 0) << i;
    }
    ASSERT_EQ(ground.image.RamImage, ram);
    ASSERT_EQ(ground.image.EepromValid, valid);
  }
}

TEST_P(Frm61RoundTripTest, FillingTheFormChangesTheMarkOfTheLayoutAlone) {
  for (int round = 0; round < kRounds; ++round) {
    auto expected = AnyEeprom();
    Take(expected);
    if (IsOn7()) expected[1023] = 2;
    ASSERT_EQ(Eeprom(), expected);
    ASSERT_TRUE(panel.FormUpdate());
    ASSERT_EQ(Eeprom(), expected);
  }
}

TEST_P(Frm61RoundTripTest, ASecondReadingOfTheFormChangesNothingMore) {
  for (int round = 0; round < kRounds; ++round) {
    Take(AnyEeprom());
    panel.FormRead();
    panel.FormUpdate();
    const auto settled = Eeprom();
    panel.FormRead();
    ASSERT_EQ(Eeprom(), settled) << "round " << round;
  }
}

TEST_F(Frm61Test, ALevelInFahrenheitCreeps) {
  // 20.03 C is 68.054 F, shown as 68.05; 68.05 F is 20.0278 C, cut to 20.02, which is 68.036 F.
  auto eeprom = Sample7(2);
  eeprom[796] = 2 << 2 | 2;
  PutBytes(eeprom, 834, {7, 211});  // 2003
  eeprom[925] = 4;
  Show(test::kPart7, eeprom);
  EXPECT_EQ(panel.rows.lblAlarm7Level[0].Text(), "68.05");
  EXPECT_TRUE(panel.FormRead());
  EXPECT_THAT(Eeprom(834, 2), ElementsAre(7, 210));
  EXPECT_TRUE(panel.FormUpdate());
  EXPECT_EQ(panel.rows.lblAlarm7Level[0].Text(), "68.04");
}

}  // namespace
}  // namespace brelant
