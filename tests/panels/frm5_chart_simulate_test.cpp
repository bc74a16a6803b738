// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/frm5_chart_fixture.h"
#include "panels/loop_act.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using test::ChartTest;
using test::Click;
using testing::ElementsAre;

class ChartSimulateTest : public ChartTest {
 protected:
  ChartSimulateTest() { panel.SimMode(true); }

  /// The status after one pass, with a level and a live value that read so.
  std::string Status(int alarm, const std::string& level, int live, const std::string& value) {
    panel.txbKelLevel[alarm].SetText(level);
    panel.txbCHact[live].SetText(value);
    panel.Simulate();
    const auto& status = panel.txbStatus[alarm];
    EXPECT_EQ(status.Back(), status.Text() == "ALARM" ? 255 : 65280);
    return status.Text();
  }
};

TEST_F(ChartSimulateTest, ThePreAlarmComesAtItsLevelOfCO2WithTWAOn) {
  panel.txbCHact[2].SetText("9999");
  EXPECT_EQ(Status(0, "800", 1, "799"), "OK");
  EXPECT_EQ(Status(0, "800", 1, "800"), "ALARM");
  EXPECT_EQ(Status(0, "800", 1, "801"), "ALARM");
}

TEST_F(ChartSimulateTest, ThePreAlarmComesAtItsLevelOfTheAverageWithTWAOff) {
  TakeTWAOff();
  panel.txbCHact[1].SetText("9999");
  EXPECT_EQ(Status(0, "0.8", 2, "0.799"), "OK");
  EXPECT_EQ(Status(0, "0.8", 2, "0.8"), "ALARM");
  panel.txbCHact[1].SetText("0");
  EXPECT_EQ(Status(0, "0.8", 2, "0.801"), "ALARM");
}

TEST_F(ChartSimulateTest, TheMainAlarmComesAtItsLevelOfCO2) {
  for (const bool twa : {true, false}) {
    if (!twa) TakeTWAOff();
    EXPECT_EQ(Status(1, "1200", 1, "1199"), "OK");
    EXPECT_EQ(Status(1, "1200", 1, "1200"), "ALARM");
    EXPECT_EQ(Status(1, "1200", 1, "1201"), "ALARM");
  }
}

TEST_F(ChartSimulateTest, TheLowTemperatureAlarmComesAtItsLevelFromAbove) {
  EXPECT_EQ(Status(3, "20", 0, "21"), "OK");
  EXPECT_EQ(Status(3, "20", 0, "20"), "ALARM");
  EXPECT_EQ(Status(3, "20", 0, "19"), "ALARM");
  EXPECT_EQ(Status(3, "-5", 0, "-4"), "OK");
  EXPECT_EQ(Status(3, "-5", 0, "-6"), "ALARM");
}

TEST_F(ChartSimulateTest, TheHighTemperatureAlarmComesAtItsLevelFromBelow) {
  EXPECT_EQ(Status(4, "25", 0, "24"), "OK");
  EXPECT_EQ(Status(4, "25", 0, "25"), "ALARM");
  EXPECT_EQ(Status(4, "25", 0, "26"), "ALARM");
}

TEST_F(ChartSimulateTest, TheAverageAlarmKeepsItsLastText) {
  auto& status = panel.txbStatus[2];
  for (const char* text : {"ALARM", "OK", "anything"}) {
    for (const char* level : {"1", "9999"}) {
      status.SetText(text);
      status.SetBack(1);
      panel.txbKelLevel[2].SetText(level);
      panel.Simulate();
      EXPECT_EQ(status.Text(), text) << level;
      EXPECT_EQ(status.Back(), 1) << level;
    }
  }
}

TEST_F(ChartSimulateTest, TextsAreParsedAsTyped) {
  EXPECT_EQ(Status(1, "1 200 ppm", 1, "1199,5"), "OK");
  EXPECT_EQ(Status(1, "1200,5", 1, "1200.5 ppm"), "ALARM");
}

TEST_F(ChartSimulateTest, TheImageStaysAsItWas) {
  panel.txbCHact[1].SetText("5000");
  panel.Simulate();
  ExpectChanged({});
}

TEST_F(ChartSimulateTest, ALevelThatIsTypedIsJudgedAtOnce) {
  panel.txbCHact[1].SetText("812");
  test::Type(panel.txbKelLevel[1], "800");
  EXPECT_EQ(panel.txbStatus[1].Text(), "ALARM");
  test::Type(panel.txbKelLevel[1], "813");
  EXPECT_EQ(panel.txbStatus[1].Text(), "OK");
}

TEST_F(ChartSimulateTest, ALiveValueThatIsTypedIsJudgedByTheLoop) {
  panel.txbCHact[1].SetText("0");
  std::vector<std::string> seen;
  // The loop makes a pass when there has been an event.
  ground.pump.After(milliseconds(400), [] {});
  ground.pump.After(milliseconds(500), [&] {
    seen.push_back(panel.txbStatus[1].Text());
    test::Type(panel.txbCHact[1], "5000");
  });
  ground.pump.After(milliseconds(600), [&] { seen.push_back(panel.txbStatus[1].Text()); });
  test::RunLoop(ground, panel, seconds(1));
  EXPECT_THAT(seen, ElementsAre("OK", "ALARM"));
  EXPECT_EQ(panel.txbCHact[1].Text(), "5000");
}

TEST_F(ChartSimulateTest, TheLoopMakesAPassBeforeItWaitsForAnEvent) {
  panel.txbCHact[1].SetText("5000");
  panel.txbStatus[1].SetText("?");
  std::string seen;
  // The first event that could come.
  ground.pump.After(milliseconds(1), [&] { seen = panel.txbStatus[1].Text(); });
  test::RunLoop(ground, panel, seconds(1));
  EXPECT_EQ(seen, "ALARM");
}

TEST_F(ChartSimulateTest, AnImageThatIsOfNoSensorOfPlatform5IsNotSimulated) {
  for (const int part : {0, 33, 40, 64, 85, 88, 154}) {
    SetRam(65, {part});
    ground.image.RamValid[65] = part != 0;
    const auto before = ground.image.RamImage;
    for (auto* status : panel.txbStatus) status->SetText("?");
    panel.txbCHact[1].SetText("5000");
    panel.Simulate();
    for (const auto& text : Texts(panel.txbStatus)) EXPECT_EQ(text, "?") << part;
    EXPECT_EQ(ground.image.RamImage, before);
    EXPECT_EQ(ground.session.LastError, "");
  }
  EXPECT_TRUE(ground.port.Events().empty());
  SetRam(65, {231});
  panel.Simulate();
  EXPECT_EQ(panel.txbStatus[1].Text(), "ALARM");
}

// Simulated mode

TEST_F(ChartSimulateTest, TheModeColoursAndGuardsItsControls) {
  for (const bool simulated : {true, false, true}) {
    panel.SimMode(simulated);
    EXPECT_EQ(panel.cbxSimulated.Value(), simulated ? 1 : 0);
    EXPECT_EQ(panel.txbKELActTempAenable.Fore(), simulated ? 16777215 : 65280);
    for (const auto* field : panel.txbCHact) {
      EXPECT_EQ(field->Fore(), simulated ? test::kYellow : test::kGreen);
    }
    for (const auto* control : {&panel.mReadfromsensor, &panel.mSendtosensor, &panel.mCalibrate,
                                &panel.mTWAreset, &panel.btnReadFromSensor, &panel.btnSendToSensor}) {
      EXPECT_EQ(control->Enabled(), !simulated) << control->Name();
    }
    EXPECT_EQ(panel.form.Caption(), simulated ? "KVX3.0 Simulated mode" : "KVX3.0");
  }
}

TEST_F(ChartSimulateTest, TheAlarmOfTheCentralUnitTogglesAtTheFocus) {
  auto& field = panel.txbKELActTempAenable;
  field.SetText("Enabled");
  panel.form.GainFocus(field);
  EXPECT_EQ(field.Text(), "Disabled");
  panel.form.LoseFocus(field);
  panel.form.GainFocus(field);
  EXPECT_EQ(field.Text(), "Enabled");
  panel.form.LoseFocus(field);
  field.SetText("anything");
  panel.form.GainFocus(field);
  EXPECT_EQ(field.Text(), "Enabled");
}

TEST_F(ChartSimulateTest, InLiveModeTheAlarmOfTheCentralUnitIsOnlyShown) {
  panel.SimMode(false);
  panel.txbKELActTempAenable.SetText("Enabled");
  panel.form.GainFocus(panel.txbKELActTempAenable);
  EXPECT_EQ(panel.txbKELActTempAenable.Text(), "Enabled");
}

}  // namespace
}  // namespace brelant
