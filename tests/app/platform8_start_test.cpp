// SPDX-License-Identifier: GPL-3.0-or-later
// How a session on a unit of platform 8 begins and ends.
#include "app/program_bench.h"
#include "safety/frm8_2Chart.h"

namespace brelant {
namespace {

using std::chrono::seconds;
using test::kUnknownSensor;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kLast = "C:\\KVX\\last.set";

class UnitBench : public test::ProgramBench<test::SensorPort> {
 public:
  explicit UnitBench(const bench::SensorSetup& setup) : ProgramBench(setup) {}

  frm8Chart& Panel() { return dynamic_cast<frm8Chart&>(*program->session.CurrentPanel); }
};

void ExpectRefused(UnitBench& bench, const std::string& text) {
  bench.Run();
  EXPECT_THAT(bench.ui.Texts(), ElementsAre(text));
  EXPECT_EQ(bench.CountShown("frmComSet"), 2);
  EXPECT_EQ(bench.CountShown("frm8Chart") + bench.CountShown("frm8_2Chart"), 0);
  EXPECT_FALSE(bench.port.PortOpen());
}

TEST(Platform8StartTest, EachModelHasItsPanel) {
  for (const auto& [variant, name] : {std::pair{1, "frm8Chart"}, {2, "frm8_2Chart"}}) {
    UnitBench bench({.part = 40, .variant = variant});
    bench.StartSingle();
    bench.When(name, [&, name = name] {
      EXPECT_EQ(bench.Panel().form.Name(), name);
      EXPECT_EQ(bench.Panel().txbSN.Text(), "4001042");
      EXPECT_EQ(bench.Panel().form.Caption(), "BRELANT");
      EXPECT_EQ(bench.Panel().cbxSimulated.Value(), 0);
      EXPECT_TRUE(bench.Panel().cbxSimulated.Visible());
      EXPECT_TRUE(bench.port.PortOpen());
      EXPECT_EQ(bench.Panel().txbKelLevel[0].Text(), "1.5");
      bench.Panel().form.Close();
    });
    bench.Run();
    EXPECT_EQ(bench.CountShown(name), 1);
    EXPECT_THAT(bench.ui.Texts(), IsEmpty());
  }
}

TEST(Platform8StartTest, OtherModelsAndIdentificationsAreRefused) {
  for (const auto& [address, value] :
       {std::pair{4125, 0}, {4125, 3}, {4125, 117}, {4125, 255}, {4124, 0}, {4124, 116}, {4124, 118}}) {
    UnitBench bench({.part = 40, .variant = 1});
    bench.port.sensor.Eeprom()[static_cast<std::size_t>(address)] = static_cast<std::uint8_t>(value);
    bench.StartSingle();
    ExpectRefused(bench, kUnknownSensor);
  }
}

TEST(Platform8StartTest, AUnitThatFallsSilentBeforeItsPanelIsThereLeavesThePortFree) {
  // In the models, the version, and somewhere in the settings.
  for (const std::size_t frames : {2, 3, 6, 9}) {
    UnitBench bench({.part = 40, .variant = 1});
    bench.port.onOutput = [frames, heard = std::size_t{0},
                           answer = bench.port.onOutput](const auto& bytes) mutable {
      for (const auto byte : bytes) heard += byte == 254 ? 1 : 0;
      if (heard <= frames) answer(bytes);
    };
    bench.StartSingle();
    ExpectRefused(bench, "The unit does not answer.");
  }
}

TEST(Platform8StartTest, TheSecondPanelIsFoundWithoutBeingInTheList) {
  UnitBench bench({.part = 175, .variant = 2});
  bench.StartSingle();
  bool isListed = true;
  bench.When("frm8_2Chart", [&] {
    const auto& list = bench.program->main.PanelList();
    isListed =
        std::any_of(list.begin(), list.end(), [](const auto& each) { return each.name == "frm8_2Chart"; });
    bench.Panel().form.Close();
  });
  bench.Run();
  EXPECT_EQ(bench.CountShown("frm8_2Chart"), 1);
  EXPECT_FALSE(isListed);
}

TEST(Platform8StartTest, TheEndSendsNothingAndKeepsNoFile) {
  for (const int variant : {1, 2}) {
    UnitBench bench({.part = 40, .variant = variant});
    bench.files.Put(kLast, {1, 2, 3});
    bench.StartSingle();
    bench.When(variant == 1 ? "frm8Chart" : "frm8_2Chart", [&] {
      bench.Panel().txbKelLevel[4].SetText("29");
      bench.port.Forget();
      bench.Panel().form.Close();
      EXPECT_THAT(bench.port.Sent(), IsEmpty());
      EXPECT_FALSE(bench.port.PortOpen());
      EXPECT_FALSE(bench.files.Exists(kLast));
    });
    bench.Run();
    EXPECT_EQ(bench.CountShown("frmComSet"), 2);
    EXPECT_THAT(bench.ui.Texts(), IsEmpty());
  }
}

TEST(Platform8StartTest, PollsAndChangesTheUnit) {
  UnitBench bench({.part = 168, .variant = 2, .id = 17});
  bench.StartNetwork("17");
  bench.When("frm8_2Chart", [&] {
    bench.After(seconds(3), [&] {
      bench.ui.choices = {1};
      bench.Click("frm8_2Chart", "lblCH_Type(0)");
    });
    bench.After(seconds(9), [&] {
      EXPECT_GE(bench.program->session.polls, 3U);
      EXPECT_EQ(bench.Panel().txbKelLevel[3].Text(), "69.8");
      EXPECT_GT(std::stod(bench.Panel().txbCHact[0].Text()), 60);
      bench.Panel().form.Close();
    });
  });
  bench.Run();
  EXPECT_EQ(bench.port.sensor.Eeprom()[7964], 10);
  EXPECT_THAT(bench.ui.Texts(), IsEmpty());
  const auto sent = bench.port.Sent();
  EXPECT_EQ(sent.front(), 241);
}

}  // namespace
}  // namespace brelant
