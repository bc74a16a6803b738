// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/frm6_fixture.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using test::Bytes;
using test::Click;
using test::Frm6SensorTest;
using test::kPart88;
using test::Put;
using test::SampleEeprom;
using test::Texts;
using testing::ElementsAre;

constexpr const char* kNoSensor = "No sensor detected, entering simulated mode.";

// The poll

TEST_F(Frm6SensorTest, APollReadsAllLiveBytesInOneGo) {
  EXPECT_TRUE(panel.ActionSensorReadM());
  // RAM 12 to 34, then 236 to 239, and nothing for the channels by themselves.
  EXPECT_THAT(port.Sent(), ElementsAre(254, 134, 12, 146, 254, 134, 18, 152, 254, 134, 24, 158, 254, 133, 30,
                                       163, 254, 196, 108, 48));
  EXPECT_FALSE(port.PortOpen());
}

TEST_F(Frm6SensorTest, APollShowsWhatItRead) {
  HoldWord(12, 5000 + 2315);
  HoldWord(14, 5000 - 205);
  HoldWord(20, 5000 + 456);
  HoldWord(30, 5000 + 812);
  HoldWord(236, 163 * 42 + 100);
  HoldWord(238, 163 * 17);
  HoldWord(26, 163 * 5);
  HoldWord(28, 163 * 100);
  EXPECT_TRUE(panel.ActionSensorReadM());
  EXPECT_THAT(Texts(panel.txbCHact), ElementsAre("23.15", "-2.05", "45.6", "812", "", "", ""));
  EXPECT_THAT(Texts(panel.outputs.txbOutOut), ElementsAre("42", "17", "5", "100"));
  EXPECT_EQ(panel.LiveValues().size(), 8U);
  EXPECT_EQ(panel.LiveValues()[3].text, "812");
}

TEST_F(Frm6SensorTest, APollLeavesTheSettings) {
  auto other = sample;
  other[32] = 12;
  Hold(other);
  EXPECT_TRUE(panel.ActionSensorReadM());
  EXPECT_EQ(Eeprom(), sample);
}

TEST_F(Frm6SensorTest, APollThatFailsLeavesTheLiveValues) {
  HoldWord(12, 5000 + 2315);
  EXPECT_TRUE(panel.ActionSensorReadM());
  const auto values = Texts(panel.txbCHact);
  const auto outputs = Texts(panel.outputs.txbOutOut);
  test::PullOff(port);
  EXPECT_FALSE(panel.ActionSensorReadM());
  EXPECT_EQ(session.LastError, "Can't read from sensor");
  EXPECT_EQ(Texts(panel.txbCHact), values);
  EXPECT_EQ(Texts(panel.outputs.txbOutOut), outputs);
}

TEST_F(Frm6SensorTest, APollWhoseSecondReadFailsFails) {
  const auto answer = port.onOutput;
  port.onOutput = [this, answer](const Bytes& bytes) {
    const auto sent = port.Sent();
    // 196 asks for the output words.
    if (std::find(sent.begin(), sent.end(), 196) == sent.end()) answer(bytes);
  };
  EXPECT_FALSE(panel.ActionSensorReadM());
  EXPECT_EQ(session.LastError, "Can't read from sensor");
}

TEST_F(Frm6SensorTest, PollingALiveSensorShowsItsValuesEveryTwoSeconds) {
  std::vector<std::string> seen;
  HoldWord(30, 5812);
  After(seconds(1), [&] { HoldWord(30, 6000); });
  for (const int moment : {1500, 2500}) {
    After(milliseconds(moment), [&] { seen.push_back(panel.txbCHact[3].Text()); });
  }
  Run(seconds(5));
  EXPECT_THAT(seen, ElementsAre("812", "1000"));
}

TEST_F(Frm6SensorTest, ASensorThatIsPulledOffEndsInSimulatedModeWithItsLastValues) {
  HoldWord(30, 5812);
  After(seconds(3), [this] { test::PullOff(port); });
  Run(seconds(60));
  EXPECT_THAT(ground.ui.Texts(), ElementsAre(kNoSensor));
  EXPECT_EQ(panel.cbxSimulated.Value(), 1);
  EXPECT_EQ(panel.txbCHact[3].Text(), "812");
}

// Read and send

TEST_F(Frm6SensorTest, TheButtonsShowNoBoxAndTheMenusDo) {
  ground.msg.ShowProgress("", true, &panel.form);
  EXPECT_TRUE(Click(panel.btnReadFromSensor));
  EXPECT_EQ(session.PanelCommand, 1);
  EXPECT_FALSE(ground.msg.Visible());
  EXPECT_TRUE(Click(panel.btnSendToSensor));
  EXPECT_EQ(session.PanelCommand, 3);
  EXPECT_FALSE(ground.msg.Visible());
  for (const auto& [entry, command] : {std::pair{&panel.mReadfromsensor, 1}, {&panel.mSendtosensor, 3}}) {
    ground.msg.ShowProgress("", true, &panel.form);
    EXPECT_TRUE(Click(*entry));
    EXPECT_EQ(session.PanelCommand, command);
    EXPECT_TRUE(ground.msg.Visible());
    EXPECT_EQ(ground.msg.Label1.Text(), "Please wait");
    EXPECT_FALSE(ground.msg.ProgressBar1.Visible());
  }
}

TEST_F(Frm6SensorTest, ReadsTheWholeEepromAndTheLiveValues) {
  auto other = SampleEeprom(kPart88, 3);
  other[32] = 12;
  Hold(other);
  HoldWord(30, 5812);
  session.SensorId = 5;
  port.sensor.SetId(12);
  EXPECT_TRUE(panel.ActionSensorRead());
  EXPECT_EQ(Eeprom(), Held());
  EXPECT_EQ(session.SensorId, 30);
  EXPECT_EQ(panel.txbID.Text(), "12");
  EXPECT_EQ(panel.txbCHact[3].Text(), "812");
  // The face follows the sensor.
  EXPECT_TRUE(panel.jumper.pct6v3Settings.Visible());
  EXPECT_FALSE(panel.pctOut[0].Visible());
  EXPECT_FALSE(port.PortOpen());
}

TEST_F(Frm6SensorTest, AReadLeavesTheModeAlone) {
  std::vector<int> values;
  test::BeforeEachOutput(port, [&](const Bytes&) {
    values.push_back(panel.cbxSimulated.Value());
    return true;
  });
  EXPECT_TRUE(panel.ActionSensorRead());
  EXPECT_THAT(values, testing::Each(0));
  panel.SimMode(true);
  EXPECT_TRUE(panel.ActionSensorRead());
  EXPECT_EQ(panel.cbxSimulated.Value(), 1);
}

TEST_F(Frm6SensorTest, AFailedReadLeavesFieldsAndImage) {
  test::PullOff(port);
  EXPECT_FALSE(panel.ActionSensorRead());
  EXPECT_EQ(session.LastError, "Can't read from sensor");
  EXPECT_EQ(panel.txbID.Text(), "7");
  EXPECT_EQ(Eeprom(), sample);
}

TEST_F(Frm6SensorTest, SendsWhatHasChangedAndHasItSaved) {
  panel.txbID.SetText("12");
  panel.rows.txbFa[0].SetText("401");
  EXPECT_TRUE(panel.ActionSensorWrite());
  EXPECT_THAT(port.sensor.Frames(),
              ElementsAre(ElementsAre(65, 102, 0, 167), ElementsAre(147, 0, 147),
                          ElementsAre(10, 16, 12, sample[33], (10 + 16 + 12 + sample[33]) % 256),
                          ElementsAre(10, 54, 25, 153, (10 + 54 + 25 + 153) % 256), ElementsAre(16, 0, 16),
                          ElementsAre(32, 0, 32)));
  auto expected = sample;
  expected[32] = 12;
  expected[108] = 25;
  EXPECT_EQ(Held(), expected);
  EXPECT_TRUE(port.sensor.Locked());
  EXPECT_FALSE(port.PortOpen());
}

TEST_F(Frm6SensorTest, AFormThatCannotBeTakenIsNotSent) {
  panel.outputs.txbOutIntTime[2].SetText("0");
  EXPECT_FALSE(panel.ActionSensorWrite());
  EXPECT_TRUE(port.Events().empty());
  EXPECT_NE(session.LastError, "");
}

TEST_F(Frm6SensorTest, ReadingAndSendingShowTheirProgress) {
  std::vector<std::string> progress;
  test::NoteProgress(ground, progress);
  EXPECT_TRUE(panel.ActionSensorRead());
  EXPECT_THAT(progress, testing::Contains("Reading from sensor"));
  progress.clear();
  EXPECT_TRUE(panel.ActionSensorWrite());
  EXPECT_THAT(progress, testing::Contains("Sending to sensor"));
}

TEST_F(Frm6SensorTest, TheFormIsTakenBeforeSendingIsShown) {
  panel.outputs.txbOutIntTime[2].SetText("0");
  ground.msg.ShowProgress("Please wait", true, &panel.form);
  EXPECT_FALSE(panel.ActionSensorWrite());
  EXPECT_EQ(ground.msg.Label1.Text(), "Please wait");
}

TEST_F(Frm6SensorTest, WhatFailsLeavesThePortClosed) {
  test::PullOff(port);
  panel.txbID.SetText("12");
  EXPECT_FALSE(panel.ActionSensorWrite());
  EXPECT_EQ(session.LastError, "Can't save to sensor");
  EXPECT_FALSE(port.PortOpen());
  session.LastError.clear();
  EXPECT_FALSE(panel.ActionSensorRead());
  EXPECT_FALSE(port.PortOpen());
}

TEST_F(Frm6SensorTest, TheTwaResetHasNoFrameOnThisPlatform) {
  std::vector<std::string> progress;
  test::NoteProgress(ground, progress);
  EXPECT_FALSE(panel.ActionTWAReset());
  EXPECT_EQ(session.LastError, "Can't reset TWA");
  EXPECT_THAT(progress, ElementsAre("TWA reset"));
  EXPECT_TRUE(port.sensor.Frames().empty());
  EXPECT_FALSE(port.PortOpen());
  EXPECT_EQ(Held(), sample);
}

TEST_F(Frm6SensorTest, ExitIsACommandOfTheLoop) {
  EXPECT_TRUE(Click(panel.mExit));
  EXPECT_EQ(session.PanelCommand, 14);
  EXPECT_EQ(ground.sessionsEnded, 0);
  Run(seconds(1));
  EXPECT_EQ(ground.sessionsEnded, 1);
}

// Another face after a read

TEST_F(Frm6SensorTest, TheFacesFollowOneSensorAfterTheOther) {
  for (const int variant : {3, 0, 4, 1, 2, 0}) {
    Hold(SampleEeprom(kPart88, variant));
    EXPECT_TRUE(panel.ActionSensorRead());
    EXPECT_EQ(panel.pctFunction[0].Visible(), variant == 0 || variant == 2) << variant;
    EXPECT_EQ(panel.vav.txbUseMax.Visible(), variant == 1) << variant;
    EXPECT_EQ(panel.jumper.txb6v3A1.Visible(), variant == 3) << variant;
    EXPECT_EQ(panel.sequential.pctSecCont.Visible(), variant == 4) << variant;
  }
}

// Calibrations

/// A sensor with tables of its own, which the panel has read.
class Frm6CalibrationTest : public test::Frm6TestOn<test::SensorPort> {
 protected:
  Frm6CalibrationTest() : Frm6TestOn(bench::SensorSetup{.part = kPart88}) {
    EXPECT_TRUE(panel.ActionSensorRead());
    panel.form.Show();
    ground.port.sensor.ForgetFrames();
    ground.screen.onShow = [this](Form& form, bool visible) {
      if (form.Name() != "frmSpanCalNote" || !visible) return;
      After(milliseconds(10), [this] { Click(ground.spanNote.Command2); });
    };
  }
  static std::vector<int> Held(test::SensorGround& sensor) {
    return {sensor.port.sensor.Eeprom().begin(), sensor.port.sensor.Eeprom().end()};
  }
};

TEST_F(Frm6CalibrationTest, TheSpanIsThatOfTheFirstGasByItsWord) {
  const auto before = Held(ground);
  ground.ui.inputs = {"1000"};
  EXPECT_TRUE(panel.ActionCalCO2span()) << ground.session.LastError;
  EXPECT_THAT(ground.ui.prompts, ElementsAre("Please enter span gas concentration"));
  // 1000 ppm are the word 6000.
  test::SensorGround other{bench::SensorSetup{.part = kPart88}};
  EXPECT_TRUE(other.com.ReadSensorMemory(30, 0, 0, true, false));
  EXPECT_TRUE(other.cal.CalibrateCO2Span(11, "6000", false));
  const auto after = Held(ground);
  EXPECT_EQ(after, Held(other));
  EXPECT_NE(after, before);
  // Its table lies at 444.
  for (std::size_t i = 0; i < after.size(); ++i) {
    if (i >= 444 && i < 478) continue;
    EXPECT_EQ(after[i], before[i]) << i;
  }
}

TEST_F(Frm6CalibrationTest, TheTemperatureHasABlankBehindItsProgress) {
  std::vector<std::string> progress;
  test::NoteProgress(ground, progress);
  ground.ui.inputs = {"25"};
  EXPECT_TRUE(panel.ActionCalTempZero()) << ground.session.LastError;
  EXPECT_THAT(progress, ElementsAre("Calibrating temperature "));
}

}  // namespace
}  // namespace brelant
