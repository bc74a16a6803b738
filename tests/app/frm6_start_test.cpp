// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/program_bench.h"
#include "app/settings_file.h"
#include "panels/sample_eeprom.h"

namespace brelant {
namespace {

using std::chrono::seconds;
using test::EepromBytes;
using testing::ElementsAre;

constexpr int kPart = 88;

/// The program with a virtual platform 6 sensor on its line that holds the sample of a variant.
class Bench6 : public test::ProgramBench<test::SensorPort> {
 public:
  explicit Bench6(int variant) : ProgramBench(bench::SensorSetup{.part = kPart, .variant = 0}) {
    std::ranges::copy(OfVariant(variant), port.sensor.Eeprom().begin());
  }

  static EepromBytes OfVariant(int variant) {
    auto eeprom = test::SampleEeprom(kPart);
    if (variant == 4) eeprom[165] = 2;
    if (variant == 2) eeprom[90] = 1;
    eeprom[173] = static_cast<std::uint8_t>(variant == 2 || variant == 4 ? 0 : variant);
    return eeprom;
  }
  Panel& Current() { return *program->session.CurrentPanel; }
  /// What the person does when the panel comes, before it is closed.
  void OnPanel(const std::function<void()>& act) {
    When("frm6", [this, act] {
      act();
      Current().form.Close();
    });
  }
};

std::vector<std::uint8_t> Block10(const EepromBytes& eeprom) {
  return test::SettingsFile(10, {eeprom.begin(), eeprom.end()});
}

TEST(Frm6StartTest, EveryVariantUpTo5HasThePanel) {
  for (const int variant : {0, 1, 2, 3, 4, 5}) {
    Bench6 bench(variant);
    bench.StartSingle();
    std::string identity;
    bench.OnPanel([&] {
      identity = bench.Control("frm6", "txbSN").Text();
      EXPECT_EQ(bench.Current().form.Caption(), "BRELANT");
      EXPECT_TRUE(bench.Current().cbxSimulated.Visible());
      EXPECT_EQ(bench.Current().cbxSimulated.Value(), 0);
      EXPECT_EQ(bench.Control("frm6", "pctOut(0)").Visible(), variant == 0 || variant == 2);
      EXPECT_EQ(bench.Control("frm6", "txbUseMax").Visible(), variant == 1);
    });
    bench.Run();
    EXPECT_EQ(identity, "8801042") << variant;
    EXPECT_EQ(bench.CountShown("frm6"), 1) << variant;
    EXPECT_TRUE(bench.ui.messages.empty()) << variant;
  }
}

TEST(Frm6StartTest, AnotherVariantHasNone) {
  for (const int variant : {7, 255}) {
    Bench6 bench(variant);
    bench.StartSingle();
    bench.Run();
    EXPECT_EQ(bench.CountShown("frm6"), 0) << variant;
    EXPECT_THAT(bench.ui.Texts(), ElementsAre(test::kUnknownSensor)) << variant;
  }
}

TEST(Frm6StartTest, ReadsThePartNumberAndThenTheWholeEeprom) {
  Bench6 bench(0);
  bench.StartSingle();
  bench.OnPanel([] {});
  bench.Run();
  const auto sent = bench.port.Sent();
  // 85 words of six bytes and one of two.
  ASSERT_EQ(sent.size(), 4U + 86 * 4);
  EXPECT_THAT(std::vector(sent.begin(), sent.begin() + 8), ElementsAre(254, 129, 65, 194, 254, 142, 0, 142));
  EXPECT_THAT(std::vector(sent.end() - 4, sent.end()), ElementsAre(254, 138, 255, 137));
}

TEST(Frm6StartTest, ShowsItsProgress) {
  Bench6 bench(0);
  std::vector<std::string> texts;
  bench.pump.OnPass([&] {
    const auto& msg = bench.program->msg;
    if (msg.Visible() && (texts.empty() || texts.back() != msg.Label1.Text()))
      texts.push_back(msg.Label1.Text());
    return false;
  });
  bench.StartSingle();
  bench.OnPanel([] {});
  bench.Run();
  EXPECT_THAT(texts, ElementsAre("Please wait", "Reading sensor"));
}

TEST(Frm6StartTest, PollsTheSensor) {
  Bench6 bench(0);
  bench.port.sensor.Ram()[30] = 22;
  bench.port.sensor.Ram()[31] = 180;
  bench.StartSingle();
  std::vector<std::string> seen;
  bench.When("frm6", [&] {
    for (const int second : {1, 3}) {
      bench.After(seconds(second), [&] { seen.push_back(bench.Control("frm6", "txbCHact(3)").Text()); });
    }
    bench.After(seconds(4), [&] { bench.Current().form.Close(); });
  });
  bench.Run();
  // The first poll is held off by the change into live mode.
  EXPECT_THAT(seen, ElementsAre("", "812"));
}

TEST(Frm6StartTest, ASimulationShowsThePanelOfItsVariant) {
  for (const int variant : {0, 1, 2, 3, 4, 5}) {
    Bench6 bench(0);
    bench.files.Put("C:\\KVX\\Room.sim", Block10(Bench6::OfVariant(variant)));
    bench.StartSimulated("Room");
    bench.OnPanel([&] {
      EXPECT_EQ(bench.Current().cbxSimulated.Value(), 1);
      EXPECT_FALSE(bench.Current().cbxSimulated.Visible());
      EXPECT_FALSE(bench.Current().btnSendToSensor.Enabled());
      EXPECT_EQ(bench.Control("frm6", "txb6v3A1").Visible(), variant == 3);
      EXPECT_EQ(bench.Control("frm6", "cbxDigActive").Visible(), variant == 0 || variant == 2);
    });
    bench.Run();
    EXPECT_EQ(bench.CountShown("frm6"), 1) << variant;
    EXPECT_TRUE(bench.port.Events().empty());
    EXPECT_TRUE(bench.ui.messages.empty());
  }
}

TEST(Frm6StartTest, TheEndKeepsTheSettingsInTheLastFile) {
  Bench6 bench(0);
  bench.StartSingle();
  bench.OnPanel([&] { bench.Control("frm6", "txbFa(0)").SetText("401"); });
  bench.Run();
  auto expected = Bench6::OfVariant(0);
  expected[108] = 25;
  EXPECT_EQ(bench.files.Get("C:\\KVX\\last.set"), Block10(expected));
  // The sensor has not been told.
  EXPECT_EQ(bench.port.sensor.Eeprom()[108], 24);
}

TEST(Frm6StartTest, ExitEndsTheSession) {
  Bench6 bench(0);
  bench.StartSingle();
  bench.When("frm6", [&] { EXPECT_TRUE(bench.Click("frm6", "mExit")); });
  bench.Run();
  EXPECT_EQ(bench.CountShown("frmComSet"), 2);
  EXPECT_TRUE(bench.ui.messages.empty());
  EXPECT_EQ(bench.files.Get("C:\\KVX\\last.set"), Block10(Bench6::OfVariant(0)));
}

}  // namespace
}  // namespace brelant
