// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/frm5_chart_fixture.h"
#include "panels/loop_act.h"
#include "panels/sensor_line.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using test::Bytes;
using test::Click;
using test::Framed;
using test::SampleChartRam;
using test::SensorPort;
using testing::ElementsAre;

constexpr const char* kNoSensor = "No sensor detected, entering simulated mode.";
const Bytes kSave{161, 0, 161};

/// frm5Chart with a virtual sensor on the line that holds the sample.
class ChartSensorTest : public test::ChartTestOn<SensorPort> {
 protected:
  ChartSensorTest() : ChartTestOn(bench::SensorSetup{.part = 104}) {
    Hold(port, SampleChartRam());
    panel.SimMode(false);
    session.LastError.clear();
    port.sensor.ForgetFrames();
  }

  /// The sensor answers nothing from the frame on that begins so.
  void FallSilentAt(const Bytes& frame) {
    BeforeEachOutput(port, [this, frame](const Bytes&) {
      const auto sent = port.Sent();
      return std::search(sent.begin(), sent.end(), frame.begin(), frame.end()) == sent.end();
    });
  }

  SensorPort& port = ground.port;
  Session& session = ground.session;
};

// The poll

TEST_F(ChartSensorTest, APollReadsTheLiveBytesInOrder) {
  EXPECT_TRUE(panel.ActionSensorReadM());
  EXPECT_THAT(port.Sent(),
              ElementsAre(254, 129, 14, 143, 254, 134, 20, 154, 254, 130, 26, 156, 254, 193, 127, 64));
}

TEST_F(ChartSensorTest, ThePortStaysOpenUpToTheLastReadOfAPoll) {
  EXPECT_TRUE(panel.ActionSensorReadM());
  EXPECT_FALSE(port.PortOpen());
  EXPECT_EQ(port.Of(SensorPort::Act::open).size(), 1U);
  EXPECT_EQ(port.Of(SensorPort::Act::close).size(), 1U);
}

TEST_F(ChartSensorTest, APollShowsWhatItRead) {
  auto ram = SampleChartRam();
  ram[14] = 0;
  test::Put(ram, 20, {28, 132, 23, 112, 19, 136, 24, 80});  // 5000 + 2300, + 1000, + 0, + 1224
  ram[255] = 16;
  ram[31] = 1;
  Hold(port, ram);
  EXPECT_TRUE(panel.ActionSensorReadM());
  EXPECT_THAT(Texts(panel.txbCHact), ElementsAre("23", "1000", "1.224"));
  EXPECT_EQ(panel.txbKELActTempAenable.Text(), "Disabled");
  EXPECT_THAT(Texts(panel.txbStatus), ElementsAre("OK", "OK", "OK", "OK", "ALARM"));
  // Settings are not polled.
  EXPECT_EQ(Ram(31), 3);
}

TEST_F(ChartSensorTest, APollStopsAtItsFirstFailureAndTellsItItself) {
  struct Case {
    Bytes request;
    Bytes next;
  };
  for (const auto& [request, next] : {Case{{129, 14, 143}, {134, 20, 154}},
                                      Case{{134, 20, 154}, {193, 127, 64}}, Case{{193, 127, 64}, {0}}}) {
    panel.SimMode(false);
    session.LastError.clear();
    ground.ui.messages.clear();
    port.Forget();
    const auto answer = port.onOutput;
    FallSilentAt(request);
    for (auto* field : panel.txbCHact) field->SetText("x");
    EXPECT_FALSE(panel.ActionSensorReadM());
    EXPECT_THAT(ground.ui.Texts(), ElementsAre(kNoSensor));
    EXPECT_EQ(ground.ui.messages.at(0).buttons, UserInterface::Buttons::ok);
    EXPECT_EQ(panel.cbxSimulated.Value(), 1);
    EXPECT_EQ(session.LastError, "Can't read from sensor");
    const auto sent = port.Sent();
    EXPECT_EQ(std::search(sent.begin(), sent.end(), next.begin(), next.end()), sent.end());
    EXPECT_THAT(Texts(panel.txbCHact), ElementsAre("x", "x", "x"));
    port.onOutput = answer;
  }
}

TEST_F(ChartSensorTest, ASensorThatIsPulledOffIsToldTwice) {
  ground.pump.After(seconds(5), [this] { PullOff(port); });
  test::RunLoop(ground, panel, seconds(60));
  EXPECT_THAT(ground.ui.Texts(), ElementsAre(kNoSensor, kNoSensor));
  EXPECT_EQ(panel.cbxSimulated.Value(), 1);
  EXPECT_EQ(panel.form.Caption(), "KVX3.0 Simulated mode");
  // The panel simulates from the last values.
  EXPECT_EQ(panel.txbCHact[1].Text(), "812");
}

TEST_F(ChartSensorTest, AWindowThatIsClosedInAPollIsNotToldOfAFailure) {
  ground.pump.After(seconds(5), [this] { PullOff(port); });
  ground.pump.After(seconds(7), [this] { panel.form.Close(); });
  panel.PanelLoop();
  EXPECT_EQ(ground.sessionsEnded, 1);
  EXPECT_TRUE(ground.ui.messages.empty());
}

// Read from sensor

TEST_F(ChartSensorTest, ReadsTheWholeRamAndShowsIt) {
  auto ram = SampleChartRam();
  test::Put(ram, 165, {128 | 23, 112});
  ram[31] = 1;
  Hold(port, ram);
  std::vector<std::string> progress;
  NoteProgress(ground, progress);
  EXPECT_TRUE(panel.ActionSensorRead());
  EXPECT_EQ(port.Sent().size(), 44U * 4);
  EXPECT_EQ(panel.txbKelLevel[0].Text(), "1000");
  EXPECT_EQ(panel.lblDisplayMode.Text(), "CO2 TWA");
  EXPECT_EQ(WholeRam(), ram);
  EXPECT_EQ(panel.cbxSimulated.Value(), 0);
  EXPECT_EQ(session.SensorId, 30);
  EXPECT_FALSE(port.PortOpen());
  EXPECT_THAT(progress, ElementsAre("Reading from sensor"));
}

TEST_F(ChartSensorTest, AReadRestoresTheGasTables) {
  auto channels = test::ChartChannels();
  channels[1].a1 = {2, -1};
  channels[1].k = {-1, -3};
  channels[1].fullScale = 5000;
  ground.Define(104, channels);
  ASSERT_TRUE(ground.definitions.LoadDefinition());
  const auto table = [this] {
    return std::vector<float>(ground.image.EepromImage.begin() + 34, ground.image.EepromImage.begin() + 68);
  };
  const auto before = table();
  ASSERT_EQ(before[30] * 256 + before[31], 5000);
  EXPECT_TRUE(panel.ActionSensorRead());
  EXPECT_EQ(table(), before);
}

TEST_F(ChartSensorTest, AFailedReadLeavesTheCheckBoxSet) {
  PullOff(port);
  EXPECT_FALSE(panel.ActionSensorRead());
  EXPECT_EQ(panel.cbxSimulated.Value(), 1);
  EXPECT_EQ(session.LastError, "Can't read from sensor");
  EXPECT_EQ(panel.txbKelLevel[0].Text(), "800");
}

// Send to sensor

TEST_F(ChartSensorTest, SendsFiveBytesEachSavedOnItsOwn) {
  std::vector<std::string> progress;
  NoteProgress(ground, progress);
  EXPECT_TRUE(panel.ActionSensorWrite());
  EXPECT_THAT(port.sensor.Frames(),
              ElementsAre(Bytes{1, 31, 3, 35}, kSave, Bytes{65, 77, 243, 129}, kSave, Bytes{65, 79, 16, 160},
                          kSave, Bytes{65, 98, 3, 166}, kSave, Bytes{65, 34, 3, 102}, kSave));
  EXPECT_EQ(port.sensor.Count().saves, 5);
  EXPECT_FALSE(port.PortOpen());
  EXPECT_THAT(progress, ElementsAre("Sending to sensor"));
}

TEST_F(ChartSensorTest, ThePortIsClosedBehindEachByte) {
  EXPECT_TRUE(panel.ActionSensorWrite());
  const auto story = port.Story();
  ASSERT_EQ(story.size(), 5U * 8);
  for (std::size_t i = 0; i < story.size(); i += 8) {
    EXPECT_EQ(story[i], "open") << i;
    EXPECT_THAT(std::vector(story.begin() + static_cast<std::ptrdiff_t>(i) + 3,
                            story.begin() + static_cast<std::ptrdiff_t>(i) + 8),
                ElementsAre("254", "161", "0", "161", "close"));
  }
}

TEST_F(ChartSensorTest, SendsNoLevels) {
  panel.txbKelLevel[1].SetText("1500");
  panel.cbxKelrelay[1].SetValue(1);
  panel.txbID.SetText("12");
  EXPECT_TRUE(panel.ActionSensorWrite());
  EXPECT_EQ(Held(port), SampleChartRam());
  // The image has them.
  EXPECT_EQ(Word(170), 6500);
  EXPECT_EQ(Ram(189), 64 | 32 | 16 | 4 | 2 | 1);
  EXPECT_EQ(Ram(208), 12);
}

TEST_F(ChartSensorTest, SendsTheFormsChoices) {
  ground.ui.choices = {1};
  Click(panel.cbxTWAonP0);
  Click(panel.lblCH_Type[0]);
  EXPECT_TRUE(panel.ActionSensorWrite());
  auto expected = SampleChartRam();
  expected[162] = 1;
  expected[205] = 32;
  expected[207] = 32;
  EXPECT_EQ(Held(port), expected);
}

TEST_F(ChartSensorTest, TheVariantOfASensorThatIsSentToBecomes3) {
  auto ram = SampleChartRam();
  ram[226] = 1;
  Hold(port, ram);
  ground.Load(ram);
  EXPECT_TRUE(panel.ActionSensorWrite());
  EXPECT_EQ(port.sensor.Ram()[226], 3);
}

TEST_F(ChartSensorTest, SendingStopsAtItsFirstFailure) {
  const std::vector<Bytes> frames{
      {1, 31, 3, 35}, {65, 77, 243, 129}, {65, 79, 16, 160}, {65, 98, 3, 166}, {65, 34, 3, 102}};
  for (std::size_t failing = 0; failing < frames.size(); ++failing) {
    const auto answer = port.onOutput;
    session.LastError.clear();
    port.Forget();
    port.sensor.ForgetFrames();
    BeforeEachOutput(port, [frame = frames[failing]](const Bytes& bytes) { return bytes != frame; });
    EXPECT_FALSE(panel.ActionSensorWrite());
    EXPECT_EQ(session.LastError, "Can't save to sensor");
    EXPECT_EQ(port.sensor.Frames().size(), 2 * failing);
    EXPECT_FALSE(port.PortOpen());
    port.onOutput = answer;
  }
}

TEST_F(ChartSensorTest, AFailedSaveIsTold) {
  BeforeEachOutput(port, [saving = false](const Bytes& bytes) mutable {
    saving = saving || bytes == Bytes{161};
    return !saving;
  });
  EXPECT_FALSE(panel.ActionSensorWrite());
  EXPECT_EQ(session.LastError, "Can't save to EEPROM");
  EXPECT_THAT(port.sensor.Frames(), ElementsAre(Bytes{1, 31, 3, 35}));
}

TEST_F(ChartSensorTest, ACancelledWriteSendsNoMore) {
  BeforeEachOutput(port, [this](const Bytes& bytes) {
    if (bytes == Bytes{65, 79, 16, 160}) Click(ground.msg.Command1);
    return true;
  });
  EXPECT_FALSE(panel.ActionSensorWrite());
  EXPECT_EQ(session.LastError, "Avbryt");
  const auto frames = port.sensor.Frames();
  EXPECT_EQ(frames.size(), 5U);
  EXPECT_EQ(frames.back(), (Bytes{65, 79, 16, 160}));
}

// TWA reset

TEST_F(ChartSensorTest, ResetsTheAverageOfAnyPartNumber) {
  std::vector<std::string> progress;
  NoteProgress(ground, progress);
  // This generation has no frame for it: the request goes out a hundred times, and nothing behind it.
  EXPECT_FALSE(panel.ActionTWAReset());
  EXPECT_EQ(session.LastError, "Can't reset TWA");
  EXPECT_EQ(port.Sent(), Bytes(100, 254));
  EXPECT_THAT(progress, ElementsAre("TWA reset"));
}

class ChartSensorTest231 : public test::ChartTestOn<SensorPort> {
 protected:
  ChartSensorTest231() : ChartTestOn(bench::SensorSetup{.part = 231, .variant = 1}) {
    ground.Define(231, test::ChartChannels());
    auto ram = SampleChartRam();
    ram[65] = 231;
    Hold(ground.port, ram);
    Show(ram);
    panel.SimMode(false);
    ground.session.LastError.clear();
    ground.port.sensor.ForgetFrames();
  }
};

TEST_F(ChartSensorTest231, ResetsTheAverage) {
  EXPECT_TRUE(panel.ActionTWAReset());
  EXPECT_THAT(ground.port.Sent(), ElementsAre(254, 185, 1, 186));
  EXPECT_EQ(ground.port.sensor.Count().twa_resets, 1);
}

TEST_F(ChartSensorTest231, TheSecondGenerationHasItsOwnSave) {
  EXPECT_TRUE(panel.ActionSensorWrite());
  const auto frames = ground.port.sensor.Frames();
  ASSERT_EQ(frames.size(), 10U);
  for (std::size_t i = 1; i < frames.size(); i += 2) EXPECT_EQ(frames[i], (Bytes{153, 173, 70}));
}

TEST_F(ChartSensorTest231, TheLoopResetsTheAverageAtTheMenusWord) {
  ground.pump.After(seconds(1), [this] {
    EXPECT_TRUE(Click(panel.mTWAreset));
    EXPECT_EQ(ground.msg.Label1.Text(), "Please wait");
  });
  test::RunLoop(ground, panel, seconds(3));
  EXPECT_EQ(ground.port.sensor.Count().twa_resets, 1);
  EXPECT_TRUE(ground.ui.messages.empty());
}

}  // namespace
}  // namespace brelant
