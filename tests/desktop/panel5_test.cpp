// SPDX-License-Identifier: GPL-3.0-or-later
#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMessageBox>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desktop/Appearance.h"
#include "panel_fixture.h"

namespace brelant::test {
namespace {

using testing::ElementsAreArray;

class Panel5Test : public PanelTest {
 protected:
  void Start(int part = 120) { PanelTest::Start(part, 0); }
  int Ram(std::size_t address) const { return static_cast<int>(desk->program.image.RamImage.at(address)); }
  /// What the sensor itself holds.
  int Sensor(std::size_t address) const { return desk->port.sensor.Ram()[address]; }
};

TEST_F(Panel5Test, ShowsWhatTheSensorIs) {
  Start();
  OnPanel([this] {
    EXPECT_EQ(FindWindow("frm5")->windowTitle(), "BRELANT");
    EXPECT_EQ(Text("txbSN"), "12001042");
    EXPECT_TRUE(desk->Panel<QLineEdit>("txbSN").isReadOnly());
    EXPECT_EQ(Text("txbID"), "1");
    EXPECT_EQ(Caption("lblDisplayMode"), "Mode 2");
    EXPECT_EQ(Caption("lblFchannel(0)"), "CO2");
    EXPECT_EQ(Text("txbFa(0)"), "800");
    EXPECT_EQ(Text("txbFb(0)"), "1200");
    EXPECT_EQ(desk->Panel<QLabel>("lblFaUnit(0)").text(), "ppm");
  });
  desk->Run();
}

TEST_F(Panel5Test, ShowsLiveValuesLargeAndGreen) {
  Start();
  AfterPoll([this] {
    const int ppm = Sensor(22) * 256 + Sensor(23) - 5000;
    EXPECT_EQ(Text("txbCHact(1)").toInt(), ppm);
    EXPECT_EQ(Fore("txbCHact(1)"), QColor(0, 255, 0));
    EXPECT_EQ(Back("txbCHact(1)"), QColor(0x54, 0x6C, 0x8D));
    EXPECT_TRUE(desk->Panel<QLineEdit>("txbCHact(1)").isReadOnly());
    EXPECT_EQ(Widget("txbCHact(1)").accessibleName(), "CO2, ppm");
    EXPECT_GE(Widget("txbCHact(1)").fontMetrics().height(), 2 * Widget("txbFa(0)").fontMetrics().height());
    const int percent = (Sensor(197) * 256 + Sensor(198)) * 100 / 16384;
    EXPECT_NEAR(Text("txbOutOut(0)").toInt(), percent, 1);
  });
  desk->Run();
}

TEST_F(Panel5Test, HasATileForEachChannelThatThereIs) {
  for (const auto& [part, channels] : {std::pair(112, 2), std::pair(120, 3), std::pair(231, 4)}) {
    Start(part);
    OnPanel([this, part = part, channels = channels] {
      for (int k = 0; k < 4; ++k) {
        EXPECT_EQ(Widget(QString("txbCHact(%1)").arg(k)).isVisible(), k < channels) << part << " " << k;
      }
      if (channels < 4) return;
      EXPECT_EQ(Widget("txbCHact(3)").accessibleName(), "CO2 TWA, %");
    });
    desk->Run();
  }
}

TEST_F(Panel5Test, AFieldIsWhiteWhileItIsEditedAndShowsWhatTheMemoryHolds) {
  Start();
  OnPanel([this] { Type(Widget("txbOutIntTime(0)"), "1000"); });
  OnPanel([this] {
    EXPECT_EQ(Back("txbOutIntTime(0)"), QColor(Qt::white));
    EXPECT_EQ(Fore("txbOutIntTime(0)"), QColor(Qt::black));
    PressKey(Widget("txbOutIntTime(0)"), Qt::Key_Return);
  });
  OnPanel([this] {
    EXPECT_EQ(Text("txbOutIntTime(0)"), "512");
    EXPECT_EQ(Ram(192), 8);
    EXPECT_EQ(Back("txbOutIntTime(0)"), QColor(0x54, 0x6C, 0x8D));
    EXPECT_EQ(Fore("txbOutIntTime(0)"), QColor(255, 255, 0));
    EXPECT_TRUE(Widget("txbOutIntTime(0)").hasFocus());
  });
  Edit("txbID", "35");
  OnPanel([this] { EXPECT_EQ(Text("txbID"), "29"); });
  desk->Run();
}

TEST_F(Panel5Test, AClickOnTheGroundLeavesTheField) {
  Start();
  OnPanel([this] { Type(Widget("txbFa(0)"), "850"); });
  OnPanel([] {
    auto& ground = *static_cast<QMainWindow*>(FindWindow("frm5"))->centralWidget();
    QTest::mouseClick(&ground, Qt::LeftButton, Qt::NoModifier, QPoint(2, 2));
  });
  // 850 and the offset of 5000: 5850 = 22 * 256 + 218; the function is positive.
  OnPanel([this] {
    EXPECT_EQ(Ram(163), 22 + 128);
    EXPECT_EQ(Ram(164), 218);
    EXPECT_EQ(Back("txbFa(0)"), QColor(0x54, 0x6C, 0x8D));
  });
  desk->Run();
}

TEST_F(Panel5Test, EditsReachTheSensorBySendOnly) {
  for (const bool byKey : {false, true}) {
    Start();
    Edit("txbFa(0)", "900");
    OnPanel([this, byKey] {
      EXPECT_EQ(Sensor(164), 5800 % 256);
      if (byKey) {
        PressKey(*FindWindow("frm5"), Qt::Key_Return, Qt::ControlModifier);
      } else {
        Press(Widget("btnSendToSensor"));
      }
    });
    // 5900 = 23 * 256 + 12.
    OnPanel([this] {
      EXPECT_EQ(Sensor(163), 23 + 128);
      EXPECT_EQ(Sensor(164), 12);
      EXPECT_EQ(desk->port.sensor.Count().saves, 1);
    });
    desk->Run();
  }
}

TEST_F(Panel5Test, ReadsTheSensorAgain) {
  Start();
  OnPanel([this] {
    desk->port.sensor.Ram()[164] = 5810 % 256;
    PressKey(*FindWindow("frm5"), Qt::Key_F5);
  });
  OnPanel([this] { EXPECT_EQ(Text("txbFa(0)"), "810"); });
  desk->Run();
}

TEST_F(Panel5Test, HasTheHourglassWhileItIsBusy) {
  Start();
  OnPanel([this] { Press(Widget("btnReadFromSensor")); });
  desk->When([] { return FindWindow("frmMsg") != nullptr; },
             [] { EXPECT_EQ(FindWindow("frm5")->cursor().shape(), Qt::WaitCursor); });
  OnPanel([] { EXPECT_EQ(FindWindow("frm5")->cursor().shape(), Qt::ArrowCursor); });
  desk->Run();
}

TEST_F(Panel5Test, AChannelIsChosenFromAMenu) {
  Start();
  OnPanel([this] { EXPECT_EQ(Caption("lblFchannel(1)"), "TEMP"); });
  Choose("lblFchannel(1)", "RH");
  OnPanel([this] {
    EXPECT_EQ(Caption("lblFchannel(1)"), "RH");
    EXPECT_EQ(Ram(167), 2);
    EXPECT_EQ(desk->Panel<QLabel>("lblFaUnit(1)").text(), "%");
    EXPECT_EQ(Widget("txbFa(1)").accessibleName(), "Function 2, a, %");
  });
  desk->Run();
}

TEST_F(Panel5Test, AMenuThatIsLeftChangesNothing) {
  Start();
  OnPanel([this] { Press(Widget("lblDigTunit")); });
  desk->When([] { return FindWindow("PopupMenu") != nullptr; },
             [] { PressKey(*FindWindow("PopupMenu"), Qt::Key_Escape); });
  OnPanel([this] { EXPECT_EQ(Caption("lblDigTunit"), "Min"); });
  Choose("lblDigTunit", "Sec");
  OnPanel([this] {
    EXPECT_EQ(Caption("lblDigTunit"), "Sec");
    EXPECT_EQ(Ram(187), 40);
  });
  desk->Run();
}

TEST_F(Panel5Test, TheTemperatureUnitIsAChoiceAndTheOthersAreNone) {
  Start();
  OnPanel([this] {
    EXPECT_TRUE(Widget("lblCH_Type(0)").isEnabled());
    EXPECT_FALSE(Widget("lblCH_Type(1)").isEnabled());
  });
  Choose("lblCH_Type(0)", "F");
  OnPanel([this] {
    EXPECT_EQ(Caption("lblCH_Type(0)"), "F");
    EXPECT_EQ(Ram(205), 32);
  });
  desk->Run();
}

TEST_F(Panel5Test, APictureStepsThroughTheShapes) {
  Start();
  OnPanel([this] { Press(Widget("pctFPsignPslope(0)")); });
  // From the last shape of the analog group to its first: neither positive nor rising.
  OnPanel([this] {
    EXPECT_EQ(Ram(163) & 128, 0);
    EXPECT_EQ(Ram(165) & 128, 0);
    Press(Widget("pctFNsignNslope(0)"));
  });
  OnPanel([this] {
    EXPECT_EQ(Ram(165) & 128, 128);
    EXPECT_EQ(Widget("pctFNsignPslope(0)").accessibleName(),
              "Function 1, negative, rising: -100 at a, 0 at b");
  });
  desk->Run();
}

TEST_F(Panel5Test, ADigitalOutputHasNoBaseLineAndItsFunctionsSwitch) {
  Start();
  OnPanel([this] { Press(Widget("optOut5Digital(0)")); });
  OnPanel([this] {
    for (const char* name :
         {"txbOutBaseLine(0)", "txbOutIntTime(0)", "Label1(42)", "Label1(49)", "Label1(38)", "Label1(50)"}) {
      EXPECT_FALSE(Widget(name).isVisible()) << name;
    }
    for (const char* name : {"txbOutBaseLine(1)", "txbOutIntTime(1)", "Label1(12)"}) {
      EXPECT_TRUE(Widget(name).isVisible()) << name;
    }
    EXPECT_TRUE(Widget("pctFDigPsignPslope(0)").isVisible());
    EXPECT_EQ(Ram(189) & 64, 64);
    Press(Widget("optOut5V(0)"));
  });
  OnPanel([this] {
    EXPECT_TRUE(Widget("txbOutBaseLine(0)").isVisible());
    EXPECT_TRUE(Widget("pctFPsignPslope(0)").isVisible());
  });
  desk->Run();
}

TEST_F(Panel5Test, TicksLeadSignalsToOutputsAndTheWiresShowIt) {
  Start();
  const auto blueInTheBoard = [] { return PixelsOf("frm5", InkOf(QApplication::palette()).output[1]); };
  int before = 0;
  OnPanel([&] {
    before = blueInTheBoard();
    Press(Widget("cbxFout2(4)"));
  });
  OnPanel([&] {
    EXPECT_EQ(Ram(193) & 31, 2 | 16);
    EXPECT_GT(blueInTheBoard(), before + 50);
    Press(Widget("cbxFout2(4)"));
    Press(Widget("cbxDigTout1"));
  });
  OnPanel([&] {
    EXPECT_EQ(blueInTheBoard(), before);
    EXPECT_EQ(Ram(189) & 32, 32);
  });
  desk->Run();
}

TEST_F(Panel5Test, TheSignOfTheTriggerIsItsPicture) {
  Start();
  OnPanel([this] { Press(Widget("pctDigTPsign")); });
  OnPanel([this] {
    EXPECT_EQ(Text("txbDigTlevel"), "-29");
    EXPECT_TRUE(Widget("pctDigTNsign").isVisible());
  });
  desk->Run();
}

TEST_F(Panel5Test, ExitAndCloseLeadBackToTheDialog) {
  for (const bool byKey : {false, true}) {
    Start();
    OnPanel([byKey] {
      if (byKey) {
        PressKey(*FindWindow("frm5"), Qt::Key_Q, Qt::ControlModifier);
      } else {
        FindWindow("frm5")->close();
      }
    });
    desk->In("frmComSet", [] { EXPECT_EQ(FindWindow("frm5"), nullptr); });
    desk->Run();
    EXPECT_TRUE(desk->files.Exists("C:\\KVX\\last.set"));
  }
}

TEST_F(Panel5Test, ClosingDuringATransferEndsTheSessionAtOnce) {
  Start();
  OnPanel([this] { Press(Widget("btnReadFromSensor")); });
  desk->When([this] { return desk->program.session.BusBusyText != ""; }, [] { FindWindow("frm5")->close(); });
  desk->In("frmComSet", [this] {
    EXPECT_EQ(FindWindow("frm5"), nullptr);
    EXPECT_EQ(FindWindow("frmMsg"), nullptr);
    EXPECT_EQ(FindWindow("MessageBox"), nullptr);
    EXPECT_FALSE(desk->port.PortOpen());
  });
  // And the next session finds everything in order.
  desk->StartSession();
  AfterPoll([this] { EXPECT_NE(Text("txbCHact(1)"), ""); });
  desk->Run();
}

TEST_F(Panel5Test, CancelDuringASendIsSilentAndThePanelGoesOn) {
  Start();
  OnPanel([this] { Press(Widget("btnSendToSensor")); });
  desk->When(
      [this] {
        const auto& session = desk->program.session;
        return session.BusBusyText == "Sending to sensor" && session.BusProgress > 0 &&
               session.BusProgress < 100;
      },
      [this] { Press(desk->Find("frmMsg", "Command1")); });
  OnPanel([this] {
    EXPECT_EQ(FindWindow("MessageBox"), nullptr);
    EXPECT_EQ(desk->port.sensor.Count().saves, 0);
    EXPECT_TRUE(Widget("btnSendToSensor").isEnabled());
  });
  desk->Run();
}

TEST_F(Panel5Test, ALostSensorIsToldAndThePanelSimulates) {
  Start();
  AfterPoll([this] { desk->port.onOutput = nullptr; });
  QString text;
  desk->When([] { return FindWindow("MessageBox") != nullptr; },
             [&] {
               auto& box = *static_cast<QMessageBox*>(FindWindow("MessageBox"));
               text = box.text();
               box.button(QMessageBox::Ok)->click();
             });
  OnPanel([this] {
    EXPECT_EQ(FindWindow("frm5")->windowTitle(), "KVX3.0 Simulated mode");
    EXPECT_TRUE(desk->Panel<QAbstractButton>("cbxSimulated").isChecked());
    EXPECT_FALSE(Widget("btnSendToSensor").isEnabled());
    EXPECT_EQ(Fore("txbCHact(1)"), QColor(255, 255, 0));
  });
  desk->Run();
  EXPECT_EQ(text, "No sensor detected, entering simulated mode.");
}

TEST_F(Panel5Test, TheTabKeyFollowsTheEye) {
  Start();
  OnPanel([this] {
    Activate(*FindWindow("frm5"));
    Widget("txbID").setFocus();
    std::vector<std::string> order;
    for (int i = 0; i < 15; ++i) {
      order.push_back(QApplication::focusWidget()->objectName().toStdString());
      PressKey(*QApplication::focusWidget(), Qt::Key_Tab);
    }
    EXPECT_THAT(order, ElementsAreArray({"txbID", "lblDisplayMode", "cbxSimulated", "btnReadFromSensor",
                                         "btnSendToSensor", "lblCH_Type(0)", "lblShiftb", "txbShiftBamount",
                                         "lblFchannel(0)", "txbFa(0)", "txbFb(0)", "pctFPsignPslope(0)",
                                         "cbxFout1(0)", "cbxFout2(0)", "lblFchannel(1)"}));
  });
  desk->Run();
}

TEST_F(Panel5Test, EverythingThatCanBeActedOnHasASpokenName) {
  Start();
  OnPanel([] { EXPECT_GT(CountSpokenNames("frm5"), 50); });
  desk->Run();
}

TEST_F(Panel5Test, FitsASmallLaptop) {
  Start(231);
  OnPanel([] { ExpectFitsASmallLaptop("frm5"); });
  desk->Run();
}

}  // namespace
}  // namespace brelant::test
