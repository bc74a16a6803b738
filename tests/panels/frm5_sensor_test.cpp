// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>

#include "panels/loop_act.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using test::Bytes;
using test::RamBytes;
using test::SampleRam;
using test::SensorPort;
using testing::ElementsAre;

/// frm5 with a virtual sensor on the line that holds the sample.
class Frm5SensorTest : public test::Frm5TestOn<SensorPort> {
 protected:
  explicit Frm5SensorTest(int part = 104) : Frm5TestOn(bench::SensorSetup{.part = part}), part_(part) {
    ground.Define(part, test::SampleChannels());
    Hold(SampleRam());
    ground.Load(SensorRam());
    panel.FormUpdate();
    panel.SimMode(false);
    ground.session.LastError.clear();
  }

  void Hold(RamBytes ram) {
    ram[65] = static_cast<std::uint8_t>(part_);
    std::copy(ram.begin(), ram.end(), ground.port.sensor.Ram().begin());
  }
  RamBytes SensorRam() {
    RamBytes ram{};
    const auto held = ground.port.sensor.Ram();
    std::copy(held.begin(), held.end(), ram.begin());
    return ram;
  }
  void PullTheSensorOff() { ground.port.onOutput = nullptr; }
  bool Sent(const Bytes& bytes) {
    const auto sent = ground.port.Sent();
    return std::search(sent.begin(), sent.end(), bytes.begin(), bytes.end()) != sent.end();
  }

  test::SensorPort& port = ground.port;
  Session& session = ground.session;

 private:
  int part_;
};

class Frm5SensorTest231 : public Frm5SensorTest {
 protected:
  Frm5SensorTest231() : Frm5SensorTest(231) {}
};

struct Chunk {
  int address;
  int count;
};

std::uint8_t Sum(const Bytes& bytes) {
  int sum = 0;
  for (const auto byte : bytes) sum += byte;
  return static_cast<std::uint8_t>(sum & 255);
}

Bytes RamFrame(int direction, const Chunk& chunk) {
  const bool high = chunk.address >= 128;
  return {static_cast<std::uint8_t>(direction + chunk.count + (high ? 64 : 0)),
          static_cast<std::uint8_t>(chunk.address - (high ? 128 : 0))};
}

// The poll

TEST_F(Frm5SensorTest, APollReadsTheLiveBytesInOrder) {
  EXPECT_TRUE(panel.ActionSensorReadM());
  EXPECT_THAT(port.Sent(),
              ElementsAre(254, 129, 14, 143, 254, 134, 20, 154, 254, 130, 26, 156, 254, 196, 69, 9));
}

TEST_F(Frm5SensorTest, APollKeepsThePortOpen) {
  panel.ActionSensorReadM();
  panel.ActionSensorReadM();
  EXPECT_TRUE(port.PortOpen());
  EXPECT_EQ(port.Of(SensorPort::Act::open).size(), 1U);
  EXPECT_EQ(port.Of(SensorPort::Act::close).size(), 0U);
}

TEST_F(Frm5SensorTest, APollShowsWhatItRead) {
  auto ram = SampleRam();
  test::Put(ram, 20, {28, 132, 23, 112, 19, 136, 19, 236});  // 5000 + 2300, 1000, 0, 100
  test::Put(ram, 197, {16, 0, 48, 0});                       // 4096 and 12288 of 16384
  Hold(ram);
  EXPECT_TRUE(panel.ActionSensorReadM());
  EXPECT_THAT(Texts(panel.txbCHact), ElementsAre("23", "1000", "0", "1"));
  EXPECT_THAT(Texts(panel.txbOutOut), ElementsAre("25", "75"));
}

TEST_F(Frm5SensorTest, APollLeavesTheSettings) {
  auto ram = SampleRam();
  ram[31] = 4;
  ram[208] = 12;
  Hold(ram);
  panel.ActionSensorReadM();
  EXPECT_EQ(Ram(31), 2);
  EXPECT_EQ(Ram(208), 7);
}

TEST_F(Frm5SensorTest, APollStopsAtItsFirstFailure) {
  panel.FormUpdateM();
  PullTheSensorOff();
  for (auto* field : panel.txbCHact) field->SetText("x");
  EXPECT_FALSE(panel.ActionSensorReadM());
  EXPECT_EQ(session.LastError, "Can't read from sensor");
  const auto requests = port.Sent();
  EXPECT_EQ(std::count(requests.begin(), requests.end(), 254), 100);
  EXPECT_THAT(Texts(panel.txbCHact), ElementsAre("x", "x", "x", "x"));
  EXPECT_TRUE(port.PortOpen());
}

TEST_F(Frm5SensorTest, APollStopsAtItsSecondFailure) {
  const auto answer = port.onOutput;
  port.onOutput = [this, answer](const Bytes& bytes) {
    if (!Sent({134, 20, 154})) answer(bytes);
  };
  EXPECT_FALSE(panel.ActionSensorReadM());
  EXPECT_FALSE(Sent({196, 69, 9}));
}

TEST_F(Frm5SensorTest, PollingALiveSensorShowsItsValuesEveryTwoSeconds) {
  std::vector<std::string> seen;
  const auto hold = [this](std::uint8_t high, std::uint8_t low) {
    auto ram = SampleRam();
    test::Put(ram, 22, {high, low});
    Hold(ram);
  };
  ground.pump.After(seconds(3), [&] { hold(23, 112); });
  ground.pump.After(seconds(5), [&] { hold(23, 212); });
  for (const int second : {1, 4, 6}) {
    ground.pump.After(milliseconds(second * 1000 + 500), [&] { seen.push_back(panel.txbCHact[1].Text()); });
  }
  test::RunLoop(ground, panel, seconds(7));
  EXPECT_THAT(seen, ElementsAre("812", "1000", "1100"));
}

TEST_F(Frm5SensorTest, ASensorThatIsPulledOffEndsInSimulatedMode) {
  ground.pump.After(seconds(5), [this] { PullTheSensorOff(); });
  test::RunLoop(ground, panel, seconds(60));
  EXPECT_THAT(ground.ui.Texts(), ElementsAre("No sensor detected, entering simulated mode."));
  EXPECT_EQ(panel.cbxSimulated.Value(), 1);
  // The panel simulates from the last values.
  EXPECT_EQ(panel.txbCHact[1].Text(), "812");
}

// Read from sensor

TEST_F(Frm5SensorTest, ReadsTheWholeRam) {
  EXPECT_TRUE(panel.ActionSensorRead());
  Bytes expected;
  const auto request = [&expected](const Chunk& chunk) {
    auto frame = RamFrame(128, chunk);
    frame.push_back(Sum(frame));
    expected.push_back(254);
    expected.insert(expected.end(), frame.begin(), frame.end());
  };
  for (int address = 0; address < 126; address += 6) request({address, 6});
  request({126, 2});
  for (int address = 128; address < 254; address += 6) request({address, 6});
  request({254, 2});
  EXPECT_EQ(port.Sent(), expected);
  EXPECT_FALSE(port.PortOpen());
}

TEST_F(Frm5SensorTest, ShowsWhatItReadFromTheSensor) {
  auto ram = SampleRam();
  ram[31] = 4;
  test::Put(ram, 163, {149, 25});
  Hold(ram);
  EXPECT_TRUE(panel.ActionSensorRead());
  EXPECT_EQ(panel.lblDisplayMode.Text(), panel.mDisplayMode[4].Text());
  EXPECT_EQ(panel.rows.txbFa[0].Text(), "401");
  EXPECT_EQ(WholeRam(), SensorRam());
}

TEST_F(Frm5SensorTest, AReadDropsWhatWasTyped) {
  test::Type(panel.rows.txbFa[0], "999");
  EXPECT_TRUE(panel.ActionSensorRead());
  EXPECT_EQ(panel.rows.txbFa[0].Text(), "400");
}

TEST_F(Frm5SensorTest, AReadAddressesTheOnlySensorEverAfter) {
  port.sensor.SetId(5);
  session.SensorId = 5;
  EXPECT_TRUE(panel.ActionSensorReadM());
  EXPECT_TRUE(Sent({229, 129, 14, 143}));
  port.Forget();
  EXPECT_TRUE(panel.ActionSensorRead());
  EXPECT_EQ(session.SensorId, 30);
  EXPECT_TRUE(panel.ActionSensorReadM());
  EXPECT_FALSE(Sent({229}));
  EXPECT_TRUE(Sent({254, 129, 14, 143}));
}

TEST_F(Frm5SensorTest, TheCheckBoxIsSetWhileTheSensorIsRead) {
  const auto answer = port.onOutput;
  std::vector<int> values;
  port.onOutput = [&](const Bytes& bytes) {
    values.push_back(panel.cbxSimulated.Value());
    answer(bytes);
  };
  EXPECT_TRUE(panel.ActionSensorRead());
  EXPECT_EQ(values, std::vector<int>(values.size(), 1));
  EXPECT_GT(values.size(), 100U);
  EXPECT_EQ(panel.cbxSimulated.Value(), 0);
}

TEST_F(Frm5SensorTest, AReadKeepsColoursAndTitleOfTheFormerMode) {
  panel.SimMode(true);
  EXPECT_TRUE(panel.ActionSensorRead());
  EXPECT_EQ(panel.cbxSimulated.Value(), 0);
  EXPECT_EQ(panel.form.Caption(), "KVX3.0 Simulated mode");
  EXPECT_EQ(panel.txbCHact[0].Fore(), test::kYellow);
  EXPECT_FALSE(panel.mSendtosensor.Enabled());
}

TEST_F(Frm5SensorTest, AReadShowsItsProgress) {
  const auto answer = port.onOutput;
  std::string text;
  bool bar = false;
  port.onOutput = [&](const Bytes& bytes) {
    text = ground.msg.Label1.Text();
    bar = ground.msg.ProgressBar1.Visible() && ground.msg.Visible();
    answer(bytes);
  };
  panel.ActionSensorRead();
  EXPECT_EQ(text, "Reading from sensor");
  EXPECT_TRUE(bar);
}

TEST_F(Frm5SensorTest, AReadRestoresTheGasTables) {
  auto channels = test::SampleChannels();
  channels[1].a1 = {2, -1};
  channels[1].k = {-1, -3};
  channels[1].fullScale = 5000;
  ground.Define(104, channels);
  ASSERT_TRUE(ground.definitions.LoadDefinition());
  const auto table = [this] {
    return std::vector<float>(ground.image.EepromImage.begin() + 34, ground.image.EepromImage.begin() + 68);
  };
  const auto before = table();
  // Full transmission is no gas at all: 5000.
  ASSERT_EQ(before[30] * 256 + before[31], 5000);
  // 0.2 e^(-0.001 c) halves its way to full scale at c = 686.6: entry 7 of 0 to 15 lies a little beyond.
  const float middle = before[14] * 256 + before[15];
  ASSERT_GT(middle, 5000 + 700);
  ASSERT_LT(middle, 5000 + 800);
  EXPECT_TRUE(panel.ActionSensorRead());
  EXPECT_EQ(table(), before);
}

TEST_F(Frm5SensorTest, AFailedReadLeavesTheCheckBoxSet) {
  PullTheSensorOff();
  EXPECT_FALSE(panel.ActionSensorRead());
  EXPECT_EQ(panel.cbxSimulated.Value(), 1);
  EXPECT_EQ(session.LastError, "Can't read from sensor");
  EXPECT_EQ(panel.rows.txbFa[0].Text(), "400");
  EXPECT_EQ(panel.form.Caption(), "KVX3.0");
  EXPECT_EQ(panel.txbCHact[0].Fore(), test::kGreen);
  EXPECT_FALSE(port.PortOpen());
}

TEST_F(Frm5SensorTest, AFailedReadIsToldByTheLoopWhichPollsNoMore) {
  ground.pump.After(seconds(1), [this] {
    PullTheSensorOff();
    EXPECT_TRUE(test::Click(panel.btnReadFromSensor));
  });
  test::RunLoop(ground, panel, seconds(60));
  EXPECT_THAT(ground.ui.Texts(), ElementsAre("Can't read from sensor"));
}

TEST_F(Frm5SensorTest, ACancelledReadIsSilent) {
  const auto answer = port.onOutput;
  port.onOutput = [this, answer](const Bytes& bytes) {
    answer(bytes);
    if (Sent({134, 36, 170}) && session.LastError.empty()) {
      EXPECT_TRUE(test::Click(ground.msg.Command1));
    }
  };
  ground.pump.After(seconds(1), [this] { test::Click(panel.mReadfromsensor); });
  test::RunLoop(ground, panel, seconds(10));
  EXPECT_TRUE(ground.ui.messages.empty());
  EXPECT_FALSE(Sent({134, 60, 194}));
  EXPECT_EQ(panel.cbxSimulated.Value(), 1);
  EXPECT_FALSE(ground.msg.Visible());
}

// Send to sensor

const std::vector<Chunk> kWritten{{31, 2},  {57, 4},  {61, 2},  {162, 4}, {166, 4}, {170, 4}, {174, 4},
                                  {178, 4}, {182, 4}, {186, 4}, {190, 4}, {194, 3}, {205, 4}, {212, 2},
                                  {216, 4}, {220, 4}, {224, 4}, {228, 4}, {232, 1}};

TEST_F(Frm5SensorTest, SendsTheSettingsAndHasThemSaved) {
  port.sensor.ForgetFrames();
  EXPECT_TRUE(panel.ActionSensorWrite());
  const auto ram = SensorRam();
  std::vector<Bytes> expected;
  for (const auto& chunk : kWritten) {
    auto frame = RamFrame(0, chunk);
    for (int k = 0; k < chunk.count; ++k)
      frame.push_back(ram.at(static_cast<std::size_t>(chunk.address + k)));
    frame.push_back(Sum(frame));
    expected.push_back(frame);
  }
  expected.push_back({161, 0, 161});
  const auto frames = port.sensor.Frames();
  EXPECT_EQ(frames, expected);
  // Three of them by hand.
  EXPECT_THAT(frames[0], ElementsAre(2, 31, 2, 49, 84));
  EXPECT_THAT(frames[1], ElementsAre(4, 57, 244, 153, 160, 167, 17));
  EXPECT_THAT(frames[3], ElementsAre(68, 34, 1, 149, 24, 153, 173));
  EXPECT_EQ(port.sensor.Count().saves, 1);
  EXPECT_FALSE(port.PortOpen());
}

TEST_F(Frm5SensorTest, EveryWriteIsOneOutputBehindItsRequestToSend) {
  EXPECT_TRUE(panel.ActionSensorWrite());
  const auto story = port.Story();
  ASSERT_GE(story.size(), 5U);
  EXPECT_THAT(std::vector(story.begin(), story.begin() + 5),
              ElementsAre("open", "254", "2 31 2 49 84", "254", "4 57 244 153 160 167 17"));
  EXPECT_THAT(std::vector(story.end() - 5, story.end()), ElementsAre("254", "161", "0", "161", "close"));
}

TEST_F(Frm5SensorTest, SendsWhatTheFieldsSay) {
  panel.txbID.SetText("12");
  panel.rows.txbFa[0].SetText("401");
  EXPECT_TRUE(panel.ActionSensorWrite());
  const auto ram = SensorRam();
  EXPECT_EQ(ram[208], 12);
  EXPECT_EQ(ram[163], 149);
  EXPECT_EQ(ram[164], 25);
}

TEST_F(Frm5SensorTest, SendsNothingElse) {
  auto other = SampleRam();
  for (auto& byte : other) byte = static_cast<std::uint8_t>(byte + 1);
  Hold(other);
  EXPECT_TRUE(panel.ActionSensorWrite());
  const auto ram = SensorRam();
  for (int address = 0; address < 256; ++address) {
    const auto at = static_cast<std::size_t>(address);
    const bool written = std::any_of(kWritten.begin(), kWritten.end(), [&](const Chunk& chunk) {
      return address >= chunk.address && address < chunk.address + chunk.count;
    });
    if (address == 65) continue;
    EXPECT_EQ(ram[at], written ? SampleRam()[at] : other[at]) << address;
  }
}

TEST_F(Frm5SensorTest, SendingShowsItsProgress) {
  const auto answer = port.onOutput;
  std::string text;
  port.onOutput = [&](const Bytes& bytes) {
    text = ground.msg.Label1.Text();
    answer(bytes);
  };
  panel.ActionSensorWrite();
  EXPECT_EQ(text, "Sending to sensor");
}

TEST_F(Frm5SensorTest, AFormThatCannotBeTakenIsNotSent) {
  panel.txbOutIntTime[0].SetText("0");
  EXPECT_FALSE(panel.ActionSensorWrite());
  EXPECT_TRUE(port.Events().empty());
  EXPECT_NE(session.LastError, "");
}

TEST_F(Frm5SensorTest, AFailedWriteIsTold) {
  PullTheSensorOff();
  EXPECT_FALSE(panel.ActionSensorWrite());
  EXPECT_EQ(session.LastError, "Can't save to sensor");
  EXPECT_FALSE(port.PortOpen());
}

TEST_F(Frm5SensorTest, AFailedSaveIsTold) {
  const auto answer = port.onOutput;
  bool saving = false;
  port.onOutput = [&](const Bytes& bytes) {
    saving = saving || bytes == Bytes{161};
    if (!saving) answer(bytes);
  };
  EXPECT_FALSE(panel.ActionSensorWrite());
  EXPECT_EQ(session.LastError, "Can't save to EEPROM");
}

TEST_F(Frm5SensorTest, ACancelledWriteSendsNoSave) {
  const auto answer = port.onOutput;
  port.onOutput = [this, answer](const Bytes& bytes) {
    answer(bytes);
    if (bytes.size() > 1 && bytes[1] == 34) test::Click(ground.msg.Command1);
  };
  port.sensor.ForgetFrames();
  EXPECT_FALSE(panel.ActionSensorWrite());
  EXPECT_EQ(session.LastError, "Avbryt");
  EXPECT_EQ(port.sensor.Frames().size(), 4U);
  EXPECT_EQ(port.sensor.Count().saves, 0);
  EXPECT_FALSE(port.PortOpen());
}

TEST_F(Frm5SensorTest231, TheSecondGenerationHasItsOwnSave) {
  EXPECT_TRUE(panel.ActionSensorWrite());
  const auto frames = port.sensor.Frames();
  EXPECT_THAT(frames.back(), ElementsAre(153, 173, 70));
}

// TWA reset

TEST_F(Frm5SensorTest231, ResetsTheAverage) {
  const auto answer = port.onOutput;
  std::string text;
  port.onOutput = [&](const Bytes& bytes) {
    text = ground.msg.Label1.Text();
    answer(bytes);
  };
  EXPECT_TRUE(panel.ActionTWAReset());
  EXPECT_THAT(port.Sent(), ElementsAre(254, 185, 1, 186));
  EXPECT_EQ(port.sensor.Count().twa_resets, 1);
  EXPECT_EQ(text, "TWA reset");
  EXPECT_EQ(session.LastError, "");
}

TEST_F(Frm5SensorTest231, AFailedResetIsTold) {
  PullTheSensorOff();
  EXPECT_FALSE(panel.ActionTWAReset());
  EXPECT_EQ(session.LastError, "Can't reset TWA");
}

TEST_F(Frm5SensorTest, NoOtherProductIsReset) {
  panel.ActionTWAReset();
  EXPECT_TRUE(port.Events().empty());
  EXPECT_EQ(session.LastError, "");
}

// The end of a session in the middle of something

TEST_F(Frm5SensorTest, ClosingTheWindowInTheMiddleOfAReadUnwindsIt) {
  const auto answer = port.onOutput;
  port.onOutput = [this, answer](const Bytes& bytes) {
    answer(bytes);
    if (Sent({134, 36, 170}) && ground.sessionsEnded == 0) {
      ground.pump.After(milliseconds(1), [this] { panel.form.Close(); });
    }
  };
  ground.pump.After(seconds(1), [this] { test::Click(panel.mReadfromsensor); });
  panel.PanelLoop();
  EXPECT_EQ(ground.sessionsEnded, 1);
  EXPECT_TRUE(ground.ui.messages.empty());
  EXPECT_FALSE(port.PortOpen());
  EXPECT_FALSE(Sent({134, 60, 194}));
}

}  // namespace
}  // namespace brelant
