// SPDX-License-Identifier: GPL-3.0-or-later
// Calibrations by the menu of frm61: what is asked, told and sent. What the procedures compute has tests of
// its own.
#include "calibration/plain_search.h"
#include "panels/frm61_fixture.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using test::Bytes;
using test::Click;
using test::EachFrm61SensorTest;
using test::Framed;
using test::PlainMeasured;
using test::PlainMeasurement;
using test::PlainSpanTable;
using test::Product61;
using test::Products61;
using test::SensorPort;
using testing::ElementsAre;
using testing::IsEmpty;

const Bytes kUnlock{197, 55, 252};
const Bytes kLock{169, 171, 84};
const Bytes kSaveToRam{145, 0, 145};
const Bytes kReadTemperature{130, 20, 150};
const Bytes kReadGas{130, 22, 152};
const Bytes kReadOxygenSignal{130, 38, 168};
const Bytes kReadSignal{130, 40, 170};
const Bytes kReadDeviation{130, 42, 172};

constexpr const char* kEnterTemperature = "Please enter correct temperature";
constexpr const char* kEnterCO2 = "Please enter CO2 concentration";
constexpr const char* kEnterSpan = "Please enter span gas concentration";
constexpr const char* kEnterO2 = "Enter correct O2 reading";

constexpr int kSignal = 20000;
constexpr int kOxygenSignal = 40000;

using Frames = std::vector<Bytes>;

class CalibrationOf61Test : public EachFrm61SensorTest {
 protected:
  CalibrationOf61Test() {
    HoldWord(20, Offset() + 2150);
    HoldWord(38, kOxygenSignal);
    HoldWord(40, kSignal);
    HoldWord(42, 0);
    ground.screen.onShow = [this](Form& form, bool visible) {
      if (form.Name() != "frmSpanCalNote" || !visible) return;
      ++notes;
      EXPECT_THAT(ground.ui.prompts, IsEmpty()) << "the note comes before the question";
      if (onNote) ground.pump.After(milliseconds(10), onNote);
    };
    onNote = [this] { Click(ground.context.spanNote.Command2); };
    ground.pump.OnPass([this] {
      if (running && session.PanelCommand == 0) {
        running = false;
        frames = port.sensor.Frames();
      }
      return false;
    });
  }

  int Offset() const { return IsOn61() ? 5000 : 0; }
  bool IsInPpm() const { return IsOn61() && product.variant == 1; }

  /// Clicks the entry in the loop. The frames up to the end of the command, without those of a poll, and the
  /// texts of the progress box are kept.
  void Calibrate(const std::string& entry, const std::optional<std::string>& answer = {}) {
    ground.ui.prompts.clear();
    ground.ui.inputs = {answer};
    const auto told = port.onOutput;
    test::BeforeEachOutput(port, [this](const Bytes&) {
      Note();
      return true;
    });
    After(milliseconds(100), [this, entry] {
      Listen();
      progress.clear();
      EXPECT_TRUE(Click(Entry(entry))) << entry;
      code = session.PanelCommand;
      running = true;
      Note();
    });
    Run(seconds(20));
    EXPECT_FALSE(running);
    port.onOutput = told;
    EXPECT_FALSE(ground.msg.Visible());
    EXPECT_FALSE(port.PortOpen());
  }
  void Note() {
    if (!running) return;
    const auto text = ground.msg.Visible() ? ground.msg.Label1.Text() : "none";
    if (progress.empty() || progress.back() != text) progress.push_back(text);
  }

  /// A write of EEPROM as it travels to this sensor, at most four bytes a frame.
  Frames Write(std::size_t from, const Bytes& bytes) const {
    Frames written;
    for (std::size_t i = 0; i < bytes.size();) {
      const std::size_t at = from + i;
      const std::size_t room = IsOn61() ? 4 : std::min<std::size_t>(4, 16 - at % 16);
      const auto count = std::min(room, bytes.size() - i);
      Bytes frame{static_cast<std::uint8_t>(8 + count)};
      if (IsOn61()) {
        frame.push_back(static_cast<std::uint8_t>(at / 2));
      } else {
        frame.push_back(static_cast<std::uint8_t>(at / 256));
        frame.push_back(static_cast<std::uint8_t>(at % 256));
      }
      frame.insert(frame.end(), bytes.begin() + static_cast<std::ptrdiff_t>(i),
                   bytes.begin() + static_cast<std::ptrdiff_t>(i + count));
      written.push_back(Framed(frame));
      i += count;
    }
    return written;
  }
  /// Unlocked before, locked after and, on platform 61, saved.
  Frames Guarded(const Frames& written, bool saved) const {
    Frames all{kUnlock};
    all.insert(all.end(), written.begin(), written.end());
    all.push_back(kLock);
    if (saved) all.push_back(kSaveToRam);
    return all;
  }
  static Frames Joined(std::initializer_list<Frames> parts) {
    Frames all;
    for (const auto& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
  }
  static Bytes EvenTable(int first, int step) {
    Bytes bytes(34);
    test::PutEvenTable(bytes, 0, first, step);
    return bytes;
  }
  static Bytes Words(const GasTable& table) {
    Bytes bytes;
    for (const float entry : table) {
      const int word = static_cast<int>(entry) & 65535;
      bytes.push_back(static_cast<std::uint8_t>(word / 256));
      bytes.push_back(static_cast<std::uint8_t>(word % 256));
    }
    return bytes;
  }

  void ExpectNothingDone() {
    EXPECT_EQ(Held(), sample);
    EXPECT_THAT(frames, IsEmpty());
    EXPECT_THAT(ground.ui.Texts(), IsEmpty());
  }

  int code = 0;
  int notes = 0;
  std::function<void()> onNote;
  Frames frames;
  std::vector<std::string> progress;
  bool running = false;
};
INSTANTIATE_TEST_SUITE_P(, CalibrationOf61Test, Products61(), test::ProductName);

// Zero point

TEST_P(CalibrationOf61Test, ZeroSetsTheZeroWord) {
  Calibrate("mCalCO2SPzero");
  EXPECT_EQ(code, 7);
  EXPECT_THAT(progress, ElementsAre("Please wait", "Calibrating CO2 zero point"));
  EXPECT_THAT(ground.ui.prompts, IsEmpty());
  // 125829120 / 20000 = 6291.456; 6291 = 24 x 256 + 147.
  EXPECT_EQ(frames, Joined({{kReadSignal}, Guarded(Write(IsOn61() ? 46 : 14, {24, 147}), IsOn61())}));
  EXPECT_THAT(ground.ui.Texts(), IsEmpty());
  EXPECT_EQ(notes, 0);
}

TEST_P(CalibrationOf61Test, FreshAirPutsTheReadingAtTheBackground) {
  if (!IsOn61()) {
    EXPECT_FALSE(Click(Entry("mCalCO2SPBackground")));
    EXPECT_EQ(session.PanelCommand, 0);
    return;
  }
  Calibrate("mCalCO2SPBackground");
  EXPECT_EQ(code, 8);
  EXPECT_THAT(progress, ElementsAre("Please wait", "Calibrating CO2 zero point"));
  EXPECT_THAT(ground.ui.prompts, IsEmpty());
  // With either scale the background stands at 45056; 45056 x 2048 / 20000 = 4613.7; 4613 = 18 x 256 + 5.
  EXPECT_EQ(frames, Joined({{kReadSignal}, Guarded(Write(46, {18, 5}), true)}));
}

TEST_P(CalibrationOf61Test, AnotherGasIsAskedForAndGoesThroughChannel5) {
  if (!IsOn61()) {
    EXPECT_FALSE(Click(Entry("mCalCO2SPOther")));
    EXPECT_EQ(session.PanelCommand, 0);
    return;
  }
  Calibrate("mCalCO2SPOther", IsInPpm() ? "900" : "0,9");
  EXPECT_EQ(code, 9);
  EXPECT_THAT(progress, ElementsAre("Please wait", "Calibrating CO2 zero point"));
  EXPECT_THAT(ground.ui.prompts, ElementsAre(kEnterCO2));
  // 5900 lies at 24576, which with the scale 1 gives 24576 x 2048 / 20000 = 2516.6 = 9 x 256 + 212, and with
  // the scale 2 43008 x 2048 / 20000 = 4404.0 = 17 x 256 + 52.
  const Bytes word = IsInPpm() ? Bytes{17, 52} : Bytes{9, 212};
  EXPECT_EQ(frames, Joined({{kReadSignal}, Guarded(Write(46, word), true)}));
}

// Span

TEST_P(CalibrationOf61Test, SpanShowsTheNoteAsksAndBendsTheTable) {
  Calibrate("mCalCO2span", IsInPpm() ? "1000" : "1");
  EXPECT_EQ(code, 10);
  EXPECT_EQ(notes, 1);
  EXPECT_THAT(progress, ElementsAre("none", "Calibrating CO2 span"));
  EXPECT_THAT(ground.ui.prompts, ElementsAre(kEnterSpan));
  EXPECT_THAT(ground.ui.Texts(), IsEmpty());
  PlainMeasurement measured;
  measured.A = 4096;
  measured.C = kSignal;
  const int scale = IsInPpm() ? 2 : 1;
  const auto& curve = !IsOn61() ? test::kPlainD : IsInPpm() ? test::kPlainC : test::kPlainB;
  const auto table =
      PlainSpanTable(curve, scale, PlainMeasured(measured, scale), 1000, static_cast<float>(Offset()));
  ASSERT_TRUE(table);
  if (IsOn61()) {
    const auto pass = Joined({{kReadSignal}, Guarded(Write(444, Words(*table)), true), {kReadGas}});
    EXPECT_EQ(frames, Joined({{kReadDeviation}, pass, pass}));
    return;
  }
  const auto read = [](int count, int address) {
    return Framed({static_cast<std::uint8_t>(136 + count), static_cast<std::uint8_t>(address / 256),
                   static_cast<std::uint8_t>(address % 256)});
  };
  Frames table2;
  for (int at = 580; at < 612; at += 4) table2.push_back(read(4, at));
  table2.push_back(read(2, 612));
  EXPECT_EQ(frames,
            Joined({{read(2, 1002), read(2, 14), read(4, 880), read(2, 976), kReadDeviation, kReadSignal},
                    table2,
                    Guarded(Write(580, Words(*table)), false),
                    Guarded(Write(976, {176, 0}), false)}));
}

// Temperature

TEST_P(CalibrationOf61Test, TemperatureIsAskedForAndMovesItsTable) {
  Calibrate("mCalTemp", "22");
  EXPECT_EQ(code, 6);
  EXPECT_THAT(progress, ElementsAre("none", "Calibrating temperature "));
  EXPECT_THAT(ground.ui.prompts, ElementsAre(kEnterTemperature));
  // From 21.5 it is 50 hundredths up.
  const auto table = IsOn61() ? Write(308, EvenTable(3050, 500)) : Write(512, EvenTable(50, 400));
  EXPECT_EQ(frames, Joined({{kReadTemperature, kReadTemperature}, Guarded(table, IsOn61())}));
  EXPECT_THAT(ground.ui.Texts(), IsEmpty());
}

// O2

TEST_P(CalibrationOf61Test, OxygenZeroTakesTheSignal) {
  Calibrate("mCalO2zero");
  EXPECT_EQ(code, 11);
  EXPECT_THAT(progress, ElementsAre("none", "Calibrating O2"));
  EXPECT_THAT(ground.ui.prompts, IsEmpty());
  // 40000 = 156 x 256 + 64. The smaller memory of platform 61 has no such address, so no byte goes out.
  const auto written = IsOn61() ? Frames() : Write(760, {156, 64});
  EXPECT_EQ(frames, Joined({{kReadOxygenSignal}, Guarded(written, false)}));
  EXPECT_THAT(ground.ui.Texts(), IsEmpty());
  EXPECT_EQ(notes, 0);
}

TEST_P(CalibrationOf61Test, OxygenSpanIsAskedForAndGoesThroughChannel6) {
  Calibrate("mCalO2span", IsOn61() ? "12" : "20,9");
  EXPECT_EQ(code, 12);
  EXPECT_THAT(progress, ElementsAre("none", "Calibrating O2 span"));
  EXPECT_THAT(ground.ui.prompts, ElementsAre(kEnterO2));
  // 6200 lies at 12288 of the falling table; 12288 x 2048 / 40000 = 629.1 = 2 x 256 + 117. 2090 lies at 53504
  // of the rising one; 53504 x 2048 / 40000 = 2739.4 = 10 x 256 + 179.
  const Bytes word = IsOn61() ? Bytes{2, 117} : Bytes{10, 179};
  EXPECT_EQ(frames, Joined({{kReadOxygenSignal}, Guarded(Write(0, word), false)}));
  EXPECT_THAT(ground.ui.Texts(), IsEmpty());
}

TEST_P(CalibrationOf61Test, OnlyCO2AndTemperatureHaveAView) {
  auto& view = Entry("mCalCurve");
  Calibrate("mCalO2zero");
  Calibrate("mCalO2span", IsOn61() ? "12" : "20.9");
  EXPECT_FALSE(view.Enabled());
  Calibrate("mCalCO2SPzero");
  EXPECT_TRUE(view.Enabled());
}

// Answers

TEST_P(CalibrationOf61Test, AnAnswerThatIsCancelledOrEmptyEndsIt) {
  for (const auto& [entry, prompt] : {std::pair{"mCalTemp", kEnterTemperature},
                                      {"mCalCO2SPOther", kEnterCO2},
                                      {"mCalCO2span", kEnterSpan},
                                      {"mCalO2span", kEnterO2}}) {
    if (!Entry(entry).Visible()) continue;
    for (const auto& answer : {std::optional<std::string>(), std::optional<std::string>("")}) {
      Calibrate(entry, answer);
      EXPECT_THAT(ground.ui.prompts, ElementsAre(prompt));
      ExpectNothingDone();
    }
  }
}

TEST_P(CalibrationOf61Test, ANoteThatIsCancelledEndsTheSpanWithoutAQuestion) {
  onNote = [this] { Click(ground.context.spanNote.Command1); };
  Calibrate("mCalCO2span", "1");
  EXPECT_EQ(notes, 1);
  EXPECT_THAT(ground.ui.prompts, IsEmpty());
  ExpectNothingDone();
}

TEST_P(CalibrationOf61Test, AFailureIsToldByTheLoop) {
  for (const char* entry : {"mCalCO2SPzero", "mCalO2zero", "mCalO2span", "mCalTemp", "mCalCO2span"}) {
    ground.ui.messages.clear();
    panel.SimMode(false);
    session.LastError.clear();
    const auto answer = port.onOutput;
    After(milliseconds(99), [this] { test::PullOff(port); });
    Calibrate(entry, "1");
    ASSERT_FALSE(ground.ui.Texts().empty()) << entry;
    EXPECT_EQ(ground.ui.Texts().front(), "Can't read from sensor") << entry;
    EXPECT_EQ(Held(), sample) << entry;
    port.onOutput = answer;
    session.LastError.clear();
  }
}

TEST_P(CalibrationOf61Test, OnAnotherPlatformTheSpanIsAskedForAndNothingDone) {
  ground.KnowPart(88);
  panel.FormUpdateInit();
  session.LastError.clear();
  Listen();
  ground.ui.inputs = {"1"};
  EXPECT_FALSE(panel.ActionCalCO2span());
  EXPECT_THAT(port.sensor.Frames(), IsEmpty());
  EXPECT_EQ(session.LastError, "");
}

}  // namespace
}  // namespace brelant
