// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/each_panel5.h"
#include "panels/loop_act.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using test::Bytes;
using test::Click;
using test::Framed;
using test::RamBytes;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kEnterCO2 = "Please enter CO2 concentration";
constexpr const char* kEnterSpan = "Please enter span gas concentration";
constexpr const char* kEnterTemperature = "Please enter correct temperature";

const Bytes kReadSignal{130, 70, 200};
const Bytes kReadDeviation{193, 106, 43};
const Bytes kSave{161, 0, 161};

class CalibrationActionsTest : public test::EachPanel5Test {
 protected:
  CalibrationActionsTest() {
    auto ram = GetParam().ram();
    test::Put(ram, 70, {78, 32});       // signal of channel 1: 20000
    test::Put(ram, 128, {131, 138});    // zero word of channel 0: 33674
    test::Put(ram, 130, {16, 0});       // of channel 1: 4096
    test::Put(ram, 138, {8, 0, 8, 0});  // span words of channels 1 and 2: 1
    test::Put(ram, 202, {127});         // no temperature coefficient
    test::Put(ram, 216, {176, 0});      // background: 45056, which is entry 11
    test::Put(ram, 234, {127});         // no temperature deviation
    ram_ = ram;
    Attach(ram);
    StraightTables();
    ground.screen.onShow = [this](Form& form, bool visible) {
      if (form.Name() != "frmSpanCalNote" || !visible) return;
      ++notes;
      EXPECT_TRUE(ground.ui.prompts.empty()) << "the note comes before the question";
      if (onNote) ground.pump.After(milliseconds(10), onNote);
    };
    onNote = [this] { Click(ground.context.spanNote.Command2); };
  }

  void ExpectFrames(const std::vector<Bytes>& frames) { EXPECT_EQ(port.sensor.Frames(), frames); }
  /// Sensor and image are as they were.
  void ExpectNothingDone() {
    EXPECT_EQ(Held(port), ram_);
    EXPECT_EQ(Image(), ram_);
    EXPECT_EQ(port.sensor.Count().saves, 0);
  }
  void ExpectNothingSent() {
    EXPECT_TRUE(port.Events().empty());
    ExpectNothingDone();
  }
  void ExpectWord(std::size_t address, std::uint8_t high, std::uint8_t low) {
    EXPECT_THAT((std::vector<int>{Held(port)[address], Held(port)[address + 1]}), ElementsAre(high, low));
    EXPECT_THAT((std::vector<int>{Image()[address], Image()[address + 1]}), ElementsAre(high, low));
  }
  void ClickInTheLoop(const std::string& entry) {
    ground.pump.After(seconds(1), [this, entry] { EXPECT_TRUE(Click(Entry(entry))) << entry; });
    test::RunLoop(ground, *panel, seconds(20));
  }

  RamBytes ram_{};
  int notes = 0;
  std::function<void()> onNote;
};
INSTANTIATE_TEST_SUITE_P(, CalibrationActionsTest, test::BothPanels(), test::KindName);

// Zero gas

TEST_P(CalibrationActionsTest, ZeroGasSetsTheZeroWord) {
  EXPECT_TRUE(panel->ActionCalCO2Zero(0));
  // 125829120 / 20000 = 6291.456; 6291 = 24 x 256 + 147.
  ExpectFrames({kReadSignal, {66, 2, 24, 147, 239}, kSave});
  ExpectWord(130, 24, 147);
  EXPECT_EQ(port.sensor.Count().saves, 1);
  EXPECT_THAT(ground.ui.prompts, IsEmpty());
  EXPECT_EQ(session.LastError, "");
  EXPECT_FALSE(port.PortOpen());
  EXPECT_EQ(notes, 0);
}

TEST_P(CalibrationActionsTest, ZeroGasTakesAFreshSignal) {
  auto ram = ram_;
  test::Put(ram, 70, {120, 0});
  Hold(port, ram);
  EXPECT_TRUE(panel->ActionCalCO2Zero(0));
  // 125829120 / 30720 = 4096.
  ExpectFrames({kReadSignal, {66, 2, 16, 0, 84}, kSave});
}

TEST_P(CalibrationActionsTest, ZeroGasTouchesNothingElse) {
  EXPECT_TRUE(panel->ActionCalCO2Zero(0));
  auto expected = ram_;
  test::Put(expected, 130, {24, 147});
  EXPECT_EQ(Held(port), expected);
  EXPECT_EQ(Image(), expected);
}

TEST_P(CalibrationActionsTest, ASinglePointShowsItsProgress) {
  for (const int kind : {0, 1, 2}) {
    ground.ui.inputs = {"400"};
    std::vector<std::string> progress;
    const auto answer = port.onOutput;
    NoteProgress(ground, progress);
    EXPECT_TRUE(panel->ActionCalCO2Zero(kind));
    EXPECT_THAT(progress, ElementsAre("Calibrating CO2 zero point")) << kind;
    port.onOutput = answer;
    ground.ui.inputs.clear();
  }
}

// Fresh air

TEST_P(CalibrationActionsTest, FreshAirPutsTheReadingAtTheBackground) {
  EXPECT_TRUE(panel->ActionCalCO2Zero(1));
  // 45056 x 2048 / 20000 = 4613.7; 4613 = 18 x 256 + 5.
  ExpectFrames({kReadSignal, {66, 2, 18, 5, 91}, kSave});
  ExpectWord(130, 18, 5);
  EXPECT_THAT(ground.ui.prompts, IsEmpty());
}

TEST_P(CalibrationActionsTest, FreshAirIsTakenBackThroughTheSpan) {
  auto ram = ram_;
  test::Put(ram, 138, {16, 0});   // span word 2
  test::Put(ram, 216, {208, 0});  // 53248, with that span the same 45056
  Attach(ram);
  EXPECT_TRUE(panel->ActionCalCO2Zero(1));
  // 61440 - (61440 - 45056) / 2 = 53248; 53248 x 2048 / 20000 = 5452.6; 5452 = 21 x 256 + 76.
  ExpectFrames({kReadSignal, {66, 2, 21, 76, 165}, kSave});
}

// Other

TEST_P(CalibrationActionsTest, AnotherGasIsAskedForFirst) {
  ground.ui.inputs = {"900"};
  EXPECT_TRUE(panel->ActionCalCO2Zero(2));
  EXPECT_THAT(ground.ui.prompts, ElementsAre(kEnterCO2));
  // 5900 lies at 24576; 24576 x 2048 / 20000 = 2516.6; 2516 = 9 x 256 + 212.
  ExpectFrames({kReadSignal, {66, 2, 9, 212, 33}, kSave});
}

TEST_P(CalibrationActionsTest, AnotherGasThatIsNotToldEndsIt) {
  for (const std::optional<std::string>& answer :
       {std::optional<std::string>(), std::optional<std::string>("")}) {
    ground.ui.inputs = {answer};
    EXPECT_TRUE(panel->ActionCalCO2Zero(2));
    ExpectNothingSent();
    EXPECT_EQ(session.LastError, "");
  }
  EXPECT_EQ(ground.ui.prompts.size(), 2U);
}

// Span

TEST_P(CalibrationActionsTest, SpanSetsTheSpanWord) {
  ground.ui.inputs = {"1000"};
  EXPECT_TRUE(panel->ActionCalCO2span());
  EXPECT_EQ(notes, 1);
  EXPECT_THAT(ground.ui.prompts, ElementsAre(kEnterSpan));
  // 6000 lies at 20480. (61440 - 20480) x 2048 / (61440 - 4096 x 20000 / 2048) = 3912.6, rounded: 3913 =
  // 15 x 256 + 73. The last write is RAM 0 and 1, as they are.
  ExpectFrames({kReadSignal, kReadDeviation, {66, 10, 15, 73, 164}, kSave, Framed({2, 0, 3, 10}), kSave});
  EXPECT_FALSE(port.PortOpen());
  EXPECT_EQ(session.LastError, "");
}

TEST_P(CalibrationActionsTest, SpanKeepsTheConcentrationOfTheBackground) {
  ground.ui.inputs = {"1000"};
  EXPECT_TRUE(panel->ActionCalCO2span());
  // 61440 - 16384 x 2048 / 3913 = 52864.9; 52865 = 206 x 256 + 129, in the image alone.
  auto expected = ram_;
  test::Put(expected, 138, {15, 73});
  EXPECT_EQ(Held(port), expected);
  test::Put(expected, 216, {206, 129});
  EXPECT_EQ(Image(), expected);
}

TEST_P(CalibrationActionsTest, SpanTakesTheTemperatureIntoAccount) {
  auto ram = ram_;
  ram[202] = 137;
  Attach(ram);
  ram[234] = 147;
  Hold(port, ram);
  ground.ui.inputs = {"1000"};
  EXPECT_TRUE(panel->ActionCalCO2span());
  // 10 x 20 / 32 = 6.25; 3912.597 / (2054.25 / 2048) = 3900.7; 3901 = 15 x 256 + 61.
  EXPECT_THAT(port.sensor.Frames(), testing::Contains(Framed({66, 10, 15, 61})));
}

TEST_P(CalibrationActionsTest, SpanShowsItsProgress) {
  ground.ui.inputs = {"1000"};
  std::vector<std::string> progress;
  NoteProgress(ground, progress);
  EXPECT_TRUE(panel->ActionCalCO2span());
  EXPECT_THAT(progress, ElementsAre("Calibrating CO2 span"));
}

TEST_P(CalibrationActionsTest, ANoteThatIsCancelledOrClosedEndsTheSpan) {
  ground.ui.inputs = {"1000"};
  for (const bool close : {false, true}) {
    session.LastError.clear();
    onNote = [this, close] {
      if (close) {
        ground.context.spanNote.form.Close();
      } else {
        Click(ground.context.spanNote.Command1);
      }
    };
    panel->ActionCalCO2span();
    EXPECT_THAT(ground.ui.prompts, IsEmpty());
    ExpectNothingSent();
    EXPECT_EQ(session.LastError, "Avbryt");
  }
  EXPECT_EQ(notes, 2);
}

TEST_P(CalibrationActionsTest, ASpanGasThatIsNotToldEndsIt) {
  for (const std::optional<std::string>& answer :
       {std::optional<std::string>(), std::optional<std::string>("")}) {
    ground.ui.prompts.clear();
    ground.ui.inputs = {answer};
    EXPECT_TRUE(panel->ActionCalCO2span());
    EXPECT_THAT(ground.ui.prompts, ElementsAre(kEnterSpan));
    ExpectNothingSent();
    EXPECT_EQ(session.LastError, "");
  }
}

TEST_P(CalibrationActionsTest, ASessionThatEndsUnderTheNoteAsksNothingMore) {
  ground.ui.inputs = {"1000"};
  onNote = [this] { panel->form.Close(); };
  panel->ActionCalCO2span();
  EXPECT_EQ(ground.sessionsEnded, 1);
  EXPECT_THAT(ground.ui.prompts, IsEmpty());
  ExpectNothingSent();
}

// Temperature

TEST_P(CalibrationActionsTest, TemperatureMovesTheZeroWordOfItsChannel) {
  ground.ui.inputs = {"22"};
  EXPECT_TRUE(panel->ActionCalTempZero());
  EXPECT_THAT(ground.ui.prompts, ElementsAre(kEnterTemperature));
  // 5000 + 2200 - 7150 = 50; 33674 + 50 = 33724 = 131 x 256 + 188.
  ExpectFrames({{66, 0, 131, 188, 129}, kSave});
  ExpectWord(128, 131, 188);
  EXPECT_FALSE(port.PortOpen());
}

TEST_P(CalibrationActionsTest, ALowerTemperatureMovesItDown) {
  ground.ui.inputs = {"20,5"};
  EXPECT_TRUE(panel->ActionCalTempZero());
  // 5000 + 2050 - 7150 = -100; 33574 = 131 x 256 + 38.
  ExpectFrames({{66, 0, 131, 38, 235}, kSave});
}

TEST_P(CalibrationActionsTest, TemperatureShowsItsProgress) {
  ground.ui.inputs = {"22"};
  std::vector<std::string> progress;
  NoteProgress(ground, progress);
  EXPECT_TRUE(panel->ActionCalTempZero());
  EXPECT_THAT(progress, ElementsAre("Calibrating temperature"));
}

TEST_P(CalibrationActionsTest, ATemperatureThatIsNotToldEndsIt) {
  for (const std::optional<std::string>& answer :
       {std::optional<std::string>(), std::optional<std::string>("")}) {
    ground.ui.inputs = {answer};
    EXPECT_TRUE(panel->ActionCalTempZero());
    ExpectNothingSent();
    EXPECT_EQ(session.LastError, "");
  }
  EXPECT_THAT(ground.ui.prompts, ElementsAre(kEnterTemperature, kEnterTemperature));
}

// By menu and loop

TEST_P(CalibrationActionsTest, AMenuEntrySetsItsCode) {
  struct Case {
    const char* entry;
    int code;
    bool guarded;
  };
  for (const auto& [entry, code, guarded] :
       {Case{"CalTemp", 6, false}, Case{"mCalCO2Zero", 7, true}, Case{"mCalCO2Background", 8, true},
        Case{"mCalCO2Other", 9, true}, Case{"mCalCO2span", 10, false}}) {
    session.PanelCommand = 0;
    ground.msg.ShowProgress("", true, &panel->form);
    EXPECT_TRUE(Click(Entry(entry))) << entry;
    EXPECT_EQ(session.PanelCommand, code) << entry;
    EXPECT_EQ(ground.msg.Visible(), guarded) << entry;
    if (guarded) {
      EXPECT_EQ(ground.msg.Label1.Text(), "Please wait") << entry;
      EXPECT_FALSE(ground.msg.ProgressBar1.Visible()) << entry;
    }
  }
  EXPECT_TRUE(port.Events().empty());
}

TEST_P(CalibrationActionsTest, TheLoopRunsEachCode) {
  struct Case {
    const char* entry;
    const char* answer;
    Bytes frame;
  };
  for (const auto& [entry, answer, frame] :
       {Case{"CalTemp", "22", {66, 0, 131, 188, 129}}, Case{"mCalCO2Zero", "", {66, 2, 24, 147, 239}},
        Case{"mCalCO2Background", "", {66, 2, 18, 5, 91}}, Case{"mCalCO2Other", "900", {66, 2, 9, 212, 33}},
        Case{"mCalCO2span", "1000", {66, 10, 15, 73, 164}}}) {
    Attach(ram_);
    ground.ui.prompts.clear();
    ground.ui.inputs = {answer};
    ClickInTheLoop(entry);
    EXPECT_THAT(port.sensor.Frames(), testing::Contains(frame)) << entry;
    EXPECT_FALSE(ground.msg.Visible()) << entry;
  }
  EXPECT_THAT(ground.ui.Texts(), IsEmpty());
  EXPECT_EQ(notes, 1);
}

TEST_P(CalibrationActionsTest, ACancelledNoteIsSilentInTheLoop) {
  onNote = [this] { Click(ground.context.spanNote.Command1); };
  ClickInTheLoop("mCalCO2span");
  EXPECT_THAT(ground.ui.Texts(), IsEmpty());
  EXPECT_EQ(notes, 1);
  ExpectNothingDone();
}

// What goes wrong

TEST_P(CalibrationActionsTest, ASignalThatCannotBeReadChangesNothing) {
  PullOff(port);
  ground.ui.inputs = {"400", "1000"};
  for (const int kind : {0, 1, 2}) {
    session.LastError.clear();
    panel->ActionCalCO2Zero(kind);
    EXPECT_EQ(session.LastError, "Can't read from sensor") << kind;
    ExpectNothingDone();
  }
  session.LastError.clear();
  ground.ui.prompts.clear();
  panel->ActionCalCO2span();
  EXPECT_EQ(session.LastError, "Can't read from sensor");
  ExpectNothingDone();
  EXPECT_FALSE(port.PortOpen());
}

TEST_P(CalibrationActionsTest, ASignalOfZeroIsToldAndChangesNothing) {
  ram_[70] = ram_[71] = 0;
  Attach(ram_);
  ground.ui.inputs = {"400"};
  for (const int kind : {0, 1, 2}) {
    session.LastError.clear();
    panel->ActionCalCO2Zero(kind);
    EXPECT_NE(session.LastError, "") << kind;
    EXPECT_NE(session.LastError, "Avbryt") << kind;
    ExpectNothingDone();
  }
  EXPECT_FALSE(port.PortOpen());
}

TEST_P(CalibrationActionsTest, ASpanThatDividesByZeroIsToldAndChangesNothing) {
  // 4096 x 30720 / 2048 = 61440: no gas at all.
  test::Put(ram_, 70, {120, 0});
  Attach(ram_);
  ground.ui.inputs = {"1000"};
  panel->ActionCalCO2span();
  EXPECT_NE(session.LastError, "");
  ExpectNothingDone();
}

TEST_P(CalibrationActionsTest, AWriteThatFailsIsToldByTheLoop) {
  BeforeEachOutput(port, [](const Bytes& bytes) { return bytes.size() != 5; });
  ClickInTheLoop("mCalCO2Zero");
  EXPECT_THAT(ground.ui.Texts(), ElementsAre("Can't save to sensor"));
  EXPECT_EQ(Held(port), ram_);
  EXPECT_FALSE(ground.msg.Visible());
}

TEST_P(CalibrationActionsTest, CancelWhileTheSignalIsReadIsSilentAndChangesNothing) {
  BeforeEachOutput(port, [this](const Bytes& bytes) {
    if (ground.msg.Visible() && bytes == Bytes{200}) {
      Click(ground.msg.Command1);
      return false;
    }
    return true;
  });
  ClickInTheLoop("mCalCO2Zero");
  EXPECT_THAT(ground.ui.Texts(), IsEmpty());
  ExpectNothingDone();
}

TEST_P(CalibrationActionsTest, CancelWhileTheSpanIsSentSavesNothingAndSendsNoMore) {
  BeforeEachOutput(port, [this](const Bytes& bytes) {
    if (bytes == Bytes{66, 10, 15, 73, 164}) Click(ground.msg.Command1);
    return true;
  });
  ground.ui.inputs = {"1000"};
  panel->ActionCalCO2span();
  EXPECT_EQ(session.LastError, "Avbryt");
  ExpectFrames({kReadSignal, kReadDeviation, {66, 10, 15, 73, 164}});
  EXPECT_EQ(port.sensor.Count().saves, 0);
  EXPECT_FALSE(port.PortOpen());
}

TEST_P(CalibrationActionsTest, ASpanThatIsNotTakenSendsNoMore) {
  BeforeEachOutput(port, [](const Bytes& bytes) { return bytes != Bytes{66, 10, 15, 73, 164}; });
  ground.ui.inputs = {"1000"};
  EXPECT_FALSE(panel->ActionCalCO2span());
  EXPECT_EQ(session.LastError, "Can't save to sensor");
  ExpectFrames({kReadSignal, kReadDeviation});
  EXPECT_EQ(Held(port), ram_);
}

TEST_P(CalibrationActionsTest, InSimulatedModeTheMenuIsShut) {
  panel->SimMode(true);
  EXPECT_FALSE(panel->mCalibrate.Enabled());
  panel->SimMode(false);
  EXPECT_TRUE(panel->mCalibrate.Enabled());
}

// The view of what was done

TEST_P(CalibrationActionsTest, TheCurveCanBeSeenAfterACalibration) {
  auto& entry = Entry("mCalCurve");
  EXPECT_EQ(entry.Text(), "Calibration curve");
  EXPECT_EQ(entry.parent, "mCalibrate");
  EXPECT_FALSE(Click(entry));
  EXPECT_TRUE(panel->ActionCalCO2Zero(0));
  port.Forget();
  const auto image = Image();
  EXPECT_TRUE(Click(entry));
  EXPECT_TRUE(ground.context.curve.form.Visible());
  EXPECT_TRUE(port.Events().empty());
  EXPECT_EQ(Image(), image);
  EXPECT_EQ(session.PanelCommand, 0);
  EXPECT_EQ(session.LastError, "");
  EXPECT_TRUE(Click(ground.context.curve.btnClose));
  EXPECT_FALSE(ground.context.curve.form.Visible());
}

TEST_P(CalibrationActionsTest, WithoutACalibrationThereIsNoCurve) {
  ground.ui.inputs = {std::nullopt};
  EXPECT_TRUE(panel->ActionCalCO2Zero(2));
  EXPECT_FALSE(Entry("mCalCurve").Enabled());
  PullOff(port);
  panel->ActionCalCO2Zero(0);
  EXPECT_FALSE(Entry("mCalCurve").Enabled());
}

// The two panels differ

TEST(CalibrationCaptions, AreThoseOfThePanel) {
  test::SensorGround ground{bench::SensorSetup{.part = 104}};
  frm5 general{ground.context};
  EXPECT_EQ(general.form.Find("CalTemp")->Text(), "Temp");
  EXPECT_EQ(general.form.Find("mCalCO2")->Text(), "CO2 single point");
  EXPECT_EQ(general.form.Find("mCalCO2span")->Text(), "CO2 span");
}

class ChartCalibrationTest : public test::ChartTestOn<test::SensorPort> {
 protected:
  ChartCalibrationTest() : ChartTestOn(bench::SensorSetup{.part = 104}) {
    panel.SimMode(false);
    ground.session.LastError.clear();
  }
};

TEST_F(ChartCalibrationTest, ATemperatureIsTakenInTheUnitOfThePanel) {
  auto ram = test::SampleChartRam();
  ram[207] = 32;
  Hold(ground.port, ram);
  Show(ram);
  ASSERT_EQ(panel.lblCH_Type[0].Text(), "F");
  ground.port.sensor.ForgetFrames();
  ground.ui.inputs = {"68"};
  EXPECT_TRUE(panel.ActionCalTempZero());
  // 20 degrees: 7000 - 7150 = -150; 33674 - 150 = 33524 = 130 x 256 + 244.
  EXPECT_EQ(ground.port.sensor.Frames().at(0), Framed({66, 0, 130, 244}));
}

}  // namespace
}  // namespace brelant
