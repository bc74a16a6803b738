// SPDX-License-Identifier: GPL-3.0-or-later
// Every level of the safety panel on both roads: taken, kept as it was, refused.
#include "safety/z7731_fixture.h"

namespace brelant {
namespace {

using test::Type;
using testing::ElementsAre;
using testing::IsEmpty;

/// Where a level is kept: bytes of EEPROM, and the holding register of each word. Weights lie 50 above what
/// is shown.
struct Level {
  std::vector<std::size_t> addresses;
  std::vector<int> registers;
  int offset = 0;
};
const std::array<Level, 9> kLevels{{{{4246}, {24}},
                                    {{4244}, {23}},
                                    {{4248, 4250}, {26, 27}},
                                    {{4242}, {21}},
                                    {{4240}, {20}},
                                    {{4354}, {11}, 50},
                                    {{4356}, {12}, 50},
                                    {{4252}, {29}},
                                    {{4254}, {30}}}};
constexpr const char* kFailed =
    "Writing one or more values to Sensor FAILED.\n\nPlease try to send the values one more time.";

class Z7731LevelsTest : public test::StillUnitTest, public testing::WithParamInterface<frmComSet::Protocol> {
 protected:
  Z7731LevelsTest() {
    ground.pump.OnPass([this] {
      Resist();
      return false;
    });
  }

  /// The unit acknowledges what comes for the first word of the level, and keeps what it has.
  void Keep(const Level& level) {
    kept_ = {level.registers.front(), static_cast<std::uint16_t>(Setting(level.addresses.front()))};
    port.onOutput = [this, level, answer = port.onOutput](const test::Bytes& bytes) {
      answer(bytes);
      if (kept_) PutSetting(level.addresses.front(), kept_->second);
    };
  }
  /// The unit does not carry out what comes for it.
  void Refuse(const Level& level) {
    unit.refused = {level.addresses.front()};
    refused_ = level.registers.front();
  }
  void Relent() {
    unit.refused.clear();
    refused_.reset();
    kept_.reset();
  }

 private:
  void Resist() {
    auto& holding = modbus.units.at(1).holding;
    if (kept_) holding[kept_->first] = kept_->second;
    if (!refused_ || modbus.Requests().empty()) return;
    // A register that is not there is refused; it is there again for whoever reads it.
    const auto& request = modbus.Requests().back();
    if (!request.written.empty() && request.first == *refused_) holding.erase(*refused_);
  }

  std::optional<std::pair<int, std::uint16_t>> kept_;
  std::optional<int> refused_;
};
INSTANTIATE_TEST_SUITE_P(Roads, Z7731LevelsTest, testing::Values(frmComSet::kiBus, frmComSet::modBus),
                         [](const auto& road) {
                           return road.param == frmComSet::kiBus ? "KiBus" : "Modbus";
                         });

TEST_P(Z7731LevelsTest, AnEditReachesTheUnitAndIsReadBack) {
  StartOn(GetParam());
  for (int i = 0; i < 9; ++i) {
    const auto& level = kLevels.at(static_cast<std::size_t>(i));
    Type(panel.txbKelLevel[i], "3.21");
    for (const auto address : level.addresses) EXPECT_EQ(Setting(address), 321 + level.offset) << i;
    EXPECT_EQ(panel.txbKelLevel[i].Text(), "3.21") << i;
    EXPECT_THAT(Told(), IsEmpty()) << i;
  }
}

TEST_P(Z7731LevelsTest, AValueThatIsNotKeptIsToldAndTheUnitsOwnShown) {
  StartOn(GetParam());
  for (int i = 0; i < 9; ++i) {
    const auto& level = kLevels.at(static_cast<std::size_t>(i));
    const auto shown = panel.txbKelLevel[i].Text();
    const auto before = Setting(level.addresses.front());
    Keep(level);
    Type(panel.txbKelLevel[i], "3.21");
    EXPECT_THAT(Told(), ElementsAre(kFailed)) << i;
    EXPECT_EQ(ground.ui.messages.back().title, "Write to Meter Failed");
    EXPECT_EQ(panel.txbKelLevel[i].Text(), shown) << i;
    EXPECT_EQ(Setting(level.addresses.front()), before) << i;
    Relent();
    Forget();
  }
}

TEST_P(Z7731LevelsTest, AWriteThatIsRefusedIsToldAndTheUnitsOwnShown) {
  StartOn(GetParam());
  for (int i = 0; i < 9; ++i) {
    const auto& level = kLevels.at(static_cast<std::size_t>(i));
    const auto shown = panel.txbKelLevel[i].Text();
    const auto before = Setting(level.addresses.front());
    Refuse(level);
    Type(panel.txbKelLevel[i], "3.21");
    EXPECT_THAT(Told(), ElementsAre(kFailed)) << i;
    EXPECT_EQ(panel.txbKelLevel[i].Text(), shown) << i;
    EXPECT_EQ(Setting(level.addresses.front()), before) << i;
    EXPECT_EQ(panel.cbxSimulated.Value(), 0);
    Relent();
    Forget();
  }
}

}  // namespace
}  // namespace brelant
