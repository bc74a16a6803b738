// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/z7731_fixture.h"

namespace brelant {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;
using test::kButtonFace;
using test::kDarkGreen;
using test::kGreen;
using test::kRed;
using test::kYellow;
using testing::ElementsAre;
using testing::IsEmpty;

class Z7731PollTest : public test::StillUnitTest {
 protected:
  /// The states of the fields of alarms, shortened.
  std::vector<std::string> States() const { return Texts(panel.txbStatus); }
  void ExpectState(int index, const std::string& text, Colour back) {
    EXPECT_EQ(panel.txbStatus[index].Text(), text) << index;
    EXPECT_EQ(panel.txbStatus[index].Back(), back) << index;
  }
  void Poll() { ASSERT_TRUE(panel.FormUpdate()) << session.LastError; }
  /// The states that say ALARM.
  std::vector<int> Alarms() {
    std::vector<int> alarms;
    for (int i = 0; i < panel.txbStatus.Count(); ++i) {
      if (panel.txbStatus[i].Text() == "ALARM") alarms.push_back(i);
    }
    return alarms;
  }
  void ClearRegulators() {
    for (const std::size_t number : {4, 5, 6, 7, 13}) Regulator(number) = 0;
  }
};

// States of temperature 2, temperature 1 and CO2, TWA, weight; values of temperature 1, TWA, CO2, temperature
// 2, weight; alarms of weight, temperature 2, temperature 1, TWA, CO2; the state byte. What lies together
// comes together.
TEST_F(Z7731PollTest, AsksInTheToldOrderOnKiBus) {
  StartOnKiBus();
  Poll();
  EXPECT_THAT(unit.frames, ElementsAre(ElementsAre(178, 1, 8),     // states 8 and 9
                                       ElementsAre(178, 1, 4),     // states 4 and 5
                                       ElementsAre(177, 1, 11),    // state 11
                                       ElementsAre(132, 20),       // values 4 and 5
                                       ElementsAre(132, 28),       // values 8 and 9
                                       ElementsAre(130, 34),       // value 11
                                       ElementsAre(177, 1, 29),    // regulator 13
                                       ElementsAre(180, 1, 20),    // regulators 4 to 7
                                       ElementsAre(177, 1, 127)))  // the byte at 383
      << testing::PrintToString(Frames());
}

TEST_F(Z7731PollTest, AsksInTheToldOrderOnModbus) {
  StartOnModbus();
  Poll();
  EXPECT_THAT(modbus.Story(), ElementsAre("1 input 9+3", "1 input 15", "1 input 6+2", "1 input 13",
                                          "1 input 1+2", "1 holding 4287"));
}

TEST_F(Z7731PollTest, AbsentChannelsAreNotAskedForTheirValues) {
  PutLive(9, 9999);
  PutLive(11, 9999);
  StartOnKiBus();
  Poll();
  EXPECT_THAT(Frames(),
              ElementsAre("R264+2", "R260+2", "R267+1", "R20+4", "R28+2", "R285+1", "R276+4", "R383+1"));
}

TEST_F(Z7731PollTest, EachValueGoesToItsField) {
  StartOnKiBus();
  PutLive(4, -1050);
  PutLive(5, 183);
  PutLive(8, 90);
  PutLive(9, 715);
  PutLive(11, 4207);
  Poll();
  EXPECT_THAT(Texts(panel.txbCHact), ElementsAre("-10.5", "1.83", "0.9", "", "", "42.07", "7.15"));
}

TEST_F(Z7731PollTest, AValueIsShownByItsChannelsCaseWord) {
  unit.eeprom[7964] = 2 << 2 | 3;           // one decimal, F
  unit.eeprom[7965] = 4 << 2;               // none, ppm
  unit.eeprom[7968] = 1 << 5 | 5 << 2 | 2;  // two, and a further tenth
  StartOnKiBus();
  PutLive(4, 215);
  PutLive(5, 812);
  PutLive(8, 12345);
  Poll();
  // 21.5 C x 9 / 5 + 32 = 70.7
  EXPECT_EQ(panel.txbCHact[0].Text(), "70.7");
  EXPECT_EQ(panel.txbCHact[1].Text(), "812");
  // 12.345, of which a half goes to the even neighbour.
  EXPECT_EQ(panel.txbCHact[2].Text(), "12.34");
}

// Which alarm is which, by the bit of its regulator.

struct AlarmBit {
  std::size_t regulator;
  int bit;
  int state;
};

TEST_F(Z7731PollTest, EachAlarmGoesToItsFieldOnKiBus) {
  StartOnKiBus();
  for (const auto& [regulator, bit, state] :
       {AlarmBit{5, 2, 0}, AlarmBit{5, 0, 1}, AlarmBit{4, 3, 3}, AlarmBit{4, 0, 4}, AlarmBit{13, 1, 5},
        AlarmBit{13, 3, 6}, AlarmBit{7, 3, 7}, AlarmBit{7, 0, 8}}) {
    ClearRegulators();
    Regulator(regulator) = static_cast<std::uint8_t>(1 << bit);
    Poll();
    EXPECT_THAT(Alarms(), ElementsAre(state)) << regulator << " " << bit;
    for (int i = 0; i < 9; ++i) ExpectState(i, i == state ? "ALARM" : "OK", i == state ? kRed : kGreen);
  }
}

TEST_F(Z7731PollTest, EachAlarmGoesToItsFieldOnModbus) {
  StartOnModbus();
  for (const auto& [regulator, bit, state] :
       {AlarmBit{5, 2, 0}, AlarmBit{5, 0, 1}, AlarmBit{6, 0, 2}, AlarmBit{4, 3, 3}, AlarmBit{4, 0, 4},
        AlarmBit{13, 1, 5}, AlarmBit{13, 3, 6}, AlarmBit{7, 3, 7}, AlarmBit{7, 0, 8}}) {
    ClearRegulators();
    Regulator(regulator) = static_cast<std::uint8_t>(1 << bit);
    Poll();
    EXPECT_THAT(Alarms(), ElementsAre(state)) << regulator << " " << bit;
  }
}

// Required: on KiBus the bit lands where nothing reads it.
TEST_F(Z7731PollTest, TheAlarmOfTheAverageIsToldOnModbusOnly) {
  Regulator(6) = 255;
  StartOnKiBus();
  Poll();
  ExpectState(2, "OK", kGreen);
  panel.LeaveSession();
  StartOnModbus();
  Poll();
  ExpectState(2, "ALARM", kRed);
}

// Temperature 2 is told by three tables that cross: state and level 7 are the low alarm, with the level that
// its regulator has first, while temperature 1 has its high level first; the relay boxes have 8 for the high
// and 9 for the low one.
TEST_F(Z7731PollTest, LowAndHighOfTemperature2Cross) {
  StartOnKiBus();
  EXPECT_EQ(panel.txbKelLevel[7].Text(), "6");   // E4252
  EXPECT_EQ(panel.txbKelLevel[8].Text(), "8");   // E4254
  EXPECT_EQ(panel.txbKelLevel[3].Text(), "21");  // E4242
  EXPECT_EQ(panel.txbKelLevel[4].Text(), "23");  // E4240
  EXPECT_NE(panel.form.Find("lblTemp2AlarmHigh(8)"), nullptr);
  EXPECT_NE(panel.form.Find("lblTemp2AlarmLow(9)"), nullptr);
  EXPECT_EQ(panel.alarmLabels[7].Name(), "lblTemp2AlarmLow(9)");
  EXPECT_EQ(panel.alarmLabels[8].Name(), "lblTemp2AlarmHigh(8)");
}

struct ChannelStates {
  std::size_t channel;
  std::vector<int> states;
};

TEST_F(Z7731PollTest, AChannelWithoutAReadingShowsErrWhateverItsAlarmsSay) {
  for (const auto protocol : {frmComSet::kiBus, frmComSet::modBus}) {
    StartOn(protocol);
    for (const std::uint8_t alarms : {0, 255}) {
      for (const std::size_t number : {4, 5, 7, 13}) Regulator(number) = alarms;
      for (const auto& [channel, states] :
           {ChannelStates{4, {3, 4}}, ChannelStates{5, {0, 1}}, ChannelStates{8, {2}},
            ChannelStates{9, {7, 8}}, ChannelStates{11, {5, 6}}}) {
        for (const std::uint8_t status : {1, 8, 15}) {
          Status(channel) = status;
          Poll();
          Status(channel) = 0;
          for (int i = 0; i < 9; ++i) {
            const bool isErr = std::find(states.begin(), states.end(), i) != states.end();
            EXPECT_EQ(panel.txbStatus[i].Text() == "ERR", isErr) << channel << " " << i;
            EXPECT_EQ(panel.txbStatus[i].Back() == kYellow, isErr) << channel << " " << i;
          }
        }
      }
    }
    Poll();
    EXPECT_THAT(States(), testing::Not(testing::Contains("ERR")));
    panel.LeaveSession();
  }
}

TEST_F(Z7731PollTest, TheValueIsShownWithoutAReadingToo) {
  StartOnKiBus();
  Status(4) = 1;
  PutLive(4, 1234);
  Poll();
  EXPECT_EQ(panel.txbCHact[0].Text(), "12.34");
}

TEST_F(Z7731PollTest, WhatIsNotThereStaysNotAvailable) {
  PutLive(9, 9999);
  PutLive(11, 9999);
  StartOnKiBus();
  PutLive(9, 500);
  PutLive(11, 500);
  Regulator(7) = Regulator(13) = 255;
  Status(9) = Status(11) = 1;
  Regulator(5) = 0;
  const auto values = Texts(panel.txbCHact);
  for (int i = 0; i < 3; ++i) Poll();
  for (const int state : {5, 6, 7, 8}) ExpectState(state, "N/A", kStyleColour);
  EXPECT_EQ(panel.txbCHact[5].Text(), values.at(5));
  EXPECT_EQ(panel.txbCHact[6].Text(), values.at(6));
  ExpectState(0, "OK", kGreen);
}

TEST_F(Z7731PollTest, TheStateLineIsBit7) {
  for (const auto protocol : {frmComSet::kiBus, frmComSet::modBus}) {
    StartOn(protocol);
    for (const std::uint8_t byte : {128, 255, 129}) {
      unit.ram[383] = byte;
      Poll();
      EXPECT_EQ(panel.txbKELActTempAenable.Text(), "Enabled") << int{byte};
      EXPECT_EQ(panel.txbKELActTempAenable.Fore(), kGreen);
    }
    for (const std::uint8_t byte : {0, 127, 1}) {
      unit.ram[383] = byte;
      Poll();
      EXPECT_EQ(panel.txbKELActTempAenable.Text(), "Disabled") << int{byte};
      EXPECT_EQ(panel.txbKELActTempAenable.Fore(), kRed);
    }
    panel.LeaveSession();
  }
}

TEST_F(Z7731PollTest, AFailureIsTold) {
  StartOnModbus();
  for (const int good : {0, 1, 2, 3, 4, 5}) {
    session.LastError.clear();
    for (int i = 0; i < good; ++i) modbus.Fail({std::nullopt});
    modbus.Fail({test::VirtualModbus::Kind::exception});
    EXPECT_FALSE(panel.FormUpdate()) << good;
    EXPECT_EQ(session.LastError, "virtual exception") << good;
  }
}

// The lamp of activity

TEST_F(Z7731PollTest, TheLampFlickersWithEachTransfer) {
  StartOnModbus();
  EXPECT_EQ(panel.picFlash.Kind(), ControlKind::lamp);
  panel.picFlash.SetBack(kButtonFace);
  std::vector<Colour> colours;
  ground.pump.OnPass([&] {
    const auto colour = panel.picFlash.Back();
    if (colours.empty() || colours.back() != colour) colours.push_back(colour);
    return false;
  });
  Poll();
  // Six transfers.
  EXPECT_THAT(colours,
              ElementsAre(kButtonFace, kDarkGreen, kButtonFace, kDarkGreen, kButtonFace, kDarkGreen));
  EXPECT_EQ(panel.picFlash.Back(), kButtonFace);
}

TEST_F(Z7731PollTest, ATransferIsFollowedByFiveMilliseconds) {
  StartOnModbus();
  Poll();
  const auto& requests = modbus.Requests();
  for (std::size_t i = 1; i < requests.size(); ++i) {
    EXPECT_EQ(requests[i].at - requests[i - 1].at, microseconds(modbus.replyTime) + milliseconds(5)) << i;
  }
}

TEST_F(Z7731PollTest, TheLampIsOutWhenTheTurnEnds) {
  // Seven transfers: an odd number.
  PutLive(9, 9999);
  StartOnKiBus();
  std::size_t lit = 0;
  ground.pump.OnPass([&] {
    lit += panel.picFlash.Back() == kDarkGreen ? 1 : 0;
    return false;
  });
  After(milliseconds(1900), [&] { EXPECT_EQ(panel.picFlash.Back(), kButtonFace); });
  Run(milliseconds(1950));
  EXPECT_GT(lit, 0U);
  panel.picFlash.SetBack(kDarkGreen);
  panel.SimMode(true);
  Run(milliseconds(10));
  EXPECT_EQ(panel.picFlash.Back(), kButtonFace);
}

TEST_F(Z7731PollTest, WhoeverWatchesIsToldTheChannelsThatAreThere) {
  PutLive(9, 9999);
  StartOnKiBus();
  Regulator(5) = 1;
  Poll();
  std::vector<std::string> values;
  for (const auto& value : panel.LiveValues()) {
    values.push_back(value.name + " " + value.text + " " + value.unit);
  }
  EXPECT_THAT(values, testing::UnorderedElementsAre("TEMP 1 22 C", "CO2 1.83 %",
                                                    testing::StartsWith("TWA CO2 "), "WEIGHT 50 "));
  std::vector<std::string> alarms;
  for (const auto& alarm : panel.Alarms()) alarms.push_back(alarm.name + ": " + alarm.state);
  EXPECT_THAT(alarms, testing::UnorderedElementsAre("CO2 pre-alarm: OK", "CO2 main alarm: ALARM",
                                                    "TWA alarm: OK", "TEMP 1 low: OK", "TEMP 1 high: OK",
                                                    "WEIGHT pre-alarm: OK", "WEIGHT main alarm: OK"));
}

}  // namespace
}  // namespace brelant
