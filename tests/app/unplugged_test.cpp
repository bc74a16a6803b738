// SPDX-License-Identifier: GPL-3.0-or-later
#include <set>

#include "app/program_bench.h"

namespace brelant {
namespace {

using std::chrono::seconds;
using test::SensorBench;

constexpr const char* kLocked = "This port is locked by other devise";
constexpr const char* kNoRead = "Can't read from sensor";
constexpr const char* kNoWrite = "Can't save to sensor";
constexpr const char* kNoSave = "Can't save to EEPROM";
constexpr const char* kNoSensor = "No sensor detected, entering simulated mode.";

/// How many operations of the port a session has seen when each of its stages is over.
struct Stages {
  int probe = 0;
  int start = 0;
  int polls = 0;
  int sending = 0;
  int reading = 0;
};

/// A session with a start, polls, a sending, a reading and an end.
Stages RunSession(SensorBench& bench) {
  Stages stages;
  const auto operations = [&bench] { return bench.port.Operations(); };
  bench.StartSingle();
  bench.port.onOutput = [&, answer = bench.port.onOutput](const test::Bytes& bytes) {
    // The first thing sent comes right after the probe.
    if (stages.probe == 0) stages.probe = operations() - 1;
    answer(bytes);
  };
  bench.When("frm5", [&] {
    stages.start = operations();
    bench.After(seconds(3), [&] {
      stages.polls = operations();
      bench.Click("frm5", "mSendtosensor");
    });
    bench.After(seconds(7), [&] {
      stages.sending = operations();
      bench.Click("frm5", "mReadfromsensor");
    });
    bench.After(seconds(11), [&] { stages.reading = operations(); });
    bench.After(seconds(40), [&bench] { bench.Panel5().form.Close(); });
  });
  bench.Run();
  return stages;
}

void ExpectTold(SensorBench& bench, int failAt, const std::set<std::string>& texts, bool panelCame) {
  const auto told = bench.ui.Texts();
  EXPECT_FALSE(told.empty()) << failAt;
  for (const auto& text : told) EXPECT_EQ(texts.count(text), 1U) << text << " at " << failAt;
  EXPECT_EQ(bench.CountShown("frm5"), panelCame ? 1 : 0) << failAt;
  EXPECT_EQ(bench.CountShown("frmComSet"), 2) << failAt;
  EXPECT_TRUE(bench.program->session.processOver) << failAt;
  EXPECT_FALSE(bench.port.PortOpen()) << failAt;
}

/// The port fails at one of the operations from `first` to `last`, every `step`-th of them tried, for ever or
/// once.
void FailIn(int first, int last, int step, const std::set<std::string>& texts, bool panelCame) {
  for (const bool forEver : {true, false}) {
    for (int failAt = first; failAt <= last; failAt += step) {
      SensorBench bench;
      bench.port.failAt = failAt;
      bench.port.staysBroken = forEver;
      ASSERT_NO_THROW(RunSession(bench)) << failAt;
      ExpectTold(bench, failAt, texts, panelCame);
    }
  }
}

class UnpluggedTest : public testing::Test {
 protected:
  UnpluggedTest() {
    SensorBench bench;
    stages = RunSession(bench);
    EXPECT_TRUE(bench.ui.messages.empty());
  }

  Stages stages;
};

TEST_F(UnpluggedTest, TheSessionIsWholeWhenNothingFails) {
  EXPECT_GT(stages.probe, 3);
  EXPECT_GT(stages.start, stages.probe + 44 * 4);
  EXPECT_GT(stages.polls, stages.start + 4 * 4);
  EXPECT_GT(stages.sending, stages.polls + 20 * 2);
  EXPECT_GT(stages.reading, stages.sending + 44 * 4);
}

TEST_F(UnpluggedTest, InTheProbe) {
  // Opened and emptied; what follows is the probe still, or the way to the first reading.
  FailIn(1, 2, 1, {kLocked}, false);
  FailIn(3, stages.probe, 1, {kLocked, kNoRead}, false);
}

TEST_F(UnpluggedTest, InTheStart) {
  FailIn(stages.probe + 1, stages.start, 11, {kNoRead}, false);
}

TEST_F(UnpluggedTest, InAPoll) {
  FailIn(stages.start + 1, stages.polls, 3, {kNoSensor}, true);
}

TEST_F(UnpluggedTest, InASending) {
  FailIn(stages.polls + 1, stages.sending, 17, {kNoWrite, kNoSave, kNoSensor}, true);
}

TEST_F(UnpluggedTest, InAReading) {
  FailIn(stages.sending + 1, stages.reading, 29, {kNoRead, kNoSensor}, true);
}

TEST_F(UnpluggedTest, ThePanelThatIsLeftAloneSimulates) {
  SensorBench bench;
  bench.port.failAt = stages.polls + 200;
  bench.port.staysBroken = true;
  bench.StartSingle();
  bench.When("frm5", [&] {
    bench.After(seconds(60), [&] {
      auto& panel = bench.Panel5();
      EXPECT_EQ(panel.cbxSimulated.Value(), 1);
      EXPECT_TRUE(panel.form.Visible());
      auto& form = panel.form;
      form.GainFocus(panel.txbOutBaseLine[0]);
      form.ChangeText(panel.txbOutBaseLine[0], "33");
      form.LoseFocus(panel.txbOutBaseLine[0]);
      EXPECT_EQ(panel.txbOutBaseLine[0].Text(), "33");
      form.Close();
    });
  });
  bench.Run();
  EXPECT_EQ(bench.ui.Texts(), std::vector<std::string>{kNoSensor});
}

}  // namespace
}  // namespace brelant
