// SPDX-License-Identifier: GPL-3.0-or-later
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desktop/Appearance.h"
#include "panel_fixture.h"
#include "seen_whole.h"

namespace brelant::test {
namespace {

using testing::ElementsAreArray;

constexpr int kPart = 88;

class Panel6Test : public PanelTest {
 protected:
  enum Variant { generic, vav, threeOutputs, jumper, sequential, compact };

  /// With settings of the test's own: function 1 goes by CO2 from 800 to 1200 and feeds output 1.
  void Start(int variant, int part = kPart) {
    PanelTest::Start(part, variant);
    Put(106, {9, 5800 / 256 + 128, 5800 % 256, 6200 / 256 + 128, 6200 % 256});
    for (const std::size_t output : {138U, 141U, 144U, 147U}) Put(output, {0, 128, 3});
    Put(138, {1});
  }
  void Put(std::size_t address, const std::vector<int>& bytes) {
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      desk->port.sensor.Eeprom()[address + i] = static_cast<std::uint8_t>(bytes[i]);
    }
  }
  int Image(std::size_t address) const {
    return static_cast<int>(desk->program.image.EepromImage.at(address));
  }
  /// What the sensor itself holds.
  int Sensor(std::size_t address) const { return desk->port.sensor.Eeprom()[address]; }
  bool IsSeen(const QString& name) const { return Widget(name).isVisible(); }
  int Left(const QString& name) const { return Place(name).x(); }
  int Top(const QString& name) const { return Place(name).y(); }
  QPoint Place(const QString& name) const { return Widget(name).mapTo(FindWindow("frm6"), QPoint()); }
  const Control& Model(const char* name) const { return *desk->program.screen.Find("frm6")->Find(name); }
  void GoOffLine() {
    OnPanel([this] { Press(Widget("cbxSimulated")); });
  }
};

TEST_F(Panel6Test, ShowsWhatTheSensorIsAndItsFunctions) {
  Start(generic);
  OnPanel([this] {
    EXPECT_EQ(Text("txbSN"), "8801042");
    EXPECT_EQ(Text("txbID"), "1");
    EXPECT_EQ(Caption("lblFchannel(0)"), "CO2");
    EXPECT_EQ(Text("txbFa(0)"), "800");
    EXPECT_EQ(Text("txbFb(0)"), "1200");
    EXPECT_EQ(Widget("txbFa(0)").accessibleName(), "Function 1, a, ppm");
    EXPECT_TRUE(IsSeen("txbFb(5)"));
    EXPECT_TRUE(IsSeen("txbOutOut(3)"));
    EXPECT_TRUE(IsSeen("txbDigLevel"));
    EXPECT_TRUE(IsSeen("txbDigTlevel"));
    EXPECT_EQ(Text("txbOutIntTime(0)"), "16");
    EXPECT_EQ(Widget("txbOutBaseLine(3)").accessibleName(), "Output 4, Base line, %");
  });
  desk->Run();
}

TEST_F(Panel6Test, ShowsLiveValuesAndOutputsLarge) {
  Start(generic);
  AfterPoll([this] {
    // Channel 11 is the fourth one that there is, its word is at R30.
    const auto ram = desk->port.sensor.Ram();
    EXPECT_EQ(Text("txbCHact(3)").toInt(), ram[30] * 256 + ram[31] - 5000);
    EXPECT_EQ(Fore("txbCHact(3)"), QColor(0, 255, 0));
    EXPECT_EQ(Widget("txbCHact(3)").accessibleName(), "CO2, ppm");
    const int usual = Widget("txbFa(0)").fontMetrics().height();
    EXPECT_GE(Widget("txbCHact(3)").fontMetrics().height(), 2 * usual);
    EXPECT_GE(Widget("txbOutOut(3)").fontMetrics().height(), 2 * usual);
    EXPECT_FALSE(IsSeen("txbCHact(4)"));
  });
  desk->Run();
}

TEST_F(Panel6Test, TheDisplayOfTheSensorIsFourChoices) {
  Start(generic);
  Choose("lblDisp(3)", "RH");
  OnPanel([this] { EXPECT_EQ(Caption("lblDisp(3)"), "RH"); });
  // Channel 6, in the high nibble of the second byte.
  Edit("txbFa(0)", "800");
  OnPanel([this] { EXPECT_EQ(Image(51) >> 4, 6); });
  desk->Run();
}

TEST_F(Panel6Test, AUnitThatIsNoChoiceIsATextOnly) {
  Start(generic);
  OnPanel([this] { EXPECT_EQ(desk->Panel<QLabel>("lblCH_Type(3)").text(), "ppm"); });
  desk->Run();
}

TEST_F(Panel6Test, TheFirstThreeFunctionsAreTwoSidedAndTheOthersAreNot) {
  Start(generic);
  OnPanel([this] {
    EXPECT_EQ(Widget("pctFPslope(0)").accessibleName(), "Function 1, rising: -100 at a, 100 at b");
    EXPECT_EQ(Image(109) & 128, 128);
    Press(Widget("pctFPslope(0)"));
  });
  OnPanel([this] {
    EXPECT_TRUE(IsSeen("pctFNslope(0)"));
    EXPECT_EQ(Image(109) & 128, 0);
    Press(Widget("optOut6Digital(0)"));
  });
  OnPanel([this] {
    EXPECT_TRUE(IsSeen("pctFDigNslope(0)"));
    Press(Widget("cbxFout1(3)"));
  });
  OnPanel([this] {
    const bool sign = (Image(122) & 128) != 0;
    const bool slope = (Image(124) & 128) != 0;
    const auto name = QString("pctFDig%1sign%2slope(3)").arg(sign ? "P" : "N", slope ? "P" : "N");
    EXPECT_TRUE(IsSeen(name)) << name.toStdString();
  });
  desk->Run();
}

TEST_F(Panel6Test, TicksLeadSignalsToOutputsAndTheWiresShowIt) {
  Start(generic);
  const auto outputColour = [](std::size_t place) {
    return PixelsOf("frm6", InkOf(QApplication::palette()).output[place]);
  };
  int before = 0;
  OnPanel([&] {
    before = outputColour(3);
    Press(Widget("cbxFout4(5)"));
  });
  OnPanel([&] {
    // The last function has its bit in the last byte of the record.
    EXPECT_EQ(Image(149) & 128, 128);
    EXPECT_GT(outputColour(3), before + 50);
    Press(Widget("cbxFout4(5)"));
    Press(Widget("cbxDigout3"));
  });
  OnPanel([&] {
    EXPECT_EQ(Image(149) & 128, 0);
    EXPECT_EQ(outputColour(3), before);
    EXPECT_EQ(Image(146) & 32, 32);
    EXPECT_EQ(Widget("cbxDigout3").accessibleName(), "Digital input feeds output 3");
  });
  desk->Run();
}

TEST_F(Panel6Test, AWireLeadsFromTheInputToTheFunction) {
  Start(generic);
  const auto wires = [] { return PixelsOf("frm6", InkOf(QApplication::palette()).wire); };
  int before = 0;
  OnPanel([&] { before = wires(); });
  // The topmost input is farther away from the first function's row than the lowest one is: less wire.
  Choose("lblFchannel(0)", "Temp 1");
  OnPanel([&] {
    EXPECT_EQ(Image(106), 0);
    EXPECT_LT(wires(), before - 200);
  });
  desk->Run();
}

TEST_F(Panel6Test, HasThreeOutputsOnOneVariant) {
  Start(threeOutputs);
  OnPanel([this] {
    for (const char* name : {"cbxFout4(0)", "cbxFout4(5)", "cbxDigTout4", "cbxDigout4", "txbOutOut(3)"}) {
      EXPECT_FALSE(IsSeen(name)) << name;
    }
    EXPECT_FALSE(Widget("cbxFout4(0)").parentWidget()->isVisible()) << "its column is closed up";
    for (const char* name : {"cbxFout3(0)", "cbxDigTout3", "cbxDigout3", "txbOutOut(2)"}) {
      EXPECT_TRUE(IsSeen(name)) << name;
    }
    for (const auto* label : FindWindow("frm6")->findChildren<QLabel*>()) {
      EXPECT_FALSE(label->isVisible() && label->text() == "Out 4");
    }
  });
  desk->Run();
}

class ExchangedTest : public Panel6Test {
 protected:
  void ExpectOrder(bool exchanged) {
    EXPECT_EQ(Top("txbOutOut(1)") < Top("txbOutOut(0)"), exchanged);
    EXPECT_LT(Top("txbOutOut(0)"), Top("txbOutOut(2)"));
    for (const char* tick : {"cbxFout%1(0)", "cbxDigTout%1", "cbxDigout%1"}) {
      EXPECT_EQ(Left(QString(tick).arg(2)) < Left(QString(tick).arg(1)), exchanged) << tick;
      EXPECT_LT(Left(QString(tick).arg(1)), Left(QString(tick).arg(3))) << tick;
    }
    const QString first = exchanged ? "txbOutOut(1)" : "txbOutOut(0)";
    EXPECT_EQ(Widget(first).accessibleName(), "Output 1, %");
    EXPECT_EQ(Widget(exchanged ? "cbxFout2(0)" : "cbxFout1(0)").accessibleName(),
              "Function 1 feeds output 1");
  }
};

TEST_F(ExchangedTest, OnePartNumberHasTheFirstTwoOutputsExchanged) {
  for (const int part : {222, 223}) {
    Start(generic, part);
    OnPanel([this, part] {
      ExpectOrder(part == 223);
      Press(Widget("cbxFout1(1)"));
    });
    // What is moved is the place only.
    OnPanel([this] { EXPECT_EQ(Image(138), 1 | 2); });
    desk->Run();
  }
}

TEST_F(ExchangedTest, AnotherSensorOnTheSameLineIsShownInItsOrder) {
  Start(generic, 222);
  OnPanel([this] {
    ExpectOrder(false);
    desk->port.sensor.Ram()[65] = 223;
    desk->port.sensor.Eeprom()[164] = 223;
    Press(Widget("btnReadFromSensor"));
  });
  OnPanel([this] { ExpectOrder(true); });
  desk->Run();
}

TEST_F(Panel6Test, TheSignsOfInputAndTriggerAreTheirPictures) {
  Start(generic);
  Put(96, {64});
  OnPanel([this] {
    EXPECT_EQ(Text("txbDigLevel"), "50");
    Press(Widget("pctDigPSign"));
  });
  OnPanel([this] {
    EXPECT_EQ(Text("txbDigLevel"), "-50");
    EXPECT_EQ(Widget("pctDigNSign").accessibleName(), "Digital input takes away");
    Press(Widget("pctDigTPsign"));
  });
  OnPanel([this] { EXPECT_EQ(Widget("pctDigTNsign").accessibleName(), "Trigger takes away"); });
  desk->Run();
}

TEST_F(Panel6Test, OutputsFollowWhatIsTypedOffLine) {
  Start(generic);
  Put(96, {127});
  OnPanel([this] {
    EXPECT_FALSE(IsSeen("cbxDigActive"));
    EXPECT_FALSE(IsSeen("btnDigTrig"));
  });
  GoOffLine();
  // Three quarters of the way from -100 to 100.
  Edit("txbCHact(3)", "1100");
  OnPanel([this] {
    EXPECT_EQ(Text("txbOutOut(0)"), "50");
    EXPECT_TRUE(IsSeen("btnDigTrig"));
    Press(Widget("cbxDigout1"));
    Press(Widget("cbxDigActive"));
  });
  // The model runs once more before the loop sleeps again.
  OnPanel([] {});
  OnPanel([this] { EXPECT_EQ(Text("txbOutOut(0)"), "100"); });
  desk->Run();
}

class VavTest : public Panel6Test {
 protected:
  /// The damper between 20 and 50: 50 is 100 with a base line of -50 (byte 96), 20 is 70 (byte 173) less 50.
  void Start(int part = 222) {
    Panel6Test::Start(vav, part);
    Put(part == 223 ? 142 : 139, {96});
    Put(148, {173});
  }
  void ExpectNoteAt(const QString& field) {
    desk->When([this] { return Model("lblV1Note").Visible(); },
               [this, field] {
                 QApplication::processEvents();
                 EXPECT_TRUE(IsSeen("lblV1Note"));
                 EXPECT_EQ(Text(field).isEmpty(), false);
                 const auto middle = [this](const QString& name) {
                   return Top(name) + Widget(name).height() / 2;
                 };
                 EXPECT_NEAR(middle("lblV1Note"), middle(field), 8);
               });
    desk->When([this] { return !Model("lblV1Note").Visible(); }, [] {});
  }
};

TEST_F(VavTest, HasSetPointsAndTwoOutputs) {
  Start();
  Put(6, {7200 / 256, 7200 % 256});
  Put(18, {5900 / 256, 5900 % 256});
  AfterPoll([this] {
    EXPECT_EQ(Text("txbSetPV1Temp"), "22");
    EXPECT_EQ(Text("txbSetPV1CO2"), "900");
    EXPECT_EQ(Widget("txbSetPV1Temp").accessibleName(), "Set point, Temperature, C");
    EXPECT_EQ(Widget("txbSetPV1CO2").accessibleName(), "Set point, CO2, ppm");
    EXPECT_EQ(Text("txbUseMax"), "50");
    EXPECT_EQ(Text("txbUseMin"), "20");
    EXPECT_NE(Text("txbOutV1OutVAV"), "");
    EXPECT_NE(Text("txbOutV1Out"), "");
    EXPECT_FALSE(IsSeen("lblV1Note"));
    for (const char* name : {"txbFa(0)", "cbxFout1(0)", "txbOutOut(0)", "txb6v3A1", "txbV4MinVent"}) {
      EXPECT_FALSE(IsSeen(name)) << name;
    }
  });
  desk->Run();
}

TEST_F(VavTest, AButtonMovesTheDamperAtOnce) {
  Start();
  // 51: (51 + 200) / 400 of 256 is 160.64, so 161.
  OnPanel([this] { Press(Widget("Command6")); });
  ExpectNoteAt("txbUseMax");
  OnPanel([this] {
    EXPECT_EQ(Text("txbUseMax"), "51");
    EXPECT_EQ(Sensor(139), 161);
    Press(Widget("Command2"));
  });
  // 19: 140.16, so 141, which is 20 as before; less 2 it is 18: 139.52, so 140, which is 18.
  ExpectNoteAt("txbUseMin");
  OnPanel([this] {
    EXPECT_EQ(Text("txbUseMin"), "18");
    EXPECT_EQ(Sensor(139), 140);
  });
  desk->Run();
}

TEST_F(VavTest, TheButtonsStandAtTheirEnd) {
  Start();
  OnPanel([this] {
    const auto expectRow = [this](const QString& less, const QString& field, const QString& more) {
      EXPECT_LT(Left(less), Left(field));
      EXPECT_LT(Left(field), Left(more));
      EXPECT_NEAR(Top(less), Top(field), 12);
      EXPECT_NEAR(Top(more), Top(field), 12);
    };
    expectRow("Command5", "txbUseMax", "Command6");
    expectRow("Command2", "txbUseMin", "Command1");
    EXPECT_EQ(Caption("Command5"), "-");
    EXPECT_EQ(Widget("Command5").accessibleName(), "Max of the damper, less");
    EXPECT_EQ(Widget("Command1").accessibleName(), "Min of the damper, more");
  });
  desk->Run();
}

TEST_F(VavTest, ATypedEndIsLimitedAndWritten) {
  Start();
  Edit("txbUseMax", "150");
  OnPanel([this] {
    EXPECT_EQ(Text("txbUseMax"), "100");
    EXPECT_EQ(Sensor(139), 192);
    EXPECT_EQ(Back("txbUseMax"), QColor(0x54, 0x6C, 0x8D));
  });
  desk->Run();
}

TEST_F(VavTest, TheBarOfTheDamperIsFilledBetweenItsEnds) {
  Start();
  OnPanel([this] {
    const auto bar = Widget("pctOutV1VAV").grab().toImage();
    const auto at = [&](int percent) {
      return bar.pixelColor(bar.width() * percent / 100, bar.height() / 2);
    };
    const auto ground = QApplication::palette().color(QPalette::Base);
    for (const int percent : {10, 17, 53, 90}) EXPECT_EQ(at(percent), ground) << percent;
    for (const int percent : {23, 35, 47}) EXPECT_NE(at(percent), ground) << percent;
  });
  desk->Run();
}

TEST_F(Panel6Test, TheCornersOfTheJumperTableAreDrawnAndMirrored) {
  Start(jumper);
  // Functions 1 to 6; the outputs do not matter here.
  Put(106,
      {9, 128 + 15, 160, 128 + 23, 112, 9, 128 + 15, 160, 128 + 23, 112, 9, 128 + 15, 160, 128 + 23, 112});
  QImage before;
  const auto drawing = [this] { return Widget("pct6v3SettingsA").grab().toImage(); };
  OnPanel([&] {
    // 4000 and 6000 are -1000 and 1000.
    EXPECT_EQ(Text("txb6v3A1"), "0");
    EXPECT_EQ(Text("txb6v3C"), "1000");
    EXPECT_EQ(Text("txb6v3G2"), "1000");
    for (const char letter : {'A', 'D', 'G'}) EXPECT_TRUE(IsSeen(QString("pct6v3Settings") + letter));
    before = drawing();
    Type(Widget("txb6v3A1"), "700");
  });
  OnPanel([&] {
    EXPECT_EQ(Text("txb6v3A2"), "700");
    EXPECT_NE(drawing(), before);
  });
  AfterPoll([this] {
    for (int i = 0; i < 3; ++i) EXPECT_NE(Text(QString("txb6v3AN(%1)").arg(i)), "") << i;
    EXPECT_FALSE(IsSeen("txbFa(0)"));
  });
  desk->Run();
}

class ChainTest : public Panel6Test {
 protected:
  void Start() {
    Panel6Test::Start(jumper);
    // Functions 1 to 3 on CO2 from -1000 to 1000, 4 to 6 from 30 to 130, on RH 1 in tenths but the last one.
    for (std::size_t i = 0; i < 3; ++i) Put(106 + 5 * i, {9, 128 + 15, 160, 128 + 23, 112});
    for (std::size_t i = 3; i < 6; ++i) Put(106 + 5 * i, {4, 128 + 20, 180, 128 + 24, 156});
    Put(131, {9, 128 + 19, 166, 128 + 20, 10});
  }
  std::vector<std::string> Shown(int function) const {
    std::vector<std::string> texts;
    for (const auto* label : Widget(QString("function(%1)").arg(function)).findChildren<QLabel*>()) {
      EXPECT_TRUE(label->isVisible());
      texts.push_back(label->text().toStdString());
    }
    return texts;
  }
};

TEST_F(ChainTest, ShowsTheEndsOfTheFunctionsThatTheCornersWereTurnedInto) {
  Start();
  using Texts = std::vector<std::string>;
  // A search lets events run, so that an edit takes more than a step.
  const auto expect = [this](int function, const Texts& texts) {
    desk->When([this, function, texts] { return Shown(function) == texts; }, [] {});
  };
  OnPanel([] {});
  expect(0, {"1", "CO2", "a", "-1000", "b", "1000", "ppm"});
  // Percent of function 1, on which they stand.
  expect(5, {"6", "on function 1", "a", "30", "b", "130", "%"});
  Edit("txb6v3G1", "250");
  expect(2, {"3", "CO2", "a", "150", "b", "250", "ppm"});
  Edit("txb6v3C", "2000");
  expect(0, {"1", "CO2", "a", "-2000", "b", "2000", "ppm"});
  desk->Run();
  EXPECT_EQ(desk->StepsLeft(), 0U);
}

TEST_F(ChainTest, AnArrowLeadsFromTheFirstFunctionToThoseThatStandOnIt) {
  Start();
  OnPanel([this] {
    const auto picture = FindWindow("frm6")->grab().toImage();
    const auto wire = InkOf(QApplication::palette()).wire;
    const auto middle = [this](int function) {
      const QString name = QString("function(%1)").arg(function);
      return QPoint(Left(name) + Widget(name).width() / 2, Top(name));
    };
    const int bottom = Top("function(0)") + Widget("function(0)").height();
    const auto isWire = [&](int x, int y) { return picture.pixelColor(x, y) == wire; };
    // One wire comes out below, and above each of the three there is an arrow.
    EXPECT_TRUE(isWire(middle(0).x(), bottom + 2));
    for (const int function : {1, 2}) EXPECT_FALSE(isWire(middle(function).x(), bottom + 2)) << function;
    for (const int function : {3, 4, 5}) {
      const auto tip = middle(function);
      EXPECT_TRUE(isWire(tip.x(), tip.y() - 4)) << function;
      EXPECT_TRUE(isWire(tip.x() + 2, tip.y() - 6)) << function;
    }
  });
  desk->Run();
}

TEST_F(Panel6Test, SequentialControlHasItsRangesAndOutputs) {
  Start(sequential);
  // Least ventilation 20: 220 / 400 of 256 is 140.8, so 141.
  Edit("txbV4MinVent", "20");
  AfterPoll([this] {
    EXPECT_EQ(Image(142), 141);
    EXPECT_EQ(Text("txbV4MinVent"), "20");
    EXPECT_EQ(Widget("txbV4PrangeVentCO2").accessibleName(), "Ventilation, Range, CO2, ppm");
    EXPECT_NE(Text("txbV4Out1Out"), "");
    EXPECT_NE(Text("txbV4Out2Out"), "");
    EXPECT_FALSE(IsSeen("txbFa(0)"));
  });
  desk->Run();
}

TEST_F(Panel6Test, TheCompactFaceIsItsLiveValuesSideBySide) {
  Start(compact, 221);
  AfterPoll([this] {
    EXPECT_NE(Text("txbCHact(0)"), "");
    EXPECT_EQ(Top("txbCHact(0)"), Top("txbCHact(3)"));
    EXPECT_LT(Left("txbCHact(0)"), Left("txbCHact(3)"));
    for (const char* name : {"txbFa(0)", "txbOutOut(0)", "txbUseMax", "txb6v3A1", "txbV4MinVent"}) {
      EXPECT_FALSE(IsSeen(name)) << name;
    }
  });
  desk->Run();
}

TEST_F(Panel6Test, AReadMayBringAnotherFace) {
  Start(generic);
  OnPanel([this] {
    Put(173, {1});
    Press(Widget("btnReadFromSensor"));
  });
  OnPanel([this] {
    EXPECT_TRUE(IsSeen("txbUseMax"));
    EXPECT_FALSE(IsSeen("txbFa(0)"));
    Put(173, {5});
    Press(Widget("btnReadFromSensor"));
  });
  OnPanel([this] {
    EXPECT_EQ(Top("txbCHact(0)"), Top("txbCHact(3)"));
    Put(173, {0});
    Press(Widget("btnReadFromSensor"));
  });
  OnPanel([this] {
    EXPECT_TRUE(IsSeen("txbFa(0)"));
    EXPECT_LT(Top("txbCHact(0)"), Top("txbCHact(3)"));
    ExpectFitsASmallLaptop("frm6");
  });
  desk->Run();
}

TEST_F(Panel6Test, TheTabKeyFollowsTheEye) {
  Start(generic);
  OnPanel([this] {
    Activate(*FindWindow("frm6"));
    Widget("txbID").setFocus();
    std::vector<std::string> order;
    for (int i = 0; i < 17; ++i) {
      order.push_back(QApplication::focusWidget()->objectName().toStdString());
      PressKey(*QApplication::focusWidget(), Qt::Key_Tab);
    }
    EXPECT_THAT(order,
                ElementsAreArray({"txbID", "lblDisp(0)", "lblDisp(1)", "lblDisp(2)", "lblDisp(3)",
                                  "cbxSimulated", "btnReadFromSensor", "btnSendToSensor", "lblFchannel(0)",
                                  "txbFa(0)", "txbFb(0)", "pctFPslope(0)", "cbxFout1(0)", "cbxFout2(0)",
                                  "cbxFout3(0)", "cbxFout4(0)", "lblFchannel(1)"}));
  });
  desk->Run();
}

TEST_F(Panel6Test, EveryFaceIsSpokenAndFitsASmallLaptop) {
  for (const auto& [variant, part] :
       {std::pair(generic, kPart), std::pair(vav, 222), std::pair(vav, 223), std::pair(jumper, kPart),
        std::pair(sequential, kPart), std::pair(compact, 221)}) {
    Start(variant, part);
    OnPanel([] {
      EXPECT_GT(CountSpokenNames("frm6"), 12);
      ExpectFitsASmallLaptop("frm6");
    });
    desk->Run();
  }
}

TEST_F(Panel6Test, APhotographOfEveryFaceShowsAllOfIt) {
  struct Face {
    int variant;
    int part;
    /// A few of the controls that must be on it.
    std::vector<const char*> controls;
  };
  for (const auto& [variant, part, controls] :
       {Face{generic, kPart, {"txbFa(5)", "txbOutOut(3)", "txbDigLevel", "transfer(3)"}},
        Face{generic, 223, {"txbFa(5)", "txbOutOut(3)", "transfer(0)"}},
        Face{threeOutputs, kPart, {"txbFb(0)", "txbOutOut(2)"}},
        Face{vav, 222, {"txbUseMax", "txbUseMin", "Command6", "txbSetPV1CO2"}},
        Face{vav, 223, {"txbUseMax", "txbOutV1Out"}},
        Face{jumper, kPart, {"txb6v3A1", "txb6v3K", "txb6v3AN(2)", "function(5)"}},
        Face{sequential, kPart, {"txbV4MinVent", "txbV4Out2Out"}}, Face{compact, 221, {"txbCHact(3)"}}}) {
    SCOPED_TRACE("variant " + std::to_string(variant) + " of " + std::to_string(part));
    Start(variant, part);
    AfterPoll([this, &controls = controls] {
      for (const char* name : controls) EXPECT_TRUE(IsSeen(name)) << name;
      ExpectSeenWhole(*FindWindow("frm6"));
    });
    desk->Run();
    EXPECT_EQ(desk->StepsLeft(), 0U);
  }
}

TEST_F(Panel6Test, SevenLiveValuesFitASmallLaptopToo) {
  Start(generic);
  // Channels 2 to 9 and the gas.
  Put(98, {255});
  GoOffLine();
  OnPanel([this] {
    EXPECT_TRUE(IsSeen("txbCHact(6)"));
    ExpectFitsASmallLaptop("frm6");
  });
  desk->Run();
}

}  // namespace
}  // namespace brelant::test
