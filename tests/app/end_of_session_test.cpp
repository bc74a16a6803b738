// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/program_bench.h"
#include "app/settings_file.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using test::SampleRam;
using test::SettingsFile5;
using testing::ElementsAre;

constexpr const char* kLast = "C:\\KVX\\last.set";

class EndOfSessionTest : public testing::Test {
 protected:
  frm5& Panel() { return bench.Panel5(); }

  test::SensorBench bench;
};

TEST_F(EndOfSessionTest, StoresThenHidesThenClosesThePort) {
  std::vector<std::string> story;
  bench.StartSingle();
  bench.When("frm5", [&] {
    bench.After(seconds(3), [&] {
      ASSERT_TRUE(bench.port.PortOpen());
      bench.port.Forget();
      bench.files.onWrite = [&](const std::string&) {
        story.push_back(bench.port.PortOpen() && Panel().form.Visible() ? "write" : "write too late");
      };
      bench.onShow = [&](Form& form, bool visible) {
        if (form.Name() == "frm5" && !visible)
          story.push_back(bench.port.PortOpen() ? "hide" : "hide too late");
        if (form.Name() == "frmComSet" && visible)
          story.push_back(bench.port.PortOpen() ? "too early" : "dialog");
      };
      Panel().form.Close();
      EXPECT_FALSE(bench.port.PortOpen());
    });
  });
  bench.Run();
  EXPECT_THAT(story, ElementsAre("write", "hide", "dialog"));
  EXPECT_THAT(bench.port.Story(), ElementsAre("close"));
}

TEST_F(EndOfSessionTest, WritesTheSettings) {
  bench.StartSingle();
  bench.Run();
  const auto file = bench.files.Get(kLast);
  EXPECT_EQ(file, SettingsFile5(SampleRam()));
  // Version 1, length 244 behind 17 bytes, one block of type 1 with 240 bytes.
  ASSERT_EQ(file.size(), 261U);
  EXPECT_EQ(file[0], 1);
  EXPECT_THAT(std::vector(file.begin() + 3, file.begin() + 21),
              ElementsAre(244, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 240, 0));
  EXPECT_EQ(file[21 + 65], 104);
  EXPECT_EQ(file[21 + 112], SampleRam()[128]);
  EXPECT_EQ(file[260], SampleRam()[255]);
}

TEST_F(EndOfSessionTest, TakesTheFormFirst) {
  bench.StartSingle();
  bench.When("frm5", [&] {
    // Neither has reached the image: the ID waits for another reason, the level has not been left.
    auto& form = Panel().form;
    form.GainFocus(Panel().txbID);
    form.ChangeText(Panel().txbID, "12");
    form.GainFocus(Panel().rows.txbFa[0]);
    form.ChangeText(Panel().rows.txbFa[0], "401");
    form.Close();
  });
  bench.Run();
  auto ram = SampleRam();
  ram[208] = 12;
  ram[164] = 25;
  EXPECT_EQ(bench.files.Get(kLast), SettingsFile5(ram));
}

TEST_F(EndOfSessionTest, NothingOfTheOldFileStays) {
  auto old = test::SettingsFile(15, std::vector<std::uint8_t>(542, 255));
  bench.files.Put(kLast, old);
  bench.StartSingle();
  bench.Run();
  EXPECT_EQ(bench.files.Get(kLast), SettingsFile5(SampleRam()));
}

TEST_F(EndOfSessionTest, TheSensorIsLeftAsItIs) {
  bench.StartSingle();
  bench.When("frm5", [&] {
    Panel().rows.txbFa[0].SetText("401");
    Panel().form.Close();
  });
  bench.Run();
  EXPECT_EQ(bench.port.sensor.Ram()[164], 24);
  EXPECT_EQ(bench.port.sensor.Count().saves, 0);
}

TEST_F(EndOfSessionTest, ThenTheDialogComesBack) {
  bench.StartSingle();
  bench.Run();
  EXPECT_EQ(bench.CountShown("frmComSet"), 2);
}

TEST_F(EndOfSessionTest, WithoutTheDialogTheProcessEnds) {
  bench.Store("Dont", "1");
  bench.Store("StartMode0", "True");
  bench.Run();
  EXPECT_EQ(bench.CountShown("frm5"), 1);
  EXPECT_EQ(bench.CountShown("frmComSet"), 0);
  EXPECT_TRUE(bench.program->session.processOver);
  EXPECT_TRUE(bench.files.Exists(kLast));
  EXPECT_FALSE(bench.port.PortOpen());
}

TEST_F(EndOfSessionTest, TheMarkInTheMenuDecidesAboutThisEndAlready) {
  bench.StartSingle();
  bench.When("frm5", [&] {
    bench.Click("frm5", "mComSet");
    Panel().form.Close();
  });
  bench.Run();
  EXPECT_EQ(bench.CountShown("frmComSet"), 1);
  EXPECT_TRUE(bench.program->session.processOver);
}

TEST_F(EndOfSessionTest, TheExitEntryDoesTheSame) {
  bench.StartSingle();
  bench.When("frm5", [&] { EXPECT_TRUE(bench.Click("frm5", "mExit")); });
  bench.Run();
  EXPECT_EQ(bench.files.Get(kLast), SettingsFile5(SampleRam()));
  EXPECT_EQ(bench.CountShown("frmComSet"), 2);
  EXPECT_TRUE(bench.ui.messages.empty());
}

TEST_F(EndOfSessionTest, TheExitCodeDoesTheSame) {
  bench.StartSingle();
  bench.When("frm5", [&] { bench.program->session.PanelCommand = 14; });
  bench.Run();
  EXPECT_EQ(bench.files.Get(kLast), SettingsFile5(SampleRam()));
  EXPECT_EQ(bench.CountShown("frmComSet"), 2);
  EXPECT_TRUE(bench.ui.messages.empty());
}

TEST_F(EndOfSessionTest, APlatformWithoutSettingsDeletesTheOldFileAndWritesNone) {
  // Platforms 7, 8 and 9.
  for (const int part : {32, 40, 154}) {
    test::SensorBench fresh;
    fresh.files.Put(kLast, {1, 2, 3});
    fresh.StartSingle();
    fresh.When("frm5", [&] {
      fresh.program->image.RamImage[65] = static_cast<float>(part);
      fresh.Panel5().form.Close();
    });
    fresh.Run();
    EXPECT_FALSE(fresh.files.Exists(kLast)) << part;
    EXPECT_EQ(fresh.CountShown("frmComSet"), 2);
  }
}

TEST_F(EndOfSessionTest, WithoutAPanelNothingIsStored) {
  bench.files.Put(kLast, {1, 2, 3});
  bench.When("frmComSet", [&] {
    bench.program->main.EndSession();
    bench.Click("frmComSet", "btnExit");
  });
  bench.Run();
  EXPECT_THAT(bench.files.Get(kLast), ElementsAre(1, 2, 3));
}

TEST_F(EndOfSessionTest, APanelThatIsGoneIsNotStoredAgain) {
  bench.StartSingle();
  bench.When("frm5", [&] { Panel().form.Close(); });
  bench.When("frmComSet", [&] {
    bench.files.Put(kLast, {1, 2, 3});
    bench.program->main.EndSession();
    bench.Click("frmComSet", "btnExit");
  });
  bench.Run();
  EXPECT_THAT(bench.files.Get(kLast), ElementsAre(1, 2, 3));
}

TEST_F(EndOfSessionTest, AFileThatCannotBeWrittenDoesNotHoldItUp) {
  bench.files.Break(kLast);
  bench.StartSingle();
  bench.Run();
  EXPECT_EQ(bench.CountShown("frmComSet"), 2);
  EXPECT_FALSE(bench.port.PortOpen());
}

TEST_F(EndOfSessionTest, AFormThatCannotBeTakenDoesNotHoldItUp) {
  bench.StartSingle();
  bench.When("frm5", [&] {
    Panel().txbOutIntTime[0].SetText("0");
    Panel().form.Close();
  });
  bench.Run();
  EXPECT_EQ(bench.files.Get(kLast), SettingsFile5(SampleRam()));
  EXPECT_EQ(bench.CountShown("frmComSet"), 2);
}

TEST_F(EndOfSessionTest, ASecondCloseChangesNothing) {
  bench.StartSingle();
  int writes = 0;
  bench.files.onWrite = [&](const std::string&) { ++writes; };
  bench.When("frm5", [&] {
    Panel().form.Close();
    Panel().form.Close();
  });
  bench.Run();
  EXPECT_EQ(writes, 1);
  EXPECT_EQ(bench.CountShown("frmComSet"), 2);
}

TEST_F(EndOfSessionTest, TheNextSessionCanBeTheLastOneSimulated) {
  bench.files.Put("C:\\KVX\\Last.sim", {1});
  bench.StartSingle();
  bench.When("frm5", [&] {
    Panel().rows.txbFa[0].SetText("401");
    Panel().form.Close();
  });
  bench.StartSimulated("Last");
  std::string level;
  bench.When("frm5", [&] {
    level = Panel().rows.txbFa[0].Text();
    Panel().form.Close();
  });
  bench.Run();
  EXPECT_EQ(level, "401");
}

TEST_F(EndOfSessionTest, ASimulatedSessionIsStoredToo) {
  auto ram = SampleRam();
  ram[31] = 3;
  bench.files.Put("C:\\KVX\\Room.sim", SettingsFile5(ram));
  bench.StartSimulated("Room");
  bench.Run();
  EXPECT_EQ(bench.files.Get(kLast), SettingsFile5(ram));
}

}  // namespace
}  // namespace brelant
