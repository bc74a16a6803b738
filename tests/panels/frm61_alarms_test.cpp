// SPDX-License-Identifier: GPL-3.0-or-later
#include <array>
#include <random>

#include "panels/frm61_fixture.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using test::Backs;
using test::Bytes;
using test::Click;
using test::Frm61Test;
using test::kGreen;
using test::kPart61;
using test::kPart7;
using test::Product61;
using test::PutBytes;
using test::Sample61;
using test::Sample7;
using test::SensorPort;
using test::Texts;
using testing::ElementsAre;

constexpr Colour kRed = 255;

// Fixed alarms

class FixedAlarmsTest : public Frm61Test {
 protected:
  FixedAlarmsTest() { Show({61, 0}); }

  std::vector<std::string> States() const { return Texts(panel.alarms.txbAlarm061Status); }
};

TEST_F(FixedAlarmsTest, CompareCO2AboveAndO2BelowTheirLevels) {
  struct Case {
    int gas;
    int oxygen;
    std::vector<std::string> states;
  };
  // The levels are 1.5, 3, 19 and 18.
  for (const auto& [gas, oxygen, states] : {
           Case{400, 2090, {"OK", "OK", "OK", "OK"}},
           Case{1499, 1901, {"OK", "OK", "OK", "OK"}},
           Case{1500, 1900, {"OK", "OK", "OK", "OK"}},
           Case{1501, 1899, {"ALARM", "OK", "ALARM", "OK"}},
           Case{2999, 1801, {"ALARM", "OK", "ALARM", "OK"}},
           Case{3000, 1800, {"ALARM", "OK", "ALARM", "OK"}},
           Case{3001, 1799, {"ALARM", "ALARM", "ALARM", "ALARM"}},
           Case{3001, 2090, {"ALARM", "ALARM", "OK", "OK"}},
           Case{400, 1799, {"OK", "OK", "ALARM", "ALARM"}},
       }) {
    ShowLive(5000 + 3000, 5000 + gas, 5000 + oxygen);
    EXPECT_EQ(States(), states) << gas << " " << oxygen;
  }
}

TEST_F(FixedAlarmsTest, AreRedAndGreen) {
  ShowLive(5000, 6501, 6899);
  EXPECT_THAT(Backs(panel.alarms.txbAlarm061Status), ElementsAre(kRed, kGreen, kRed, kGreen));
  ShowLive(5000, 8001, 7090);
  EXPECT_THAT(Backs(panel.alarms.txbAlarm061Status), ElementsAre(kRed, kRed, kGreen, kGreen));
  ShowLive(5000, 5400, 6799);
  EXPECT_THAT(Backs(panel.alarms.txbAlarm061Status), ElementsAre(kGreen, kGreen, kRed, kRed));
}

TEST_F(FixedAlarmsTest, CompareWhatTheFormShows) {
  auto eeprom = Sample61(0);
  // CO2 by the grain of 10, so that 1509 shows 0.15, as the level does.
  eeprom[223] = 0x95 | 0x20;
  Show(kPart61, eeprom);
  ASSERT_EQ(panel.alarms.txbAlarm061Level[0].Text(), "0.15");
  ShowLive(5000, 5000 + 1509, 5000 + 2090);
  EXPECT_EQ(States()[0], "OK");
  ShowLive(5000, 5000 + 1510, 5000 + 2090);
  EXPECT_EQ(States()[0], "ALARM");
  // A level that has only been typed counts.
  panel.alarms.txbAlarm061Level[0].SetText("0.151");
  EXPECT_TRUE(panel.FormUpdateM());
  EXPECT_EQ(States()[0], "OK");
}

TEST_F(FixedAlarmsTest, CompareNegativeValues) {
  panel.alarms.txbAlarm061Level[0].SetText("-1");
  panel.alarms.txbAlarm061Level[2].SetText("-1");
  ShowLive(5000, 4001, 4899);
  EXPECT_THAT(States(), ElementsAre("ALARM", "OK", "ALARM", "ALARM"));
  ShowLive(5000, 4000, 4900);
  EXPECT_THAT(States(), ElementsAre("OK", "OK", "OK", "ALARM"));
}

TEST_F(FixedAlarmsTest, TheModelComparesInTheSameWay) {
  for (const auto& [gas, oxygen, gasState, oxygenState] : {std::tuple{"1.5", "19", "OK", "OK"},
                                                           {"1.501", "18.99", "ALARM", "ALARM"},
                                                           {"1.501", "19", "ALARM", "OK"},
                                                           {"1.499", "18.99", "OK", "ALARM"}}) {
    panel.txbCHact[1].SetText(gas);
    panel.txbCHact[2].SetText(oxygen);
    panel.Simulate();
    EXPECT_THAT(States(), ElementsAre(gasState, "OK", oxygenState, "OK")) << gas << " " << oxygen;
    EXPECT_EQ(panel.alarms.txbAlarm061Status[0].Back(), gasState == std::string("OK") ? kGreen : kRed);
    EXPECT_EQ(panel.txbCHact[1].Text(), gas);
  }
}

TEST_F(FixedAlarmsTest, AreToldWithoutColons) {
  ShowLive(5000, 6501, 6799);
  std::vector<std::string> told;
  for (const auto& [name, state] : panel.Alarms()) told.push_back(name + " " + state);
  EXPECT_THAT(told, ElementsAre("CO2 PRE ALARM ALARM", "CO2 MAIN ALARM OK", "O2 PRE ALARM ALARM",
                                "O2 MAIN ALARM ALARM"));
}

TEST_F(Frm61Test, OnVariant1ThereAreNoAlarms) {
  Show({61, 1});
  for (auto* state : panel.alarms.txbAlarm061Status) state->SetText("x");
  panel.SimMode(true);
  panel.txbCHact[1].SetText("99999");
  EXPECT_TRUE(panel.FormUpdateM());
  panel.Simulate();
  EXPECT_THAT(Texts(panel.alarms.txbAlarm061Status), testing::Each("x"));
  EXPECT_THAT(panel.Alarms(), testing::IsEmpty());
}

// Rows

class AlarmRowsTest : public Frm61Test {
 protected:
  AlarmRowsTest() { Show({7, 2}); }

  /// Channel, slope and level of each row in the image, shown.
  void ShowRows(const std::array<int, 3>& channels, const std::array<bool, 3>& below,
                const std::array<int, 3>& levels) {
    for (std::size_t k = 0; k < 3; ++k) {
      SetEeprom(834 + 6 * k, {levels.at(k) / 256, levels.at(k) % 256, below.at(k) ? 128 : 0});
      SetEeprom(925 + 2 * k, {channels.at(k)});
    }
    EXPECT_TRUE(panel.FormUpdate());
  }
  std::vector<Colour> RowBacks() const {
    return {panel.rows.txbAlarm7StatusPre.Back(), panel.rows.txbAlarm7StatusMain.Back()};
  }
};

TEST_F(AlarmRowsTest, CompareOnTheSideOfTheirSlope) {
  struct Case {
    bool below;
    int value;
    bool alarm;
  };
  for (const auto& [below, value, alarm] :
       {Case{false, 1501, true}, Case{false, 1500, false}, Case{false, 1499, false}, Case{true, 1499, true},
        Case{true, 1500, false}, Case{true, 1501, false}}) {
    for (std::size_t row = 0; row < 3; ++row) {
      // The other rows never are in alarm.
      std::array<bool, 3> slopes{};
      std::array<int, 3> levels{32767, 32767, 32767};
      slopes.at(row) = below;
      levels.at(row) = 1500;
      ShowRows({5, 5, 5}, slopes, levels);
      ShowLive(2250, value, 2090);
      const bool pre = alarm && row != 1;
      const bool main = alarm && row == 1;
      EXPECT_THAT(RowStates(), ElementsAre(pre ? "ALARM" : "OK", main ? "ALARM" : "OK"))
          << row << " " << value;
      EXPECT_THAT(RowBacks(), ElementsAre(pre ? kRed : kGreen, main ? kRed : kGreen)) << row << " " << value;
    }
  }
}

TEST_F(AlarmRowsTest, WatchTheChannelTheyName) {
  // Above 10 in whatever the channel is; of three values one is above.
  for (int channel = 4; channel <= 6; ++channel) {
    for (int high = 4; high <= 6; ++high) {
      ShowRows({channel, 5, 5}, {}, {channel == 5 ? 10000 : 1000, 32767, 32767});
      ShowLive(high == 4 ? 1001 : 999, high == 5 ? 10001 : 9999, high == 6 ? 1001 : 999);
      EXPECT_EQ(RowStates()[0], channel == high ? "ALARM" : "OK") << channel << " " << high;
    }
  }
}

TEST_F(AlarmRowsTest, ARowWithoutAChannelOnThePanelTakesTheValueOfTheRowBefore) {
  SetEeprom(801, {5 << 2 | 1});  // channel 9 in thousandths
  // Row 1 watches channel 9 and takes CO2 from row 0; row 2 does too.
  ShowRows({5, 9, 9}, {false, false, true}, {32767, 1200, 1200});
  ShowLive(2250, 1201, 2090);
  EXPECT_THAT(RowStates(), ElementsAre("OK", "ALARM"));
  ShowLive(2250, 1200, 2090);
  EXPECT_THAT(RowStates(), ElementsAre("OK", "OK"));
  ShowLive(2250, 1199, 2090);
  EXPECT_THAT(RowStates(), ElementsAre("ALARM", "OK"));
  // Through row 1 from row 0; not the O2 of a row behind.
  ShowRows({9, 5, 6}, {true, false, false}, {1, 32767, 32767});
  EXPECT_TRUE(panel.FormUpdateM());
  EXPECT_THAT(RowStates(), ElementsAre("ALARM", "OK")) << "the first row has 0";
  ShowRows({9, 5, 6}, {false, false, false}, {0, 32767, 32767});
  EXPECT_TRUE(panel.FormUpdateM());
  EXPECT_THAT(RowStates(), ElementsAre("OK", "OK")) << "the first row has 0";
}

TEST_F(AlarmRowsTest, TheFirstRowDoesNotTakeTheValueOfTheLastPoll) {
  SetEeprom(801, {5 << 2 | 1});
  ShowRows({9, 5, 5}, {false, false, false}, {100, 32767, 32767});
  ShowLive(2250, 5000, 2090);
  ShowLive(2250, 5000, 2090);
  EXPECT_THAT(RowStates(), ElementsAre("OK", "OK"));
}

TEST_F(AlarmRowsTest, ARowIsFoundByTheCaptionThatItsLabelShows) {
  ShowRows({5, 5, 5}, {}, {1000, 32767, 32767});
  panel.mCHannel[6].SetText("CO2 of the cellar");
  panel.rows.lblAlarm7Channel[0].SetText("CO2 of the cellar");
  ShowLive(2250, 9000, 50);
  EXPECT_THAT(RowStates(), ElementsAre("OK", "OK"));
  ShowLive(2250, 0, 150);
  EXPECT_THAT(RowStates(), ElementsAre("ALARM", "OK"));
}

TEST_F(AlarmRowsTest, TheLastRowMakesThePreAlarmAndNotTheMainOne) {
  ShowLive(2250, 400, 1899);
  EXPECT_THAT(RowStates(), ElementsAre("ALARM", "OK"));
  ShowLive(2250, 400, 1900);
  EXPECT_THAT(RowStates(), ElementsAre("OK", "OK"));
}

TEST_F(AlarmRowsTest, AnAlarmOfAnEarlierRowIsNotTakenBackByALaterOne) {
  ShowLive(2250, 3001, 2090);
  EXPECT_THAT(RowStates(), ElementsAre("ALARM", "ALARM"));
  EXPECT_THAT(RowBacks(), ElementsAre(kRed, kRed));
  ShowLive(2250, 1501, 2090);
  EXPECT_THAT(RowStates(), ElementsAre("ALARM", "OK"));
  ShowLive(2250, 1500, 2090);
  EXPECT_THAT(RowStates(), ElementsAre("OK", "OK"));
  EXPECT_THAT(RowBacks(), ElementsAre(kGreen, kGreen));
}

TEST_F(AlarmRowsTest, AClickedSlopeCountsWithTheNextValues) {
  ShowLive(2250, 400, 2090);
  EXPECT_TRUE(Click(panel.rows.lblAlarm7Slope[1]));
  EXPECT_THAT(RowStates(), ElementsAre("OK", "OK"));
  EXPECT_TRUE(panel.FormUpdateM());
  EXPECT_THAT(RowStates(), ElementsAre("OK", "ALARM"));
}

TEST_F(AlarmRowsTest, AnyRowsAndValuesCompareAsWholeNumbers) {
  std::mt19937 random{7};
  const auto any = [&random](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
  SetEeprom(801, {5 << 2 | 2});  // channel 9 in hundredths
  const auto thousandths = [](int channel, int raw) { return channel == 5 ? raw : 10 * raw; };
  int alarms = 0;
  for (int round = 0; round < 2000; ++round) {
    std::array<int, 3> channels{};
    std::array<int, 3> levels{};
    std::array<bool, 3> below{};
    for (std::size_t k = 0; k < 3; ++k) {
      channels.at(k) = std::array{4, 5, 6, 9}.at(static_cast<std::size_t>(any(4)));
      levels.at(k) = any(4) * (channels.at(k) == 5 ? 10 : 1);
      below.at(k) = any(2) == 1;
    }
    ShowRows(channels, below, levels);
    const int temperature = any(8) - 4;
    const int gas = 10 * (any(8) - 4);
    const int oxygen = any(4);
    ShowLive(temperature & 65535, gas & 65535, oxygen);
    bool pre = false;
    bool main = false;
    int value = 0;
    for (std::size_t k = 0; k < 3; ++k) {
      if (channels.at(k) == 4) value = thousandths(4, temperature);
      if (channels.at(k) == 5) value = thousandths(5, gas);
      if (channels.at(k) == 6) value = thousandths(6, oxygen);
      const int level = thousandths(channels.at(k), levels.at(k));
      if (below.at(k) ? value < level : value > level) (k == 1 ? main : pre) = true;
    }
    alarms += main ? 1 : 0;
    ASSERT_THAT(RowStates(), ElementsAre(pre ? "ALARM" : "OK", main ? "ALARM" : "OK")) << round;
  }
  EXPECT_GT(alarms, 200);
}

TEST_F(AlarmRowsTest, AreToldAsTwo) {
  ShowLive(2250, 3001, 2090);
  std::vector<std::string> told;
  for (const auto& [name, state] : panel.Alarms()) told.push_back(name + ": " + state);
  EXPECT_THAT(told, ElementsAre("PRE ALARM: ALARM", "MAIN ALARM: ALARM"));
  ShowLive(2250, 400, 1899);
  EXPECT_EQ(panel.Alarms()[0].state, "ALARM");
  EXPECT_EQ(panel.Alarms()[1].state, "OK");
}

TEST_F(AlarmRowsTest, TheModelDoesNotTouchThem) {
  ShowLive(2250, 400, 2090);
  panel.txbCHact[1].SetText("9");
  panel.Simulate();
  EXPECT_THAT(RowStates(), ElementsAre("OK", "OK"));
}

// The status line

TEST_F(AlarmRowsTest, TheStatusIsTheTextsOfItsBits) {
  struct Case {
    int bits;
    const char* text;
  };
  for (const auto& [bits, text] :
       {Case{1, "FatalError "}, Case{4, "Algorithm error "}, Case{8, "Output error "},
        Case{16, "Selfdiagnostic error "}, Case{32, "Out of range "}, Case{64, "Memory error "},
        Case{128, "Warming up "}, Case{5, "FatalError Algorithm error "},
        Case{255,
             "FatalError Algorithm error Output error Selfdiagnostic error Out of range Memory error Warming "
             "up "},
        Case{7, "FatalError Algorithm error "}, Case{160, "Out of range Warming up "}}) {
    ground.image.RamImage[67] = static_cast<float>(bits);
    EXPECT_TRUE(panel.FormUpdateM());
    EXPECT_EQ(panel.txbStatus.Text(), text) << bits;
    EXPECT_EQ(panel.txbStatus.Fore(), kRed) << bits;
    EXPECT_EQ(panel.txbStatus.Tip(), text) << bits;
  }
  for (const int bits : {0, 2}) {
    ground.image.RamImage[67] = static_cast<float>(bits);
    EXPECT_TRUE(panel.FormUpdateM());
    EXPECT_EQ(panel.txbStatus.Text(), "OK") << bits;
    EXPECT_EQ(panel.txbStatus.Fore(), kGreen) << bits;
    EXPECT_EQ(panel.txbStatus.Tip(), "OK") << bits;
  }
}

TEST_F(AlarmRowsTest, TheStatusIsTheSixthLiveField) {
  EXPECT_EQ(&Entry("txbCHact(5)"), &panel.txbStatus);
  EXPECT_EQ(panel.form.Find("txbCHact(4)"), nullptr);
  ground.image.RamImage[67] = 128;
  ShowLive(2250, 400, 2090);
  const auto values = panel.LiveValues();
  ASSERT_EQ(values.size(), 4U);
  EXPECT_EQ(values[3].name, "Status");
  EXPECT_EQ(values[3].text, "Warming up ");
}

TEST_F(Frm61Test, Platform61ShowsNothingOfItsStatus) {
  for (const int variant : {0, 1}) {
    Show({61, variant});
    panel.SimMode(true);
    ground.image.RamImage[67] = 255;
    EXPECT_TRUE(panel.FormUpdateM());
    EXPECT_EQ(panel.txbStatus.Text(), "");
    EXPECT_FALSE(panel.txbStatus.Visible());
    EXPECT_EQ(panel.LiveValues().size(), variant == 0 ? 3U : 2U);
  }
}

// Live values

TEST_F(Frm61Test, LiveValuesOfPlatform61GoThroughTheirChannels) {
  Show({61, 0});
  ShowLive(5000 - 1234, 5000 + 812, 5000 + 2089);
  EXPECT_THAT(Texts(panel.txbCHact), ElementsAre("-12.34", "0.812", "20.89", ""));
  const auto values = panel.LiveValues();
  ASSERT_EQ(values.size(), 3U);
  EXPECT_EQ(values[1].name, "CO2");
  EXPECT_EQ(values[1].text, "0.812");
  EXPECT_EQ(values[1].unit, "%");
  EXPECT_EQ(values[0].unit, "C");
  EXPECT_EQ(values[2].name, "O2");
}

TEST_F(Frm61Test, LiveValuesOfPlatform7AreSignedAndGoThroughTheirChannels) {
  Show({7, 2});
  ShowLive(65536 - 1234, 65535, 2089);
  EXPECT_THAT(Texts(panel.txbCHact), ElementsAre("-12.34", "-0.001", "20.89", ""));
}

// On a sensor that lives

/// The panel on a sensor as it leaves the factory, whose values go on between two polls.
class LivingSensorTest : public test::Frm61TestOn<SensorPort>, public testing::WithParamInterface<Product61> {
 protected:
  LivingSensorTest() : Frm61TestOn(bench::SensorSetup{.part = Part(), .variant = GetParam().variant}) {
    auto& sensor = ground.port.sensor;
    Show(static_cast<std::uint8_t>(Part()), {sensor.Eeprom().begin(), sensor.Eeprom().end()});
    panel.SimMode(false);
    ground.session.LastError.clear();
  }
  static int Part() { return GetParam().Part(); }
  static bool IsOn7() { return GetParam().platform == 7; }

  int SensorWord(std::span<const std::uint8_t> memory, std::size_t at) const {
    return memory[at] * 256 + memory[at + 1];
  }
  /// By the words of the sensor alone. A level and its value have the same form.
  std::vector<bool> Expected() {
    const auto ram = ground.port.sensor.Ram();
    const auto eeprom = ground.port.sensor.Eeprom();
    const int gas = SensorWord(ram, 22);
    const int oxygen = SensorWord(ram, 24);
    if (!IsOn7()) {
      return {gas > SensorWord(eeprom, 76), gas > SensorWord(eeprom, 78), oxygen < SensorWord(eeprom, 80),
              oxygen < SensorWord(eeprom, 84)};
    }
    return {gas > SensorWord(eeprom, 834) || oxygen<SensorWord(eeprom, 846), gas> SensorWord(eeprom, 840)};
  }
  std::vector<bool> Shown() {
    std::vector<bool> shown;
    for (const auto& alarm : panel.Alarms()) shown.push_back(alarm.state == "ALARM");
    return shown;
  }
};
INSTANTIATE_TEST_SUITE_P(, LivingSensorTest, testing::Values(Product61{61, 0}, Product61{7, 2}),
                         test::ProductName);

TEST_P(LivingSensorTest, AnAlarmComesAndGoesWithinOnePoll) {
  std::vector<int> changes(IsOn7() ? 2 : 4);
  std::vector<bool> before(changes.size());
  for (int i = 0; i < 60; ++i) {
    After(milliseconds(2000 * i + 1300), [this, i] { ground.port.sensor.Advance(seconds(2 * i)); });
    // The poll came between the two.
    After(milliseconds(2000 * i + 2700), [&, this] {
      const auto expected = Expected();
      EXPECT_EQ(Shown(), expected) << i;
      for (std::size_t a = 0; a < expected.size(); ++a) changes[a] += expected[a] != before[a] ? 1 : 0;
      before = expected;
    });
  }
  Run(seconds(121));
  // Both ways and again, each of them.
  EXPECT_THAT(changes, testing::Each(testing::Ge(3)));
  EXPECT_THAT(ground.ui.Texts(), testing::IsEmpty());
}

TEST_P(LivingSensorTest, TheLevelItselfIsNoAlarm) {
  const auto eeprom = ground.port.sensor.Eeprom();
  const int gas = SensorWord(eeprom, IsOn7() ? 840 : 78);
  const int oxygen = SensorWord(eeprom, IsOn7() ? 846 : 84);
  const auto put = [this](std::size_t at, int word) {
    ground.port.sensor.Ram()[at] = static_cast<std::uint8_t>(word / 256);
    ground.port.sensor.Ram()[at + 1] = static_cast<std::uint8_t>(word % 256);
  };
  std::vector<std::vector<bool>> seen;
  for (const int step : {-1, 0, 1}) {
    After(seconds(2 * (step + 1) + 1), [=] {
      put(22, gas + step);
      put(24, oxygen + step);
    });
    After(milliseconds(2000 * (step + 1) + 2700), [&] { seen.push_back(Shown()); });
  }
  Run(seconds(8));
  ASSERT_EQ(seen.size(), 3U);
  const auto of = [&seen](std::size_t alarm) {
    return std::vector<bool>{seen[0][alarm], seen[1][alarm], seen[2][alarm]};
  };
  // The main alarm of CO2 is the second one on both platforms.
  EXPECT_THAT(of(1), ElementsAre(false, false, true));
  if (!IsOn7()) {
    EXPECT_THAT(of(3), ElementsAre(true, false, false));
  }
}

}  // namespace
}  // namespace brelant
