// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <optional>
#include <set>

#include "safety/dialog_fixture.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using test::Click;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* kName = "C:\\Files\\log.txt";

/// The rows as pairs of cells.
using Rows = std::vector<std::pair<std::string, std::string>>;
Rows RowsOf(const std::string& text) {
  Rows rows;
  std::size_t at = 0;
  while (at < text.size()) {
    const auto end = text.find("\r\n", at);
    const auto row = text.substr(at, end - at);
    const auto tab = row.find('\t');
    rows.emplace_back(row.substr(0, tab), row.substr(tab + 1));
    at = end + 2;
  }
  return rows;
}
std::string Cell(const Rows& rows, const std::string& head) {
  for (const auto& [left, right] : rows) {
    if (left == head) return right;
  }
  return "none";
}
/// The second column below the heads.
std::vector<std::string> Values(const Rows& rows) {
  std::vector<std::string> values;
  bool isBelow = false;
  for (const auto& [left, right] : rows) {
    if (isBelow) values.push_back(right);
    isBelow = isBelow || left == "Time";
  }
  return values;
}
/// A raw word of two decimals.
std::string Hundredths(int word) {
  const int raw = word > 32767 ? word - 65536 : word;
  std::string text = std::to_string(std::abs(raw) / 100);
  const int rest = std::abs(raw) % 100;
  if (rest % 10 != 0) {
    text += "." + std::to_string(rest / 10) + std::to_string(rest % 10);
  } else if (rest != 0) {
    text += "." + std::to_string(rest / 10);
  }
  return raw < 0 ? "-" + text : text;
}

// On a unit that keeps still.

class ExportTest : public test::DialogTest {
 protected:
  ExportTest() {
    PutSetting(4564, 0xAB04);
    PutSetting(4568, 0xAB05);
    PutSetting(4444, 39 * 256);  // 60 s
    PutSetting(4640, 1500);
    PutLogger(0, {2150, 2160, 65436});
    PutLogger(1, {180, 181, 182, 183});
    PutWord(unit.ram, 344, 30);
  }

  void PutLogger(std::size_t logger, const std::vector<int>& samples) {
    for (std::size_t i = 0; i < samples.size(); ++i) {
      PutWord(unit.ram, 1024 + 3072 * logger + 2 * i, samples[i]);
    }
    PutWord(unit.ram, 336 + 2 * logger, static_cast<int>(samples.size()));
    PutWord(unit.ram, 340 + 2 * logger, static_cast<int>(samples.size()));
  }
  bool Export(int logger) {
    ground.ui.chosenFiles.push_back(kName);
    return panel.ActionLoggerGetData(logger);
  }
  Rows Exported() const { return RowsOf(ground.files.Text(kName)); }
};

TEST_F(ExportTest, TheNumberIsThatOfTheMenuEntry) {
  StartOnKiBus();
  ASSERT_TRUE(Export(0)) << session.LastError;
  EXPECT_EQ(Cell(Exported(), "Logger"), "1");
  EXPECT_EQ(Cell(Exported(), "Channel"), "TEMP 1");
  EXPECT_THAT(Values(Exported()), ElementsAre("21.5", "21.6", "-1"));
  ASSERT_TRUE(Export(1)) << session.LastError;
  EXPECT_EQ(Cell(Exported(), "Logger"), "2");
  EXPECT_EQ(Cell(Exported(), "Channel"), "CO2");
  EXPECT_THAT(Values(Exported()), ElementsAre("1.8", "1.81", "1.82", "1.83"));
}

TEST_F(ExportTest, EachMenuEntryExportsItsLogger) {
  StartOnKiBus();
  NoteBox();
  for (auto* menu : {&panel.m_ExportLogger1, &panel.m_ExportLogger2}) {
    ground.ui.chosenFiles.push_back(kName);
    const bool isFirst = menu == &panel.m_ExportLogger1;
    After(milliseconds(1000), [this, menu, isFirst] {
      EXPECT_TRUE(Click(*menu));
      EXPECT_EQ(session.PanelCommand, isFirst ? 24 : 25);
    });
    Run(seconds(6));
    EXPECT_EQ(Cell(Exported(), "Channel"), isFirst ? "TEMP 1" : "CO2");
  }
  EXPECT_THAT(boxes, ElementsAre("", "Please wait", "", "Please wait", ""));
  EXPECT_THAT(Told(), IsEmpty());
}

TEST_F(ExportTest, TheFileIsAskedFor) {
  StartOnKiBus();
  ASSERT_TRUE(Export(0));
  ASSERT_THAT(ground.ui.dialogs, SizeIs(1));
  EXPECT_EQ(ground.ui.dialogs[0].use, UserInterface::FileUse::save);
  EXPECT_EQ(ground.ui.dialogs[0].filter, "Text Files (*.txt)| *.txt");
}

TEST_F(ExportTest, WithoutAFileNothingIsRead) {
  StartOnKiBus();
  ground.ui.chosenFiles.push_back(std::nullopt);
  EXPECT_TRUE(panel.ActionLoggerGetData(0));
  EXPECT_EQ(Transfers(), 0U);
  EXPECT_EQ(session.LastError, "");
}

TEST_F(ExportTest, ValuesAreThoseOfTheCaseWord) {
  unit.eeprom[7964] = 10;  // F, two decimals
  StartOnKiBus();
  ASSERT_TRUE(Export(0));
  EXPECT_EQ(Cell(Exported(), "Unit"), "F");
  // 21.5, 21.6 and -1 C
  EXPECT_THAT(Values(Exported()), ElementsAre("70.7", "70.88", "30.2"));
}

TEST_F(ExportTest, ThePeriodIsThatOfTheCode) {
  for (const auto& [code, period] :
       {std::pair{0, "2"}, std::pair{128 + 65, "576"}, std::pair{127, "122880"}}) {
    PutSetting(4444, code * 256 + 0x5C);
    StartOnKiBus();
    ASSERT_TRUE(Export(1));
    EXPECT_EQ(Cell(Exported(), "Period (s)"), period);
    panel.LeaveSession();
  }
}

TEST_F(ExportTest, AFailureIsToldByTheLoopAndLeavesNoFile) {
  PutSetting(4564, 0xAB03);
  StartOnKiBus();
  ground.ui.chosenFiles.push_back(kName);
  Command(panel.m_ExportLogger1, seconds(6));
  EXPECT_THAT(Told(), ElementsAre("The logger has no channel that is known."));
  EXPECT_FALSE(ground.files.Exists(kName));
  EXPECT_EQ(panel.cbxSimulated.Value(), 0);
}

// On a virtual unit that logs while it is looked at.

class LiveExportTest : public test::Z7731Test {
 protected:
  int Ram(std::size_t at) { return port.sensor.Ram()[at] * 256 + port.sensor.Ram()[at + 1]; }
  void Start(frmComSet::Protocol protocol) {
    Choose(frmComSet::singleSensor, protocol);
    ASSERT_TRUE(Z7731Test::Start()) << session.LastError;
  }
  void ExportByMenu(Control& menu, seconds span) {
    ground.ui.chosenFiles.push_back(kName);
    After(milliseconds(1000), [&menu] { EXPECT_TRUE(Click(menu)); });
    Run(span);
    EXPECT_THAT(Told(), IsEmpty());
  }
  /// What the ring of that logger holds now, the oldest first, while it has not gone round.
  std::vector<std::string> Held(std::size_t logger) {
    std::vector<std::string> held;
    for (int i = 0; i < Ram(336 + 2 * logger); ++i) {
      held.push_back(Hundredths(Ram(1024 + 3072 * logger + 2 * static_cast<std::size_t>(i))));
    }
    return held;
  }
};

TEST_F(LiveExportTest, TheRowsAreWhatTheUnitsMemoryHolds) {
  auto eeprom = port.sensor.Eeprom();
  eeprom[4444] = 0;  // every two seconds
  eeprom[4565] = 4;
  eeprom[4569] = 5;
  Start(frmComSet::kiBus);
  Run(seconds(120));
  for (const std::size_t logger : {0U, 1U}) {
    ExportByMenu(logger == 0 ? panel.m_ExportLogger1 : panel.m_ExportLogger2, seconds(20));
    const auto rows = RowsOf(ground.files.Text(kName));
    const auto values = Values(rows);
    const auto held = Held(logger);
    // Those that came since are behind them.
    ASSERT_GE(values.size(), 50U);
    ASSERT_LE(values.size(), held.size());
    EXPECT_EQ(values, std::vector(held.begin(), held.begin() + static_cast<std::ptrdiff_t>(values.size())));
    // They are not all the same, or this would tell little.
    EXPECT_GT(std::set(values.begin(), values.end()).size(), 5U);
    EXPECT_EQ(Cell(rows, "Channel"), logger == 0 ? "TEMP 1" : "CO2");
    EXPECT_EQ(Cell(rows, "Period (s)"), "2");
  }
}

TEST_F(LiveExportTest, TheProgressIsToldAndNothingIsPolledMeanwhile) {
  auto eeprom = port.sensor.Eeprom();
  eeprom[4444] = 0;
  Start(frmComSet::kiBus);
  Run(seconds(600));
  const auto polls = session.polls;
  std::vector<int> percents;
  bool sawBar = false;
  std::uint64_t pollsMeanwhile = 0;
  ground.pump.OnPass([&] {
    const int percent = session.BusProgress;
    if (session.PanelCommand == 24 && (percents.empty() || percents.back() != percent)) {
      percents.push_back(percent);
      pollsMeanwhile = session.polls;
      sawBar = sawBar || ground.msg.Visible();
    }
    return false;
  });
  ExportByMenu(panel.m_ExportLogger1, seconds(30));
  EXPECT_GT(percents.size(), 20U);
  EXPECT_TRUE(sawBar);
  // The whole of the long read.
  EXPECT_THAT(percents, testing::Contains(testing::AllOf(testing::Gt(40), testing::Lt(60))));
  EXPECT_THAT(percents, testing::Contains(100));
  EXPECT_LE(pollsMeanwhile, polls + 1);
}

/// On a unit whose memory is full: 1500 samples of temperature 1, one every 30 s. On Modbus it stands still
/// as soon as it has logged them.
class FullExportTest : public LiveExportTest, public testing::WithParamInterface<frmComSet::Protocol> {
 protected:
  static constexpr seconds kPeriod{30};

  FullExportTest() {
    auto eeprom = port.sensor.Eeprom();
    eeprom[4444] = 31;
    eeprom[4565] = 4;
    EXPECT_EQ(eeprom[4640] * 256 + eeprom[4641], 1500);
  }

  static bool IsModbus() { return GetParam() == frmComSet::modBus; }
  /// The session begins that long after so many samples.
  void StartAfter(int samples, seconds more) {
    ground.clock.Advance(samples * kPeriod + more);
    port.sensor.Advance(ground.clock.Now());
    if (IsModbus()) MirrorOnModbus();
    Start(GetParam());
  }
  /// What another unit shows at the moments of those samples, from 1 on.
  static std::vector<std::string> Shown(int first, int last) {
    bench::VirtualSensor twin({.part = 154});
    std::vector<std::string> shown;
    for (int i = first; i <= last; ++i) {
      twin.Advance(i * kPeriod);
      shown.push_back(Hundredths(twin.Ram()[20] * 256 + twin.Ram()[21]));
    }
    return shown;
  }
  std::vector<std::string> ExportedValues() {
    ExportByMenu(panel.m_ExportLogger1, seconds(18));
    return Values(RowsOf(ground.files.Text(kName)));
  }
  /// Transfers that brought samples.
  std::size_t SampleTransfers() {
    std::size_t count = 0;
    for (const auto& frame : port.sensor.Frames()) {
      const bool isWideRead = frame.front() >= 176 && frame.front() < 184;
      count += isWideRead && frame.at(1) >= 4 ? 1 : 0;
    }
    for (const auto& request : modbus.Requests()) {
      count += request.first >= 4608 && request.first < 8192 ? 1 : 0;
    }
    return count;
  }
  /// The bar while the progress box is there and has one.
  int Bar() const {
    const auto& msg = ground.msg;
    return msg.Visible() && msg.ProgressBar1.Visible() ? msg.ProgressBar1.Value() : -1;
  }

 private:
  void MirrorOnModbus() {
    port.onOutput = nullptr;
    const auto ram = port.sensor.Ram();
    const auto eeprom = port.sensor.Eeprom();
    auto& registers = modbus.units[1];
    for (int number = 0; number < 32; ++number) {
      if (const auto word = bench::InputRegister(ram, eeprom, number)) registers.input[number] = *word;
    }
    for (int number = 0; number < 12288; ++number) {
      const auto place = bench::HoldingRegister(ram.size(), eeprom.size(), number);
      if (!place) continue;
      const auto& memory = place->in_eeprom ? eeprom : ram;
      registers.holding[number] =
          static_cast<std::uint16_t>(memory[place->address] << 8 | memory[place->address + 1]);
    }
  }
};
INSTANTIATE_TEST_SUITE_P(Roads, FullExportTest, testing::ValuesIn(test::kRoads), [](const auto& road) {
  return road.param == frmComSet::modBus ? "Modbus" : "KiBus";
});

TEST_P(FullExportTest, TheRowsAreAllThatTheUnitLogged) {
  StartAfter(1500, seconds(10));
  const auto values = ExportedValues();
  EXPECT_EQ(values, Shown(1, 1500));
  // They are not all the same, or this would tell little.
  EXPECT_GT(std::set(values.begin(), values.end()).size(), 50U);
}

TEST_P(FullExportTest, TheRowsOfAMemoryThatHasGoneRoundAreTheNewest) {
  StartAfter(2200, seconds(10));
  EXPECT_EQ(ExportedValues(), Shown(701, 2200));
}

TEST_P(FullExportTest, ASampleThatComesMeanwhileCostsTheOldestRow) {
  StartAfter(2200, seconds(25));
  const auto values = ExportedValues();
  // On Modbus the unit stands still.
  EXPECT_EQ(values, Shown(IsModbus() ? 701 : 702, 2200));
}

TEST_P(FullExportTest, TheBarOfTheProgressBoxRisesToItsEnd) {
  StartAfter(1500, seconds(10));
  std::vector<int> bars;
  std::vector<int> due;
  ground.pump.OnPass([&] {
    const int bar = Bar();
    if (session.PanelCommand != 24 || bar < 0) return false;
    if (bars.empty() || bars.back() != bar) bars.push_back(bar);
    // What the bar takes over as soon as its timer ticks, which it may do while the file is chosen.
    due.push_back(session.BusProgress);
    return false;
  });
  const auto values = ExportedValues();
  EXPECT_EQ(values.size(), 1500U);
  ASSERT_FALSE(bars.empty());
  EXPECT_TRUE(std::is_sorted(bars.begin(), bars.end())) << testing::PrintToString(bars);
  EXPECT_TRUE(std::is_sorted(due.begin(), due.end()));
  EXPECT_EQ(bars.front(), 0);
  EXPECT_EQ(bars.back(), 100);
  // 12 requests, the first of which ends at 8 %, or 750 frames; the bar moves every 50 ms.
  EXPECT_GE(bars.size(), IsModbus() ? 4U : 50U);
  EXPECT_EQ(Bar(), -1);
}

TEST_P(FullExportTest, CancelInTheMiddleEndsItWithinABlockAndThePanelPollsOn) {
  StartAfter(1500, seconds(10));
  const test::Bytes old{'o', 'l', 'd'};
  ground.files.Put(kName, old);
  std::optional<std::size_t> before;
  std::uint64_t polls = 0;
  ground.pump.OnPass([&] {
    if (before || Bar() < 30) return false;
    before = SampleTransfers();
    polls = session.polls;
    EXPECT_TRUE(Click(ground.msg.Command1));
    return false;
  });
  // Silent, or this would tell.
  ExportByMenu(panel.m_ExportLogger1, seconds(18));
  ASSERT_TRUE(before);
  EXPECT_GT(*before, IsModbus() ? 2U : 200U);
  // The one under way may still come.
  EXPECT_LE(SampleTransfers(), *before + 1);
  EXPECT_EQ(ground.files.Get(kName), old);
  EXPECT_FALSE(ground.msg.Visible());
  EXPECT_FALSE(session.CancelPressed);
  EXPECT_GE(session.polls, polls + 3);
  EXPECT_EQ(panel.cbxSimulated.Value(), 0);
}

}  // namespace
}  // namespace brelant
