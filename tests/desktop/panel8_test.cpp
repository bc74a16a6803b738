// SPDX-License-Identifier: GPL-3.0-or-later
// The window of the panels of platform 8: variant 1 without a tank, variant 2 with one.
#include <QAction>
#include <QApplication>
#include <QDialogButtonBox>
#include <QFile>
#include <QFileDialog>
#include <QInputDialog>
#include <QLabel>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QTemporaryDir>
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

constexpr int kUnit = 40;
constexpr int kPlain = 1;
constexpr int kTank = 2;

// Live words in RAM: 12 + 2 × channel.
constexpr std::size_t kTemp1 = 20;
constexpr std::size_t kCO2 = 22;
constexpr std::size_t kAverage = 28;
constexpr std::size_t kWeight = 34;
constexpr std::size_t kTankCommand = 304;
constexpr std::size_t kProcedure = 306;
constexpr std::size_t kGivenValue = 320;
constexpr std::size_t kState = 383;
// In EEPROM. Behind each level lies its copy.
constexpr std::size_t kId = 4160;
constexpr std::size_t kTempLow = 4240;
constexpr std::size_t kCO2Pre = 4244;
constexpr std::size_t kAverageLevel = 4248;
constexpr std::size_t kCO2Main = 4252;
constexpr std::size_t kTempHigh = 4256;
constexpr std::size_t kFirstDisplay = 4401;
constexpr std::size_t kRelay1 = 4436;
constexpr std::size_t kRelay2 = 4438;
constexpr std::size_t kOutput0 = 4580;
constexpr std::size_t kTankEmpty = 4736;
constexpr std::size_t kTempKind = 7964;

constexpr const char* kOnlyThree = "Only 3 channels can be chosen at the same time for each relay";

class Panel8Test : public UnitPanelTest {
 protected:
  Panel8Test()
      : UnitPanelTest({"CO2 pre-alarm", "CO2 main alarm", "TWA alarm", "TEMP 1 low", "TEMP 1 high"}) {}

  void Start(int variant = kPlain) { PanelTest::Start(kUnit, variant); }
  void Ends() {
    desk->Run();
    EXPECT_EQ(desk->StepsLeft(), 0U);
  }
  void Menu(const QStringList& names) {
    OnPanel([this, names] { desk->ClickMenu(names); });
  }
  void ExpectQuestion(const QString& question) {
    desk->When(
        [] { return FindWindow("InputBox") != nullptr; },
        [question] { EXPECT_EQ(static_cast<QInputDialog*>(FindWindow("InputBox"))->labelText(), question); });
  }
  /// Answers the question of a message box.
  void Confirm(QMessageBox::StandardButton button, const QString& question) {
    desk->When([] { return FindWindow("MessageBox") != nullptr; },
               [button, question] {
                 auto& box = *static_cast<QMessageBox*>(FindWindow("MessageBox"));
                 EXPECT_EQ(box.text(), question);
                 box.button(button)->click();
               });
  }
  int RamWord(std::size_t address) const {
    const auto ram = desk->port.sensor.Ram();
    return ram[address] * 256 + ram[address + 1];
  }
  /// From now on the unit is silent.
  void CutTheLine() {
    desk->port.onOutput = [](const auto&) {};
  }
  void LoseTheLink(QString& text) {
    AfterPoll([this] { CutTheLine(); });
    Acknowledge(text);
  }
};

// From the unit to the fields

TEST_F(Panel8Test, ShowsEverySettingOfTheUnit) {
  Start();
  AfterPoll([this] {
    EXPECT_EQ(Window().objectName(), "frm8Chart");
    EXPECT_EQ(Window().windowTitle(), "BRELANT");
    EXPECT_EQ(Text("txbSN"), "4001042");
    EXPECT_EQ(Text("txbVersion"), "1");
    EXPECT_EQ(Text("txbID"), "1");
    const std::array<const char*, 5> levels{"1.5", "2.5", "18000", "21", "23"};
    const std::array<const char*, 5> units{"%", "%", "ppm", "°C", "°C"};
    for (int i = 0; i < 5; ++i) {
      const auto place = static_cast<std::size_t>(i);
      EXPECT_EQ(Text(At("txbKelLevel", i)), levels.at(place)) << i;
      EXPECT_EQ(Label(At("lblFKelunit", i)), units.at(place)) << i;
    }
    EXPECT_THAT(Ticks("cbxKelrelay"), ElementsAre(0, 1));
    EXPECT_THAT(Ticks("cbxKelrelay2"), ElementsAre(2, 3, 4));
    EXPECT_TRUE(Ticked("cbxTWAonP0"));
    const std::array<const char*, 4> displays{"CO2", "TEMP 1", "TWA CO2", "CO2"};
    for (int i = 0; i < 4; ++i) {
      EXPECT_EQ(Caption(At("lblDisplayMode", i)), displays.at(static_cast<std::size_t>(i)));
    }
    EXPECT_EQ(Text("txbKELActTempAenable"), "Enabled");
    EXPECT_EQ(Caption("Command1"), "E&xit");
  });
  Ends();
}

TEST_F(Panel8Test, LiveValuesAreTheLargestNumbersAndCannotBeTyped) {
  Start(kTank);
  AfterPoll([this] {
    Live(kTemp1, -1234);
    Live(kCO2, 1830);
    Live(kAverage, 18250);
    Live(kWeight, 43);
  });
  Settled([this] {
    const int usual = Window().fontMetrics().height();
    for (const auto& [i, value] :
         {std::pair(0, "-12.34"), std::pair(1, "1.83"), std::pair(2, "18250"), std::pair(5, "43")}) {
      auto& field = desk->Panel<QLineEdit>(At("txbCHact", i));
      EXPECT_EQ(field.text(), value) << i;
      EXPECT_TRUE(field.isReadOnly());
      EXPECT_EQ(Fore(At("txbCHact", i)), kGreen);
      EXPECT_GE(field.fontMetrics().height(), 4 * usual);
    }
    EXPECT_EQ(Widget("txbCHact(1)").accessibleName(), "CO2, %");
    EXPECT_EQ(Widget("txbCHact(0)").accessibleName(), "TEMP 1, °C");
    Type(Widget("txbCHact(1)"), "9");
    EXPECT_EQ(Text("txbCHact(1)"), "1.83");
    ExpectSeenWhole(Window());
  });
  Ends();
}

TEST_F(Panel8Test, OnlyAUnitWithATankHasAWeight) {
  for (const int variant : {kPlain, kTank}) {
    Start(variant);
    AfterPoll([variant] {
      const auto* weight = Window().findChild<QWidget*>("txbCHact(5)");
      EXPECT_EQ(weight != nullptr && weight->isVisible(), variant == kTank);
      EXPECT_EQ(Window().objectName(), variant == kTank ? "frm8_2Chart" : "frm8Chart");
      for (const char* name : {"mCalWeightEmpty", "mCalWeightFull", "mLoggerExp", "mLoggerCheckT",
                               "mLoggerSetT", "mLoggerReset"}) {
        EXPECT_EQ(Window().findChild<QAction*>(name) != nullptr, variant == kTank) << name;
      }
      for (const char* hidden : {"mTimeUnits", "mTimeUnitMin", "mTempUnit", "mDisplayModes"}) {
        EXPECT_EQ(Window().findChild<QAction*>(hidden), nullptr) << hidden;
      }
    });
    Ends();
  }
}

TEST_F(Panel8Test, LampsSayAlarmAndOKInWordsAndColour) {
  Start();
  AfterPoll([this] { desk->port.sensor.Ram()[kState] = 0x80 | 0x09; });
  Settled([this] {
    ExpectLamps({0, 3});
    desk->port.sensor.Ram()[kState] = 0x16;
  });
  Settled([this] {
    ExpectLamps({1, 2, 4});
    EXPECT_EQ(Text("txbKELActTempAenable"), "Disabled");
  });
  Ends();
}

TEST_F(Panel8Test, TheStateLineHasTheColourOfTheForm) {
  Start();
  const auto expect = [this](const QString& text, const QColor& ink) {
    EXPECT_EQ(Text("txbKELActTempAenable"), text);
    EXPECT_EQ(Fore("txbKELActTempAenable"), ink);
    EXPECT_EQ(Widget("txbKELActTempAenable").accessibleName(), "Temperature alarms");
    const auto picture = Window().grab(PlaceIn(Window(), Widget("txbKELActTempAenable"))).toImage();
    int inked = 0;
    int dark = 0;
    for (int y = 0; y < picture.height(); ++y) {
      for (int x = 0; x < picture.width(); ++x) {
        inked += picture.pixelColor(x, y) == ink ? 1 : 0;
        dark += picture.pixelColor(x, y).lightness() < 40 ? 1 : 0;
      }
    }
    EXPECT_GT(inked, 20) << "not drawn in that colour";
    EXPECT_GT(2 * dark, picture.width() * picture.height()) << "not on the ground on which it is read";
  };
  AfterPoll([&] {
    expect("Enabled", kGreen);
    desk->port.sensor.Ram()[kState] &= 127;
  });
  Settled([&] { expect("Disabled", Qt::red); });
  OnPanel([this] { Press(Widget("cbxSimulated")); });
  OnPanel([&] { expect("Disabled", Qt::white); });
  Ends();
}

// The matrix

TEST_F(Panel8Test, IsAMatrixOfFiveAlarmsAndTwoRelays) {
  Start();
  AfterPoll([this] {
    int above = 0;
    for (int i = 0; i < 5; ++i) {
      const auto lamp = PlaceIn(Window(), Widget(At("txbStatus", i)));
      EXPECT_GT(lamp.top(), above) << i;
      above = lamp.bottom();
      int left = lamp.right();
      for (const char* name : {"txbKelLevel", "lblFKelunit", "cbxKelrelay", "cbxKelrelay2"}) {
        const auto place = PlaceIn(Window(), Widget(At(name, i)));
        EXPECT_GT(place.left(), left) << name;
        EXPECT_TRUE(lamp.top() <= place.center().y() && place.center().y() <= lamp.bottom()) << name;
        left = place.right();
      }
      for (const char* relay : {"cbxKelrelay", "cbxKelrelay2"}) {
        EXPECT_EQ(PlaceIn(Window(), Widget(At(relay, i))).center().x(),
                  PlaceIn(Window(), Widget(At(relay, 0))).center().x());
      }
    }
    for (const auto* label : Window().findChildren<QLabel*>()) EXPECT_NE(label->text(), "No alarm");
  });
  Ends();
}

TEST_F(Panel8Test, EveryControlSaysWhatItIs) {
  for (const int variant : {kPlain, kTank}) {
    Start(variant);
    OnPanel([this] {
      EXPECT_EQ(Widget("cbxKelrelay(0)").accessibleName(), "CO2 pre-alarm, relay 1");
      EXPECT_EQ(Widget("cbxKelrelay2(4)").accessibleName(), "TEMP 1 high, relay 2");
      EXPECT_EQ(Widget("txbKelLevel(2)").accessibleName(), "TWA alarm level, ppm");
      EXPECT_EQ(Widget("lblCH_Type(0)").accessibleName(), "Unit of TEMP 1: °C");
      EXPECT_EQ(Widget("txbID").accessibleName(), "Bus ID");
      EXPECT_FALSE(Widget("picFlash").accessibleName().isEmpty());
      EXPECT_GE(CountSpokenNames(Window().objectName()), 30);
    });
    Ends();
  }
}

// Three are the limit, as a relay has three places for alarms.
TEST_F(Panel8Test, AFourthAlarmOfARelayIsRefusedAndItsTickTakenBack) {
  Start();
  QString text;
  QString again;
  AfterPoll([this] { Press(Widget("cbxKelrelay(2)")); });
  OnPanel([this] {
    EXPECT_EQ(FindWindow("MessageBox"), nullptr);
    Press(Widget("cbxKelrelay(4)"));
  });
  Acknowledge(text);
  OnPanel([this] {
    EXPECT_THAT(Ticks("cbxKelrelay"), ElementsAre(0, 1, 2));
    Press(Widget("cbxKelrelay2(0)"));
  });
  Acknowledge(again);
  OnPanel([this] {
    EXPECT_THAT(Ticks("cbxKelrelay2"), ElementsAre(2, 3, 4));
    Press(Widget("cbxKelrelay(0)"));
    Press(Widget("cbxKelrelay(4)"));
  });
  OnPanel([this] {
    EXPECT_EQ(FindWindow("MessageBox"), nullptr);
    EXPECT_THAT(Ticks("cbxKelrelay"), ElementsAre(1, 2, 4));
    // Not before it is sent.
    EXPECT_EQ(Kept(kRelay1), 0x0759);
    Press(Widget("btnSendToSensor"));
  });
  // 7, 6 and 8 for boxes 1, 2 and 4, over the 9.
  OnPanel([this] { EXPECT_EQ(Kept(kRelay1), 0x8679); });
  Ends();
  EXPECT_EQ(text, kOnlyThree);
  EXPECT_EQ(again, kOnlyThree);
}

TEST_F(Panel8Test, AllTicksClearAndTheOtherAlarmOnP0AreSentToo) {
  Start();
  AfterPoll([this] {
    for (const int i : {0, 1}) Press(Widget(At("cbxKelrelay", i)));
    for (const int i : {2, 3, 4}) Press(Widget(At("cbxKelrelay2", i)));
    Press(Widget("cbxTWAonP0"));
  });
  OnPanel([this] {
    EXPECT_EQ(Kept(kOutput0), 37302);
    Press(Widget("btnSendToSensor"));
  });
  OnPanel([this] {
    EXPECT_EQ(Kept(kRelay1), 9);
    EXPECT_EQ(Kept(kRelay2), 9);
    EXPECT_EQ(Kept(kOutput0), 37301);
  });
  Ends();
}

// Levels, ID, choices

TEST_F(Panel8Test, AFinishedLevelGoesToTheUnitAtOnceAndIsReadBack) {
  Start();
  struct Case {
    int field;
    const char* typed;
    std::size_t address;
    int raw;
    const char* shown;
  };
  AfterPoll([] {});
  for (const auto& each :
       {Case{0, "1,2344", kCO2Pre, 1234, "1.234"}, Case{1, "2.25", kCO2Main, 2250, "2.25"},
        Case{2, "620", kAverageLevel, 620, "620"}, Case{3, "-5.5", kTempLow, 64986, "-5.5"},
        Case{4, "24.567", kTempHigh, 2457, "24.57"}}) {
    Edit(At("txbKelLevel", each.field), each.typed);
    Settled([this, each] {
      EXPECT_EQ(Kept(each.address), each.raw) << each.field;
      EXPECT_EQ(Kept(each.address + 2), each.raw) << each.field;
      EXPECT_EQ(Text(At("txbKelLevel", each.field)), each.shown);
      EXPECT_EQ(Back(At("txbKelLevel", each.field)), kField);
      Window().setFocus();
    });
    Settled([] {});
  }
  Ends();
}

TEST_F(Panel8Test, AnIdAbove29Becomes29AndGoesWithTheNextSending) {
  Start();
  AfterPoll([this] {
    Type(Widget("txbID"), "45");
    EXPECT_EQ(Text("txbID"), "45");
    Press(Widget("txbKelLevel(0)"));
  });
  OnPanel([this] {
    EXPECT_EQ(Text("txbID"), "29");
    EXPECT_EQ(Byte(kId), 1);
    Press(Widget("btnSendToSensor"));
  });
  OnPanel([this] { EXPECT_EQ(Byte(kId), 29); });
  Ends();
}

TEST_F(Panel8Test, TheTemperatureUnitIsChosenSentAndConverts) {
  Start();
  AfterPoll([this] { Live(kTemp1, 2150); });
  Choose("lblCH_Type(0)", "F");
  Settled([this] {
    // The unit bits of the kind byte: 1 is C, 2 is F.
    EXPECT_EQ(Byte(kTempKind), 0x0A);
    EXPECT_EQ(Caption("lblCH_Type(0)"), "°F");
    EXPECT_EQ(Text("txbCHact(0)"), "70.7");
    EXPECT_EQ(Text("txbKelLevel(3)"), "69.8");
    EXPECT_EQ(Text("txbKelLevel(4)"), "73.4");
    EXPECT_EQ(Label("lblFKelunit(3)"), "°F");
    EXPECT_EQ(Label("lblFKelunit(0)"), "%");
    EXPECT_EQ(Widget("txbKelLevel(4)").accessibleName(), "TEMP 1 high level, °F");
    // The raw words stay in Celsius.
    EXPECT_EQ(Kept(kTempHigh), 2300);
  });
  Edit("txbKelLevel(3)", "32");
  Settled([this] {
    EXPECT_EQ(Kept(kTempLow), 0);
    EXPECT_EQ(Text("txbKelLevel(3)"), "32");
    Window().setFocus();
  });
  Choose("lblCH_Type(0)", "C");
  Settled([this] {
    EXPECT_EQ(Byte(kTempKind), 0x06);
    EXPECT_EQ(Text("txbKelLevel(4)"), "23");
    EXPECT_EQ(Text("txbKelLevel(3)"), "0");
  });
  Ends();
}

TEST_F(Panel8Test, OnlyTheUnitOfTheTemperatureIsAChoice) {
  Start(kTank);
  AfterPoll([this] {
    EXPECT_NE(qobject_cast<QAbstractButton*>(&Widget("lblCH_Type(0)")), nullptr);
    for (const int i : {1, 2, 5}) EXPECT_NE(qobject_cast<QLabel*>(&Widget(At("lblCH_Type", i))), nullptr);
  });
  Ends();
}

TEST_F(Panel8Test, TheDisplayIsChosenFromTheThreeAndSentWithTheRest) {
  Start(kTank);
  AfterPoll([this] { Press(Widget("lblDisplayMode(1)")); });
  desk->When([] { return FindWindow("PopupMenu") != nullptr; },
             [] {
               std::vector<std::string> captions;
               for (const auto* action : static_cast<QMenu*>(FindWindow("PopupMenu"))->actions()) {
                 captions.push_back(action->text().toStdString());
               }
               EXPECT_THAT(captions, UnorderedElementsAre("CO2", "TEMP 1", "TWA CO2"));
               PressKey(*FindWindow("PopupMenu"), Qt::Key_Escape);
             });
  Choose("lblDisplayMode(3)", "TWA CO2");
  OnPanel([this] {
    EXPECT_EQ(Widget("lblDisplayMode(3)").accessibleName(), "Display 4: TWA CO2");
    EXPECT_EQ(Byte(kFirstDisplay + 3), 5);
    Press(Widget("btnSendToSensor"));
  });
  OnPanel([this] { EXPECT_EQ(Byte(kFirstDisplay + 3), 8); });
  Ends();
}

// Calibrations, logger

TEST_F(Panel8Test, CalibrationsAskAndReachTheUnit) {
  struct Case {
    const char* entry;
    const char* question;
    const char* answer;
    int raw;
  };
  for (const auto& each : {Case{"mCalCO2/mCalCO2Other", "Please enter CO2 concentration", "0,4", 400},
                           Case{"mCalCO2span", "Please enter span gas concentration", "3.5", 3500},
                           Case{"CalTemp", "Please enter correct temperature", "24.5", 2450}}) {
    Start();
    Menu(QStringList{"M0", "mCalibrate"} + QString(each.entry).split('/'));
    ExpectQuestion(each.question);
    desk->Answer(each.answer);
    Settled([this, each] {
      EXPECT_EQ(RamWord(kGivenValue), each.raw) << each.entry;
      // Done, and not refused.
      EXPECT_EQ(RamWord(kProcedure), 0) << each.entry;
      EXPECT_EQ(FindWindow("MessageBox"), nullptr) << each.entry;
    });
    Ends();
  }
}

TEST_F(Panel8Test, ZeroAndFreshAirAskNothing) {
  // Of the correction that the unit keeps: the reading of the moment is more than fresh air, and that more
  // than nothing.
  constexpr std::size_t kGasOffset = 4742;
  std::vector<int> corrections;
  for (const char* entry : {"mCalCO2Zero", "mCalCO2Background"}) {
    Start();
    Menu({"M0", "mCalibrate", "mCalCO2", entry});
    Settled([&, this] {
      corrections.push_back(Kept(kGasOffset) - 65536);
      EXPECT_EQ(RamWord(kProcedure), 0);
    });
    Ends();
  }
  // Both at the same moment: between them lie 400 ppm, in steps of 10.
  ASSERT_EQ(corrections.size(), 2U);
  EXPECT_EQ(corrections[1] - corrections[0], 40);
}

TEST_F(Panel8Test, TheWeightIsCalibratedFromTheMenu) {
  Start(kTank);
  QString done;
  Menu({"M0", "mCalibrate", "mCalWeightEmpty"});
  Confirm(QMessageBox::Yes, "Start empty tank calibration?");
  Acknowledge(done);
  OnPanel([this] {
    EXPECT_EQ(RamWord(kTankCommand), 0);
    // Of a new unit.
    EXPECT_NE(Kept(kTankEmpty), 2000);
  });
  Menu({"M0", "mCalibrate", "mCalWeightFull"});
  Confirm(QMessageBox::No, "Start full tank calibration?");
  OnPanel([this] { EXPECT_EQ(RamWord(kTankCommand), 0); });
  Ends();
  EXPECT_EQ(done, "Empty tank calibration completed");
}

TEST_F(Panel8Test, TheLoggersEntriesCanBeChosenAndDoNothing) {
  Start(kTank);
  std::vector<std::uint8_t> before;
  AfterPoll([&, this] { before = desk->port.sensor.Image(); });
  for (const char* entry : {"mLoggerExp", "mLoggerCheckT", "mLoggerSetT", "mLoggerReset"}) {
    OnPanel([entry] { EXPECT_TRUE(Entry(entry).isEnabled()) << entry; });
    Menu({"M0", "mLogger", entry});
    OnPanel([] {
      EXPECT_EQ(FindWindow("MessageBox"), nullptr);
      EXPECT_EQ(FindWindow("InputBox"), nullptr);
    });
  }
  Settled([&, this] { EXPECT_EQ(desk->port.sensor.Image(), before); });
  Ends();
}

TEST_F(Panel8Test, ATWAResetIsNothingThatTheseUnitsKnow) {
  Start();
  QString text;
  Menu({"M0", "mTWAreset"});
  Acknowledge(text);
  Ends();
  EXPECT_EQ(text, "Unkown protokol");
}

// Settings files

TEST_F(Panel8Test, SettingsAreSavedAndComeBack) {
  const QTemporaryDir folder;
  const auto name = folder.filePath("Cellar.set");
  const auto choose = [this, name] {
    desk->When([] { return FindWindow("FileDialog") != nullptr; },
               [name] {
                 auto& box = *static_cast<QFileDialog*>(FindWindow("FileDialog"));
                 box.findChild<QLineEdit*>("fileNameEdit")->setText(name);
                 box.findChild<QDialogButtonBox*>()->buttons().constFirst()->click();
               });
  };
  Start();
  Menu({"mFile", "mSavesettings"});
  choose();
  OnPanel([this, name] {
    EXPECT_TRUE(desk->files.Exists(name.toStdString()));
    // The dialog offers only what is on the disk.
    QFile onDisk(name);
    EXPECT_TRUE(onDisk.open(QIODevice::WriteOnly));
    Keep(kTempHigh, 2999);
  });
  Menu({"mFile", "mLoadsettings"});
  choose();
  Settled([this] {
    EXPECT_EQ(Kept(kTempHigh), 2300);
    EXPECT_EQ(Text("txbKelLevel(4)"), "23");
    EXPECT_EQ(FindWindow("MessageBox"), nullptr);
  });
  Ends();
}

// Without a unit

TEST_F(Panel8Test, ALostLinkIsToldAndLeadsToSimulatedMode) {
  Start(kTank);
  QString text;
  LoseTheLink(text);
  OnPanel([this] {
    EXPECT_EQ(Window().windowTitle(), "BRELANT Simulated mode");
    EXPECT_TRUE(Ticked("cbxSimulated"));
    for (const int i : {0, 1, 2, 5}) {
      EXPECT_EQ(Fore(At("txbCHact", i)), kYellow) << i;
      EXPECT_FALSE(desk->Panel<QLineEdit>(At("txbCHact", i)).isReadOnly()) << i;
    }
    EXPECT_EQ(Fore("txbKELActTempAenable"), QColor(Qt::white));
    for (const char* name : {"mReadfromsensor", "mSendtosensor", "mCalibrate", "mTWAreset", "mLoadsettings",
                             "mSavesettings", "mCalWeightEmpty"}) {
      EXPECT_FALSE(Entry(name).isEnabled()) << name;
    }
    EXPECT_FALSE(Widget("btnReadFromSensor").isEnabled());
    EXPECT_FALSE(Widget("btnSendToSensor").isEnabled());
    EXPECT_TRUE(Widget("Command1").isEnabled());
    ExpectSeenWhole(Window());
  });
  Ends();
  EXPECT_EQ(text, "No sensor detected, entering simulated mode.");
}

TEST_F(Panel8Test, WithoutAUnitTypedValuesShowTheirAlarms) {
  Start(kTank);
  QString text;
  LoseTheLink(text);
  Retype("txbCHact(1)", "1,5");
  Retype("txbCHact(2)", "17999");
  Retype("txbCHact(0)", "21");
  Computed([this] {
    ExpectLamps({0, 3});
    EXPECT_EQ(Fore("txbCHact(1)"), kYellow);
  });
  Retype("txbCHact(1)", "2.501");
  Retype("txbKelLevel(4)", "20");
  Computed([this] {
    ExpectLamps({0, 1, 3, 4});
    // Nothing of it is kept by the unit.
    EXPECT_EQ(Kept(kTempHigh), 2300);
  });
  Ends();
}

TEST_F(Panel8Test, TheStateLineTogglesWithTheFocusInSimulatedModeOnly) {
  Start();
  AfterPoll([this] { Press(Widget("txbKELActTempAenable")); });
  OnPanel([this] {
    EXPECT_EQ(Text("txbKELActTempAenable"), "Enabled");
    Press(Widget("cbxSimulated"));
  });
  OnPanel([this] { Press(Widget("txbID")); });
  for (const char* expected : {"Disabled", "Enabled"}) {
    OnPanel([this] { Press(Widget("txbKELActTempAenable")); });
    OnPanel([this, expected] {
      EXPECT_EQ(Text("txbKELActTempAenable"), expected);
      EXPECT_EQ(Fore("txbKELActTempAenable"), QColor(Qt::white));
      Press(Widget("txbID"));
    });
  }
  Ends();
}

// Menus, keys, leaving

TEST_F(Panel8Test, EveryMenuEntryHasALetterOfItsOwn) {
  for (const int variant : {kPlain, kTank}) {
    Start(variant);
    OnPanel([] { ExpectALetterEach(*static_cast<QMainWindow&>(Window()).menuBar()); });
    Ends();
  }
}

TEST_F(Panel8Test, TheTabKeyFollowsTheEye) {
  Start();
  AfterPoll([] {
    std::vector<std::string> expected{
        "txbID",        "lblDisplayMode(0)", "lblDisplayMode(1)", "lblDisplayMode(2)", "lblDisplayMode(3)",
        "cbxSimulated", "btnReadFromSensor", "btnSendToSensor",   "lblCH_Type(0)"};
    for (int i = 0; i < 5; ++i) {
      for (const char* name : {"txbKelLevel", "cbxKelrelay", "cbxKelrelay2"}) {
        expected.push_back(At(name, i).toStdString());
      }
    }
    expected.insert(expected.end(), {"cbxTWAonP0", "Command1"});
    EXPECT_THAT(Order("txbID", static_cast<int>(expected.size())), ElementsAreArray(expected));
  });
  Ends();
}

TEST_F(Panel8Test, TheExitButtonLeavesThePanelAndSendsNothing) {
  Start();
  std::vector<std::uint8_t> before;
  AfterPoll([&, this] {
    before = desk->port.sensor.Image();
    Press(Widget("cbxKelrelay(4)"));
  });
  OnPanel([this] { Press(Widget("Command1")); });
  desk->In("frmComSet", [&, this] {
    EXPECT_EQ(FindWindow("frm8Chart"), nullptr);
    EXPECT_EQ(desk->port.sensor.Image(), before);
  });
  Ends();
}

// The whole

class Panel8LookTest : public Panel8Test, public testing::WithParamInterface<Style> {
 protected:
  Panel8LookTest() { ApplyStyle(*qApp, GetParam()); }
  ~Panel8LookTest() override { ApplyStyle(*qApp, Style::light); }
};

TEST_P(Panel8LookTest, IsSeenWholeAndFitsASmallLaptop) {
  for (const int variant : {kPlain, kTank}) {
    Start(variant);
    AfterPoll([] {
      ExpectSeenWhole(Window());
      ExpectFitsASmallLaptop(Window().objectName());
    });
    OnPanel([this] { Press(Widget("cbxSimulated")); });
    OnPanel([] {
      ExpectSeenWhole(Window());
      ExpectFitsASmallLaptop(Window().objectName());
    });
    Ends();
  }
}

// The widest that the upper row can be.
TEST_P(Panel8LookTest, HasRoomForTheLongestChoicesAndMode) {
  Start(kTank);
  for (int i = 0; i < 4; ++i) Choose(At("lblDisplayMode", i), "TWA CO2");
  OnPanel([this] { Press(Widget("cbxSimulated")); });
  OnPanel([] {
    ExpectSeenWhole(Window());
    ExpectFitsASmallLaptop(Window().objectName());
  });
  Ends();
}

INSTANTIATE_TEST_SUITE_P(Styles, Panel8LookTest, testing::Values(Style::light, Style::dark));

}  // namespace
}  // namespace brelant::test
