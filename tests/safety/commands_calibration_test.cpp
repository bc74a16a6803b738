// SPDX-License-Identifier: GPL-3.0-or-later
#include <array>

#include "safety/dialog_fixture.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using test::Click;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Ge;
using testing::IsEmpty;
using testing::Lt;
using testing::Not;

constexpr std::size_t kTank = 304;
constexpr std::size_t kProcedure = 306;
constexpr std::size_t kTable = 4704;
constexpr std::size_t kWords = 16;
constexpr const char* kPrompt = "Please enter correct temperature";
constexpr const char* kError = "Calibration error";
constexpr const char* kTableFailed = "Calibration of temperature 2 failed";

/// A person whose boxes are looked at with their titles.
struct TitledBoxes : test::QueuedUserInterface {
  std::optional<std::string> InputBox(const std::string& prompt, const std::string& title) override {
    titles.push_back(title);
    return QueuedUserInterface::InputBox(prompt, title);
  }
  std::vector<std::string> titles;
};

class CalibrationTest : public test::DialogTest {
 protected:
  void Answer(const std::optional<std::string>& text) { ground.ui.inputs.push_back(text); }
  void Answer(UserInterface::Reply reply) { ground.ui.replies.push_back(reply); }
  void AnswerYes() { Answer(UserInterface::Reply::yes); }
  /// Cancel of the progress box.
  void CancelAfter(milliseconds delay) {
    After(delay, [this] { EXPECT_TRUE(Click(ground.msg.Command1)); });
  }
  void PutTable(const std::array<int, kWords>& table) {
    for (std::size_t i = 0; i < kWords; ++i) PutSetting(kTable + 2 * i, table[i]);
  }
  std::vector<int> Table() {
    std::vector<int> table;
    for (std::size_t i = 0; i < kWords; ++i) table.push_back(Setting(kTable + 2 * i));
    return table;
  }
  /// The live value of temperature 2 at each of the three looks.
  void PutReadings(int first, int second, int third) {
    PutLive(9, first);
    After(milliseconds(1000), [this, second] { PutLive(9, second); });
    After(milliseconds(2500), [this, third] { PutLive(9, third); });
  }
  void ExpectNoPollWithin(const std::string& first, const std::string& last) const {
    const auto frames = Frames();
    const auto begin = std::find(frames.begin(), frames.end(), first);
    const auto end = std::find(frames.rbegin(), frames.rend(), last).base();
    ASSERT_LT(begin, end);
    EXPECT_THAT(std::vector(begin, end), Not(Contains(kPollBegins)));
    EXPECT_THAT(std::vector(frames.begin(), begin), Contains(kPollBegins));
    EXPECT_THAT(std::vector(end, frames.end()), Contains(kPollBegins));
  }
};

// Temperature 1

TEST_F(CalibrationTest, TheTitlesOfTheQuestionsTellTheTemperature) {
  TitledBoxes person;
  const auto& c = ground.context;
  const auto& m = c.machine;
  frmZ7731Chart other({{m.clock, m.pump, m.serialPort, m.modbusMaster, m.files, m.settingsStore, person},
                       c.session,
                       c.screen,
                       c.image,
                       c.com,
                       c.info,
                       c.definitions,
                       c.file,
                       c.cal,
                       c.msg,
                       c.comSet,
                       c.spanNote,
                       c.curve,
                       c.connection,
                       c.EndSession});
  EXPECT_FALSE(other.ActionCalTempZero());
  EXPECT_FALSE(other.ActionCalTemp2Zero());
  EXPECT_THAT(person.titles, ElementsAre("Temperature 1", "Temperature 2"));
  EXPECT_THAT(person.prompts, ElementsAre(kPrompt, kPrompt));
}

TEST_F(CalibrationTest, Temperature1IsHandedToTheUnitBeforeTheCommand) {
  for (const char* text : {"21.5", "21,5"}) {
    for (const auto road : test::kRoads) {
      StartOn(road);
      AnswerCommand(kProcedure, 0, milliseconds(1200));
      Answer(text);
      EXPECT_TRUE(panel.ActionCalTempZero()) << session.LastError;
      // Hundredths, no pressure, the command; or registers 4096 and half the address.
      if (road == frmComSet::kiBus) {
        EXPECT_THAT(Writes(), ElementsAre("R320 = 2150", "R322 = 0", "R306 = 1"));
      } else {
        EXPECT_THAT(Writes(), ElementsAre("H4256 = 2150", "H4257 = 0", "H4249 = 1"));
      }
      EXPECT_THAT(Told(), IsEmpty());
      panel.LeaveSession();
    }
  }
}

TEST_F(CalibrationTest, Temperature1IsInTheUnitOfItsCaseWord) {
  unit.eeprom[7964] = 10;
  StartOnKiBus();
  AnswerCommand(kProcedure, 0, milliseconds(1200));
  Answer("14");
  EXPECT_TRUE(panel.ActionCalTempZero());
  // 14 F are 10 C below zero.
  EXPECT_THAT(Writes(), ElementsAre("R320 = " + std::to_string(65536 - 1000), "R322 = 0", "R306 = 1"));
}

TEST_F(CalibrationTest, AnEmptyAnswerSendsNothing) {
  StartOnKiBus();
  for (const auto& answer : {std::optional<std::string>(""), std::optional<std::string>()}) {
    Answer(answer);
    EXPECT_FALSE(panel.ActionCalTempZero());
    Answer(answer);
    EXPECT_FALSE(panel.ActionCalTemp2Zero());
    EXPECT_THAT(Frames(), IsEmpty());
    EXPECT_EQ(session.LastError, "");
    EXPECT_FALSE(ground.msg.Visible());
  }
  EXPECT_THAT(ground.ui.prompts, ElementsAre(kPrompt, kPrompt, kPrompt, kPrompt));
}

TEST_F(CalibrationTest, ATextWithoutANumberIsNoTemperature1) {
  StartOnKiBus();
  Answer("warm");
  EXPECT_FALSE(panel.ActionCalTempZero());
  EXPECT_THAT(Writes(), IsEmpty());
  EXPECT_NE(session.LastError, "");
}

TEST_F(CalibrationTest, Temperature1RunsFromItsMenuEntry) {
  StartOnKiBus();
  NoteBox();
  AnswerCommand(kProcedure, 0, milliseconds(3100));
  Answer("21.5");
  Command(panel.m_Temp1, seconds(8));
  EXPECT_THAT(ground.ui.prompts, ElementsAre(kPrompt));
  EXPECT_THAT(Told(), IsEmpty());
  EXPECT_THAT(boxes, ElementsAre("", "Calibrating temperature 1", ""));
  ExpectNoPollWithin("R320 = 2150", "R306+2");
  EXPECT_EQ(session.PanelCommand, 0);
}

TEST_F(CalibrationTest, ARefusalIsToldOnce) {
  StartOnKiBus();
  AnswerCommand(kProcedure, 100, milliseconds(900));
  Answer("21.5");
  Command(panel.m_Temp1, seconds(5));
  EXPECT_THAT(Told(), ElementsAre(kError));
  EXPECT_EQ(session.LastError, "");
  EXPECT_FALSE(ground.msg.Visible());
  EXPECT_EQ(panel.cbxSimulated.Value(), 0);
}

TEST_F(CalibrationTest, AUnitThatDoesNotEndIsAnErrorAfterHalfAMinute) {
  StartOnKiBus();
  TimeFrames();
  std::chrono::microseconds told{};
  ground.ui.onMessage = [&] { told = ground.clock.Now(); };
  Answer("21.5");
  Command(panel.m_Temp1, seconds(40));
  EXPECT_THAT(Told(), ElementsAre(kError));
  const auto command = milliseconds(TimesOf("R306 = 1").at(0)) + moments.at(0);
  EXPECT_THAT((told - command).count(), AllOf(Ge(29'900'000), Lt(31'000'000)));
}

TEST_F(CalibrationTest, CancelEndsAProcedureInTheMiddleWithoutAWord) {
  StartOnKiBus();
  Answer("21.5");
  CancelAfter(milliseconds(4300));
  Command(panel.m_Temp1, seconds(9));
  EXPECT_THAT(Told(), IsEmpty());
  EXPECT_EQ(panel.cbxSimulated.Value(), 0);
  EXPECT_FALSE(session.CancelPressed);
  // Polls go on right behind it.
  const auto frames = Frames();
  EXPECT_GE(std::count(frames.begin(), frames.end(), kPollBegins), 3);
}

// Temperature 2

TEST_F(CalibrationTest, Temperature2MovesItsTableByTheMeanOfThreeReadings) {
  for (const auto road : test::kRoads) {
    PutTable({0, 1, 100, 600, 1000, 1500, 2000, 3000, 4000, 5000, 10000, 20000, 32767, 32768, 65000, 65388});
    StartOn(road);
    PutReadings(600, 603, 608);
    Answer("7,5");
    EXPECT_TRUE(panel.ActionCalTemp2Zero()) << session.LastError;
    // 750 less 1811 / 3 is 146.333.
    EXPECT_THAT(Table(), ElementsAre(146, 147, 246, 746, 1146, 1646, 2146, 3146, 4146, 5146, 10146, 20146,
                                     32913, 32914, 65146, 65534));
    EXPECT_THAT(Told(), IsEmpty());
    std::vector<std::string> expected;
    for (std::size_t i = 0; i < kWords; ++i) {
      const auto address = kTable + 2 * i;
      const auto place =
          road == frmComSet::kiBus ? "E" + std::to_string(address) : "H" + std::to_string(8192 + address / 2);
      expected.push_back(place + " = " + std::to_string(Table()[i]));
    }
    EXPECT_EQ(Writes(), expected);
    panel.LeaveSession();
  }
}

TEST_F(CalibrationTest, WordsBelowTheErrorFoldByOneLessThanAWordHas) {
  PutTable({0, 1, 500, 1000, 1101, 1102, 1103, 1104, 1105, 1200, 2000, 5000, 32768, 60000, 65534, 65535});
  StartOnKiBus();
  PutReadings(603, 603, 604);
  Answer("-5");
  EXPECT_TRUE(panel.ActionCalTemp2Zero());
  // -500 less 1810 / 3 is -1103.333: 0 gives -1103 and 65535 on top of it.
  EXPECT_THAT(Table(), ElementsAre(64432, 64433, 64932, 65432, 65533, 65534, 0, 1, 2, 97, 897, 3897, 31665,
                                   58897, 64431, 64432));
}

TEST_F(CalibrationTest, Temperature2IsInTheUnitOfItsCaseWord) {
  unit.eeprom[7969] = 10;
  StartOnKiBus();
  PutTable({1000, 1000, 1000, 1000, 1000, 1000, 1000, 1000, 1000, 1000, 1000, 1000, 1000, 1000, 1000, 1000});
  PutReadings(900, 900, 900);
  Answer("50");
  EXPECT_TRUE(panel.ActionCalTemp2Zero());
  // 50 F are 10 C.
  EXPECT_THAT(Table(), testing::Each(1100));
}

TEST_F(CalibrationTest, TheReadingsAreAtLeastASecondAndAHalfApart) {
  StartOnKiBus();
  TimeFrames();
  Answer("7.5");
  EXPECT_TRUE(panel.ActionCalTemp2Zero());
  const auto times = TimesOf("R30+2");
  ASSERT_EQ(times.size(), 3U);
  for (const std::size_t i : {1U, 2U}) {
    EXPECT_THAT(times[i] - times[i - 1], AllOf(Ge(1500), Lt(1600)));
  }
  // The table follows at once.
  EXPECT_LT(TimesOf("E4704 = " + std::to_string(Setting(kTable))).at(0) - times[2], 1000);
}

TEST_F(CalibrationTest, AllWordsAreReadBeforeTheFirstIsWritten) {
  StartOnKiBus();
  Answer("7.5");
  EXPECT_TRUE(panel.ActionCalTemp2Zero());
  const auto frames = Frames();
  const auto write = std::find_if(frames.begin(), frames.end(), [](const std::string& frame) {
    return frame.find('=') != std::string::npos;
  });
  ASSERT_NE(write, frames.end());
  EXPECT_TRUE(write->starts_with("E4704 = "));
  EXPECT_THAT(std::vector(frames.begin(), write), Contains("E4734+2"));
}

TEST_F(CalibrationTest, AWordThatIsNotTakenEndsItAndIsTold) {
  PutTable({1000, 1001, 1002, 1003, 1004, 1005, 1006, 1007, 1008, 1009, 1010, 1011, 1012, 1013, 1014, 1015});
  StartOnKiBus();
  PutLive(9, 700);
  Refuse(kTable + 14, 2);
  Answer("8");
  // The result is good all the same.
  EXPECT_TRUE(panel.ActionCalTemp2Zero());
  EXPECT_THAT(Told(), ElementsAre(kTableFailed));
  EXPECT_EQ(session.LastError, "");
  // The earlier ones stay, the later ones are not tried.
  EXPECT_THAT(Table(), ElementsAre(1100, 1101, 1102, 1103, 1104, 1105, 1106, 1007, 1008, 1009, 1010, 1011,
                                   1012, 1013, 1014, 1015));
  const auto writes = Writes();
  ASSERT_EQ(writes.size(), 12U);
  EXPECT_THAT(std::vector(writes.begin() + 7, writes.end()), testing::Each("E4718 = 1107"));
}

TEST_F(CalibrationTest, AWordWithoutRoomIsNotTaken) {
  PutTable({1000, 65500, 1000, 1000, 1000, 1000, 1000, 1000, 1000, 1000, 1000, 1000, 1000, 1000, 1000, 1000});
  StartOnKiBus();
  PutLive(9, 700);
  Answer("8");
  EXPECT_TRUE(panel.ActionCalTemp2Zero());
  EXPECT_THAT(Told(), ElementsAre(kTableFailed));
  EXPECT_THAT(Writes(), ElementsAre("E4704 = 1100"));
}

TEST_F(CalibrationTest, ATextWithoutANumberIsNoTemperature2) {
  StartOnKiBus();
  for (const char* text : {"warm", "-", ","}) {
    Answer(text);
    EXPECT_FALSE(panel.ActionCalTemp2Zero()) << text;
    EXPECT_NE(std::exchange(session.LastError, {}), "") << text;
    EXPECT_THAT(Writes(), IsEmpty()) << text;
  }
}

TEST_F(CalibrationTest, Temperature2RunsFromItsMenuEntry) {
  StartOnKiBus();
  NoteBox();
  Answer("7.5");
  Command(panel.m_Temp2, seconds(9));
  EXPECT_THAT(Told(), IsEmpty());
  EXPECT_THAT(boxes, ElementsAre("", "Calibrating temperature 2", ""));
  ExpectNoPollWithin("E4704+2", "E4734+2");
  const auto frames = Frames();
  // The three looks belong to no poll.
  const auto look = std::adjacent_find(frames.begin(), frames.end(), [](const auto& one, const auto& next) {
    return one == "R30+2" && next == "R30+2";
  });
  ASSERT_NE(look, frames.end());
  EXPECT_EQ(*(look + 2), "R30+2");
}

TEST_F(CalibrationTest, CancelBetweenTheReadingsWritesNothing) {
  StartOnKiBus();
  Answer("7.5");
  CancelAfter(milliseconds(3200));
  Command(panel.m_Temp2, seconds(9));
  EXPECT_THAT(Told(), IsEmpty());
  EXPECT_THAT(Writes(), IsEmpty());
  EXPECT_EQ(panel.cbxSimulated.Value(), 0);
}

// CO2

TEST_F(CalibrationTest, Co2IsAskedFirst) {
  StartOnKiBus();
  for (const int mode : {0, 1, -1}) EXPECT_FALSE(panel.ActionCalCO2Zero(mode));
  EXPECT_THAT(Told(), ElementsAre("Zero calibrate CO2?"));
  EXPECT_EQ(ground.ui.messages[0].buttons, UserInterface::Buttons::yesNo);
  EXPECT_EQ(session.LastError, "");
  AnswerYes();
  EXPECT_FALSE(panel.ActionCalCO2Zero(1));
  EXPECT_THAT(Frames(), IsEmpty());
}

TEST_F(CalibrationTest, Co2IsZeroedByTheUnitBehindItsBox) {
  for (const auto road : test::kRoads) {
    StartOn(road);
    std::string box;
    After(milliseconds(700), [&] { box = ground.msg.Visible() ? ground.msg.Label1.Text() : ""; });
    AnswerCommand(kProcedure, 0, milliseconds(1200));
    AnswerYes();
    EXPECT_TRUE(panel.ActionCalCO2Zero(0)) << session.LastError;
    EXPECT_THAT(Writes(), ElementsAre(road == frmComSet::kiBus ? "R306 = 2" : "H4249 = 2"));
    EXPECT_EQ(box, "Calibrating CO2 zero point");
    EXPECT_THAT(Told(), ElementsAre("Zero calibrate CO2?"));
    panel.LeaveSession();
  }
}

TEST_F(CalibrationTest, Co2RunsFromItsMenuEntry) {
  StartOnKiBus();
  AnswerCommand(kProcedure, 100, milliseconds(1200));
  AnswerYes();
  Command(panel.m_Zero, seconds(6));
  EXPECT_THAT(Told(), ElementsAre("Zero calibrate CO2?", kError));
  ExpectNoPollWithin("R306 = 2", "R306+2");
}

TEST_F(CalibrationTest, ANoToCo2EndsWithoutAWord) {
  StartOnKiBus();
  Answer(UserInterface::Reply::no);
  Command(panel.m_Zero, seconds(4));
  EXPECT_THAT(Told(), ElementsAre("Zero calibrate CO2?"));
  EXPECT_THAT(Writes(), IsEmpty());
}

// Tank

struct Tank {
  bool isFull;
  int command;
  const char* question;
  const char* completed;
};
constexpr std::array kTanks{
    Tank{false, 1, "Start empty tank calibration?", "Empty tank calibration completed"},
    Tank{true, 2, "Start full tank calibration?", "Full tank calibration completed"}};

class TankTest : public CalibrationTest, public testing::WithParamInterface<Tank> {
 protected:
  bool Act() { return GetParam().isFull ? panel.ActionCalWeightF() : panel.ActionCalWeightE(); }
  Control& Menu() { return GetParam().isFull ? panel.m_FullTank : panel.m_EmptyTank; }
  std::string Frame() const { return "R304 = " + std::to_string(GetParam().command); }
};
INSTANTIATE_TEST_SUITE_P(, TankTest, testing::ValuesIn(kTanks),
                         [](const auto& tank) { return tank.param.isFull ? "Full" : "Empty"; });

TEST_P(TankTest, ANoSendsNothingAndIsNoFailure) {
  StartOnKiBus();
  EXPECT_TRUE(Act());
  EXPECT_THAT(Told(), ElementsAre(GetParam().question));
  EXPECT_EQ(ground.ui.messages[0].buttons, UserInterface::Buttons::yesNo);
  EXPECT_THAT(Frames(), IsEmpty());
}

TEST_P(TankTest, TheResultIsLookedAtAfterFiveSeconds) {
  StartOnKiBus();
  TimeFrames();
  AnswerCommand(kTank, 0, milliseconds(4900));
  AnswerYes();
  EXPECT_TRUE(Act());
  EXPECT_THAT(Frames(), ElementsAre(Frame(), "R304+2"));
  EXPECT_THAT(TimesOf("R304+2").at(0), AllOf(Ge(5000), Lt(5100)));
  EXPECT_THAT(Told(), ElementsAre(GetParam().question, GetParam().completed));
}

TEST_P(TankTest, GoesOverModbusToo) {
  StartOnModbus();
  AnswerCommand(kTank, 0, milliseconds(900));
  AnswerYes();
  EXPECT_TRUE(Act());
  EXPECT_THAT(Writes(), ElementsAre("H4248 = " + std::to_string(GetParam().command)));
  EXPECT_THAT(Told(), ElementsAre(GetParam().question, GetParam().completed));
}

TEST_P(TankTest, AnyOtherResultIsAnError) {
  for (const int result : {100, 1, 2, 65535}) {
    PutWord(unit.ram, kTank, 0);
    StartOnKiBus();
    AnswerCommand(kTank, result, milliseconds(900));
    AnswerYes();
    EXPECT_FALSE(Act());
    EXPECT_EQ(std::exchange(session.LastError, {}), kError) << result;
    EXPECT_THAT(Told(), ElementsAre(GetParam().question));
    panel.LeaveSession();
  }
}

TEST_P(TankTest, RunsFromItsMenuEntryWithoutAPollMeanwhile) {
  StartOnKiBus();
  AnswerCommand(kTank, 0, milliseconds(900));
  AnswerYes();
  Command(Menu(), seconds(10));
  EXPECT_THAT(Told(), ElementsAre(GetParam().question, GetParam().completed));
  ExpectNoPollWithin(Frame(), "R304+2");
}

TEST_P(TankTest, AnErrorIsToldByTheLoop) {
  StartOnKiBus();
  AnswerCommand(kTank, 100, milliseconds(900));
  AnswerYes();
  Command(Menu(), seconds(10));
  EXPECT_THAT(Told(), ElementsAre(GetParam().question, kError));
  EXPECT_EQ(session.LastError, "");
}

/// On a virtual unit that lives.
class LiveCalibrationTest : public test::Z7731Test {};

TEST_F(LiveCalibrationTest, EachCommandIsCarriedOutByTheUnit) {
  Choose(frmComSet::singleSensor, frmComSet::kiBus);
  ASSERT_TRUE(Start()) << session.LastError;
  const auto ram = [this](std::size_t at) { return port.sensor.Ram()[at] * 256 + port.sensor.Ram()[at + 1]; };
  const auto eeprom = [this](std::size_t at) {
    return port.sensor.Eeprom()[at] * 256 + port.sensor.Eeprom()[at + 1];
  };
  ground.ui.inputs = {"25"};
  ASSERT_EQ(eeprom(4740), 0);
  EXPECT_TRUE(panel.ActionCalTempZero()) << session.LastError;
  EXPECT_NE(eeprom(4740), 0);
  ground.ui.replies = {UserInterface::Reply::yes, UserInterface::Reply::yes};
  ASSERT_EQ(eeprom(4742), 0);
  EXPECT_TRUE(panel.ActionCalCO2Zero(0)) << session.LastError;
  EXPECT_NE(eeprom(4742), 0);
  const auto empty = eeprom(4736);
  ASSERT_TRUE(panel.ActionCalWeightE()) << session.LastError;
  EXPECT_NE(eeprom(4736), empty);
  EXPECT_EQ(ram(304), 0);
  EXPECT_EQ(ram(306), 0);
}

}  // namespace
}  // namespace brelant
