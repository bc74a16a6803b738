// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/program_bench.h"
#include "app/settings_file.h"

namespace brelant {
namespace {

using std::chrono::seconds;
using test::SampleRam;
using testing::ElementsAre;

class ChartStartTest : public testing::Test {
 protected:
  static test::RamBytes OfVariant(int variant) {
    auto ram = SampleRam();
    ram[226] = static_cast<std::uint8_t>(variant);
    return ram;
  }

  test::SensorBench bench;
};

TEST_F(ChartStartTest, TheVariantChoosesThePanel) {
  struct Case {
    int variant;
    const char* panel;
  };
  for (const auto& [variant, panel] : {Case{0, "frm5"}, Case{1, "frm5Chart"}, Case{2, "frm5Chart"},
                                       Case{3, "frm5Chart"}, Case{4, ""}, Case{255, ""}}) {
    test::SensorBench fresh;
    fresh.Hold(OfVariant(variant));
    fresh.StartSingle();
    fresh.When("frm5Chart", [&] { fresh.program->session.CurrentPanel->form.Close(); });
    fresh.Run();
    for (const char* name : {"frm5", "frm5Chart"}) {
      EXPECT_EQ(fresh.CountShown(name), name == std::string(panel) ? 1 : 0) << variant;
    }
    EXPECT_EQ(fresh.ui.Texts().size(), *panel == 0 ? 1U : 0U) << variant;
    if (*panel == 0) {
      EXPECT_THAT(fresh.ui.Texts(), ElementsAre(test::kUnknownSensor));
    }
  }
}

TEST_F(ChartStartTest, ASimulatedSensorChoosesItTheSameWay) {
  bench.files.Put("C:\\KVX\\Cellar.sim", test::SettingsFile5(OfVariant(2)));
  bench.StartSimulated("Cellar");
  bench.When("frm5Chart", [&] {
    auto& panel = *bench.program->session.CurrentPanel;
    EXPECT_EQ(panel.cbxSimulated.Value(), 1);
    EXPECT_FALSE(panel.cbxSimulated.Visible());
    EXPECT_FALSE(panel.mCalibrate.Enabled());
    panel.form.Close();
  });
  bench.Run();
  EXPECT_EQ(bench.CountShown("frm5Chart"), 1);
  EXPECT_TRUE(bench.port.Events().empty());
}

TEST_F(ChartStartTest, ThePanelListHoldsThePanelsInOrder) {
  auto& program = bench.Make();
  bench.StartSingle();
  std::vector<std::string> names;
  bench.When("frm5", [&] {
    for (const auto& entry : program.main.PanelList()) names.push_back(entry.name);
    program.session.CurrentPanel->form.Close();
  });
  bench.Run();
  EXPECT_THAT(names, ElementsAre("frm5", "frm5Chart", "frm6", "frm61", "frm8Chart", "frmZ7731Chart"));
}

TEST_F(ChartStartTest, ShowsTheLivePanelAndPolls) {
  bench.Hold(OfVariant(1));
  bench.StartSingle();
  std::string before;
  std::string after;
  bench.When("frm5Chart", [&] {
    auto& panel = *bench.program->session.CurrentPanel;
    EXPECT_EQ(panel.form.Caption(), "BRELANT");
    EXPECT_TRUE(panel.cbxSimulated.Visible());
    EXPECT_TRUE(panel.mCalibrate.Enabled());
    EXPECT_EQ(panel.form.Find("txbSN")->Text(), "10401042");
    EXPECT_EQ(panel.form.Find("txbVersion")->Text(), "1");
    before = panel.form.Find("txbCHact(1)")->Text();
    bench.After(seconds(4), [&] {
      after = bench.Control("frm5Chart", "txbCHact(1)").Text();
      bench.program->session.CurrentPanel->form.Close();
    });
  });
  bench.Run();
  EXPECT_EQ(before, "");
  EXPECT_EQ(after, "812");
  EXPECT_TRUE(bench.ui.messages.empty());
}

TEST_F(ChartStartTest, OneAfterTheOtherEachSensorGetsItsPanel) {
  bench.StartSingle();
  bench.When("frm5", [&] {
    bench.Hold(OfVariant(1));
    bench.program->session.CurrentPanel->form.Close();
  });
  bench.StartSingle();
  bench.When("frm5Chart", [&] {
    bench.Hold(OfVariant(0));
    bench.program->session.CurrentPanel->form.Close();
  });
  bench.StartSingle();
  bench.Run();
  EXPECT_EQ(bench.CountShown("frm5"), 2);
  EXPECT_EQ(bench.CountShown("frm5Chart"), 1);
}

TEST_F(ChartStartTest, ExitOfTheChartEndsTheSessionAndKeepsItsSettings) {
  bench.Hold(OfVariant(1));
  bench.StartSingle();
  bench.When("frm5Chart", [&] { EXPECT_TRUE(bench.Click("frm5Chart", "mExit")); });
  bench.Run();
  EXPECT_EQ(bench.CountShown("frmComSet"), 2);
  EXPECT_TRUE(bench.ui.messages.empty());
  const auto file = bench.files.Get("C:\\KVX\\last.set");
  ASSERT_EQ(file.size(), 261U);
  // The form stores variant 3, in the file and not in the sensor.
  EXPECT_EQ(file[21 + 112 + 226 - 128], 3);
  EXPECT_EQ(bench.port.sensor.Ram()[226], 1);
}

}  // namespace
}  // namespace brelant
