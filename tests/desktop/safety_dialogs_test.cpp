// SPDX-License-Identifier: GPL-3.0-or-later
// The dialogs over the safety panel.
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desktop/Appearance.h"
#include "panel_fixture.h"
#include "seen_whole.h"

namespace brelant::test {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

constexpr int kUnit = 154;
constexpr int kModel = 3;
// In EEPROM.
constexpr std::size_t kId = 4160;
constexpr std::size_t kFirstDisplay = 4401;
constexpr std::size_t kLoggerTiming = 4444;
constexpr std::size_t kLogger1 = 4564;
constexpr std::size_t kLogger2 = 4568;
constexpr std::size_t kPeriods = 7904;
constexpr std::size_t kTick = 7908;
constexpr std::size_t kTemp1Kind = 7964;
constexpr std::size_t kTemp2Kind = 7969;

/// Someone at a dialog that the menu of the panel has opened.
class UnitDialogTest : public PanelTest {
 protected:
  UnitDialogTest(QString dialog, QStringList menu) : dialog_(std::move(dialog)), menu_(std::move(menu)) {
    Start(kUnit, kModel);
    Reopen();
  }

  void Reopen() {
    AfterPoll([this] { desk->ClickMenu(menu_); });
    InDialog([] {});
  }
  void InDialog(Desk::Step step) { desk->In(dialog_, std::move(step)); }
  template <typename Widget = QWidget>
  Widget& In(const QString& name) const {
    return desk->Find<Widget>(dialog_, name);
  }
  QWidget& Dialog() const { return *FindWindow(dialog_); }
  void PressIn(const QString& name) {
    InDialog([this, name] { Press(In(name)); });
  }
  void TypeIn(const QString& name, const QString& text) {
    InDialog([this, name, text] {
      Press(In(name));
      PressKey(In(name), Qt::Key_A, Qt::ControlModifier);
      QTest::keyClicks(&In(name), text);
    });
  }
  /// Opens the choice and takes an entry of it by keys.
  void ChooseIn(const QString& name, int index) {
    InDialog([this, name, index] {
      auto& box = In<QComboBox>(name);
      Activate(box);
      box.setFocus(Qt::TabFocusReason);
      PressKey(box, Qt::Key_Home);
      for (int i = 0; i < index; ++i) PressKey(box, Qt::Key_Down);
    });
  }
  /// Expects a message, and acknowledges it.
  void ExpectTold(const QString& text, const QString& title = {}) {
    desk->When([] { return FindWindow("MessageBox") != nullptr; },
               [text, title] {
                 auto& box = *static_cast<QMessageBox*>(FindWindow("MessageBox"));
                 EXPECT_EQ(box.text(), text);
                 if (!title.isEmpty()) {
                   EXPECT_EQ(box.windowTitle(), title);
                 }
                 box.button(QMessageBox::Ok)->click();
               });
  }
  void ExpectGone() {
    OnPanel([this] {
      EXPECT_EQ(FindWindow(dialog_), nullptr);
      EXPECT_EQ(FindWindow("MessageBox"), nullptr);
    });
  }
  void Run() {
    desk->Run();
    EXPECT_EQ(desk->StepsLeft(), 0U);
  }

  QString Shown(const QString& name) const { return In<QLineEdit>(name).text(); }
  QString Chosen(const QString& name) const { return In<QComboBox>(name).currentText(); }
  std::vector<std::string> Offered(const QString& name) const {
    std::vector<std::string> items;
    const auto& box = In<QComboBox>(name);
    for (int i = 0; i < box.count(); ++i) items.push_back(box.itemText(i).toStdString());
    return items;
  }
  int Byte(std::size_t address) const { return desk->port.sensor.Eeprom()[address]; }
  int Kept(std::size_t address) const { return Byte(address) * 256 + Byte(address + 1); }

  /// That it has this title, lies over the panel, tells what all of it is, can be seen whole, and that the
  /// Tab key goes through it in this order, beginning with what has the focus.
  void ExpectFace(const QString& title, const std::vector<std::string>& order) {
    InDialog([this, title, order] {
      EXPECT_EQ(Dialog().windowTitle(), title);
      EXPECT_TRUE(Dialog().isModal());
      CountSpokenNames(dialog_);
      for (const auto* box : Dialog().findChildren<QComboBox*>())
        EXPECT_FALSE(box->accessibleName().isEmpty());
      for (const auto style : {Style::dark, Style::light}) {
        ApplyStyle(*qApp, style);
        QApplication::processEvents();
        ExpectSeenWhole(Dialog());
      }
      Activate(Dialog());
      std::vector<std::string> passed;
      for (std::size_t i = 0; i < order.size(); ++i) {
        passed.push_back(Dialog().focusWidget()->objectName().toStdString());
        PressKey(*Dialog().focusWidget(), Qt::Key_Tab);
      }
      EXPECT_THAT(passed, ElementsAreArray(order));
      EXPECT_EQ(Dialog().focusWidget()->objectName().toStdString(), order.front());
    });
  }
  /// That Escape, the close button of the frame and the button leave it, without a message.
  void ExpectLeftBy(const QString& button) {
    InDialog([this] { PressKey(Dialog(), Qt::Key_Escape); });
    ExpectGone();
    Reopen();
    InDialog([this] { Dialog().close(); });
    ExpectGone();
    Reopen();
    PressIn(button);
    ExpectGone();
    Reopen();
    InDialog([this, button] {
      In(button).setFocus(Qt::TabFocusReason);
      PressKey(In(button), Qt::Key_Return);
    });
    ExpectGone();
  }

 private:
  QString dialog_;
  QStringList menu_;
};

// What the display shows, the temperature unit and the ID

class SensorConfigTest : public UnitDialogTest {
 protected:
  SensorConfigTest() : UnitDialogTest("frmZ7731SensorConfig", {"M0", "m_ConfigureSensor"}) {}
};

TEST_F(SensorConfigTest, IsADialogLikeTheOthers) {
  ExpectFace("Sensor Configuration",
             {"cmbValue1", "cmbValue2", "cmbValue3", "cmbValue4", "btnUpdateDisplaySequence", "optTemp(0)",
              "btnUpdateTempFormat", "txtNewID", "btnUpdateNetworkD", "btnCancel"});
  ExpectLeftBy("btnCancel");
  Run();
}

TEST_F(SensorConfigTest, ShowsWhatTheUnitHas) {
  InDialog([this] {
    EXPECT_THAT(Offered("cmbValue1"), ElementsAre("CO2", "TEMP 1", "TEMP 2", "WEIGHT", "TWA CO2"));
    EXPECT_EQ(Chosen("cmbValue1"), "CO2");
    EXPECT_EQ(Chosen("cmbValue2"), "TEMP 1");
    EXPECT_EQ(Chosen("cmbValue3"), "TWA CO2");
    EXPECT_EQ(Chosen("cmbValue4"), "WEIGHT");
    EXPECT_TRUE(In<QAbstractButton>("optTemp(0)").isChecked());
    EXPECT_FALSE(In<QAbstractButton>("optTemp(1)").isChecked());
    EXPECT_EQ(Shown("txtCurrentID"), "1");
    EXPECT_EQ(Shown("txtNewID"), "1");
    EXPECT_TRUE(In<QLineEdit>("txtCurrentID").isReadOnly());
    EXPECT_EQ(In("cmbValue3").accessibleName(), "Value 3");
    EXPECT_EQ(In("txtNewID").accessibleName(), "New network ID");
  });
  Run();
}

TEST_F(SensorConfigTest, ChangesTheDisplaySequenceAndThePanelShowsItAfterwards) {
  ChooseIn("cmbValue1", 2);
  ChooseIn("cmbValue4", 0);
  InDialog([this] { EXPECT_EQ(Byte(kFirstDisplay), 5); });
  PressIn("btnUpdateDisplaySequence");
  ExpectTold("Display sequence changed");
  InDialog([this] {
    EXPECT_EQ(Byte(kFirstDisplay), 9);
    EXPECT_EQ(Byte(kFirstDisplay + 1), 4);
    EXPECT_EQ(Byte(kFirstDisplay + 2), 8);
    EXPECT_EQ(Byte(kFirstDisplay + 3), 5);
    PressKey(Dialog(), Qt::Key_Escape);
  });
  OnPanel([] {});
  OnPanel([this] {
    EXPECT_EQ(Caption("lblDisplayMode(0)"), "TEMP 2");
    EXPECT_EQ(Caption("lblDisplayMode(3)"), "CO2");
  });
  Run();
}

TEST_F(SensorConfigTest, ChangesTheTemperatureFormat) {
  PressIn("optTemp(1)");
  InDialog([this] {
    EXPECT_TRUE(In<QAbstractButton>("optTemp(1)").isChecked());
    EXPECT_FALSE(In<QAbstractButton>("optTemp(0)").isChecked());
    EXPECT_EQ(Byte(kTemp1Kind), 6);
    // Enter in the frame presses its button.
    PressKey(In("optTemp(1)"), Qt::Key_Return);
  });
  ExpectTold("Temperature format changed");
  InDialog([this] {
    EXPECT_EQ(Byte(kTemp1Kind), 10);
    EXPECT_EQ(Byte(kTemp2Kind), 10);
  });
  Run();
}

TEST_F(SensorConfigTest, TakesAnIDFrom1To29) {
  for (const char* text : {"30", "0"}) {
    TypeIn("txtNewID", text);
    PressIn("btnUpdateNetworkD");
    ExpectTold("Invalid Sensor ID!\n\nSensor ID must be greater then 0 and less then 30",
               "Invalid Sensor ID");
  }
  InDialog([this] { EXPECT_EQ(Byte(kId), 1); });
  TypeIn("txtNewID", "29");
  InDialog([this] { PressKey(In("txtNewID"), Qt::Key_Return); });
  ExpectTold("Sensor ID changed\n\nSensor must be restarted for changes to take effect");
  InDialog([this] {
    EXPECT_EQ(Byte(kId), 29);
    EXPECT_EQ(Shown("txtCurrentID"), "29");
  });
  Run();
}

// The background calibration

class AbcTest : public UnitDialogTest {
 protected:
  AbcTest() : UnitDialogTest("frmZ7731ABC", {"M0", "m_ConfigureABC"}) {}
};

TEST_F(AbcTest, IsADialogLikeTheOthers) {
  ExpectFace("ABC Configuration", {"txtDays", "btnChangeInterval", "btnCancel"});
  ExpectLeftBy("btnCancel");
  Run();
}

// 192 periods of 1800 × 2 seconds are 8 days; 14 days are 336 of them.
TEST_F(AbcTest, ShowsAndChangesTheInterval) {
  InDialog([this] {
    EXPECT_EQ(Shown("txtCurrent"), "8");
    EXPECT_TRUE(In<QLineEdit>("txtCurrent").isReadOnly());
    EXPECT_EQ(In("txtDays").accessibleName(), "New interval, days");
  });
  TypeIn("txtDays", "14");
  InDialog([this] { PressKey(In("txtDays"), Qt::Key_Return); });
  desk->When([this] { return Shown("txtCurrent") == "14"; }, [this] { EXPECT_EQ(Kept(kPeriods), 336); });
  Run();
}

TEST_F(AbcTest, TellsWhatItCannotChange) {
  InDialog([this] { desk->port.sensor.Eeprom()[kTick] = desk->port.sensor.Eeprom()[kTick + 1] = 0; });
  TypeIn("txtDays", "14");
  PressIn("btnChangeInterval");
  ExpectTold("Could not change ABC calibration interval");
  InDialog([this] { EXPECT_EQ(Kept(kPeriods), 192); });
  Run();
}

// The loggers

class LoggerTest : public UnitDialogTest {
 protected:
  LoggerTest() : UnitDialogTest("frmZ7731Logger", {"M0", "m_ConfigureLogger"}) {}
};

TEST_F(LoggerTest, IsADialogLikeTheOthers) {
  ExpectFace("Logger Configuration", {"cmbLoggerValue1", "cmbLoggerValue2", "btnChangeValues", "txtMinutes",
                                      "btnChangeInterval", "btnEstimate", "btnCancel"});
  ExpectLeftBy("btnCancel");
  Run();
}

TEST_F(LoggerTest, ShowsWhatTheUnitLogsAndHowOften) {
  InDialog([this] {
    EXPECT_THAT(Offered("cmbLoggerValue2"), ElementsAre("CO2", "TEMP 1", "TEMP 2", "WEIGHT", "TWA CO2"));
    EXPECT_EQ(Chosen("cmbLoggerValue1"), "CO2");
    EXPECT_EQ(Chosen("cmbLoggerValue2"), "TEMP 1");
    // 576 seconds, rounded up to minutes.
    EXPECT_EQ(Shown("txtMinutes"), "10");
  });
  Run();
}

TEST_F(LoggerTest, ChangesTheLoggedValuesAndLeavesTheOtherBits) {
  ChooseIn("cmbLoggerValue1", 3);
  InDialog([this] {
    EXPECT_EQ(Kept(kLogger1), 0x5155);
    PressKey(In("cmbLoggerValue1"), Qt::Key_Return);
  });
  ExpectTold("Logger values changed");
  InDialog([this] {
    EXPECT_EQ(Kept(kLogger1), 0x515B);
    EXPECT_EQ(Kept(kLogger2), 0x5154);
  });
  Run();
}

// Code 0x67 is 256 minutes, with bit 7 set.
TEST_F(LoggerTest, ChangesTheIntervalToWhatTheUnitHasAndLeavesItsLowByte) {
  TypeIn("txtMinutes", "260");
  InDialog([this] { PressKey(In("txtMinutes"), Qt::Key_Return); });
  ExpectTold("Log interval changed");
  InDialog([this] {
    EXPECT_EQ(Kept(kLoggerTiming), 0xE705);
    EXPECT_EQ(Shown("txtMinutes"), "256");
  });
  TypeIn("txtMinutes", "0");
  PressIn("btnChangeInterval");
  ExpectTold("Log interval changed");
  InDialog([this] {
    EXPECT_EQ(Kept(kLoggerTiming), 0x8005);
    EXPECT_EQ(Shown("txtMinutes"), "1");
  });
  Run();
}

TEST_F(LoggerTest, EstimatesHowLongTheMemoryLasts) {
  TypeIn("txtMinutes", "60");
  PressIn("btnEstimate");
  // 1500 samples.
  ExpectTold("Estimated total logger period = 62.5 days");
  TypeIn("txtMinutes", "often");
  InDialog([this] {
    In("btnEstimate").setFocus(Qt::TabFocusReason);
    PressKey(In("btnEstimate"), Qt::Key_Return);
  });
  ExpectTold("Could not estimate total logger period. Please check logger value in textbox.");
  InDialog([this] { EXPECT_EQ(Kept(kLoggerTiming), 0xC105); });
  Run();
}

// The poll

class OptionsTest : public UnitDialogTest {
 protected:
  OptionsTest() : UnitDialogTest("frmZ7731Options", {"mFile", "m_Options"}) {}

  std::string Stored() const {
    const auto found = desk->store.values.find("BRELANT/Z7731/UpdatePeriod");
    return found == desk->store.values.end() ? "" : found->second;
  }
};

TEST_F(OptionsTest, IsADialogLikeTheOthers) {
  ExpectFace("Options...", {"txtSeconds", "btnChangeUpdate", "btnCancel"});
  ExpectLeftBy("btnCancel");
  Run();
}

TEST_F(OptionsTest, ChangesThePeriodForThisAndAllSessions) {
  InDialog([this] {
    EXPECT_EQ(Shown("txtSeconds"), "2");
    EXPECT_EQ(In("txtSeconds").accessibleName(), "Every, second(s)");
  });
  TypeIn("txtSeconds", "0");
  PressIn("btnChangeUpdate");
  ExpectTold("Invalid value");
  InDialog([this] { EXPECT_EQ(Stored(), ""); });
  TypeIn("txtSeconds", "60");
  InDialog([this] { PressKey(In("txtSeconds"), Qt::Key_Return); });
  ExpectTold("Update frequency has been succesfully changed.");
  InDialog([this] {
    EXPECT_EQ(Stored(), "60");
    PressKey(Dialog(), Qt::Key_Escape);
  });
  unsigned polls = 0;
  std::chrono::microseconds then{};
  OnPanel([&] {
    polls = desk->program.session.polls;
    then = desk->clock.Now();
  });
  desk->When([&] { return desk->program.session.polls == polls + 2; },
             [&] { EXPECT_GE(desk->clock.Now() - then, std::chrono::seconds(60)); });
  Run();
}

// The program

class AboutTest : public UnitDialogTest {
 protected:
  AboutTest() : UnitDialogTest("frmZ7731About", {"m_About"}) {}
};

TEST_F(AboutTest, TellsTheVersion) {
  ExpectFace("About BRELANT", {"btnOK"});
  InDialog([this] {
    EXPECT_EQ(In<QLabel>("lblVersion").text(), "2.1.0");
    EXPECT_TRUE(In("Picture1").isVisible());
  });
  ExpectLeftBy("btnOK");
  Run();
}

TEST_F(AboutTest, IsThereWithoutAUnitToo) {
  Run();
  desk = std::make_unique<Desk>(kUnit, kModel);
  desk->StartSimulation();
  OnPanel([this] { desk->ClickMenu({"m_About"}); });
  InDialog([this] { PressKey(In("btnOK"), Qt::Key_Return); });
  ExpectGone();
  Run();
}

}  // namespace
}  // namespace brelant::test
