// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/z7731_fixture.h"

namespace brelant {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Z7731OpeningTest : public test::StillUnitTest {
 protected:
  /// The IDs of all requests to send that went out.
  std::vector<int> RequestsToSend() const {
    std::vector<int> requests;
    const auto sent = port.Sent();
    for (std::size_t i = 0; i + 3 < sent.size(); i += 4) requests.push_back(sent.at(i));
    return requests;
  }
  void ExpectNoModbus() {
    EXPECT_THAT(modbus.Story(), IsEmpty());
    EXPECT_FALSE(modbus.IsOpen());
  }
  int PeriodWith(const std::string& setting) {
    ground.store.values["BRELANT/Z7731/UpdatePeriod"] = setting;
    panel.FormUpdateInit();
    return panel.UpdatePeriod;
  }
};

TEST_F(Z7731OpeningTest, TakesTheOnlyUnitOfTheLineOnKiBus) {
  Choose(frmComSet::singleSensor, frmComSet::kiBus, "17");
  ground.comSet.txbComPort.SetText("/dev/ttyUSB3");
  ASSERT_TRUE(panel.FormUpdateInit());
  EXPECT_EQ(port.selected, "/dev/ttyUSB3");
  // The form of the request to send that any unit answers, then the part number's byte.
  EXPECT_THAT(port.Sent(), ElementsAre(254, 129, 65, 194));
  EXPECT_TRUE(port.PortOpen());
  ExpectNoModbus();
  EXPECT_EQ(session.LastError, "");
}

TEST_F(Z7731OpeningTest, TakesTheOnlyUnitOfTheLineOnModbus) {
  Choose(frmComSet::singleSensor, frmComSet::modBus, "17");
  ground.comSet.txbComPort.SetText("7");
  ASSERT_TRUE(panel.FormUpdateInit());
  EXPECT_EQ(modbus.port, "7");
  // The register of RAM 64 and 65.
  EXPECT_THAT(modbus.Story(), ElementsAre("1 holding 4128"));
  EXPECT_TRUE(modbus.IsOpen());
  // Modbus is chosen before the unit is connected, so not a byte of KiBus is said.
  EXPECT_THAT(port.Sent(), IsEmpty());
}

TEST_F(Z7731OpeningTest, TakesTheUnitOfTheDialogsIdOnModbus) {
  Choose(frmComSet::networkSensor, frmComSet::modBus, "5");
  modbus.units[5].holding[4128] = 154;
  ASSERT_TRUE(panel.FormUpdateInit());
  EXPECT_THAT(modbus.Story(), ElementsAre("5 holding 4128"));
}

TEST_F(Z7731OpeningTest, WithNoStartModeChosenItTakesTheOnlyUnit) {
  ground.comSet.txbID.SetText("17");
  ASSERT_TRUE(panel.FormUpdateInit());
  EXPECT_THAT(RequestsToSend(), ElementsAre(254));
}

class Z7731NetworkTest : public test::Z7731Test {
 protected:
  Z7731NetworkTest() : Z7731Test({.part = 154, .id = 17}) {}
};

TEST_F(Z7731NetworkTest, TakesTheUnitOfTheDialogsIdOnKiBus) {
  Choose(frmComSet::networkSensor, frmComSet::kiBus, "17");
  ASSERT_TRUE(Start());
  // 224 and the ID.
  EXPECT_EQ(port.Sent().front(), 241);
  EXPECT_EQ(panel.txbID.Text(), "17");
}

TEST_F(Z7731NetworkTest, AnotherIdFindsNoUnit) {
  Choose(frmComSet::networkSensor, frmComSet::kiBus, "16");
  EXPECT_FALSE(Open());
  EXPECT_EQ(session.LastError, "The unit does not answer.");
  EXPECT_FALSE(port.PortOpen());
}

TEST_F(Z7731OpeningTest, TheFirstValuesAreShownBeforeAnyCaseWordIsRead) {
  PutLive(4, 2215);
  PutLive(5, 183);
  Choose(frmComSet::singleSensor, frmComSet::kiBus);
  ASSERT_TRUE(Open());
  // As the words stand.
  EXPECT_EQ(panel.txbCHact[0].Text(), "2215");
  EXPECT_EQ(panel.txbCHact[1].Text(), "183");
  EXPECT_EQ(panel.txbSN.Text(), "");
  ASSERT_TRUE(panel.GetAllStaticValues(true));
  ASSERT_TRUE(panel.FormUpdate());
  EXPECT_EQ(panel.txbCHact[0].Text(), "22.15");
  EXPECT_EQ(panel.txbCHact[1].Text(), "1.83");
}

TEST_F(Z7731OpeningTest, LiveModeReadsTheSettings) {
  StartOnKiBus();
  EXPECT_EQ(panel.txbSN.Text(), "15401042");
  EXPECT_EQ(panel.form.Caption(), "BRELANT");
  EXPECT_EQ(panel.cbxSimulated.Value(), 0);
}

TEST_F(Z7731OpeningTest, TheUpdatePeriodIsASetting) {
  EXPECT_EQ(PeriodWith(""), 2);
  EXPECT_EQ(PeriodWith("5"), 5);
  EXPECT_EQ(PeriodWith("1"), 1);
  EXPECT_EQ(PeriodWith("3600"), 3600);
  EXPECT_THAT(ground.store.reads, testing::Contains("BRELANT/Z7731/UpdatePeriod"));
}

TEST_F(Z7731OpeningTest, APeriodBelowOneOrNoNumberCountsAsTwo) {
  for (const char* setting : {"0", "-1", "-30", "often", "99999999999999999999"}) {
    EXPECT_EQ(PeriodWith(setting), 2) << setting;
  }
}

TEST_F(Z7731OpeningTest, TheUsualPeriodIsTwoSeconds) {
  panel.FormUpdateInit();
  EXPECT_EQ(panel.UpdatePeriod, 2);
}

// What was told to the user, when the session does not begin.

TEST_F(Z7731OpeningTest, ASilentUnitIsTold) {
  unit.isSilent = true;
  modbus.units.clear();
  Choose(frmComSet::singleSensor, frmComSet::kiBus);
  EXPECT_FALSE(panel.FormUpdateInit());
  EXPECT_EQ(session.LastError, "The unit does not answer.");
  EXPECT_FALSE(port.PortOpen());
}

TEST_F(Z7731OpeningTest, AMissingUnitIsToldOnModbus) {
  modbus.units.clear();
  Choose(frmComSet::singleSensor, frmComSet::modBus);
  EXPECT_FALSE(panel.FormUpdateInit());
  EXPECT_EQ(session.LastError, "virtual silence");
  EXPECT_FALSE(modbus.IsOpen());
}

TEST_F(Z7731OpeningTest, ARefusalIsToldOnModbus) {
  modbus.Fail({test::VirtualModbus::Kind::exception});
  Choose(frmComSet::singleSensor, frmComSet::modBus);
  EXPECT_FALSE(panel.FormUpdateInit());
  EXPECT_EQ(session.LastError, "virtual exception");
  EXPECT_FALSE(modbus.IsOpen());
}

TEST_F(Z7731OpeningTest, APortThatDoesNotOpenIsTold) {
  port.failOpen = true;
  modbus.failOpen = true;
  Choose(frmComSet::singleSensor, frmComSet::kiBus);
  EXPECT_FALSE(panel.FormUpdateInit());
  EXPECT_NE(session.LastError, "");
  session.LastError.clear();
  Choose(frmComSet::singleSensor, frmComSet::modBus);
  EXPECT_FALSE(panel.FormUpdateInit());
  EXPECT_EQ(session.LastError, "virtual port failure");
}

TEST_F(Z7731OpeningTest, AFailureInTheFirstPollIsTold) {
  Choose(frmComSet::singleSensor, frmComSet::kiBus);
  ASSERT_TRUE(panel.FormUpdateInit());
  unit.isSilent = true;
  EXPECT_FALSE(panel.FormUpdate());
  EXPECT_EQ(session.LastError, "The unit does not answer.");
}

// Without a unit

class Z7731SimulatedOpeningTest : public Z7731OpeningTest {};

TEST_F(Z7731SimulatedOpeningTest, TouchesNoLine) {
  for (const auto protocol : {frmComSet::kiBus, frmComSet::modBus}) {
    Choose(frmComSet::simulatedMode, protocol);
    ASSERT_TRUE(Start());
  }
  EXPECT_THAT(port.Story(), IsEmpty());
  ExpectNoModbus();
  EXPECT_EQ(session.LastError, "");
}

TEST_F(Z7731SimulatedOpeningTest, SaysSo) {
  ASSERT_TRUE(StartSimulated());
  EXPECT_EQ(panel.cbxSimulated.Value(), 1);
  EXPECT_EQ(panel.form.Caption(), "BRELANT Simulated mode");
}

TEST_F(Z7731SimulatedOpeningTest, FillsTheRelayLists) {
  ASSERT_TRUE(StartSimulated());
  // 0x0869: a free entry, CO2 pre, TWA, no alarm. 0x0059: two free ones, CO2 main, no alarm.
  EXPECT_THAT(Ticked(panel.cbxKelrelay), ElementsAre(0, 2, 5));
  EXPECT_THAT(Ticked(panel.cbxKelrelay2), ElementsAre(1, 5));
}

TEST_F(Z7731SimulatedOpeningTest, FillsTheDisplaySequence) {
  ASSERT_TRUE(StartSimulated());
  for (const auto* label : panel.lblDisplayMode) {
    EXPECT_THAT(label->Text(), testing::AnyOf("TEMP 1", "CO2", "TWA CO2", "TEMP 2", "WEIGHT"));
  }
}

// 0xA00 is a register: the high byte, 10, is two decimals and F. Taken as it stands it would have no unit.
TEST_F(Z7731SimulatedOpeningTest, ItsTemperaturesAreInFahrenheit) {
  ASSERT_TRUE(StartSimulated());
  for (const int field : {0, 6}) EXPECT_EQ(panel.lblCH_Type[field].Text(), "F") << field;
  for (const int level : {3, 4, 7, 8}) EXPECT_EQ(panel.lblFKelunit[level].Text(), "F") << level;
}

TEST_F(Z7731SimulatedOpeningTest, HasSomethingToShow) {
  ASSERT_TRUE(StartSimulated());
  for (const int field : {0, 1, 2, 5, 6}) EXPECT_NE(panel.txbCHact[field].Text(), "") << field;
  for (const auto* level : panel.txbKelLevel) EXPECT_NE(level->Text(), "") << level->Name();
  EXPECT_EQ(panel.cbxTWAonP0.Value(), 1);
}

}  // namespace
}  // namespace brelant
