// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/program_bench.h"
#include "app/settings_file.h"

namespace brelant {
namespace {

using std::chrono::seconds;
using test::kUnknownSensor;
using test::SampleRam;
using test::SettingsFile;
using test::SettingsFile5;
using test::SettingsFileEeprom;
using testing::ElementsAre;

class SimulatedStartTest : public testing::Test {
 protected:
  void PutSimulation(const std::string& name, const std::vector<std::uint8_t>& file) {
    bench.files.Put("C:\\KVX\\" + name, file);
  }
  void ExpectRefused(const std::vector<std::string>& messages) {
    bench.Run();
    EXPECT_EQ(bench.ui.Texts(), messages);
    EXPECT_EQ(bench.CountShown("frm5"), 0);
    EXPECT_EQ(bench.CountShown("frmComSet"), 2);
    EXPECT_FALSE(bench.program->msg.Visible());
  }
  /// The lines of the list and the one in its box, each time that it comes.
  void Look() {
    bench.When("frmSim", [this] {
      const auto& list = bench.Control("frmSim", "cmbTypeOfS");
      lists.push_back(list.Items());
      chosen.push_back(list.Text());
      bench.Click("frmSim", "Command2");
    });
  }
  void ChooseSimulatedMode() {
    bench.When("frmComSet", [this] {
      bench.Click("frmComSet", "optStartMode(2)");
      bench.Click("frmComSet", "btnStartKVX");
    });
  }

  test::PartBench bench;
  std::vector<std::vector<std::string>> lists;
  std::vector<std::string> chosen;
};

TEST_F(SimulatedStartTest, OffersTheSimulationsBesideTheProgram) {
  for (const char* name : {"Vega 3.sim", "Last.sim", "B.SIM", "C.Sim", "D.simx", "E.set", "sim", ".sim"}) {
    PutSimulation(name, {1});
  }
  bench.files.Put("C:\\Other\\F.sim", {1});
  ChooseSimulatedMode();
  Look();
  bench.Run();
  ASSERT_EQ(lists.size(), 1U);
  EXPECT_THAT(lists[0], testing::UnorderedElementsAre("Vega 3", "Last", "B", "C", ""));
  EXPECT_EQ(chosen[0], lists[0].front());
}

TEST_F(SimulatedStartTest, FillsTheListOncePerProcess) {
  PutSimulation("A.sim", {1});
  PutSimulation("B.sim", {1});
  ChooseSimulatedMode();
  Look();
  ChooseSimulatedMode();
  bench.When("frmSim", [&] {
    auto& list = bench.Control("frmSim", "cmbTypeOfS");
    list.Owner().Choose(list, "B");
    PutSimulation("C.sim", {1});
    bench.Click("frmSim", "Command2");
  });
  ChooseSimulatedMode();
  Look();
  bench.Run();
  ASSERT_EQ(lists.size(), 2U);
  EXPECT_THAT(lists[0], ElementsAre("A", "B"));
  EXPECT_EQ(chosen[0], "A");
  EXPECT_THAT(lists[1], ElementsAre("A", "B"));
  EXPECT_EQ(chosen[1], "B");
}

TEST_F(SimulatedStartTest, ShowsTheSimulatedPanel) {
  PutSimulation("Room.sim", SettingsFile5(SampleRam()));
  bench.StartSimulated("Room");
  bool looked = false;
  bench.When("frm5", [&] {
    looked = true;
    auto& panel = bench.Panel5();
    EXPECT_EQ(panel.form.Caption(), "BRELANT Simulated mode");
    EXPECT_FALSE(panel.cbxSimulated.Visible());
    EXPECT_EQ(panel.cbxSimulated.Value(), 1);
    for (const auto* control : {&panel.mReadfromsensor, &panel.mSendtosensor, &panel.mCalibrate,
                                &panel.btnReadFromSensor, &panel.btnSendToSensor}) {
      EXPECT_FALSE(control->Enabled()) << control->Name();
    }
    EXPECT_EQ(panel.txbCHact[0].Fore(), 65535);
    EXPECT_EQ(panel.mComSet.Value(), 1);
    EXPECT_TRUE(panel.trigger.btnDigTrig.Visible());
    EXPECT_EQ(panel.txbSN.Text(), "10401042");
    EXPECT_EQ(panel.rows.txbFb[3].Text(), "1000");
    EXPECT_EQ(bench.program->session.SensorId, 30);
    bench.After(seconds(10), [&] { bench.Panel5().form.Close(); });
  });
  bench.Run();
  EXPECT_TRUE(looked);
  EXPECT_TRUE(bench.ui.messages.empty());
  // A simulated sensor needs no port at all.
  EXPECT_TRUE(bench.port.Events().empty());
}

TEST_F(SimulatedStartTest, ShowsThatItWaits) {
  PutSimulation("Room.sim", SettingsFile5(SampleRam()));
  bench.StartSimulated("Room");
  bench.Run();
  EXPECT_THAT(bench.shown, ElementsAre("frmComSet", "-frmComSet", "frmSim", "-frmSim", "frmMsg", "-frmMsg",
                                       "frm5", "-frm5", "frmComSet", "-frmComSet"));
}

TEST_F(SimulatedStartTest, CancelLeadsBackToTheDialogInSilence) {
  PutSimulation("Room.sim", SettingsFile5(SampleRam()));
  ChooseSimulatedMode();
  ExpectRefused({});
}

TEST_F(SimulatedStartTest, LastWithoutAFile) {
  PutSimulation("Last.sim", {1});
  bench.StartSimulated("Last");
  ExpectRefused({"File not found C:\\KVX\\\\Last.set"});
}

TEST_F(SimulatedStartTest, LastIsThePreviousSession) {
  PutSimulation("Last.sim", {1});
  auto ram = SampleRam();
  ram[31] = 4;
  bench.files.Put("C:\\KVX\\last.set", SettingsFile5(ram));
  bench.StartSimulated("Last");
  std::string mode;
  bench.When("frm5", [&] {
    mode = bench.Panel5().lblDisplayMode.Text();
    EXPECT_EQ(mode, bench.Panel5().mDisplayMode[4].Text());
    bench.Panel5().form.Close();
  });
  bench.Run();
  EXPECT_NE(mode, "");
}

TEST_F(SimulatedStartTest, Vega3NeedsNoFile) {
  PutSimulation("Vega 3.sim", {1});
  int reads = 0;
  bench.files.onRead = [&](const std::string&) { ++reads; };
  bench.StartSimulated("Vega 3");
  SensorImage seen;
  bench.When("frmZ7731Chart", [&] {
    seen = bench.program->image;
    bench.program->session.CurrentPanel->form.Close();
  });
  bench.Run();
  EXPECT_EQ(seen.RamImage[65], 154);
  EXPECT_TRUE(seen.RamValid[65]);
  EXPECT_EQ(seen.EepromImage[4124], 117);
  EXPECT_EQ(seen.EepromImage[4125], 3);
  EXPECT_TRUE(seen.EepromValid[4124]);
  EXPECT_TRUE(seen.EepromValid[4125]);
  EXPECT_EQ(std::count(seen.EepromValid.begin(), seen.EepromValid.end(), true), 2);
  EXPECT_EQ(std::count(seen.RamValid.begin(), seen.RamValid.end(), true), 1);
  EXPECT_EQ(reads, 0);
  EXPECT_TRUE(bench.port.Events().empty());
}

TEST_F(SimulatedStartTest, APlatformWithoutAPanel) {
  // Platform 8, which is not simulated, and a part number that has none.
  for (const int part : {40, 168, 64}) {
    PutSimulation("Room.sim", SettingsFileEeprom(static_cast<std::uint8_t>(part)));
    bench.shown.clear();
    bench.ui.messages.clear();
    bench.program.reset();
    bench.StartSimulated("Room");
    ExpectRefused({kUnknownSensor});
    EXPECT_TRUE(bench.port.Events().empty()) << part;
  }
}

TEST_F(SimulatedStartTest, AVariantWithoutAPanel) {
  auto ram = SampleRam();
  ram[226] = 4;
  PutSimulation("Room.sim", SettingsFile5(ram));
  bench.StartSimulated("Room");
  ExpectRefused({kUnknownSensor});
}

TEST_F(SimulatedStartTest, AMissingDefinition) {
  auto ram = SampleRam();
  ram[65] = 110;
  PutSimulation("Room.sim", SettingsFile5(ram));
  bench.StartSimulated("Room");
  ExpectRefused({"Can't find file: C:\\KVX\\\\DEF00110.PDT, "});
}

TEST_F(SimulatedStartTest, ADamagedFile) {
  const auto whole = SettingsFile5(SampleRam());
  auto changed = whole;
  changed[100] = static_cast<std::uint8_t>(changed[100] + 1);
  auto cut = whole;
  cut.resize(17);
  auto empty = whole;
  empty[3] = empty[4] = 0;
  for (const auto& file : {changed, cut, empty, std::vector<std::uint8_t>()}) {
    PutSimulation("Room.sim", file);
    bench.shown.clear();
    bench.ui.messages.clear();
    bench.program.reset();
    bench.StartSimulated("Room");
    ExpectRefused({"File is damaged C:\\KVX\\\\Room.sim"});
  }
}

TEST_F(SimulatedStartTest, AFileWithoutSettings) {
  PutSimulation("Room.sim", SettingsFile(15, std::vector<std::uint8_t>(542)));
  bench.StartSimulated("Room");
  ExpectRefused({"Setfile error"});
}

TEST_F(SimulatedStartTest, AFileThatCannotBeRead) {
  PutSimulation("Room.sim", SettingsFile5(SampleRam()));
  bench.files.Break("C:\\KVX\\Room.sim");
  bench.StartSimulated("Room");
  bench.Run();
  ASSERT_EQ(bench.ui.messages.size(), 1U);
  EXPECT_NE(bench.ui.messages[0].text, "");
  EXPECT_EQ(bench.CountShown("frmComSet"), 2);
}

TEST_F(SimulatedStartTest, AFolderInPlaceOfTheFile) {
  PutSimulation("Last.sim", {1});
  bench.files.PutFolder("C:\\KVX\\last.set");
  bench.StartSimulated("Last");
  bench.Run();
  EXPECT_EQ(bench.ui.messages.size(), 1U);
  EXPECT_EQ(bench.CountShown("frmComSet"), 2);
}

TEST_F(SimulatedStartTest, NonsenseIsRefusedOrShownButNeverFatal) {
  std::uint32_t seed = 7;
  const auto any = [&seed] {
    seed = seed * 1664525 + 1013904223;
    return static_cast<std::uint8_t>(seed >> 24);
  };
  for (int round = 0; round < 60; ++round) {
    std::vector<std::uint8_t> payload(static_cast<std::size_t>(round) * 11);
    for (auto& byte : payload) byte = any();
    auto file = SettingsFile(any() % 24, payload);
    if (round % 3 == 0 && file.size() > 24) file[18 + any() % 5] = any();
    PutSimulation("Room.sim", file);
    bench.program.reset();
    bench.StartSimulated("Room");
    bench.When("frm6", [&] { bench.program->session.CurrentPanel->form.Close(); });
    EXPECT_NO_THROW(bench.Run()) << round;
  }
}

TEST_F(SimulatedStartTest, WithoutAnySimulationNothingIsFound) {
  bench.StartSimulated({});
  ExpectRefused({"File not found C:\\KVX\\\\.sim"});
}

TEST_F(SimulatedStartTest, SimulatedModeIsNotRemembered) {
  PutSimulation("Room.sim", SettingsFile5(SampleRam()));
  bench.StartSimulated("Room");
  bench.Run();
  bench.program.reset();
  bench.When("frmComSet", [&] {
    EXPECT_EQ(bench.Control("frmComSet", "optStartMode(0)").Value(), 1);
    EXPECT_EQ(bench.Control("frmComSet", "optStartMode(2)").Value(), 0);
    bench.Click("frmComSet", "btnExit");
  });
  bench.Run();
}

}  // namespace
}  // namespace brelant
