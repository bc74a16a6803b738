// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/program_bench.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using test::Bytes;

/// The window is closed in the middle of whatever the panel does with its sensor.
class InterruptionTest : public testing::Test {
 protected:
  InterruptionTest() { bench.StartSingle(); }

  /// Closes the panel in the pass after these bytes have been sent.
  void CloseAfter(const Bytes& bytes) {
    bench.port.onOutput = [this, bytes, answer = bench.port.onOutput](const Bytes& output) {
      answer(output);
      if (closed || !bench.Sent(bytes)) return;
      closed = true;
      bench.After(milliseconds(1), [this] { bench.Panel5().form.Close(); });
    };
  }
  void ExpectDialogAgain() {
    bench.Run();
    EXPECT_TRUE(closed);
    EXPECT_TRUE(bench.ui.messages.empty());
    EXPECT_EQ(bench.CountShown("frm5"), 1);
    EXPECT_EQ(bench.CountShown("frmComSet"), 2);
    EXPECT_FALSE(bench.port.PortOpen());
    EXPECT_FALSE(bench.program->msg.Visible());
    EXPECT_EQ(bench.program->session.BusBusyText, "");
  }

  test::SensorBench bench;
  bool closed = false;
};

TEST_F(InterruptionTest, InAPoll) {
  bench.When("frm5", [&] {
    bench.port.Forget();
    CloseAfter({134, 20, 154});
  });
  ExpectDialogAgain();
  EXPECT_FALSE(bench.Sent({196, 69, 9}));
}

TEST_F(InterruptionTest, InAReadOfTheSensor) {
  bench.When("frm5", [&] {
    bench.port.Forget();
    CloseAfter({134, 36, 170});
    bench.Click("frm5", "mReadfromsensor");
  });
  ExpectDialogAgain();
  EXPECT_FALSE(bench.Sent({134, 42, 176}));
}

TEST_F(InterruptionTest, InAWriteToTheSensor) {
  bench.When("frm5", [&] {
    bench.port.sensor.ForgetFrames();
    CloseAfter({68, 34});
    bench.Click("frm5", "mSendtosensor");
  });
  ExpectDialogAgain();
  EXPECT_LE(bench.port.sensor.Frames().size(), 4U);
  EXPECT_EQ(bench.port.sensor.Count().saves, 0);
}

TEST_F(InterruptionTest, InASave) {
  bench.When("frm5", [&] {
    bench.port.onOutput = [this, answer = bench.port.onOutput](const Bytes& output) {
      // The sensor takes its time for this one.
      if (output != Bytes{161}) answer(output);
      if (closed || output != Bytes{161}) return;
      closed = true;
      bench.After(milliseconds(500), [this] { bench.Panel5().form.Close(); });
    };
    bench.Click("frm5", "mSendtosensor");
  });
  ExpectDialogAgain();
}

TEST_F(InterruptionTest, InAPollThatGetsNoAnswer) {
  bench.When("frm5", [&] {
    bench.port.onOutput = [](const Bytes&) {};
    bench.After(seconds(4), [&] {
      closed = true;
      bench.Panel5().form.Close();
    });
  });
  ExpectDialogAgain();
}

TEST_F(InterruptionTest, ThroughTheBoxThatGuardsTheCommand) {
  bench.When("frm5", [&] {
    bench.Click("frm5", "mReadfromsensor");
    closed = true;
    EXPECT_TRUE(bench.program->msg.Visible());
    bench.Panel5().form.Close();
    EXPECT_FALSE(bench.Panel5().form.Visible());
  });
  ExpectDialogAgain();
}

TEST_F(InterruptionTest, TheEndOfTheProcessEndsAStartInSilence) {
  // In the probe, in the reading of the sensor, and on the panel.
  for (const int moment : {500, 2300, 6000}) {
    test::SensorBench fresh;
    fresh.StartSingle();
    fresh.When("frm5", [] {});
    fresh.After(milliseconds(moment), [&] { fresh.program->session.processOver = true; });
    fresh.Run();
    EXPECT_TRUE(fresh.ui.messages.empty()) << moment;
    EXPECT_EQ(fresh.CountShown("frmComSet"), 1) << moment;
    EXPECT_EQ(fresh.CountShown("frm5"), moment == 6000 ? 1 : 0);
  }
}

TEST_F(InterruptionTest, TheNextSessionIsAsGoodAsTheFirst) {
  bench.StartSingle();
  bench.When("frm5", [&] {
    CloseAfter({134, 36, 170});
    bench.Click("frm5", "mReadfromsensor");
  });
  std::string value;
  bench.When("frm5", [&] {
    bench.After(seconds(3), [&] {
      value = bench.Panel5().txbCHact[1].Text();
      bench.Panel5().form.Close();
    });
  });
  bench.Run();
  EXPECT_EQ(value, "812");
  EXPECT_TRUE(bench.ui.messages.empty());
}

TEST_F(InterruptionTest, CancelOfACommandKeepsThePanel) {
  std::vector<std::string> seen;
  bench.When("frm5", [&] {
    bench.port.onOutput = [this, answer = bench.port.onOutput](const Bytes& output) {
      answer(output);
      if (output == Bytes{34}) bench.Click("frmMsg", "Command1");
    };
    bench.Click("frm5", "mSendtosensor");
    bench.After(seconds(5), [&] {
      seen.push_back(bench.Panel5().txbCHact[1].Text());
      bench.Panel5().form.Close();
    });
  });
  bench.Run();
  EXPECT_TRUE(bench.ui.messages.empty());
  EXPECT_EQ(seen, std::vector<std::string>{"812"});
}

}  // namespace
}  // namespace brelant
