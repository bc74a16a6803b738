// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/program_bench.h"
#include "app/settings_file.h"
#include "panels/frm5_chart_fixture.h"

namespace brelant {
namespace {

using test::RamBytes;
using test::SampleRam;

constexpr const char* kLast = "C:\\KVX\\last.set";

/// What a session leaves behind is the simulation "Last" of the next process.
class LastSettingsTest : public testing::Test {
 protected:
  LastSettingsTest() { bench.files.Put("C:\\KVX\\Last.sim", {1}); }

  Panel& CurrentPanel() { return *bench.program->session.CurrentPanel; }
  /// A process with a session on the sensor, in which `act` is done on that panel before it is closed.
  void LiveSession(const std::string& panel, const std::function<void()>& act = {}) {
    bench.Make();
    bench.StartSingle();
    CloseAfter(panel, act);
    bench.Run();
  }
  /// Another process, with the simulation of the last session.
  void SimulatedSession(const std::string& panel, const std::function<void()>& act) {
    bench.port.Forget();
    bench.Make();
    bench.StartSimulated("Last");
    CloseAfter(panel, act);
    bench.Run();
    EXPECT_TRUE(bench.port.Events().empty());
    EXPECT_TRUE(bench.ui.messages.empty());
  }
  /// Bytes 112 to 127 have no place in a file.
  static RamBytes AsKept(RamBytes ram) {
    std::fill(ram.begin() + 112, ram.begin() + 128, std::uint8_t{0});
    return ram;
  }

  test::SensorBench bench;
  int looks = 0;

 private:
  void CloseAfter(const std::string& panel, const std::function<void()>& act) {
    bench.When(panel, [this, act] {
      ++looks;
      if (act) act();
      CurrentPanel().form.Close();
    });
  }
};

TEST_F(LastSettingsTest, HoldTheWholeSensorForTheNextProcess) {
  LiveSession("frm5");
  SimulatedSession("frm5", [this] {
    EXPECT_EQ(test::RamOf(bench.program->image), AsKept(SampleRam()));
    EXPECT_EQ(bench.Control("frm5", "txbSN").Text(), "10401042");
    EXPECT_EQ(bench.Control("frm5", "txbFa(0)").Text(), "400");
  });
  EXPECT_EQ(looks, 2);
}

TEST_F(LastSettingsTest, HoldWhatWasTypedAndNeverSent) {
  LiveSession("frm5", [this] { bench.Control("frm5", "txbFa(0)").SetText("401"); });
  SimulatedSession("frm5", [this] { EXPECT_EQ(bench.Control("frm5", "txbFa(0)").Text(), "401"); });
  EXPECT_EQ(looks, 2);
}

TEST_F(LastSettingsTest, GoFromProcessToProcess) {
  LiveSession("frm5");
  for (const char* level : {"402", "403", "404"}) {
    SimulatedSession("frm5", [this, level] { bench.Control("frm5", "txbFa(0)").SetText(level); });
  }
  SimulatedSession("frm5", [this] { EXPECT_EQ(bench.Control("frm5", "txbFa(0)").Text(), "404"); });
  EXPECT_EQ(looks, 5);
}

TEST_F(LastSettingsTest, OfAChartOpenTheChartAgain) {
  auto ram = SampleRam();
  ram[226] = 1;
  ram[162] = 3;
  bench.Hold(ram);
  LiveSession("frm5Chart", [this] { bench.Control("frm5Chart", "txbKelLevel(1)").SetText("1500"); });
  SimulatedSession("frm5Chart", [this] {
    EXPECT_EQ(bench.Control("frm5Chart", "txbKelLevel(1)").Text(), "1500");
    EXPECT_EQ(bench.Control("frm5Chart", "cbxTWAonP0").Value(), 1);
  });
  EXPECT_EQ(looks, 2);
}

TEST_F(LastSettingsTest, AreThoseOfTheNewestSession) {
  LiveSession("frm5");
  auto ram = SampleRam();
  ram[67] = 19;
  bench.Hold(ram);
  LiveSession("frm5");
  SimulatedSession("frm5", [this] { EXPECT_EQ(bench.Control("frm5", "txbSN").Text(), "10401043"); });
  EXPECT_EQ(looks, 3);
}

/// A panel of platform 5, and a sensor's RAM that opens it.
struct Opened {
  const char* panel;
  RamBytes ram;
};

TEST_F(LastSettingsTest, AreTheOldOnesAfterAReadThatFailed) {
  bench.files.Put("C:\\KVX\\DEF00104.PDT", test::DefinitionFile(test::ChartChannels()));
  for (const auto& [panel, ram] :
       {Opened{"frm5", SampleRam()}, Opened{"frm5Chart", test::SampleChartRam()}}) {
    bench.Hold(ram);
    bench.Make();
    bench.StartSingle();
    const auto answer = bench.port.onOutput;
    bench.When(panel, [&, name = panel] {
      bench.port.sensor.ForgetFrames();
      bench.port.onOutput = [&](const test::Bytes& bytes) {
        if (bench.port.sensor.Frames().size() < 20) answer(bytes);
      };
      EXPECT_TRUE(bench.Click(name, "mReadfromsensor"));
      bench.After(std::chrono::seconds(60), [this] { CurrentPanel().form.Close(); });
    });
    bench.Run();
    EXPECT_THAT(bench.ui.Texts(), testing::ElementsAre("Can't read from sensor")) << panel;
    EXPECT_EQ(bench.files.Get(kLast), test::SettingsFile5(ram)) << panel;
    bench.ui.messages.clear();
    bench.port.onOutput = answer;
  }
}

TEST_F(LastSettingsTest, CanBeLoadedIntoTheSensorTheyCameFrom) {
  LiveSession("frm5", [this] { bench.Control("frm5", "txbFa(0)").SetText("401"); });
  std::string level;
  bench.Make();
  bench.StartSingle();
  bench.ui.chosenFiles = {kLast};
  bench.When("frm5", [&] {
    bench.Click("frm5", "mLoadsettings");
    bench.After(std::chrono::seconds(1), [&] {
      level = bench.Control("frm5", "txbFa(0)").Text();
      CurrentPanel().form.Close();
    });
  });
  bench.Run();
  EXPECT_EQ(level, "401");
  EXPECT_TRUE(bench.ui.messages.empty());
}

}  // namespace
}  // namespace brelant
