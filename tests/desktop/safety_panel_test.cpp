// SPDX-License-Identifier: GPL-3.0-or-later
#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <array>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desktop/Appearance.h"
#include "seen_whole.h"
#include "unit_fixture.h"

namespace brelant::test {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::UnorderedElementsAre;

constexpr int kUnit = 154;
/// Models: all five channels, the same with the second display sequence, and without temperature 2 and
/// weight.
constexpr int kAll = 3;
constexpr int kSecondSequence = 7;
constexpr int kFew = 5;

// Live words in RAM: 12 + 2 × channel.
constexpr std::size_t kTemp1 = 20;
constexpr std::size_t kCO2 = 22;
constexpr std::size_t kAverage = 28;
constexpr std::size_t kTemp2 = 30;
constexpr std::size_t kWeight = 34;
constexpr std::size_t kCO2Status = 261;
constexpr std::size_t kCO2Regulator = 277;
constexpr std::size_t kTemp2Regulator = 279;
constexpr std::size_t kState = 383;
// In EEPROM.
constexpr std::size_t kTemp1High = 4240;
constexpr std::size_t kCO2Pre = 4246;
constexpr std::size_t kAverageLevel = 4248;
constexpr std::size_t kAverageCopy = 4250;
constexpr std::size_t kWeightPre = 4354;
constexpr std::size_t kFirstDisplay = 4401;
constexpr std::size_t kRelay1 = 4436;
constexpr std::size_t kRelay2 = 4438;
constexpr std::size_t kOutput0 = 4602;
constexpr std::size_t kTemp1Kind = 7964;
constexpr std::size_t kTemp2Kind = 7969;

const std::array<const char*, 9> kAlarms{"CO2 pre-alarm",     "CO2 main alarm", "TWA alarm",
                                         "TEMP 1 low",        "TEMP 1 high",    "WEIGHT pre-alarm",
                                         "WEIGHT main alarm", "TEMP 2 low",     "TEMP 2 high"};
/// The box of each alarm in a column of relay boxes, by the index of its level.
constexpr std::array<int, 9> kBoxes{0, 1, 2, 3, 4, 6, 7, 9, 8};
/// The alarms from top to bottom, by the index of their level.
constexpr std::array<int, 9> kRows{0, 1, 2, 3, 4, 7, 8, 5, 6};

class SafetyPanelTest : public UnitPanelTest {
 protected:
  SafetyPanelTest() : UnitPanelTest({kAlarms.begin(), kAlarms.end()}) {}

  void Start(int model = kAll) { PanelTest::Start(kUnit, model); }
  void StartSimulated() {
    desk = std::make_unique<Desk>(kUnit, kAll);
    desk->StartSimulation();
  }
};

// From the unit to the fields

TEST_F(SafetyPanelTest, ShowsEverySettingOfTheUnit) {
  Start();
  // CO2 pre, CO2 main, temperature 1 and a free place; TWA, weight, temperature 2 and a free place.
  Keep(kRelay1, 0x85E9);
  Keep(kRelay2, 0x6DF0);
  AfterPoll([this] {
    EXPECT_EQ(Text("txbSN"), "15401042");
    EXPECT_EQ(Text("txbID"), "1");
    const std::array<const char*, 9> levels{"1.5", "2.5", "1.8", "21", "23", "15", "8", "6", "8"};
    const std::array<const char*, 9> units{"%", "%", "%", "C", "C", "", "", "C", "C"};
    for (int i = 0; i < 9; ++i) {
      const auto place = static_cast<std::size_t>(i);
      EXPECT_EQ(Text(At("txbKelLevel", i)), levels.at(place)) << i;
      EXPECT_EQ(Label(At("lblFKelunit", i)), units.at(place)) << i;
    }
    EXPECT_THAT(Ticks("cbxKelrelay"), ElementsAre(0, 1, 3, 4, 5));
    EXPECT_THAT(Ticks("cbxKelrelay2"), ElementsAre(2, 5, 7, 8, 9));
    EXPECT_TRUE(Ticked("cbxTWAonP0"));
    const std::array<const char*, 4> displays{"CO2", "TEMP 1", "TWA CO2", "WEIGHT"};
    for (int i = 0; i < 4; ++i) {
      EXPECT_EQ(Caption(At("lblDisplayMode", i)), displays.at(static_cast<std::size_t>(i)));
    }
  });
  desk->Run();
  EXPECT_EQ(desk->StepsLeft(), 0U);
}

TEST_F(SafetyPanelTest, LiveValuesAreTheLargestNumbersAndCannotBeTyped) {
  Start();
  AfterPoll([this] {
    Live(kTemp1, -1234);
    Live(kCO2, 183);
    Live(kAverage, 97);
    Live(kTemp2, 705);
    Live(kWeight, 4321);
  });
  Settled([this] {
    const int usual = Window().fontMetrics().height();
    const std::array<std::pair<int, const char*>, 5> values{
        {{0, "-12.34"}, {1, "1.83"}, {2, "0.97"}, {6, "7.05"}, {5, "43.21"}}};
    for (const auto& [i, value] : values) {
      auto& field = desk->Panel<QLineEdit>(At("txbCHact", i));
      EXPECT_EQ(field.text(), value) << i;
      EXPECT_TRUE(field.isReadOnly());
      EXPECT_EQ(Fore(At("txbCHact", i)), kGreen);
      EXPECT_GE(field.fontMetrics().height(), 4 * usual);
    }
    EXPECT_EQ(Widget("txbCHact(1)").accessibleName(), "CO2, %");
    EXPECT_EQ(Widget("txbCHact(6)").accessibleName(), "TEMP 2, C");
    ExpectSeenWhole(Window());
  });
  desk->Run();
  EXPECT_EQ(desk->StepsLeft(), 0U);
}

// 22 degrees are 2200 on the line.
TEST_F(SafetyPanelTest, LampsSayAlarmOKAndErrorInWordsAndColour) {
  Start();
  AfterPoll([this] {
    for (const std::size_t regulator : {276, 277, 278, 279, 285}) desk->port.sensor.Ram()[regulator] = 0;
    // Pre-alarm is bit 2 of the gas, low is bit 3 of a temperature.
    desk->port.sensor.Ram()[kCO2Regulator] = 4;
    desk->port.sensor.Ram()[kTemp2Regulator] = 8;
  });
  Settled([this] {
    ExpectLamps({0, 7});
    desk->port.sensor.Ram()[kCO2Status] = 1;
  });
  Settled([this] {
    ExpectLamp(0, "ERR", kYellow);
    ExpectLamp(1, "ERR", kYellow);
    ExpectLamp(2, "OK", kGreen);
    ExpectLamp(7, "ALARM", kRed);
  });
  desk->Run();
  EXPECT_EQ(desk->StepsLeft(), 0U);
}

TEST_F(SafetyPanelTest, TheStateLineHasTheColourOfTheForm) {
  Start();
  const auto expect = [this](const QString& text, const QColor& ink) {
    const auto& state = desk->Panel<QLabel>("txbKELActTempAenable");
    EXPECT_EQ(state.text(), text);
    EXPECT_EQ(state.palette().color(QPalette::WindowText), ink);
    EXPECT_EQ(state.accessibleName(), "Temperature alarms, " + text);
    const auto picture = Window().grab(PlaceIn(Window(), state)).toImage();
    int inked = 0;
    for (int y = 0; y < picture.height(); ++y) {
      for (int x = 0; x < picture.width(); ++x) inked += picture.pixelColor(x, y) == ink ? 1 : 0;
    }
    EXPECT_GT(inked, 20) << "not drawn in that colour";
  };
  AfterPoll([&] {
    expect("Enabled", kGreen);
    desk->port.sensor.Ram()[kState] &= 127;
  });
  Settled([&] { expect("Disabled", kRed); });
  OnPanel([this] { Press(Widget("cbxSimulated")); });
  OnPanel([&] { expect("Disabled", Qt::white); });
  desk->Run();
  EXPECT_EQ(desk->StepsLeft(), 0U);
}

TEST_F(SafetyPanelTest, WhatTheUnitDoesNotHaveIsNotThere) {
  Start(kFew);
  AfterPoll([this] {
    for (const int value : {5, 6}) {
      EXPECT_FALSE(Widget(At("txbCHact", value)).isVisible());
      EXPECT_FALSE(Widget(At("lblCH_Type", value)).isVisible());
    }
    for (const int name : {6, 7}) EXPECT_FALSE(Widget(At("lblCH_Name", name)).isVisible());
    for (const int i : {5, 6, 7, 8}) {
      for (const char* field : {"txbStatus", "txbKelLevel", "lblFKelunit"}) {
        EXPECT_FALSE(Widget(At(field, i)).isVisible()) << field << i;
      }
    }
    for (const int box : {6, 7, 8, 9}) {
      EXPECT_FALSE(Widget(At("cbxKelrelay", box)).isVisible()) << box;
      EXPECT_FALSE(Widget(At("cbxKelrelay2", box)).isVisible()) << box;
    }
    for (const int box : {0, 4, 5}) EXPECT_TRUE(Widget(At("cbxKelrelay", box)).isVisible()) << box;
    EXPECT_FALSE(Entry("m_Temp2").isEnabled());
    EXPECT_FALSE(Entry("m_Weight").isEnabled());
    EXPECT_TRUE(Entry("m_Temp1").isEnabled());
    ExpectSeenWhole(Window());
    ExpectFitsASmallLaptop("frmZ7731Chart");
  });
  desk->Run();
  EXPECT_EQ(desk->StepsLeft(), 0U);
}

TEST_F(SafetyPanelTest, AChannelThatIsGoneWithTheNextReadTakesItsRowsAlong) {
  Start();
  AfterPoll([this] {
    EXPECT_TRUE(Widget("txbStatus(7)").isVisible());
    Live(kTemp2, 9999);
    PressKey(Window(), Qt::Key_F5);
  });
  OnPanel([this] {
    for (const char* gone :
         {"txbCHact(6)", "txbStatus(7)", "txbKelLevel(8)", "cbxKelrelay(9)", "cbxKelrelay2(8)"}) {
      EXPECT_FALSE(Widget(gone).isVisible()) << gone;
    }
    EXPECT_TRUE(Widget("txbStatus(5)").isVisible());
    ExpectSeenWhole(Window());
  });
  desk->Run();
  EXPECT_EQ(desk->StepsLeft(), 0U);
}

// The matrix

TEST_F(SafetyPanelTest, IsAMatrixOfAlarmsAndRelays) {
  Start();
  AfterPoll([this] {
    int above = 0;
    for (const int i : kRows) {
      const auto lamp = PlaceIn(Window(), Widget(At("txbStatus", i)));
      EXPECT_GT(lamp.top(), above) << i;
      above = lamp.bottom();
      const int box = kBoxes.at(static_cast<std::size_t>(i));
      int left = lamp.right();
      for (const auto& name :
           {At("txbKelLevel", i), At("lblFKelunit", i), At("cbxKelrelay", box), At("cbxKelrelay2", box)}) {
        const auto place = PlaceIn(Window(), Widget(name));
        EXPECT_GT(place.left(), left) << name.toStdString();
        EXPECT_TRUE(lamp.top() <= place.center().y() && place.center().y() <= lamp.bottom())
            << name.toStdString();
        left = place.right();
      }
    }
    for (const char* relay : {"cbxKelrelay", "cbxKelrelay2"}) {
      EXPECT_GT(PlaceIn(Window(), Widget(At(relay, 5))).top(), above) << "no alarm stands last";
      for (const int box : kBoxes) {
        EXPECT_EQ(PlaceIn(Window(), Widget(At(relay, box))).center().x(),
                  PlaceIn(Window(), Widget(At(relay, 5))).center().x());
      }
    }
  });
  desk->Run();
}

TEST_F(SafetyPanelTest, EachTickSaysItsAlarmAndItsRelay) {
  Start();
  OnPanel([this] {
    for (std::size_t i = 0; i < kAlarms.size(); ++i) {
      const QString alarm = kAlarms.at(i);
      EXPECT_EQ(Widget(At("cbxKelrelay", kBoxes.at(i))).accessibleName(), alarm + ", relay 1");
      EXPECT_EQ(Widget(At("cbxKelrelay2", kBoxes.at(i))).accessibleName(), alarm + ", relay 2");
    }
    EXPECT_EQ(Widget("cbxKelrelay(5)").accessibleName(), "No alarm, relay 1");
    EXPECT_EQ(Widget("cbxKelrelay2(5)").accessibleName(), "No alarm, relay 2");
    EXPECT_EQ(Widget("txbKelLevel(0)").accessibleName(), "CO2 pre-alarm level, %");
    EXPECT_GE(CountSpokenNames("frmZ7731Chart"), 45);
  });
  desk->Run();
}

TEST_F(SafetyPanelTest, TheHeadOfEachRelayStandsAboveItsTicks) {
  Start();
  OnPanel([this] {
    for (const auto& [text, relay] :
         {std::pair("Relay 1", "cbxKelrelay"), std::pair("Relay 2", "cbxKelrelay2")}) {
      const QLabel* head = nullptr;
      for (const auto* label : Window().findChildren<QLabel*>()) {
        if (label->text() == text) head = label;
      }
      ASSERT_NE(head, nullptr) << text;
      const auto place = PlaceIn(Window(), *head);
      const auto tick = PlaceIn(Window(), Widget(At(relay, 0)));
      EXPECT_LT(place.bottom(), tick.top());
      EXPECT_NEAR(place.center().x(), tick.center().x(), 2);
    }
  });
  desk->Run();
}

TEST_F(SafetyPanelTest, AClickOnATickIsKeptForTheNextSending) {
  Start();
  Keep(kRelay1, 0x0000);
  Keep(kRelay2, 0x0000);
  AfterPoll([this] {
    Press(Widget("cbxKelrelay(1)"));
    Press(Widget("cbxKelrelay2(2)"));
    // The two of a temperature move together.
    Press(Widget("cbxKelrelay2(8)"));
  });
  OnPanel([this] {
    EXPECT_THAT(Ticks("cbxKelrelay"), ElementsAre(1, 5));
    EXPECT_THAT(Ticks("cbxKelrelay2"), ElementsAre(2, 5, 8, 9));
    EXPECT_EQ(Kept(kRelay1), 0);
    Press(Widget("btnSendToSensor"));
  });
  OnPanel([this] {
    EXPECT_EQ(Kept(kRelay1), 0x5000);
    EXPECT_EQ(Kept(kRelay2), 0x6F00);
    Press(Widget("cbxKelrelay2(9)"));
  });
  OnPanel([this] {
    EXPECT_THAT(Ticks("cbxKelrelay2"), ElementsAre(2, 5));
    Press(Widget("btnSendToSensor"));
  });
  OnPanel([this] { EXPECT_EQ(Kept(kRelay2), 0x6000); });
  desk->Run();
  EXPECT_EQ(desk->StepsLeft(), 0U);
}

TEST_F(SafetyPanelTest, AFifthAlarmOfARelayIsRefusedAndItsTickTakenBack) {
  Start();
  Keep(kRelay1, 0x856D);
  QString text;
  AfterPoll([this] {
    EXPECT_THAT(Ticks("cbxKelrelay"), ElementsAre(0, 1, 2, 7));
    Press(Widget("cbxKelrelay(3)"));
  });
  Acknowledge(text);
  OnPanel([this] {
    EXPECT_THAT(Ticks("cbxKelrelay"), ElementsAre(0, 1, 2, 7));
    Press(Widget("cbxKelrelay(2)"));
  });
  OnPanel([this] { Press(Widget("cbxKelrelay(4)")); });
  OnPanel([] {
    EXPECT_EQ(FindWindow("MessageBox"), nullptr);
    EXPECT_THAT(Ticks("cbxKelrelay"), ElementsAre(0, 1, 3, 4, 7));
  });
  desk->Run();
  EXPECT_EQ(text, "Only 3 channels can be chosen at the same time for each relay");
  EXPECT_EQ(desk->StepsLeft(), 0U);
}

TEST_F(SafetyPanelTest, TheAlarmOfOutput0IsSentToo) {
  Start();
  AfterPoll([this] {
    EXPECT_EQ(Kept(kOutput0), 37302);
    Press(Widget("cbxTWAonP0"));
  });
  OnPanel([this] {
    EXPECT_EQ(Kept(kOutput0), 37302);
    Press(Widget("btnSendToSensor"));
  });
  OnPanel([this] {
    EXPECT_EQ(Kept(kOutput0), 37301);
    EXPECT_FALSE(Ticked("cbxTWAonP0"));
  });
  desk->Run();
  EXPECT_EQ(desk->StepsLeft(), 0U);
}

// Levels

class LevelTest : public SafetyPanelTest {};

TEST_F(LevelTest, AFinishedEditGoesToTheUnitAtOnceAndIsReadBack) {
  Start();
  AfterPoll([] {});
  Edit("txbKelLevel(0)", "1,25");
  Settled([this] {
    EXPECT_EQ(Kept(kCO2Pre), 125);
    EXPECT_EQ(Text("txbKelLevel(0)"), "1.25");
    EXPECT_EQ(Back("txbKelLevel(0)"), kField);
    Window().setFocus();
  });
  Settled([] {});
  Edit("txbKelLevel(4)", "24.567");
  Settled([this] {
    EXPECT_EQ(Kept(kTemp1High), 2457);
    EXPECT_EQ(Text("txbKelLevel(4)"), "24.57");
    Window().setFocus();
  });
  Settled([] {});
  // The TWA has one level, which is written twice.
  Edit("txbKelLevel(2)", "2");
  Settled([this] {
    EXPECT_EQ(Kept(kAverageLevel), 200);
    EXPECT_EQ(Kept(kAverageCopy), 200);
  });
  desk->Run();
  EXPECT_EQ(desk->StepsLeft(), 0U);
}

TEST_F(LevelTest, OfTheWeightStandsAboveItsOffsetAndNotBelowNothing) {
  Start();
  AfterPoll([] {});
  Edit("txbKelLevel(5)", "12");
  Settled([this] { EXPECT_EQ(Kept(kWeightPre), 1250); });
  Edit("txbKelLevel(5)", "-3");
  Settled([this] {
    EXPECT_EQ(Kept(kWeightPre), 50);
    EXPECT_EQ(Text("txbKelLevel(5)"), "0");
  });
  desk->Run();
  EXPECT_EQ(desk->StepsLeft(), 0U);
}

TEST_F(LevelTest, IsWhiteWithAllOfItSelectedWhileItIsEdited) {
  Start();
  AfterPoll([this] { Press(Widget("txbKelLevel(1)")); });
  OnPanel([this] {
    EXPECT_EQ(Back("txbKelLevel(1)"), QColor(Qt::white));
    EXPECT_EQ(Fore("txbKelLevel(1)"), QColor(Qt::black));
    EXPECT_EQ(desk->Panel<QLineEdit>("txbKelLevel(1)").selectedText(), "2.5");
    Press(Widget("txbKelLevel(2)"));
  });
  OnPanel([this] {
    EXPECT_EQ(Back("txbKelLevel(1)"), kField);
    EXPECT_EQ(Back("txbKelLevel(2)"), QColor(Qt::white));
  });
  desk->Run();
  EXPECT_EQ(desk->StepsLeft(), 0U);
}

TEST_F(LevelTest, WhatIsBeingTypedIsLeftAloneByPollsAndReads) {
  Start();
  AfterPoll([this] {
    auto& level = desk->Panel<QLineEdit>("txbKelLevel(0)");
    Type(level, "1.75");
    level.setSelection(1, 2);
  });
  const auto expectUntouched = [this] {
    const auto& level = desk->Panel<QLineEdit>("txbKelLevel(0)");
    EXPECT_EQ(level.text(), "1.75");
    EXPECT_EQ(level.selectedText(), ".7");
    EXPECT_EQ(level.cursorPosition(), 3);
    EXPECT_EQ(Kept(kCO2Pre), 150);
  };
  Settled([=, this] {
    expectUntouched();
    Keep(kCO2Pre + 2, 190);
    PressKey(Window(), Qt::Key_F5);
  });
  OnPanel([=, this] {
    expectUntouched();
    EXPECT_EQ(Text("txbKelLevel(2)"), "1.9") << "the others are read";
    PressKey(Widget("txbKelLevel(0)"), Qt::Key_Return);
  });
  Settled([this] { EXPECT_EQ(Kept(kCO2Pre), 175); });
  desk->Run();
  EXPECT_EQ(desk->StepsLeft(), 0U);
}

TEST_F(LevelTest, GoesToTheUnitAlsoWhenItIsLeft) {
  Start();
  AfterPoll([this] { Type(Widget("txbKelLevel(0)"), "1.6"); });
  OnPanel([this] {
    EXPECT_EQ(Kept(kCO2Pre), 150);
    PressKey(Widget("txbKelLevel(0)"), Qt::Key_Tab);
  });
  Settled([this] { EXPECT_EQ(Kept(kCO2Pre), 160); });
  desk->Run();
  EXPECT_EQ(desk->StepsLeft(), 0U);
}

// Sending and reading back takes seconds on the line; nobody waits for it with the next level.
TEST_F(LevelTest, WhatIsFinishedWhileAnotherIsOnItsWayGoesToTheUnitToo) {
  Start();
  AfterPoll([] {});
  Edit("txbKelLevel(0)", "1.25");
  Edit("txbKelLevel(4)", "24.5");
  Edit("txbKelLevel(2)", "2");
  Settled([this] {
    EXPECT_EQ(Kept(kCO2Pre), 125);
    EXPECT_EQ(Kept(kTemp1High), 2450);
    EXPECT_EQ(Text("txbKelLevel(4)"), "24.5");
    EXPECT_EQ(Kept(kAverageLevel), 200);
  });
  desk->Run();
  EXPECT_EQ(desk->StepsLeft(), 0U);
}

TEST_F(LevelTest, ATickThatIsSetWhileALevelIsOnItsWayStays) {
  Start();
  Keep(kRelay2, 0);
  AfterPoll([] {});
  Edit("txbKelLevel(0)", "1.25");
  OnPanel([this] { Press(Widget("cbxKelrelay2(1)")); });
  Settled([this] {
    EXPECT_THAT(Ticks("cbxKelrelay2"), ElementsAre(1, 5));
    Press(Widget("btnSendToSensor"));
  });
  OnPanel([this] { EXPECT_EQ(Kept(kRelay2), 0x5000); });
  desk->Run();
  EXPECT_EQ(desk->StepsLeft(), 0U);
}

// Choices

TEST_F(SafetyPanelTest, TheTemperatureUnitIsChosenAndAllTemperaturesFollow) {
  Start();
  AfterPoll([] {});
  Choose("lblCH_Type(0)", "F");
  Settled([this] {
    for (const int i : {0, 6}) EXPECT_EQ(Caption(At("lblCH_Type", i)), "F");
    for (const int i : {3, 4, 7, 8}) EXPECT_EQ(Label(At("lblFKelunit", i)), "F");
    EXPECT_EQ(Label("lblFKelunit(0)"), "%");
    EXPECT_EQ(Text("txbKelLevel(4)"), "73.4");
    EXPECT_EQ(Text("txbKelLevel(8)"), "46.4");
    EXPECT_EQ(Widget("txbKelLevel(4)").accessibleName(), "TEMP 1 high level, F");
    // The unit bits of the kind bytes: 1 is C, 2 is F.
    EXPECT_EQ(Byte(kTemp1Kind), 0x0A);
    EXPECT_EQ(Byte(kTemp2Kind), 0x0A);
  });
  Choose("lblCH_Type(6)", "C");
  Settled([this] {
    EXPECT_EQ(Text("txbKelLevel(4)"), "23");
    EXPECT_EQ(Byte(kTemp2Kind), 0x06);
  });
  desk->Run();
  EXPECT_EQ(desk->StepsLeft(), 0U);
}

TEST_F(SafetyPanelTest, OnlyUnitsOfTemperaturesAreAChoice) {
  Start();
  AfterPoll([this] {
    for (const int i : {0, 6})
      EXPECT_NE(qobject_cast<QAbstractButton*>(&Widget(At("lblCH_Type", i))), nullptr);
    for (const int i : {1, 2, 5}) EXPECT_NE(qobject_cast<QLabel*>(&Widget(At("lblCH_Type", i))), nullptr);
    EXPECT_EQ(Widget("lblCH_Type(0)").accessibleName(), "Unit of TEMP 1: C");
  });
  desk->Run();
}

class DisplayTest : public SafetyPanelTest {
 protected:
  void ExpectChosenAndSent(int model, std::size_t firstDisplay) {
    Start(model);
    AfterPoll([] {});
    Choose("lblDisplayMode(0)", "WEIGHT");
    Choose("lblDisplayMode(3)", "TEMP 2");
    OnPanel([this, firstDisplay] {
      EXPECT_EQ(Caption("lblDisplayMode(0)"), "WEIGHT");
      EXPECT_EQ(Widget("lblDisplayMode(3)").accessibleName(), "Display 4: TEMP 2");
      EXPECT_NE(Byte(firstDisplay), 11);
      Press(Widget("btnSendToSensor"));
    });
    OnPanel([this, firstDisplay] {
      EXPECT_EQ(Byte(firstDisplay), 11);
      EXPECT_EQ(Byte(firstDisplay + 3), 9);
    });
    desk->Run();
    EXPECT_EQ(desk->StepsLeft(), 0U);
  }
};

TEST_F(DisplayTest, IsChosenFromTheChannelsAndSentWithTheRest) {
  ExpectChosenAndSent(kAll, kFirstDisplay);
}

TEST_F(DisplayTest, OfTheOtherModelLiesInTheSecondList) {
  ExpectChosenAndSent(kSecondSequence, kFirstDisplay + 8);
}

TEST_F(DisplayTest, OffersTheAvailableChannels) {
  Start();
  AfterPoll([this] { Press(Widget("lblDisplayMode(1)")); });
  desk->When([] { return FindWindow("PopupMenu") != nullptr; },
             [] {
               std::vector<std::string> captions;
               for (const auto* action : static_cast<QMenu*>(FindWindow("PopupMenu"))->actions()) {
                 captions.push_back(action->text().toStdString());
               }
               EXPECT_THAT(captions, UnorderedElementsAre("CO2", "TEMP 1", "TEMP 2", "WEIGHT", "TWA CO2"));
               PressKey(*FindWindow("PopupMenu"), Qt::Key_Escape);
             });
  OnPanel([this] { EXPECT_EQ(Caption("lblDisplayMode(1)"), "TEMP 1"); });
  desk->Run();
  EXPECT_EQ(desk->StepsLeft(), 0U);
}

// The lamp of the line

TEST_F(SafetyPanelTest, TheLampFlickersWhileTheLineIsInUseAndThenHasTheColourOfAButton) {
  Start();
  const auto colour = [this] {
    const auto image = Widget("picFlash").grab().toImage();
    return image.pixelColor(image.width() / 2, image.height() / 2);
  };
  bool lit = false;
  AfterPoll([&] {
    EXPECT_EQ(colour(), QApplication::palette().color(QPalette::Button));
    EXPECT_FALSE(Widget("picFlash").accessibleName().isEmpty());
    PressKey(Window(), Qt::Key_F5);
  });
  desk->When(
      [&] {
        lit = colour() == QColor(0, 128, 0);
        return lit;
      },
      [] {});
  desk->When([&] { return colour() == QApplication::palette().color(QPalette::Button); }, [] {});
  OnPanel([&] { EXPECT_EQ(colour(), QApplication::palette().color(QPalette::Button)); });
  desk->Run();
  EXPECT_TRUE(lit);
  EXPECT_EQ(desk->StepsLeft(), 0U);
}

// Menus and keys

TEST_F(SafetyPanelTest, EveryMenuEntryHasALetterOfItsOwn) {
  Start();
  OnPanel([] { ExpectALetterEach(*static_cast<QMainWindow&>(Window()).menuBar()); });
  desk->Run();
}

TEST_F(SafetyPanelTest, HasTheShortcutsOfTheOtherPanels) {
  Start();
  OnPanel([] {
    const std::array<std::pair<const char*, const char*>, 6> shortcuts{{{"m_LoadSettings", "Ctrl+O"},
                                                                        {"m_SaveSettins", "Ctrl+S"},
                                                                        {"mExit", "Ctrl+Q"},
                                                                        {"mReadfromsensor", "F5"},
                                                                        {"mSendtosensor", "Ctrl+Return"},
                                                                        {"mHelp", "F1"}}};
    for (const auto& [name, keys] : shortcuts) EXPECT_EQ(Entry(name).shortcut(), QKeySequence(keys)) << name;
  });
  desk->Run();
}

class SafetyKeyboardTest : public SafetyPanelTest {};

TEST_F(SafetyKeyboardTest, TheTabKeyFollowsTheEye) {
  Start();
  AfterPoll([] {
    std::vector<std::string> expected{"lblDisplayMode(0)", "lblDisplayMode(1)", "lblDisplayMode(2)",
                                      "lblDisplayMode(3)", "cbxSimulated",      "btnReadFromSensor",
                                      "btnSendToSensor",   "lblCH_Type(0)",     "lblCH_Type(6)"};
    for (const int i : kRows) {
      expected.push_back(At("txbKelLevel", i).toStdString());
      for (const char* relay : {"cbxKelrelay", "cbxKelrelay2"}) {
        expected.push_back(At(relay, kBoxes.at(static_cast<std::size_t>(i))).toStdString());
      }
    }
    expected.insert(expected.end(), {"cbxKelrelay(5)", "cbxKelrelay2(5)", "cbxTWAonP0"});
    EXPECT_THAT(Order("lblDisplayMode(0)", static_cast<int>(expected.size())), ElementsAreArray(expected));
  });
  desk->Run();
}

TEST_F(SafetyKeyboardTest, EverythingIsDoneByKeyAlone) {
  Start();
  Keep(kRelay1, 0);
  AfterPoll([this] {
    Widget("cbxKelrelay(1)").setFocus(Qt::TabFocusReason);
    PressKey(Widget("cbxKelrelay(1)"), Qt::Key_Space);
  });
  OnPanel([this] {
    EXPECT_THAT(Ticks("cbxKelrelay"), ElementsAre(1, 5));
    Widget("txbKelLevel(0)").setFocus(Qt::TabFocusReason);
    QTest::keyClicks(&Widget("txbKelLevel(0)"), "1.4");
    PressKey(Widget("txbKelLevel(0)"), Qt::Key_Enter);
  });
  Settled([this] {
    // The level takes the relays along.
    EXPECT_EQ(Kept(kCO2Pre), 140);
    EXPECT_EQ(Kept(kRelay1), 0x5000);
    Widget("lblDisplayMode(0)").setFocus(Qt::TabFocusReason);
  });
  Settled([this] { PressKey(Widget("lblDisplayMode(0)"), Qt::Key_Down); });
  desk->When([] { return FindWindow("PopupMenu") != nullptr; },
             [] {
               PressKey(*FindWindow("PopupMenu"), Qt::Key_Up);
               PressKey(*FindWindow("PopupMenu"), Qt::Key_Return);
             });
  OnPanel([this] {
    EXPECT_EQ(Caption("lblDisplayMode(0)"), "WEIGHT");
    EXPECT_EQ(Caption("cbxTWAonP0"), "&TWA drives output P0");
    Activate(Window());
    Widget("cbxTWAonP0").setFocus(Qt::TabFocusReason);
    PressKey(Widget("cbxTWAonP0"), Qt::Key_Space);
  });
  OnPanel([this] {
    EXPECT_FALSE(Ticked("cbxTWAonP0"));
    PressKey(Window(), Qt::Key_Return, Qt::ControlModifier);
  });
  OnPanel([this] {
    EXPECT_EQ(Byte(kFirstDisplay), 11);
    EXPECT_EQ(Kept(kOutput0), 37301);
  });
  desk->Run();
  EXPECT_EQ(desk->StepsLeft(), 0U);
}

// Without a unit

TEST_F(SafetyPanelTest, ASimulatedUnitTakesTypedValuesAndShowsTheirAlarms) {
  StartSimulated();
  OnPanel([this] {
    EXPECT_EQ(Window().windowTitle(), "BRELANT Simulated mode");
    for (const int i : {0, 1, 2, 5, 6}) {
      EXPECT_FALSE(desk->Panel<QLineEdit>(At("txbCHact", i)).isReadOnly()) << i;
      EXPECT_EQ(Fore(At("txbCHact", i)), kYellow) << i;
    }
    for (const char* name :
         {"mReadfromsensor", "mSendtosensor", "mCalibrate", "m_LoadSettings", "m_SaveSettins"}) {
      EXPECT_FALSE(Entry(name).isEnabled()) << name;
    }
    EXPECT_FALSE(Widget("btnReadFromSensor").isEnabled());
    EXPECT_FALSE(Widget("btnSendToSensor").isEnabled());
  });
  // CO2 at the main level, weight at its pre-alarm, temperature 1 at the low level.
  for (const auto& [level, text] : {std::pair(0, "5000"), std::pair(1, "15000"), std::pair(5, "30"),
                                    std::pair(6, "15"), std::pair(3, "50")}) {
    Retype(At("txbKelLevel", level), text);
  }
  Retype("txbCHact(1)", "15000");
  Retype("txbCHact(5)", "30");
  Retype("txbCHact(0)", "50,0");
  Computed([this] {
    ExpectLamp(0, "ALARM", kRed);
    ExpectLamp(1, "ALARM", kRed);
    ExpectLamp(3, "ALARM", kRed);
    ExpectLamp(5, "ALARM", kRed);
    ExpectLamp(6, "OK", kGreen);
  });
  Retype("txbCHact(1)", "4999.5");
  Computed([this] {
    ExpectLamp(0, "OK", kGreen);
    ExpectLamp(1, "OK", kGreen);
  });
  desk->Run();
  EXPECT_EQ(desk->StepsLeft(), 0U);
}

// Of its four places one holds the CO2 main alarm, and one that there is none.
TEST_F(SafetyPanelTest, ASimulatedUnitRefusesAFifthEntryOfARelayToo) {
  StartSimulated();
  QString text;
  OnPanel([this] {
    EXPECT_THAT(Ticks("cbxKelrelay2"), ElementsAre(1, 5));
    Press(Widget("cbxKelrelay2(0)"));
    Press(Widget("cbxKelrelay2(2)"));
  });
  OnPanel([this] {
    EXPECT_THAT(Ticks("cbxKelrelay2"), ElementsAre(0, 1, 2, 5));
    Press(Widget("cbxKelrelay2(7)"));
  });
  Acknowledge(text);
  OnPanel([] { EXPECT_THAT(Ticks("cbxKelrelay2"), ElementsAre(0, 1, 2, 5)); });
  desk->Run();
  EXPECT_EQ(text, "Only 3 channels can be chosen at the same time for each relay");
  EXPECT_EQ(desk->StepsLeft(), 0U);
}

// The whole

class SafetyLookTest : public SafetyPanelTest, public testing::WithParamInterface<Style> {
 protected:
  SafetyLookTest() { ApplyStyle(*qApp, GetParam()); }
  ~SafetyLookTest() override { ApplyStyle(*qApp, Style::light); }
};

TEST_P(SafetyLookTest, IsSeenWholeAndFitsASmallLaptop) {
  for (const int model : {kAll, kFew}) {
    Start(model);
    AfterPoll([] {
      ExpectSeenWhole(Window());
      ExpectFitsASmallLaptop("frmZ7731Chart");
    });
    desk->Run();
    EXPECT_EQ(desk->StepsLeft(), 0U);
  }
  StartSimulated();
  OnPanel([] {
    ExpectSeenWhole(Window());
    ExpectFitsASmallLaptop("frmZ7731Chart");
  });
  desk->Run();
  EXPECT_EQ(desk->StepsLeft(), 0U);
}

INSTANTIATE_TEST_SUITE_P(Styles, SafetyLookTest, testing::Values(Style::light, Style::dark));

}  // namespace
}  // namespace brelant::test
