// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/sensor_line.h"
#include "safety/z7731_fixture.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using test::Click;
using test::kNoUnit;
using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::Ge;
using testing::IsEmpty;
using testing::Lt;

/// More than that many seconds, and hardly more.
auto JustAfter(double moment) {
  return AllOf(testing::Gt(moment), Lt(moment + 0.02));
}

class Z7731LoopTest : public test::StillUnitTest {
 protected:
  /// Notes the time of the day at which each poll begins: with the status of temperature 2.
  void NotePolls() {
    test::BeforeEachOutput(port, [this](const test::Bytes& bytes) {
      for (const auto byte : bytes) Note(byte);
      return true;
    });
  }
  std::vector<double> Periods() const {
    std::vector<double> periods;
    for (std::size_t i = 1; i < begins.size(); ++i) periods.push_back(begins[i] - begins[i - 1]);
    return periods;
  }
  void ExpectSimulated() {
    EXPECT_EQ(panel.cbxSimulated.Value(), 1);
    EXPECT_EQ(panel.form.Caption(), "BRELANT Simulated mode");
    EXPECT_EQ(session.LastError, "");
  }
  /// The link is lost a second from now.
  void LoseUnit() {
    After(seconds(1), [this] { unit.isSilent = true; });
  }

  std::vector<double> begins;

 private:
  void Note(std::uint8_t byte) {
    heard_.push_back(byte);
    if (heard_ == test::Bytes{254}) began_ = ground.clock.Timer();
    // Two bytes of RAM from 264 on.
    if (heard_ == test::Bytes{254, 178, 1, 8, 187}) begins.push_back(began_);
    const bool isOver = heard_.size() == (heard_.size() > 1 && (heard_[1] & 56) == 0 ? 4U : 5U);
    if (isOver) heard_.clear();
  }

  test::Bytes heard_;
  double began_ = 0;
};

TEST_F(Z7731LoopTest, PollsBeginEveryPeriod) {
  StartOnKiBus();
  NotePolls();
  Run(milliseconds(8500));
  EXPECT_THAT(Periods(), AllOf(testing::SizeIs(4), Each(JustAfter(2))));
}

TEST_F(Z7731LoopTest, ThePeriodMustHavePassedWhole) {
  // A time of the day that a single number holds exactly, and a loop that turns at the very moment.
  StartOnKiBus();
  NotePolls();
  ground.clock.SetTimer(40000);
  for (int i = 1; i < 16; ++i) After(milliseconds(500 * i), [] {});
  Run(seconds(7));
  ASSERT_GE(begins.size(), 3U);
  for (const double period : Periods()) EXPECT_GT(period, 2.0);
}

TEST_F(Z7731LoopTest, TheUsersPeriodCounts) {
  ground.store.values["BRELANT/Z7731/UpdatePeriod"] = "5";
  StartOnKiBus();
  NotePolls();
  Run(seconds(16));
  EXPECT_THAT(Periods(), AllOf(testing::SizeIs(3), Each(JustAfter(5))));
}

TEST_F(Z7731LoopTest, AChangedPeriodCountsAtOnce) {
  StartOnKiBus();
  NotePolls();
  After(seconds(3), [this] { panel.UpdatePeriod = 7; });
  After(seconds(18), [this] { panel.UpdatePeriod = 1; });
  Run(milliseconds(19500));
  // At 0, 2, 9, 16; at 18 the second since 16 has passed long ago, and at 19.
  EXPECT_THAT(Periods(),
              ElementsAre(JustAfter(2), JustAfter(7), JustAfter(7), JustAfter(1.98), JustAfter(1)));
}

TEST_F(Z7731LoopTest, AfterMidnightPollingResumesAfterOnePeriod) {
  StartOnKiBus();
  NotePolls();
  ground.clock.SetTimer(86399);
  Run(seconds(8));
  EXPECT_THAT(begins, ElementsAre(AllOf(Ge(86399), Lt(86399.1)), JustAfter(2), JustAfter(4), JustAfter(6)));
}

TEST_F(Z7731LoopTest, APollIsSkippedWhileThereIsAnErrorWhichIsThenCleared) {
  StartOnKiBus();
  NotePolls();
  After(seconds(1), [this] { session.LastError = "some trouble"; });
  Run(milliseconds(6500));
  EXPECT_THAT(Periods(), ElementsAre(JustAfter(4), JustAfter(2)));
  EXPECT_THAT(Told(), IsEmpty());
  EXPECT_EQ(session.LastError, "");
}

TEST_F(Z7731LoopTest, TheFirstPollAfterTheStartIsSkipped) {
  Choose(frmComSet::singleSensor, frmComSet::kiBus);
  ASSERT_TRUE(Open());
  panel.SimMode(false);
  EXPECT_EQ(session.LastError, "Avbryt");
  NotePolls();
  const double start = ground.clock.Timer();
  Run(milliseconds(3500));
  EXPECT_THAT(begins, ElementsAre(JustAfter(start + 2)));
  EXPECT_THAT(Told(), IsEmpty());
}

TEST_F(Z7731LoopTest, ASilentUnitEndsInSimulatedMode) {
  StartOnKiBus();
  modbus.units.clear();
  LoseUnit();
  bool wasOpen = true;
  std::string titleWas;
  ground.ui.onMessage = [&] {
    wasOpen = port.PortOpen();
    titleWas = panel.form.Caption();
  };
  Run(seconds(60));
  // Nothing of "Communication error".
  EXPECT_THAT(Told(), ElementsAre(kNoUnit));
  EXPECT_EQ(ground.ui.messages.front().title, "");
  // First the connection is closed, then it is told, then the mode changes.
  EXPECT_FALSE(wasOpen);
  EXPECT_EQ(titleWas, "BRELANT");
  ExpectSimulated();
}

TEST_F(Z7731LoopTest, AnUnpluggedAdapterEndsInSimulatedMode) {
  StartOnKiBus();
  After(seconds(1), [this] {
    port.failAt = port.Operations() + 1;
    port.staysBroken = true;
  });
  Run(seconds(20));
  EXPECT_THAT(Told(), ElementsAre(kNoUnit));
  EXPECT_FALSE(port.PortOpen());
  ExpectSimulated();
}

TEST_F(Z7731LoopTest, ASilentUnitEndsInSimulatedModeOnModbus) {
  StartOnModbus();
  After(seconds(1), [this] { modbus.units.clear(); });
  bool wasOpen = true;
  ground.ui.onMessage = [&] { wasOpen = modbus.IsOpen(); };
  Run(seconds(20));
  EXPECT_THAT(Told(), ElementsAre(kNoUnit));
  EXPECT_FALSE(wasOpen);
  ExpectSimulated();
}

TEST_F(Z7731LoopTest, ARefusedPollEndsInSimulatedModeOnModbus) {
  StartOnModbus();
  After(seconds(1), [this] { modbus.Fail({{}, {}, test::VirtualModbus::Kind::exception}); });
  Run(seconds(20));
  EXPECT_THAT(Told(), ElementsAre(kNoUnit));
  EXPECT_FALSE(modbus.IsOpen());
  ExpectSimulated();
}

TEST_F(Z7731LoopTest, AUnitThatAnswersUnderAnotherAddressIsLost) {
  StartOnModbus();
  After(seconds(1), [this] {
    auto moved = modbus.units.extract(1);
    moved.key() = 2;
    modbus.units.insert(std::move(moved));
  });
  Run(seconds(20));
  EXPECT_THAT(Told(), ElementsAre(kNoUnit));
  ExpectSimulated();
}

TEST_F(Z7731LoopTest, WhatIsLostIsNotPolledAnyMore) {
  StartOnModbus();
  After(seconds(1), [this] { modbus.Fail({test::VirtualModbus::Kind::exception}); });
  After(seconds(5), [this] { modbus.Forget(); });
  Run(seconds(60));
  EXPECT_THAT(modbus.Story(), IsEmpty());
}

TEST_F(Z7731LoopTest, WithoutAUnitTheValuesAreCompared) {
  StartOnKiBus();
  LoseUnit();
  After(seconds(40), [this] {
    test::Type(panel.txbCHact[0], "99");
    test::Type(panel.txbCHact[1], "0");
  });
  Run(seconds(60));
  EXPECT_EQ(panel.txbStatus[4].Text(), "ALARM");
  EXPECT_EQ(panel.txbStatus[3].Text(), "OK");
  EXPECT_EQ(panel.txbStatus[1].Text(), "OK");
}

// Simulated mode

class Z7731ModeTest : public Z7731LoopTest {
 protected:
  std::vector<brelant::Control*> SensorCommands() {
    std::vector<brelant::Control*> commands;
    for (const char* name :
         {"mReadfromsensor", "mSendtosensor", "mCalibrate", "btnReadFromSensor", "btnSendToSensor",
          "m_LoadSettings", "m_SaveSettins", "m_Temp1", "m_Temp2", "m_Zero", "m_ConfigureLogger",
          "m_ExportLogger1", "m_ExportLogger2", "m_ConfigureABC", "m_ConfigureSensor"}) {
      commands.push_back(panel.form.Find(name));
    }
    return commands;
  }
  void ExpectEnabled(bool enabled) {
    for (const auto* command : SensorCommands()) {
      ASSERT_NE(command, nullptr);
      EXPECT_EQ(command->Enabled(), enabled) << command->Name();
    }
    for (const char* name : {"m_Options", "m_About", "mExit", "mComSet"}) {
      EXPECT_TRUE(panel.form.Find(name)->Enabled()) << name;
    }
  }
};

TEST_F(Z7731ModeTest, SimulatedModeHasNoUse) {
  StartOnKiBus();
  ExpectEnabled(true);
  panel.SimMode(true);
  ExpectEnabled(false);
  EXPECT_EQ(panel.cbxSimulated.Value(), 1);
  for (const int field : {0, 1, 2, 3, 5, 6}) EXPECT_EQ(panel.txbCHact[field].Fore(), test::kYellow) << field;
  EXPECT_EQ(panel.txbKELActTempAenable.Fore(), test::kWhite);
  EXPECT_EQ(panel.form.Caption(), "BRELANT Simulated mode");
  EXPECT_EQ(session.LastError, "");
}

TEST_F(Z7731ModeTest, LeavingItReadsTheSettings) {
  StartOnKiBus();
  Click(panel.cbxSimulated);
  ASSERT_EQ(panel.cbxSimulated.Value(), 1);
  PutSetting(4240, 2450);
  Click(panel.cbxSimulated);
  ExpectEnabled(true);
  EXPECT_EQ(panel.cbxSimulated.Value(), 0);
  for (const int field : {0, 1, 2, 3, 5, 6}) EXPECT_EQ(panel.txbCHact[field].Fore(), test::kGreen) << field;
  EXPECT_EQ(panel.form.Caption(), "BRELANT");
  EXPECT_EQ(session.LastError, "Avbryt");
  EXPECT_EQ(panel.txbKelLevel[4].Text(), "24.5");
}

TEST_F(Z7731ModeTest, TickingItKeepsTheConnection) {
  StartOnKiBus();
  port.Forget();
  Click(panel.cbxSimulated);
  Run(seconds(10));
  EXPECT_TRUE(port.PortOpen());
  EXPECT_THAT(port.Story(), IsEmpty());
  Click(panel.cbxSimulated);
  for (const auto& act : port.Story()) EXPECT_TRUE(act != "open" && act != "close") << act;
}

TEST_F(Z7731ModeTest, NothingIsReadInIt) {
  StartOnKiBus();
  panel.SimMode(true);
  EXPECT_TRUE(panel.FormUpdate());
  EXPECT_TRUE(panel.GetAllStaticValues(true));
  EXPECT_TRUE(panel.FormRead(true));
  EXPECT_THAT(unit.frames, IsEmpty());
}

TEST_F(Z7731ModeTest, LiveValuesCanBeTypedInItOnly) {
  StartOnKiBus();
  test::Type(panel.txbCHact[0], "50");
  EXPECT_EQ(panel.txbCHact[0].Text(), "2200");
  panel.SimMode(true);
  test::Type(panel.txbCHact[0], "50");
  EXPECT_EQ(panel.txbCHact[0].Text(), "50");
}

TEST_F(Z7731ModeTest, AfterALostLinkUntickingConnectsAgain) {
  StartOnKiBus();
  LoseUnit();
  After(seconds(40), [this] {
    ASSERT_FALSE(port.PortOpen());
    unit.isSilent = false;
    PutSetting(4240, 2450);
    PutLive(4, 2300);
    // The dialog's settings are those of the next session.
    Choose(frmComSet::networkSensor, frmComSet::modBus, "9");
    ground.comSet.txbComPort.SetText("8");
    port.Forget();
    Click(panel.cbxSimulated);
    const auto sent = port.Sent();
    ASSERT_GT(sent.size(), 4U);
    EXPECT_THAT(std::vector(sent.begin(), sent.begin() + 4), ElementsAre(254, 129, 65, 194));
    EXPECT_EQ(panel.txbKelLevel[4].Text(), "24.5");
  });
  Run(seconds(50));
  EXPECT_EQ(port.selected, "1");
  EXPECT_THAT(modbus.Story(), IsEmpty());
  EXPECT_THAT(Told(), ElementsAre(kNoUnit));
  EXPECT_EQ(panel.cbxSimulated.Value(), 0);
  EXPECT_EQ(panel.txbCHact[0].Text(), "23");
}

TEST_F(Z7731ModeTest, AfterALostLinkUntickingConnectsAgainOnModbus) {
  Choose(frmComSet::networkSensor, frmComSet::modBus, "1");
  ASSERT_TRUE(Start());
  After(seconds(1), [this] { modbus.Fail({test::VirtualModbus::Kind::exception}); });
  After(seconds(20), [this] {
    modbus.Forget();
    Choose(frmComSet::singleSensor, frmComSet::kiBus);
    ground.unitNames.modbus.onlyUnit = 3;
    Click(panel.cbxSimulated);
    EXPECT_EQ(modbus.Story().front(), "1 holding 4128");
    EXPECT_TRUE(modbus.IsOpen());
  });
  Run(seconds(30));
  EXPECT_THAT(port.Sent(), IsEmpty());
  EXPECT_THAT(Told(), ElementsAre(kNoUnit));
  EXPECT_EQ(panel.cbxSimulated.Value(), 0);
}

TEST_F(Z7731ModeTest, UntickingWithoutAUnitIsToldByThePoll) {
  StartOnModbus();
  After(seconds(1), [this] { modbus.units.clear(); });
  After(seconds(30), [this] {
    Click(panel.cbxSimulated);
    EXPECT_EQ(panel.cbxSimulated.Value(), 0);
    EXPECT_EQ(session.LastError, "Avbryt");
  });
  Run(seconds(60));
  EXPECT_THAT(Told(), ElementsAre(kNoUnit, kNoUnit));
  ExpectSimulated();
}

TEST_F(Z7731ModeTest, ClosingLetsGoOfTheLineAndSendsNothing) {
  StartOnKiBus();
  port.Forget();
  panel.LeaveSession();
  EXPECT_TRUE(static_cast<Panel&>(panel).FormRead());
  EXPECT_FALSE(port.PortOpen());
  EXPECT_THAT(port.Sent(), IsEmpty());
  EXPECT_THAT(Told(), IsEmpty());
}

TEST_F(Z7731ModeTest, TheExitCommandEndsTheSession) {
  StartOnKiBus();
  After(seconds(1), [this] { Click(panel.mExit); });
  panel.PanelLoop();
  EXPECT_EQ(ground.sessionsEnded, 1);
  EXPECT_EQ(session.LastError, "Avbryt");
  EXPECT_THAT(Told(), IsEmpty());
}

// Commands

TEST_F(Z7731ModeTest, ACommandThatFailsIsTold) {
  StartOnModbus();
  After(milliseconds(2500), [this] {
    modbus.Fail({test::VirtualModbus::Kind::exception});
    Click(panel.btnReadFromSensor);
  });
  Run(milliseconds(3500));
  EXPECT_THAT(Told(), ElementsAre("virtual exception"));
  EXPECT_EQ(session.LastError, "");
  EXPECT_FALSE(ground.msg.Visible());
  EXPECT_EQ(panel.cbxSimulated.Value(), 0);
}

TEST_F(Z7731ModeTest, ACancelledReadIsSilent) {
  StartOnKiBus();
  After(milliseconds(2500), [this] { Click(panel.btnReadFromSensor); });
  After(milliseconds(2600), [this] { Click(*ground.msg.form.Find("Command1")); });
  Run(milliseconds(10500));
  EXPECT_THAT(Told(), IsEmpty());
  EXPECT_FALSE(session.CancelPressed);
  EXPECT_EQ(panel.cbxSimulated.Value(), 0);
}

}  // namespace
}  // namespace brelant
