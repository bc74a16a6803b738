// SPDX-License-Identifier: GPL-3.0-or-later
// What the commands of the panels of platform 8 do: calibrations, TWA reset, settings files, logger.
#include "safety/frm8_fixture.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using test::Click;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr std::size_t kTank = 304;
constexpr std::size_t kProcedure = 306;

class Frm8CommandTest : public test::Frm8Test {
 protected:
  Frm8CommandTest() {
    ground.pump.OnPass([this] {
      const auto text = ground.msg.Visible() ? ground.msg.Label1.Text() : std::string();
      if (!text.empty() && (shown_.empty() || shown_.back() != text)) shown_.push_back(text);
      return false;
    });
  }

  /// The texts of the progress box, while the loop carries a click out.
  std::vector<std::string> Shown(brelant::Control& control) {
    shown_.clear();
    ClickInLoop(control);
    return shown_;
  }

 private:
  std::vector<std::string> shown_;
};
class Frm8TankCommandTest : public test::Frm8TankTest {};

TEST_F(Frm8CommandTest, EachProcedureIsStartedWithItsValue) {
  struct Case {
    const char* control;
    const char* prompt;
    const char* answer;
    std::vector<std::string> writes;
  };
  Start();
  Answers(kProcedure, 0);
  for (const auto& [control, prompt, answer, writes] : {
           Case{"mCalCO2Zero", "", "", {"R306 = 2"}},
           Case{"mCalCO2Background", "", "", {"R306 = 3"}},
           Case{"mCalCO2Other",
                "Please enter CO2 concentration",
                "0,04",
                {"R320 = 40", "R322 = 0", "R306 = 4"}},
           Case{"mCalCO2span",
                "Please enter span gas concentration",
                "3.5",
                {"R320 = 3500", "R322 = 0", "R306 = 5"}},
           Case{"CalTemp",
                "Please enter correct temperature",
                "-1.5",
                {"R320 = 65386", "R322 = 0", "R306 = 1"}},
       }) {
    Forget();
    ground.ui.prompts.clear();
    if (*prompt != '\0') ground.ui.inputs = {answer};
    ClickInLoop(*panel.form.Find(control));
    EXPECT_EQ(Writes(), writes) << control;
    EXPECT_EQ(ground.ui.prompts,
              *prompt == '\0' ? std::vector<std::string>() : std::vector<std::string>{prompt});
    EXPECT_THAT(Told(), IsEmpty()) << control;
  }
}

TEST_F(Frm8CommandTest, ATemperatureInFahrenheitIsHandedOverAsOne) {
  unit.eeprom[7964] = 10;
  Start();
  Answers(kProcedure, 0);
  ground.ui.inputs = {"72.5"};
  EXPECT_TRUE(panel.ActionCalTempZero());
  EXPECT_THAT(Writes(), ElementsAre("R320 = 2250", "R322 = 0", "R306 = 1"));
}

TEST_F(Frm8CommandTest, NothingIsSentForAnEmptyAnswer) {
  Start();
  for (const auto& answer : {std::optional<std::string>(), std::optional<std::string>("")}) {
    ground.ui.inputs = {answer, answer, answer};
    EXPECT_FALSE(panel.ActionCalTempZero());
    EXPECT_FALSE(panel.ActionCalCO2span());
    EXPECT_FALSE(panel.ActionCalCO2Zero(2));
  }
  EXPECT_THAT(unit.frames, IsEmpty());
  EXPECT_EQ(session.LastError, "");
}

TEST_F(Frm8CommandTest, ACalibrationThatTheUnitRefusesIsTold) {
  Start();
  Answers(kProcedure, 100);
  ClickInLoop(panel.mCalCO2Zero);
  EXPECT_THAT(Told(), ElementsAre("Calibration error"));
}

TEST_F(Frm8CommandTest, EachCalibrationSaysWhatItDoes) {
  Start();
  Answers(kProcedure, 0);
  for (auto* control : {&panel.mCalCO2Zero, &panel.mCalCO2Background, &panel.mCalCO2Other}) {
    ground.ui.inputs = {"1"};
    EXPECT_THAT(Shown(*control), ElementsAre("Please wait", "Calibrating CO2 zero point"));
  }
  ground.ui.inputs = {"3"};
  EXPECT_THAT(Shown(panel.mCalCO2span), ElementsAre("Calibrating CO2 span"));
  ground.ui.inputs = {"20"};
  EXPECT_THAT(Shown(panel.CalTemp), ElementsAre("Calibrating temperature"));
  EXPECT_THAT(Shown(panel.mTWAreset), ElementsAre("Please wait", "TWA reset"));
}

TEST_F(Frm8CommandTest, ATWAResetHasNoFrameAndOpensNothing) {
  Start();
  for (const bool isPartKnown : {true, false}) {
    Forget();
    ground.image.RamImage[65] = isPartKnown ? 40.0F : 0.0F;
    ground.image.RamValid[65] = isPartKnown;
    ClickInLoop(panel.mTWAreset);
    EXPECT_THAT(Told(), ElementsAre("Unkown protokol"));
    EXPECT_THAT(Writes(), IsEmpty());
    // Not even the request to send of a frame that does not come.
    const auto sent = port.Sent();
    EXPECT_EQ(static_cast<std::size_t>(std::count(sent.begin(), sent.end(), 254)), unit.frames.size());
    EXPECT_THAT(port.Story(), Not(Contains("open")));
    EXPECT_THAT(port.Story(), Not(Contains("close")));
    EXPECT_TRUE(port.PortOpen());
  }
}

TEST_F(Frm8CommandTest, ReadAndSendDoWhatTheySay) {
  Start();
  PutSetting(4256, 2450);
  ClickInLoop(panel.btnReadFromSensor);
  EXPECT_EQ(panel.txbKelLevel[4].Text(), "24.5");
  Forget();
  panel.txbKelLevel[4].SetText("25");
  ClickInLoop(panel.btnSendToSensor);
  EXPECT_EQ(Setting(4256), 2500);
  EXPECT_THAT(Told(), IsEmpty());
}

// Settings files

TEST_F(Frm8CommandTest, ASavedFileBringsTheSettingsBack) {
  Start();
  const std::string name = "C:\\KVX\\Cellar.set";
  const auto saved = unit.eeprom;
  ground.ui.chosenFiles = {name};
  ClickInLoop(panel.mSavesettings);
  ASSERT_TRUE(ground.files.Exists(name));
  EXPECT_THAT(Told(), IsEmpty());
  session.sessionOver = false;
  for (std::size_t address = 4224; address < 4600; ++address) unit.eeprom.at(address) ^= 1;
  unit.eeprom[4160] = 12;
  unit.eeprom[7964] = 10;
  ground.ui.chosenFiles = {name};
  After(milliseconds(100), [this] { Click(panel.mLoadsettings); });
  Run(seconds(10));
  EXPECT_THAT(Told(), IsEmpty());
  for (const std::size_t address : {4160, 4401, 4402, 4403, 4404, 7964}) {
    EXPECT_EQ(unit.eeprom.at(address), saved.at(address)) << address;
  }
  for (std::size_t address = 4240; address < 4260; ++address) {
    EXPECT_EQ(unit.eeprom.at(address), saved.at(address)) << address;
  }
  for (const std::size_t address : {4436, 4438, 4580}) {
    EXPECT_EQ(Setting(address), WordOf(saved, address)) << address;
  }
  EXPECT_EQ(panel.txbKelLevel[4].Text(), "23");
  EXPECT_EQ(panel.txbID.Text(), "1");
}

TEST_F(Frm8CommandTest, ACancelledFileDialogIsSilent) {
  Start();
  for (auto* control : {&panel.mSavesettings, &panel.mLoadsettings}) {
    ClickInLoop(*control);
    EXPECT_THAT(Told(), IsEmpty());
    session.sessionOver = false;
  }
}

// The tank and the loggers

TEST_F(Frm8TankCommandTest, EachTankCalibrationHasItsWordAndItsCommand) {
  struct Case {
    brelant::Control* control;
    const char* question;
    const char* write;
    const char* completed;
  };
  Start();
  Answers(kTank, 0);
  for (const auto& [control, question, write, completed] : {
           Case{&panel.mCalWeightEmpty, "Start empty tank calibration?", "R304 = 1",
                "Empty tank calibration completed"},
           Case{&panel.mCalWeightFull, "Start full tank calibration?", "R304 = 2",
                "Full tank calibration completed"},
       }) {
    Forget();
    ground.ui.replies = {UserInterface::Reply::yes};
    const auto begin = ground.clock.Now();
    std::chrono::microseconds told{};
    ground.ui.onMessage = [&] { told = ground.clock.Now() - begin; };
    After(milliseconds(100), [control = control] { Click(*control); });
    Run(seconds(9));
    EXPECT_THAT(Writes(), ElementsAre(write));
    EXPECT_THAT(Told(), ElementsAre(question, completed));
    EXPECT_GT(told, seconds(5));
    ground.ui.onMessage = nullptr;
  }
}

TEST_F(Frm8TankCommandTest, ATankCalibrationThatIsRefusedIsTold) {
  Start();
  Answers(kTank, 100);
  ground.ui.replies = {UserInterface::Reply::yes};
  EXPECT_FALSE(panel.ActionCalWeightE());
  EXPECT_EQ(session.LastError, "Calibration error");
}

TEST_F(Frm8TankCommandTest, NoLeavesTheTankAlone) {
  Start();
  ground.ui.replies = {UserInterface::Reply::no, UserInterface::Reply::no};
  EXPECT_TRUE(panel.ActionCalWeightE());
  EXPECT_TRUE(panel.ActionCalWeightF());
  EXPECT_THAT(unit.frames, IsEmpty());
}

TEST_F(Frm8TankCommandTest, TheLoggerMenuCanBeChosenAndDoesNothing) {
  Start();
  Run(milliseconds(1900));
  const auto poll = unit.frames.size();
  const auto eeprom = unit.eeprom;
  for (const char* name : {"mLoggerExp", "mLoggerCheckT", "mLoggerSetT", "mLoggerReset"}) {
    Forget();
    auto* entry = panel.form.Find(name);
    ASSERT_NE(entry, nullptr) << name;
    After(milliseconds(500), [entry] { EXPECT_TRUE(Click(*entry)); });
    Run(milliseconds(1900));
    EXPECT_EQ(unit.frames.size(), poll) << name;
    EXPECT_EQ(session.PanelCommand, 0) << name;
    EXPECT_FALSE(ground.msg.Visible()) << name;
    EXPECT_THAT(Told(), IsEmpty()) << name;
  }
  EXPECT_EQ(unit.eeprom, eeprom);
}

TEST_F(Frm8TankCommandTest, SendsWhatTheOtherPanelSends) {
  Start();
  ASSERT_TRUE(panel.FormRead(true));
  EXPECT_EQ(Writes().size(), 17U);
  EXPECT_EQ(Writes().back(), "E4438 = 33897");
}

TEST_F(Frm8TankCommandTest, CalibratesItsTankOnTheVirtualUnit) {
  test::SafetyGround live({.part = 40, .variant = 2});
  live.Choose(frmComSet::singleSensor, frmComSet::kiBus);
  frm8_2Chart tank(live.context);
  ASSERT_TRUE(tank.FormUpdateInit() && tank.FormUpdate()) << live.session.LastError;
  live.ui.replies = {UserInterface::Reply::yes};
  EXPECT_TRUE(tank.ActionCalWeightE());
  EXPECT_THAT(live.ui.Texts(),
              ElementsAre("Start empty tank calibration?", "Empty tank calibration completed"));
  live.ui.inputs = {"20"};
  EXPECT_TRUE(tank.ActionCalTempZero()) << live.session.LastError;
  live.port.sensor.Advance(live.clock.Now());
  ASSERT_TRUE(tank.FormUpdateM());
  EXPECT_NEAR(std::stod(tank.txbCHact[0].Text()), 20, 1);
}

}  // namespace
}  // namespace brelant
