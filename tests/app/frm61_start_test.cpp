// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/program_bench.h"
#include "app/settings_file.h"
#include "panels/frm61_fixture.h"

namespace brelant {
namespace {

using std::chrono::seconds;
using test::Bytes;
using test::kPart61;
using test::kPart7;
using test::Product61;
using test::Sample61;
using test::Sample7;
using test::SampleOf;
using test::SettingsFile;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kSimulation = "C:\\KVX\\Cellar.sim";
constexpr const char* kLast = "C:\\KVX\\last.set";

/// The program with a virtual sensor on its line that holds the sample of a product.
class Bench61 : public test::ProgramBench<test::SensorPort> {
 public:
  explicit Bench61(const Product61& product) : ProgramBench(bench::SensorSetup{.part = product.Part()}) {
    std::ranges::copy(SampleOf(product), port.sensor.Eeprom().begin());
  }

  Panel& Current() { return *program->session.CurrentPanel; }
  std::string TextOf(const std::string& control) { return Control("frm61", control).Text(); }
  /// What the person does when the panel comes, before it is closed.
  void OnPanel(const std::function<void()>& act) {
    When("frm61", [this, act] {
      act();
      Current().form.Close();
    });
  }
  /// The sensor answers no frame from the n-th on, the first being 0.
  void FallSilentAt(std::size_t frame) {
    port.onOutput = [this, frame, answer = port.onOutput](const Bytes& bytes) {
      if (port.sensor.Frames().size() < frame) answer(bytes);
    };
  }
  const std::vector<std::string>& Progress() const { return progress_; }
  void NoteProgress() {
    pump.OnPass([this] {
      const auto& msg = program->msg;
      if (msg.Visible() && (progress_.empty() || progress_.back() != msg.Label1.Text())) {
        progress_.push_back(msg.Label1.Text());
      }
      return false;
    });
  }

 private:
  std::vector<std::string> progress_;
};

/// A simulation of platform 7 has its EEPROM in two blocks.
Bytes Halves(const Bytes& eeprom) {
  return SettingsFile(
      {{10, {eeprom.begin(), eeprom.begin() + 512}}, {11, {eeprom.begin() + 512, eeprom.end()}}});
}

const std::vector<Product61> kProducts{{61, 0}, {61, 1}, {7, 1}, {7, 2}};

TEST(Frm61StartTest, EveryProductHasThePanel) {
  for (const auto& product : kProducts) {
    Bench61 bench(product);
    bench.StartSingle();
    bench.OnPanel([&] {
      EXPECT_EQ(bench.TextOf("txbSN"), product.platform == 61 ? "21501042" : "5001042");
      EXPECT_EQ(bench.TextOf("txbID"), "7");
      EXPECT_EQ(bench.Current().form.Caption(), "BRELANT");
      EXPECT_TRUE(bench.Current().cbxSimulated.Visible());
      EXPECT_EQ(bench.Current().cbxSimulated.Value(), 0);
      EXPECT_TRUE(bench.Current().btnSendToSensor.Enabled());
      EXPECT_EQ(bench.Current().mLoadsettings.Enabled(), product.platform == 61);
      EXPECT_EQ(bench.Control("frm61", "pctAlarm061").Visible(),
                product.platform == 61 && product.variant == 0);
      EXPECT_EQ(bench.Control("frm61", "pctAlarm07").Visible(), product.platform == 7);
    });
    bench.Run();
    EXPECT_EQ(bench.CountShown("frm61"), 1) << product;
    EXPECT_THAT(bench.ui.Texts(), IsEmpty()) << product;
  }
}

TEST(Frm61StartTest, AnotherVariantHasNone) {
  for (const auto& product : {Product61{61, 2}, Product61{61, 3}, Product61{61, 255}, Product61{7, 0},
                              Product61{7, 3}, Product61{7, 255}}) {
    Bench61 bench(product);
    bench.StartSingle();
    bench.Run();
    EXPECT_EQ(bench.CountShown("frm61"), 0) << product;
    EXPECT_THAT(bench.ui.Texts(), ElementsAre(test::kUnknownSensor)) << product;
    EXPECT_EQ(bench.CountShown("frmComSet"), 2) << product;
  }
}

TEST(Frm61StartTest, OnPlatform61ReadsThePartNumberAndThenTheWholeEeprom) {
  Bench61 bench({61, 0});
  bench.NoteProgress();
  bench.StartSingle();
  bench.OnPanel([] {});
  bench.Run();
  const auto frames = bench.port.sensor.Frames();
  ASSERT_EQ(frames.size(), 1U + 86);
  EXPECT_EQ(frames[0], (Bytes{129, 65, 194}));
  EXPECT_EQ(frames[1], (Bytes{142, 0, 142}));
  EXPECT_EQ(frames[86], (Bytes{138, 255, 137}));
  EXPECT_THAT(bench.Progress(), ElementsAre("Please wait", "Reading sensor"));
}

TEST(Frm61StartTest, OnPlatform7ReadsFivePiecesThenTheVariantAndHowTheChannelsAreShown) {
  Bench61 bench({7, 2});
  bench.NoteProgress();
  bench.StartSingle();
  bench.OnPanel([] {});
  bench.Run();
  // An odd address is read with the even one before it, three bytes as four.
  const std::vector<Bytes> expected{{129, 65, 194},     // the part number
                                    {137, 0, 16, 153},  // 16
                                    {140, 3, 66, 209},  {140, 3, 70, 213}, {140, 3, 74, 217},  // 834 to 857
                                    {140, 3, 78, 221},  {140, 3, 82, 225}, {140, 3, 86, 229},  //
                                    {140, 3, 230, 117},                                        // 998 to 1000
                                    {140, 3, 156, 43},  {140, 3, 160, 47}, {137, 3, 164, 48},  // 925 to 932
                                    {140, 1, 128, 13},  {137, 1, 132, 14},                     // 385 to 388
                                    {138, 3, 254, 139},                                        // the variant
                                    {138, 3, 28, 169},  {138, 3, 30, 171}};  // channels 4 and 5, then 6
  EXPECT_EQ(bench.port.sensor.Frames(), expected);
  EXPECT_THAT(bench.Progress(), ElementsAre("Please wait", "Reading sensor"));
}

TEST(Frm61StartTest, OnPlatform7EndsAtTheFirstPieceThatFails) {
  for (std::size_t failing = 1; failing < 14; ++failing) {
    Bench61 bench({7, 2});
    bench.FallSilentAt(failing);
    bench.StartSingle();
    bench.Run();
    EXPECT_EQ(bench.port.sensor.Frames().size(), failing);
    EXPECT_THAT(bench.ui.Texts(), ElementsAre("Can't read from sensor")) << failing;
    EXPECT_EQ(bench.CountShown("frm61"), 0) << failing;
    EXPECT_EQ(bench.CountShown("frmComSet"), 2) << failing;
    EXPECT_FALSE(bench.port.PortOpen());
  }
}

TEST(Frm61StartTest, PollsTheSensor) {
  for (const auto& product : kProducts) {
    Bench61 bench(product);
    const int word = product.platform == 61 ? 5812 : 812;
    bench.port.sensor.Ram()[22] = static_cast<std::uint8_t>(word / 256);
    bench.port.sensor.Ram()[23] = static_cast<std::uint8_t>(word % 256);
    bench.StartSingle();
    std::vector<std::string> seen;
    bench.When("frm61", [&] {
      for (const int second : {1, 3}) {
        bench.After(seconds(second), [&] { seen.push_back(bench.TextOf("txbCHact(1)")); });
      }
      bench.After(seconds(4), [&] { bench.Current().form.Close(); });
    });
    bench.Run();
    // The first poll is held off by the change into live mode.
    EXPECT_THAT(seen, ElementsAre("", product.platform == 61 && product.variant == 1 ? "812" : "0.812"))
        << product;
  }
}

// Simulations

TEST(Frm61StartTest, ASimulationShowsThePanelOfItsProduct) {
  for (const auto& product : kProducts) {
    Bench61 bench({7, 2});
    const auto eeprom = SampleOf(product);
    bench.files.Put(kSimulation, product.platform == 61 ? SettingsFile(10, eeprom) : Halves(eeprom));
    bench.StartSimulated("Cellar");
    bench.OnPanel([&] {
      EXPECT_EQ(bench.TextOf("txbSN"), product.platform == 61 ? "21501042" : "5001042");
      EXPECT_EQ(bench.Current().cbxSimulated.Value(), 1);
      EXPECT_FALSE(bench.Current().cbxSimulated.Visible());
      EXPECT_EQ(bench.Current().form.Caption(), "BRELANT Simulated mode");
      for (const auto* control : {&bench.Current().btnSendToSensor, &bench.Current().btnReadFromSensor,
                                  &bench.Current().mCalibrate}) {
        EXPECT_FALSE(control->Enabled()) << control->Name();
      }
      if (product.platform == 7) {
        EXPECT_EQ(bench.TextOf("lblAlarm7Level(2)"), "19");
        EXPECT_EQ(bench.TextOf("lblDisp(3)"), "Ch 8");
        EXPECT_EQ(bench.TextOf("lblCH_Type(1)"), "%");
      }
    });
    bench.Run();
    EXPECT_EQ(bench.CountShown("frm61"), 1) << product;
    EXPECT_TRUE(bench.port.Events().empty()) << product;
    EXPECT_THAT(bench.ui.Texts(), IsEmpty()) << product;
  }
}

TEST(Frm61StartTest, ASimulationOfPlatform7NeedsItsSecondBlock) {
  Bench61 bench({7, 2});
  const auto eeprom = Sample7(2);
  bench.files.Put(kSimulation, SettingsFile(10, {eeprom.begin(), eeprom.begin() + 512}));
  bench.StartSimulated("Cellar");
  bench.Run();
  EXPECT_EQ(bench.CountShown("frm61"), 0);
  EXPECT_THAT(bench.ui.Texts(), ElementsAre("Setfile error"));
  EXPECT_EQ(bench.CountShown("frmComSet"), 2);
}

TEST(Frm61StartTest, TheSecondBlockMayStandFirst) {
  Bench61 bench({7, 2});
  const auto eeprom = Sample7(1);
  bench.files.Put(kSimulation, SettingsFile({{11, {eeprom.begin() + 512, eeprom.end()}},
                                             {10, {eeprom.begin(), eeprom.begin() + 512}}}));
  bench.StartSimulated("Cellar");
  bench.OnPanel([&] { EXPECT_EQ(bench.TextOf("lblAlarm7Level(1)"), "3"); });
  bench.Run();
  EXPECT_EQ(bench.CountShown("frm61"), 1);
}

TEST(Frm61StartTest, ASimulationOfAnotherVariantHasNoPanel) {
  for (const int variant : {0, 3}) {
    Bench61 bench({7, 2});
    bench.files.Put(kSimulation, Halves(Sample7(variant)));
    bench.StartSimulated("Cellar");
    bench.Run();
    EXPECT_EQ(bench.CountShown("frm61"), 0) << variant;
    EXPECT_THAT(bench.ui.Texts(), ElementsAre(test::kUnknownSensor)) << variant;
  }
}

// The end

TEST(Frm61StartTest, TheEndOnPlatform61KeepsTheSettingsInTheLastFile) {
  for (const int variant : {0, 1}) {
    Bench61 bench({61, variant});
    bench.StartSingle();
    bench.OnPanel([&] { bench.Control("frm61", "txbID").SetText("12"); });
    bench.Run();
    auto expected = Sample61(variant);
    expected[32] = 12;
    EXPECT_EQ(bench.files.Get(kLast), SettingsFile(10, expected));
    // The sensor has not been told.
    EXPECT_EQ(bench.port.sensor.Eeprom()[32], 7);
  }
}

TEST(Frm61StartTest, TheEndOnPlatform7LeavesNoLastFile) {
  Bench61 bench({7, 2});
  bench.files.Put(kLast, SettingsFile(10, Sample61(0)));
  bench.StartSingle();
  bench.OnPanel([] {});
  bench.Run();
  EXPECT_FALSE(bench.files.Exists(kLast));
}

TEST(Frm61StartTest, TheLastSettingsOfPlatform61AreASimulation) {
  Bench61 bench({7, 2});
  auto eeprom = Sample61(0);
  eeprom[32] = 21;
  bench.files.Put(kLast, SettingsFile(10, eeprom));
  bench.files.Put("C:\\KVX\\Last.sim", {1});
  bench.StartSimulated("Last");
  bench.OnPanel([&] { EXPECT_EQ(bench.TextOf("txbID"), "21"); });
  bench.Run();
  EXPECT_EQ(bench.CountShown("frm61"), 1);
}

TEST(Frm61StartTest, ExitEndsTheSession) {
  for (const auto& product : kProducts) {
    Bench61 bench(product);
    bench.StartSingle();
    bench.When("frm61", [&] { EXPECT_TRUE(bench.Click("frm61", "mExit")); });
    bench.Run();
    EXPECT_EQ(bench.CountShown("frmComSet"), 2) << product;
    EXPECT_THAT(bench.ui.Texts(), IsEmpty()) << product;
  }
}

}  // namespace
}  // namespace brelant
