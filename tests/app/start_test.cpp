// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/program_bench.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using test::Bytes;
using test::ScriptedPort;
using testing::ElementsAre;

class StartTest : public testing::Test {
 protected:
  frm5& Panel() { return bench.Panel5(); }

  test::SensorBench bench;
};

TEST_F(StartTest, GoesItsStepsInOrder) {
  std::vector<std::string> story;
  const auto sent = [&] {
    std::string text;
    for (const auto byte : bench.port.Sent()) text += std::to_string(byte) + " ";
    return text;
  };
  bench.files.onRead = [&](const std::string& path) { story.push_back(path + " after " + sent()); };
  bench.StartSingle();
  bench.When("frm5", [&] { Panel().form.Close(); });
  bench.Run();
  // The sensor has been asked for its part number and for nothing else when its definition is read.
  EXPECT_THAT(story, ElementsAre("C:\\KVX\\\\DEF00104.PDT after 254 129 65 194 "));
  const auto acts = bench.port.Story();
  ASSERT_GT(acts.size(), 12U);
  EXPECT_THAT(std::vector(acts.begin(), acts.begin() + 13),
              ElementsAre("open", "close", "open", "254", "129", "65", "194", "close", "open", "254", "134",
                          "0", "134"));
  EXPECT_EQ(bench.port.Sent().size(), 4U + 44 * 4);
  EXPECT_THAT(bench.shown, ElementsAre("frmComSet", "-frmComSet", "frmMsg", "-frmMsg", "frm5", "-frm5",
                                       "frmComSet", "-frmComSet"));
  EXPECT_TRUE(bench.ui.messages.empty());
}

TEST_F(StartTest, ListensForTwoSecondsBeforeItSends) {
  bench.StartSingle();
  bench.Run();
  const auto& events = bench.port.Events();
  ASSERT_GE(events.size(), 4U);
  EXPECT_EQ(events[0].act, ScriptedPort::Act::open);
  EXPECT_EQ(events[1].act, ScriptedPort::Act::close);
  // Begun 10 ms after the full second, and rounded to one.
  EXPECT_GE(events[1].at - events[0].at, milliseconds(1980));
  EXPECT_LE(events[1].at - events[0].at, milliseconds(2020));
  EXPECT_GE(events[2].at, events[1].at);
}

TEST_F(StartTest, ReadsTheWholeRamOnce) {
  bench.StartSingle();
  bench.Run();
  std::size_t bytes = 0;
  for (const auto& frame : bench.port.sensor.Frames()) bytes += frame.at(0) & 7U;
  EXPECT_EQ(bytes, 1U + 256);
}

TEST_F(StartTest, ShowsTheLivePanel) {
  bool looked = false;
  bench.StartSingle();
  bench.When("frm5", [&] {
    looked = true;
    auto& panel = Panel();
    EXPECT_TRUE(panel.form.Visible());
    EXPECT_EQ(panel.form.Caption(), "BRELANT");
    EXPECT_TRUE(panel.cbxSimulated.Visible());
    EXPECT_EQ(panel.cbxSimulated.Value(), 0);
    for (const auto* control : {&panel.mReadfromsensor, &panel.mSendtosensor, &panel.mCalibrate,
                                &panel.btnReadFromSensor, &panel.btnSendToSensor}) {
      EXPECT_TRUE(control->Enabled()) << control->Name();
    }
    EXPECT_EQ(panel.mComSet.Value(), 1);
    EXPECT_EQ(panel.txbCHact[0].Fore(), 65280);
    EXPECT_FALSE(bench.program->msg.Visible());
    EXPECT_FALSE(panel.form.Busy());
    EXPECT_EQ(panel.txbSN.Text(), "10401042");
    EXPECT_EQ(panel.rows.txbFa[0].Text(), "400");
    EXPECT_EQ(panel.lblCH_Name[1].Text(), "CO2");
    panel.form.Close();
  });
  bench.Run();
  EXPECT_TRUE(looked);
}

TEST_F(StartTest, TheTitleIsAnotherOneAfterAChangeOfMode) {
  bench.StartSingle();
  bench.When("frm5", [&] {
    bench.Click("frm5", "cbxSimulated");
    EXPECT_EQ(Panel().form.Caption(), "KVX3.0 Simulated mode");
    bench.Click("frm5", "cbxSimulated");
    EXPECT_EQ(Panel().form.Caption(), "KVX3.0");
    Panel().form.Close();
  });
  bench.Run();
  EXPECT_EQ(bench.CountShown("frm5"), 1);
}

TEST_F(StartTest, PollsTheSensor) {
  std::vector<std::string> seen;
  bench.StartSingle();
  bench.When("frm5", [&] {
    bench.After(seconds(1), [&] { seen.push_back(Panel().txbCHact[1].Text()); });
    bench.After(seconds(3), [&] { seen.push_back(Panel().txbCHact[1].Text()); });
    bench.After(seconds(4), [&] { Panel().form.Close(); });
  });
  bench.Run();
  // The first poll is held off by the change into live mode.
  EXPECT_THAT(seen, ElementsAre("", "812"));
  EXPECT_TRUE(bench.ui.messages.empty());
}

TEST_F(StartTest, ShowsWhatItDoes) {
  struct Box {
    std::string text;
    bool bar;
    bool operator==(const Box&) const = default;
  };
  std::vector<Box> boxes;
  const auto look = [&] {
    const auto& msg = bench.program->msg;
    if (!msg.Visible()) return;
    const Box box{msg.Label1.Text(), msg.ProgressBar1.Visible()};
    if (boxes.empty() || !(boxes.back() == box)) boxes.push_back(box);
  };
  bench.pump.OnPass([&] {
    look();
    return false;
  });
  bench.StartSingle();
  bench.Run();
  ASSERT_EQ(boxes.size(), 2U);
  EXPECT_EQ(boxes[0], (Box{"Please wait", false}));
  EXPECT_EQ(boxes[1], (Box{"Reading sensor", true}));
}

TEST_F(StartTest, TakesThePortOfTheDialog) {
  bench.Store("Com", "/dev/ttyUSB7");
  bench.StartSingle();
  bench.Run();
  EXPECT_EQ(bench.port.selected, "/dev/ttyUSB7");
}

TEST_F(StartTest, WithoutTheDialogTheStoredSettingsAreTaken) {
  bench.Store("Dont", "1");
  bench.Store("StartMode1", "True");
  bench.Store("ID", "5");
  bench.port.sensor.SetId(5);
  bool looked = false;
  bench.When("frm5", [&] {
    looked = true;
    EXPECT_EQ(Panel().mComSet.Value(), 0);
    EXPECT_EQ(bench.program->session.SensorId, 5);
    Panel().form.Close();
  });
  bench.Run();
  EXPECT_TRUE(looked);
  EXPECT_EQ(bench.CountShown("frmComSet"), 0);
  EXPECT_EQ(bench.port.Sent().at(0), 229);
}

TEST_F(StartTest, ANetworkSensorIsAddressedByItsId) {
  bench.port.sensor.SetId(17);
  bench.StartNetwork("17");
  bench.Run();
  EXPECT_EQ(bench.CountShown("frm5"), 1);
  const auto sent = bench.port.Sent();
  ASSERT_EQ(sent.size(), 45U * 4);
  for (std::size_t i = 0; i < sent.size(); i += 4) EXPECT_EQ(sent[i], 241) << i;
}

TEST_F(StartTest, ASingleSensorIsAddressedByTheBroadcast) {
  bench.Store("ID", "17");
  bench.StartSingle();
  bench.When("frm5", [&] {
    EXPECT_EQ(bench.program->session.SensorId, 30);
    Panel().form.Close();
  });
  bench.Run();
  EXPECT_EQ(bench.port.Sent().at(0), 254);
}

TEST_F(StartTest, WithNoStartModeSelectedTheSensorIsAddressedByTheBroadcast) {
  bench.When("frmComSet", [&] {
    for (const char* option : {"optStartMode(0)", "optStartMode(1)", "optStartMode(2)"}) {
      EXPECT_EQ(bench.Control("frmComSet", option).Value(), 0);
    }
    bench.Click("frmComSet", "btnStartKVX");
  });
  bench.When("frm5", [&] {
    EXPECT_EQ(bench.program->session.SensorId, 30);
    Panel().form.Close();
  });
  bench.Run();
  EXPECT_EQ(bench.CountShown("frm5"), 1);
  EXPECT_EQ(bench.port.Sent().at(0), 254);
}

TEST_F(StartTest, TheApplicationsPathGetsOneBackslash) {
  for (const char* path : {"C:\\KVX", "C:\\KVX\\", "C:\\KVX/"}) {
    auto& program = bench.Make(path);
    bench.When("frmComSet", [&] {
      EXPECT_EQ(program.session.AppDir, "C:\\KVX\\") << path;
      bench.Click("frmComSet", "btnExit");
    });
    bench.Run();
  }
  EXPECT_EQ(bench.CountShown("frmComSet"), 3);
}

TEST_F(StartTest, ThePanelListIsFilledOnce) {
  std::vector<std::size_t> sizes;
  const auto look = [&] {
    sizes.push_back(bench.program->main.PanelList().size());
    Panel().form.Close();
  };
  for (int session = 0; session < 3; ++session) {
    bench.StartSingle();
    bench.When("frm5", look);
  }
  bench.Run();
  ASSERT_EQ(sizes.size(), 3U);
  EXPECT_EQ(sizes[0], sizes[1]);
  EXPECT_EQ(sizes[0], sizes[2]);
  EXPECT_EQ(bench.program->main.PanelList().front().name, "frm5");
}

TEST_F(StartTest, EverySessionHasAFreshPanel) {
  for (int session = 0; session < 2; ++session) {
    bench.StartSingle();
    bench.When("frm5", [&] {
      EXPECT_EQ(Panel().txbCHact[0].Text(), "");
      Panel().txbCHact[0].SetText("99");
      Panel().form.Close();
    });
  }
  bench.Run();
  EXPECT_EQ(bench.CountShown("frm5"), 2);
}

TEST_F(StartTest, TheNextSessionReadsTheNextSensor) {
  std::vector<std::string> serials;
  for (int session = 0; session < 2; ++session) {
    bench.StartSingle();
    bench.When("frm5", [&] {
      serials.push_back(Panel().txbSN.Text());
      auto ram = test::SampleRam();
      ram[67] = 19;
      bench.Hold(ram);
      Panel().form.Close();
    });
  }
  bench.Run();
  EXPECT_THAT(serials, ElementsAre("10401042", "10401043"));
}

TEST_F(StartTest, APendingCommandDoesNotReachTheNextSession) {
  bench.StartSingle();
  bench.StartSingle();
  bench.When("frm5", [&] {
    bench.Click("frm5", "mSendtosensor");
    Panel().form.Close();
  });
  bench.When("frm5", [&] { bench.After(seconds(5), [&] { Panel().form.Close(); }); });
  bench.Run();
  EXPECT_EQ(bench.port.sensor.Count().saves, 0);
}

TEST_F(StartTest, WhatAPanelStoresAboutTheDialogIsNeverRead) {
  bench.store.values["KVX/Start/Dont"] = "1";
  bench.Run();
  EXPECT_EQ(bench.CountShown("frmComSet"), 1);
  for (const auto& key : bench.store.reads) EXPECT_FALSE(key.starts_with("KVX/")) << key;
}

TEST_F(StartTest, AStoreThatCannotBeUsedDoesNotStopTheProgram) {
  bench.store.broken = true;
  bench.StartSingle();
  bench.Run();
  EXPECT_EQ(bench.CountShown("frm5"), 1);
}

TEST_F(StartTest, LeavingTheDialogEndsTheProcess) {
  bench.Run();
  EXPECT_TRUE(bench.program->session.processOver);
  EXPECT_THAT(bench.shown, ElementsAre("frmComSet", "-frmComSet"));
  EXPECT_TRUE(bench.port.Events().empty());
}

TEST_F(StartTest, ClosingTheDialogEndsTheProcess) {
  bench.When("frmComSet", [&] { bench.program->comSet.form.Close(); });
  bench.Run();
  EXPECT_TRUE(bench.program->session.processOver);
}

}  // namespace
}  // namespace brelant
