// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/z7731_fixture.h"

namespace brelant {
namespace {

using test::Click;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kReadOnly = "An input register is read only.";
constexpr std::size_t kCelsius = 0;
constexpr std::size_t kFahrenheit = 1;

class Z7731UnitTest : public test::StillUnitTest {
 protected:
  /// A click on the unit beside temperature 1 or, with 6, 2.
  void Choose(std::size_t choice, int field = 0) {
    ground.ui.choices.push_back(choice);
    ASSERT_TRUE(Click(panel.lblCH_Type[field]));
  }
  void ExpectUnits(const std::string& letter) {
    for (const int field : {0, 6}) EXPECT_EQ(panel.lblCH_Type[field].Text(), letter) << field;
    for (const int level : {3, 4, 7, 8}) EXPECT_EQ(panel.lblFKelunit[level].Text(), letter) << level;
  }
};

TEST_F(Z7731UnitTest, EitherTemperaturePopsUpTheTwoUnits) {
  StartOnKiBus();
  for (const int field : {0, 6}) Click(panel.lblCH_Type[field]);
  EXPECT_THAT(ground.ui.popups, ElementsAre(ElementsAre("C", "F"), ElementsAre("C", "F")));
  EXPECT_THAT(unit.frames, IsEmpty());
  ExpectUnits("C");
}

TEST_F(Z7731UnitTest, TheOtherUnitsDoNot) {
  StartOnKiBus();
  for (const int field : {1, 2, 5}) Click(panel.lblCH_Type[field]);
  EXPECT_THAT(ground.ui.popups, IsEmpty());
}

TEST_F(Z7731UnitTest, FahrenheitIsSentOnKiBus) {
  for (const int field : {0, 6}) {
    unit.eeprom[7964] = unit.eeprom[7969] = 6;
    StartOnKiBus();
    Choose(kFahrenheit, field);
    // (6 and 227) or 8
    EXPECT_THAT(Frames(), ElementsAre("E7964 = 10", "E7969 = 10")) << field;
    ExpectUnits("F");
    EXPECT_THAT(Told(), IsEmpty());
    panel.LeaveSession();
  }
}

TEST_F(Z7731UnitTest, CelsiusIsSentOnKiBus) {
  unit.eeprom[7964] = unit.eeprom[7969] = 10;
  StartOnKiBus();
  Choose(kCelsius);
  EXPECT_THAT(Frames(), ElementsAre("E7964 = 6", "E7969 = 6"));
  ExpectUnits("C");
}

TEST_F(Z7731UnitTest, TheOtherBitsOfEachCaseWordStay) {
  unit.eeprom[7964] = 0x67;  // two bits of divisor, unit C, one decimal
  unit.eeprom[7969] = 0x86;  // bit 7, unit C, two decimals
  StartOnKiBus();
  Choose(kFahrenheit);
  EXPECT_THAT(Frames(), ElementsAre("E7964 = 107", "E7969 = 138"));
}

TEST_F(Z7731UnitTest, TheTextsAreConverted) {
  StartOnKiBus();
  PutLive(4, 2205);
  PutLive(9, -1000);
  ASSERT_TRUE(panel.FormUpdate());
  const auto values = Texts(panel.txbCHact);
  Choose(kFahrenheit);
  // 22.05, -10, 21, 23, 6 and 8 C
  EXPECT_EQ(panel.txbCHact[0].Text(), "71.69");
  EXPECT_EQ(panel.txbCHact[6].Text(), "14");
  EXPECT_THAT(Texts(panel.txbKelLevel),
              ElementsAre("1.5", "2.5", "1.8", "69.8", "73.4", "15", "8", "42.8", "46.4"));
  for (const int other : {1, 2, 5}) {
    EXPECT_EQ(panel.txbCHact[other].Text(), values.at(static_cast<std::size_t>(other))) << other;
  }
  Choose(kCelsius);
  EXPECT_EQ(panel.txbCHact[0].Text(), "22.05");
  EXPECT_EQ(panel.txbCHact[6].Text(), "-10");
  EXPECT_THAT(Texts(panel.txbKelLevel), ElementsAre("1.5", "2.5", "1.8", "21", "23", "15", "8", "6", "8"));
}

TEST_F(Z7731UnitTest, AConvertedTextIsRoundedAndMayHaveAComma) {
  StartOnKiBus();
  panel.txbKelLevel[3].SetText("20,33");
  Choose(kFahrenheit);
  // 68.594
  EXPECT_EQ(panel.txbKelLevel[3].Text(), "68.59");
}

TEST_F(Z7731UnitTest, LevelsStayTheSameInTheUnit) {
  StartOnKiBus();
  const auto levels = std::vector(unit.eeprom.begin() + 4224, unit.eeprom.begin() + 4360);
  Choose(kFahrenheit);
  EXPECT_TRUE(panel.FormRead(true));
  EXPECT_EQ(std::vector(unit.eeprom.begin() + 4224, unit.eeprom.begin() + 4360), levels);
  EXPECT_EQ(unit.eeprom[7964], 10);
  EXPECT_EQ(unit.eeprom[7969], 10);
}

TEST_F(Z7731UnitTest, TheUnitThatItHasAlreadyIsNotSent) {
  StartOnKiBus();
  Choose(kCelsius);
  EXPECT_THAT(unit.frames, IsEmpty());
  EXPECT_EQ(panel.txbKelLevel[3].Text(), "21");
  ExpectUnits("C");
}

// On Modbus the Case words are input registers, which nobody can write.

TEST_F(Z7731UnitTest, TheRegisterIsReadFirstAndTheRefusalToldOnModbus) {
  StartOnModbus();
  Choose(kFahrenheit);
  EXPECT_THAT(modbus.Story(), ElementsAre("1 input 16"));
  EXPECT_THAT(Told(), ElementsAre(kReadOnly));
}

TEST_F(Z7731UnitTest, AfterTheRefusalThePanelKeepsTheUnitsOwnUnit) {
  StartOnModbus();
  const auto levels = Texts(panel.txbKelLevel);
  Choose(kFahrenheit);
  ExpectUnits("C");
  EXPECT_EQ(Texts(panel.txbKelLevel), levels);
  session.LastError.clear();
  // 30 C, not 30 F.
  panel.txbKelLevel[4].SetText("30");
  EXPECT_TRUE(panel.FormRead(true));
  EXPECT_EQ(Setting(4240), 3000);
  EXPECT_EQ(Setting(4242), 2100);
  PutLive(4, 2500);
  EXPECT_TRUE(panel.FormUpdate());
  EXPECT_EQ(panel.txbCHact[0].Text(), "25");
}

TEST_F(Z7731UnitTest, ALostUnitIsToldAndTheTextsStay) {
  StartOnKiBus();
  unit.isSilent = true;
  Choose(kFahrenheit);
  EXPECT_THAT(Told(), ElementsAre("The unit does not answer."));
  ExpectUnits("C");
  EXPECT_EQ(panel.txbKelLevel[3].Text(), "21");
}

TEST_F(Z7731UnitTest, WhoShowsAFailureClearsIt) {
  StartOnModbus();
  Choose(kFahrenheit);
  ASSERT_THAT(Told(), ElementsAre(kReadOnly));
  EXPECT_EQ(session.LastError, "");
}

TEST_F(Z7731UnitTest, ASecondRefusalIsToldToo) {
  StartOnModbus();
  Choose(kFahrenheit);
  Choose(kFahrenheit);
  EXPECT_THAT(Told(), ElementsAre(kReadOnly, kReadOnly));
}

TEST_F(Z7731UnitTest, AChoiceDuringAPollWaitsForItsEnd) {
  StartOnKiBus();
  bool inPoll = false;
  After(std::chrono::milliseconds(20), [&] {
    inPoll = !unit.frames.empty() && ground.clock.Now() > std::chrono::microseconds(0);
    Choose(kFahrenheit);
    EXPECT_EQ(panel.lblCH_Type[0].Text(), "C");
  });
  Run(std::chrono::milliseconds(1900));
  EXPECT_TRUE(inPoll);
  ExpectUnits("F");
  const auto frames = Frames();
  ASSERT_GE(frames.size(), 3U);
  EXPECT_THAT(std::vector(frames.end() - 3, frames.end()), ElementsAre("R383+1", "E7964 = 10", "E7969 = 10"));
}

TEST_F(Z7731UnitTest, WithoutAUnitOnlyTheTextsChange) {
  ASSERT_TRUE(StartSimulated());
  ExpectUnits("F");
  panel.txbCHact[0].SetText("68");
  panel.txbCHact[6].SetText("-40,0");
  panel.txbKelLevel[3].SetText("50");
  panel.txbKelLevel[4].SetText("86.5");
  panel.txbKelLevel[7].SetText("32");
  panel.txbKelLevel[8].SetText("212");
  Choose(kCelsius);
  ExpectUnits("C");
  EXPECT_EQ(panel.txbCHact[0].Text(), "20");
  EXPECT_EQ(panel.txbCHact[6].Text(), "-40");
  EXPECT_EQ(panel.txbKelLevel[3].Text(), "10");
  EXPECT_EQ(panel.txbKelLevel[4].Text(), "30.28");
  EXPECT_EQ(panel.txbKelLevel[7].Text(), "0");
  EXPECT_EQ(panel.txbKelLevel[8].Text(), "100");
  Choose(kFahrenheit, 6);
  ExpectUnits("F");
  EXPECT_EQ(panel.txbCHact[0].Text(), "68");
  EXPECT_THAT(Told(), IsEmpty());
  EXPECT_THAT(port.Sent(), IsEmpty());
}

// The display sequence

TEST_F(Z7731UnitTest, ADisplayPositionPopsUpTheChannels) {
  StartOnKiBus();
  // The entries stand by their numbers.
  ground.ui.choices.push_back(3);
  Click(panel.lblDisplayMode[1]);
  EXPECT_THAT(ground.ui.popups,
              ElementsAre(testing::UnorderedElementsAre("CO2", "TEMP 1", "TEMP 2", "WEIGHT", "TWA CO2")));
  const auto chosen = ground.ui.popups.front().at(3);
  EXPECT_THAT(Texts(panel.lblDisplayMode), ElementsAre("CO2", chosen, "TWA CO2", "WEIGHT"));
  // It reaches the unit with the next sending.
  EXPECT_THAT(unit.frames, IsEmpty());
  EXPECT_TRUE(panel.FormRead(true));
  EXPECT_EQ(chosen, "TEMP 2");
  EXPECT_THAT(Writes(), testing::IsSupersetOf({"E4401 = 5", "E4402 = 9", "E4403 = 8", "E4404 = 11"}));
}

TEST_F(Z7731UnitTest, ADisplayPositionWithoutAChoiceStays) {
  StartOnKiBus();
  for (int i = 0; i < 4; ++i) Click(panel.lblDisplayMode[i]);
  EXPECT_THAT(Texts(panel.lblDisplayMode), ElementsAre("CO2", "TEMP 1", "TWA CO2", "WEIGHT"));
}

}  // namespace
}  // namespace brelant
