// SPDX-License-Identifier: GPL-3.0-or-later
#include <set>

#include "safety/z7731_fixture.h"

namespace brelant {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Z7731SettingsTest : public test::StillUnitTest {
 protected:
  void Read() { ASSERT_TRUE(panel.GetAllStaticValues(true)) << session.LastError; }
  std::vector<int> BoxesOf(int word) {
    PutSetting(4436, word);
    EXPECT_TRUE(panel.GetAllStaticValues(true)) << session.LastError;
    return Ticked(panel.cbxKelrelay);
  }
  void ExpectVisible(const std::vector<std::string>& names, bool visible) {
    for (const auto& name : names) {
      const auto* control = panel.form.Find(name);
      ASSERT_NE(control, nullptr) << name;
      EXPECT_EQ(control->Visible(), visible) << name;
    }
  }

  const std::vector<std::string> fieldsOfTemp2{
      "lblCH_Name(7)",  "txbCHact(6)",     "lblCH_Type(6)",   "lblTemp2AlarmHigh(8)", "lblTemp2AlarmLow(9)",
      "txbKelLevel(7)", "txbKelLevel(8)",  "lblFKelunit(7)",  "lblFKelunit(8)",       "cbxKelrelay(8)",
      "cbxKelrelay(9)", "cbxKelrelay2(8)", "cbxKelrelay2(9)", "txbStatus(7)",         "txbStatus(8)"};
  const std::vector<std::string> fieldsOfWeight{
      "lblCH_Name(6)",  "txbCHact(5)",     "lblCH_Type(5)",   "lblWeightAlarmLow(6)", "lblWeightAlarmHigh(7)",
      "txbKelLevel(5)", "txbKelLevel(6)",  "lblFKelunit(5)",  "lblFKelunit(6)",       "cbxKelrelay(6)",
      "cbxKelrelay(7)", "cbxKelrelay2(6)", "cbxKelrelay2(7)", "txbStatus(5)",         "txbStatus(6)"};
};

// The model, the presence of temperature 2 and weight, the serial number, then the settings: what lies
// together of these comes with the first of them.
TEST_F(Z7731SettingsTest, AsksInTheToldOrderOnKiBus) {
  StartOnKiBus();
  Read();
  EXPECT_THAT(Frames(), ElementsAre("E4125+1",                                 // model
                                    "R30+2", "R34+2",                          // presence
                                    "E8166+1", "E8167+1", "E8168+1", "R65+1",  // serial number
                                    "E4160+1",                                 // ID
                                    "E4602+2",                                 // output P0
                                    "E7964+2", "E7968+2", "E7971+1",           // Case words
                                    "E4240+4",                                 // temperature 1
                                    "E4252+4",                                 // temperature 2
                                    "E4354+4", "E4358+2",                      // weight
                                    "E4248+4",                                 // TWA
                                    "E4244+4",                                 // CO2
                                    "E4401+4",                                 // display
                                    "E4436+4"));                               // relays
}

// A register that holds two of the values is asked for twice.
TEST_F(Z7731SettingsTest, AsksInTheToldOrderOnModbus) {
  StartOnModbus();
  Read();
  EXPECT_THAT(modbus.Story(),
              ElementsAre("1 holding 10254",                                        // model
                          "1 input 9", "1 input 11",                                // presence
                          "1 holding 12275", "1 holding 12275", "1 holding 12276",  // serial number
                          "1 holding 4128",                                         // part number
                          "1 holding 10272",                                        // ID
                          "1 holding 10493",                                        // output P0
                          "1 input 16+4", "1 input 16",                             // Case words
                          "1 holding 20+2", "1 holding 29+2", "1 holding 11+3", "1 holding 26+2",
                          "1 holding 23+2",                        // levels
                          "1 holding 10392+3", "1 holding 10393",  // display
                          "1 holding 10410+2"));                   // relays
}

TEST_F(Z7731SettingsTest, TheModelDecidesWhichSequenceIsRead) {
  unit.eeprom[4401] = 5;
  unit.eeprom[4402] = 4;
  unit.eeprom[4403] = 8;
  unit.eeprom[4404] = 11;
  for (std::size_t i = 0; i < 4; ++i) unit.eeprom[4409 + i] = 9;
  StartOnKiBus();
  for (const std::uint8_t model : {1, 3, 5, 6, 8, 0}) {
    unit.eeprom[4125] = model;
    Read();
    EXPECT_THAT(Texts(panel.lblDisplayMode), ElementsAre("CO2", "TEMP 1", "TWA CO2", "WEIGHT")) << int{model};
  }
  Forget();
  unit.eeprom[4125] = 7;
  Read();
  EXPECT_THAT(Texts(panel.lblDisplayMode), ElementsAre("TEMP 2", "TEMP 2", "TEMP 2", "TEMP 2"));
  EXPECT_THAT(Frames(), testing::Not(testing::Contains(testing::StartsWith("E4401"))));
  EXPECT_THAT(Frames(), testing::Contains("E4409+4"));
}

TEST_F(Z7731SettingsTest, AChannelWithoutANameIsShownEmpty) {
  unit.eeprom[4401] = 6;
  unit.eeprom[4404] = 15;
  StartOnKiBus();
  EXPECT_THAT(Texts(panel.lblDisplayMode), ElementsAre("", "TEMP 1", "TWA CO2", ""));
}

TEST_F(Z7731SettingsTest, EachLevelGoesToItsField) {
  PutSetting(4240, 2311);  // temperature 1 high
  PutSetting(4242, 2122);  // low
  PutSetting(4244, 333);   // CO2 main
  PutSetting(4246, 144);   // pre
  PutSetting(4248, 155);   // TWA
  PutSetting(4250, 166);   // its copy, which nothing shows
  PutSetting(4252, -677);  // temperature 2 low
  PutSetting(4254, 888);   // high
  PutSetting(4354, 1999);  // weight pre, with the offset on top
  PutSetting(4356, 1010);  // main
  PutSetting(4358, 99);
  for (const auto protocol : {frmComSet::kiBus, frmComSet::modBus}) {
    StartOn(protocol);
    EXPECT_THAT(Texts(panel.txbKelLevel),
                ElementsAre("1.44", "3.33", "1.55", "21.22", "23.11", "19", "9.11", "-6.77", "8.88"));
    panel.LeaveSession();
  }
}

TEST_F(Z7731SettingsTest, ALevelIsShownByItsOwnChannelsCaseWord) {
  unit.eeprom[7964] = 1 << 2;      // no decimals, C
  unit.eeprom[7965] = 5 << 2 | 3;  // one
  unit.eeprom[7968] = 4 << 2;      // none
  unit.eeprom[7969] = 2 << 2 | 2;  // two, F
  unit.eeprom[7971] = 3 << 2 | 3;  // one, V
  StartOnKiBus();
  EXPECT_THAT(Texts(panel.txbKelLevel),
              ElementsAre("15", "25", "180", "2100", "2300", "150", "80", "42.8", "46.4"));
}

TEST_F(Z7731SettingsTest, UnitsAreThoseOfTheCaseWords) {
  unit.eeprom[7964] = 2 << 2;
  unit.eeprom[7965] = 4 << 2;
  unit.eeprom[7968] = 5 << 2;
  unit.eeprom[7969] = 1 << 2;
  unit.eeprom[7971] = 0;
  for (const auto protocol : {frmComSet::kiBus, frmComSet::modBus}) {
    StartOn(protocol);
    EXPECT_EQ(panel.lblCH_Type[0].Text(), "F");
    EXPECT_EQ(panel.lblCH_Type[6].Text(), "C");
    EXPECT_EQ(panel.lblCH_Type[5].Text(), "w/o");
    for (const int level : {3, 4}) EXPECT_EQ(panel.lblFKelunit[level].Text(), "F");
    for (const int level : {7, 8}) EXPECT_EQ(panel.lblFKelunit[level].Text(), "C");
    for (const int level : {5, 6}) EXPECT_EQ(panel.lblFKelunit[level].Text(), "w/o");
    panel.LeaveSession();
  }
}

TEST_F(Z7731SettingsTest, IdAndSerialNumberAreTheUnits) {
  unit.eeprom[4160] = 23;
  unit.eeprom[8166] = 0x01;
  unit.eeprom[8167] = 0x02;
  unit.eeprom[8168] = 0x03;
  StartOnKiBus();
  EXPECT_EQ(panel.txbID.Text(), "23");
  // 1 + 2 x 256 + 3 x 65536
  EXPECT_EQ(panel.txbSN.Text(), "154197121");
}

TEST_F(Z7731SettingsTest, TheBoxOfP0IsTickedForTheValueOfTheTwaOnly) {
  StartOnKiBus();
  struct Case {
    int word;
    int ticked;
  };
  for (const auto& [word, ticked] :
       {Case{37302, 1}, Case{37301, 0}, Case{37302, 1}, Case{0, 0}, Case{65535, 0}}) {
    PutSetting(4602, word);
    Read();
    EXPECT_EQ(panel.cbxTWAonP0.Value(), ticked) << word;
  }
}

// Relays

TEST_F(Z7731SettingsTest, EachRegulatorHasItsBox) {
  StartOnKiBus();
  // The other entries are regulator 8, CO2 pre.
  EXPECT_THAT(BoxesOf(0x8888), ElementsAre(0));
  EXPECT_THAT(BoxesOf(0x5888), ElementsAre(0, 1));
  EXPECT_THAT(BoxesOf(0x8688), ElementsAre(0, 2));
  EXPECT_THAT(BoxesOf(0x88E8), ElementsAre(0, 3, 4));
  EXPECT_THAT(BoxesOf(0x888F), ElementsAre(0, 8, 9));
  EXPECT_THAT(BoxesOf(0xD888), ElementsAre(0, 7));
}

TEST_F(Z7731SettingsTest, NothingAndRegulatorNineAreTheBoxOfNoAlarm) {
  StartOnKiBus();
  EXPECT_THAT(BoxesOf(0x0000), ElementsAre(5));
  EXPECT_THAT(BoxesOf(0x9999), ElementsAre(5));
  EXPECT_THAT(BoxesOf(0x5060), ElementsAre(1, 2, 5));
  EXPECT_THAT(BoxesOf(0x5669), ElementsAre(1, 2, 5));
  EXPECT_THAT(BoxesOf(0x5665), ElementsAre(1, 2));
}

TEST_F(Z7731SettingsTest, ARegulatorThatNobodyKnowsIsTheFirstBox) {
  StartOnKiBus();
  for (const int regulator : {1, 2, 3, 4, 7, 10, 11, 12}) {
    EXPECT_THAT(BoxesOf(regulator * 0x1000 + 0x555), ElementsAre(0, 1)) << regulator;
  }
}

TEST_F(Z7731SettingsTest, EachRelayHasItsOwnList) {
  PutSetting(4434, 0xDDDD);  // nobody reads it
  PutSetting(4436, 0x5EF9);
  PutSetting(4438, 0x86D0);
  for (const auto protocol : {frmComSet::kiBus, frmComSet::modBus}) {
    StartOn(protocol);
    EXPECT_THAT(Ticked(panel.cbxKelrelay), ElementsAre(1, 3, 4, 5, 8, 9));
    EXPECT_THAT(Ticked(panel.cbxKelrelay2), ElementsAre(0, 2, 5, 7));
    panel.LeaveSession();
  }
}

TEST_F(Z7731SettingsTest, AReadClearsWhatWasTicked) {
  StartOnKiBus();
  for (auto* boxes : {&panel.cbxKelrelay, &panel.cbxKelrelay2}) {
    for (auto* box : boxes->boxes) box->SetValue(1);
  }
  PutSetting(4436, 0x5555);
  PutSetting(4438, 0x6666);
  Read();
  EXPECT_THAT(Ticked(panel.cbxKelrelay), ElementsAre(1));
  EXPECT_THAT(Ticked(panel.cbxKelrelay2), ElementsAre(2));
}

// Presence

TEST_F(Z7731SettingsTest, AWordOf9999IsASecondTemperatureThatIsNotThere) {
  for (const auto protocol : {frmComSet::kiBus, frmComSet::modBus}) {
    PutLive(9, 9998);
    StartOn(protocol);
    ExpectVisible(fieldsOfTemp2, true);
    EXPECT_TRUE(panel.m_Temp2.Enabled());
    PutLive(9, 9999);
    // Twice, as what was absent before stays so.
    for (int i = 0; i < 2; ++i) Read();
    ExpectVisible(fieldsOfTemp2, false);
    ExpectVisible(fieldsOfWeight, true);
    for (const int state : {7, 8}) EXPECT_EQ(panel.txbStatus[state].Text(), "N/A");
    for (const int state : {5, 6}) EXPECT_NE(panel.txbStatus[state].Text(), "N/A");
    EXPECT_FALSE(panel.m_Temp2.Enabled());
    EXPECT_TRUE(panel.m_Weight.Enabled());
    panel.LeaveSession();
  }
}

TEST_F(Z7731SettingsTest, AWordOf9999IsAWeightThatIsNotThere) {
  for (const auto protocol : {frmComSet::kiBus, frmComSet::modBus}) {
    PutLive(11, 5000);
    StartOn(protocol);
    ExpectVisible(fieldsOfWeight, true);
    PutLive(11, 9999);
    // Twice, as what was absent before stays so.
    for (int i = 0; i < 2; ++i) Read();
    ExpectVisible(fieldsOfWeight, false);
    ExpectVisible(fieldsOfTemp2, true);
    for (const int state : {5, 6}) {
      EXPECT_EQ(panel.txbStatus[state].Text(), "N/A");
      EXPECT_EQ(panel.txbStatus[state].Back(), kStyleColour);
      EXPECT_EQ(panel.txbStatus[state].Fore(), kStyleColour);
    }
    EXPECT_FALSE(panel.m_Weight.Enabled());
    EXPECT_TRUE(panel.m_Temp2.Enabled());
    panel.LeaveSession();
  }
}

TEST_F(Z7731SettingsTest, NothingElseIsHiddenWithThem) {
  PutLive(9, 9999);
  PutLive(11, 9999);
  StartOnKiBus();
  std::set<std::string> hidden{"lblCH_Name(3)", "lblCH_Name(4)", "lblCH_Name(5)", "lblCH_Type(3)",
                               "lblCH_Type(4)", "txbCHact(3)",   "txbCHact(4)"};
  hidden.insert(fieldsOfTemp2.begin(), fieldsOfTemp2.end());
  hidden.insert(fieldsOfWeight.begin(), fieldsOfWeight.end());
  for (const auto& control : panel.form.Controls()) {
    if (control.Kind() == ControlKind::menu) continue;
    EXPECT_EQ(!control.Visible(), hidden.count(control.Name()) == 1) << control.Name();
  }
}

TEST_F(Z7731SettingsTest, AChannelThatComesBackIsShownAgain) {
  PutLive(9, 9999);
  PutLive(11, 9999);
  StartOnKiBus();
  PutLive(9, 700);
  PutLive(11, 4000);
  Read();
  ExpectVisible(fieldsOfTemp2, true);
  ExpectVisible(fieldsOfWeight, true);
  EXPECT_TRUE(panel.m_Temp2.Enabled());
  EXPECT_TRUE(panel.m_Weight.Enabled());
  ASSERT_TRUE(panel.FormUpdate());
  EXPECT_EQ(panel.txbCHact[6].Text(), "7");
  EXPECT_EQ(panel.txbCHact[5].Text(), "40");
  EXPECT_EQ(panel.txbStatus[7].Text(), "OK");
  EXPECT_EQ(panel.txbStatus[5].Text(), "OK");
}

// Failures

TEST_F(Z7731SettingsTest, AReadThatFailsIsToldAndShowsNothing) {
  StartOnModbus();
  const auto before = Texts(panel.txbKelLevel);
  for (const std::size_t address : {4240, 4244, 4248, 4252, 4354}) PutSetting(address, 1234);
  unit.eeprom[4160] = 29;
  Read();
  const std::size_t requests = modbus.Requests().size();
  ASSERT_NE(Texts(panel.txbKelLevel), before);
  for (const std::size_t address : {4240, 4244, 4248, 4252, 4354}) PutSetting(address, 777);
  unit.eeprom[4160] = 3;
  unit.eeprom[7964] = 10;
  const auto known = Texts(panel.txbKelLevel);
  for (std::size_t good = 0; good < requests; ++good) {
    session.LastError.clear();
    for (std::size_t i = 0; i < good; ++i) modbus.Fail({std::nullopt});
    modbus.Fail({test::VirtualModbus::Kind::exception});
    EXPECT_FALSE(panel.GetAllStaticValues(true)) << good;
    EXPECT_EQ(session.LastError, "virtual exception") << good;
    EXPECT_EQ(Texts(panel.txbKelLevel), known) << good;
    EXPECT_EQ(panel.txbID.Text(), "29") << good;
    // Nor is anything of it taken: values stay in the unit that stands beside them.
    EXPECT_TRUE(panel.FormUpdate()) << good;
    EXPECT_EQ(panel.txbCHact[0].Text(), "22") << good;
  }
}

TEST_F(Z7731SettingsTest, ADisplayPositionBeyondTheListIsAFailure) {
  StartOnKiBus();
  unit.eeprom[4402] = 16;
  EXPECT_FALSE(panel.GetAllStaticValues(true));
  EXPECT_NE(session.LastError, "");
  EXPECT_THAT(Texts(panel.lblDisplayMode), ElementsAre("CO2", "TEMP 1", "TWA CO2", "WEIGHT"));
}

TEST_F(Z7731SettingsTest, WithoutAUnitNothingIsRead) {
  ASSERT_TRUE(StartSimulated());
  const auto levels = Texts(panel.txbKelLevel);
  EXPECT_TRUE(panel.GetAllStaticValues(true));
  EXPECT_EQ(session.LastError, "");
  EXPECT_EQ(Texts(panel.txbKelLevel), levels);
  EXPECT_THAT(port.Sent(), IsEmpty());
}

TEST_F(Z7731SettingsTest, TheReadCommandReadsThem) {
  StartOnKiBus();
  PutSetting(4240, 2450);
  std::vector<std::string> texts;
  ground.pump.OnPass([&] {
    const auto text = ground.msg.Visible() ? ground.msg.Label1.Text() : std::string();
    if (!text.empty() && (texts.empty() || texts.back() != text)) texts.push_back(text);
    return false;
  });
  After(std::chrono::milliseconds(1900), [this] { test::Click(panel.btnReadFromSensor); });
  Run(std::chrono::milliseconds(3500));
  EXPECT_EQ(panel.txbKelLevel[4].Text(), "24.5");
  EXPECT_THAT(texts, ElementsAre("Please wait", "Reading from sensor"));
  EXPECT_EQ(ground.image.RamImage[65], 154);
  EXPECT_THAT(Told(), IsEmpty());
}

}  // namespace
}  // namespace brelant
