// SPDX-License-Identifier: GPL-3.0-or-later
#include <QAction>
#include <QApplication>
#include <QImage>
#include <QLabel>
#include <algorithm>
#include <array>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "panel_fixture.h"
#include "seen_whole.h"

namespace brelant::test {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

constexpr int kPartOf61 = 215;
constexpr int kPartOf7 = 50;
constexpr std::size_t kTemperature = 20;
constexpr std::size_t kGas = 22;
constexpr std::size_t kOxygen = 24;

const QColor kRed(255, 0, 0);
const QColor kGreen(0, 255, 0);
const QColor kYellow(255, 255, 0);

QString At(const char* name, int index) {
  return QString("%1(%2)").arg(name).arg(index);
}

class Panel61Test : public PanelTest {
 protected:
  enum Face { bothGases, gasAlone, rows };

  void Start(Face face) {
    const bool isOn7 = face == rows;
    PanelTest::Start(isOn7 ? kPartOf7 : kPartOf61, isOn7 ? 2 : face);
  }
  /// Live words of a platform 61 sensor carry an offset of 5000, those of platform 7 none.
  void Live(std::size_t address, int word) {
    auto ram = desk->port.sensor.Ram();
    ram[address] = static_cast<std::uint8_t>(word >> 8);
    ram[address + 1] = static_cast<std::uint8_t>(word & 255);
  }
  int Image(std::size_t address) const {
    return static_cast<int>(desk->program.image.EepromImage.at(address));
  }
  int ImageWord(std::size_t address) const { return Image(address) * 256 + Image(address + 1); }
  int RamWord(std::size_t address) const {
    const auto& ram = desk->program.image.RamImage;
    return static_cast<int>(ram.at(address) * 256 + ram.at(address + 1));
  }
  std::vector<int> Memory() const {
    const auto& image = desk->program.image;
    std::vector<int> memory(image.EepromImage.begin(), image.EepromImage.end());
    memory.insert(memory.end(), image.RamImage.begin(), image.RamImage.end());
    return memory;
  }
  QString Label(const QString& name) const { return desk->Panel<QLabel>(name).text(); }
  bool Ticked(const QString& name) const { return desk->Panel<QAbstractButton>(name).isChecked(); }
  QColor Ground(const QString& name) const {
    const auto image = Widget(name).grab().toImage();
    return image.pixelColor(image.width() / 2, 4);
  }
  static QAction& Entry(const QString& name) { return *FindWindow("frm61")->findChild<QAction*>(name); }

  /// Looks at the panel exactly one poll after the change.
  void InOnePoll(const Desk::Step& change, Desk::Step look) {
    OnPanel([this, change] {
      change();
      polls_ = desk->program.session.polls;
    });
    desk->When([this] { return desk->program.session.polls == polls_ + 1; }, std::move(look));
  }
  void GoOffLine() {
    OnPanel([this] { Press(Widget("cbxSimulated")); });
  }
  /// Also where the field has the focus already, so that a click selects nothing.
  void Retype(const QString& field, const QString& text) {
    OnPanel([this, field, text] {
      Press(Widget(field));
      PressKey(Widget(field), Qt::Key_A, Qt::ControlModifier);
      QTest::keyClicks(&Widget(field), text);
      PressKey(Widget(field), Qt::Key_Return);
    });
  }
  void ExpectLamp(const QString& name, bool alarm) {
    EXPECT_EQ(Label(name), alarm ? "ALARM" : "OK") << name.toStdString();
    EXPECT_EQ(Ground(name), alarm ? kRed : kGreen) << name.toStdString();
    EXPECT_EQ(Widget(name).palette().color(QPalette::WindowText), QColor(Qt::black)) << name.toStdString();
  }
  void ExpectLamps(const std::array<bool, 4>& alarms) {
    for (int i = 0; i < 4; ++i)
      ExpectLamp(At("txbAlarm061Status", i), alarms.at(static_cast<std::size_t>(i)));
  }
  void ExpectPreAndMain(bool pre, bool main) {
    ExpectLamp("txbAlarm7StatusPre", pre);
    ExpectLamp("txbAlarm7StatusMain", main);
  }

 private:
  unsigned polls_ = 0;
};

using Names = std::set<std::string>;

void Add(Names& names, const std::vector<std::string>& arrays, int count) {
  for (const auto& array : arrays) {
    for (int i = 0; i < count; ++i) names.insert(array + "(" + std::to_string(i) + ")");
  }
}

class ShownTest : public Panel61Test {
 protected:
  /// What is on every face, with so many live values.
  static Names Common(int values) {
    Names names{"txbSN", "txbID", "cbxSimulated", "btnReadFromSensor", "btnSendToSensor"};
    Add(names, {"lblDisp"}, 4);
    Add(names, {"pctChannel", "lblCH_Name", "lblCH_Type", "txbCHact"}, values);
    return names;
  }
  static Names BothGases() {
    auto names = Common(3);
    names.insert({"pctAlarm061", "lblOC3", "lblOC4"});
    Add(names,
        {"lblAlarm061", "txbAlarm061Status", "txbAlarm061Level", "lblAlarm061Unit", "cbxOC3", "cbxOC4"}, 4);
    Add(names, {"lblAlarm061Logic1", "lblAlarm061Logic2"}, 3);
    return names;
  }
  static Names Rows() {
    auto names = Common(3);
    names.insert({"pctChannel(5)", "lblCH_Name(5)", "txbCHact(5)", "pctAlarm07", "txbAlarm7StatusPre",
                  "txbAlarm7StatusMain"});
    Add(names, {"lblAlarm7Channel", "lblAlarm7Slope", "lblAlarm7Level", "lblAlarm7Unit"}, 3);
    return names;
  }
  static void ExpectOnly(const Names& names) {
    std::size_t seen = 0;
    for (const auto* widget : FindWindow("frm61")->findChildren<QWidget*>()) {
      const auto name = widget->objectName().toStdString();
      if (widget->isVisible() && names.count(name) > 0) ++seen;
      if (!widget->isVisible() || name.empty() || name.rfind("qt_", 0) == 0) continue;
      EXPECT_EQ(names.count(name), 1U) << name;
    }
    EXPECT_EQ(seen, names.size());
  }
};

TEST_F(ShownTest, EachFaceShowsItsControlsAndOnlyThese) {
  for (const auto& [face, names] :
       {std::pair(bothGases, BothGases()), std::pair(gasAlone, Common(2)), std::pair(rows, Rows())}) {
    Start(face);
    OnPanel([names = names] { ExpectOnly(names); });
    desk->Run();
  }
}

TEST_F(ShownTest, AnotherFaceOfTheFormIsFollowed) {
  Start(bothGases);
  const auto become = [this](float variant) {
    desk->program.image.EepromImage.at(173) = variant;
    desk->program.session.CurrentPanel->FormUpdateInit();
  };
  OnPanel([&] { become(1); });
  OnPanel([&] {
    ExpectOnly(Common(2));
    become(0);
  });
  OnPanel([] {
    ExpectOnly(BothGases());
    ExpectFitsASmallLaptop("frm61");
  });
  desk->Run();
}

TEST_F(Panel61Test, EveryFaceIsSeenWholeSpokenAndFitsASmallLaptop) {
  for (const auto& [face, least] : {std::pair(bothGases, 30), std::pair(gasAlone, 10), std::pair(rows, 20)}) {
    Start(face);
    AfterPoll([least = least] {
      EXPECT_GE(CountSpokenNames("frm61"), least);
      ExpectFitsASmallLaptop("frm61");
      ExpectSeenWhole(*FindWindow("frm61"));
    });
    desk->Run();
  }
}

TEST_F(Panel61Test, LiveValuesAreTheLargestNumbers) {
  Start(bothGases);
  Live(kTemperature, 5000 - 1234);
  Live(kGas, 65535);
  Live(kOxygen, 5000 + 1987);
  AfterPoll([this] {
    EXPECT_EQ(Text("txbSN"), "21501042");
    EXPECT_EQ(Text("txbCHact(0)"), "-12.34");
    EXPECT_EQ(Text("txbCHact(1)"), "60.535");
    EXPECT_EQ(Text("txbCHact(2)"), "19.87");
    EXPECT_EQ(Widget("txbCHact(1)").accessibleName(), "CO2, %");
    const int usual = Widget("txbID").fontMetrics().height();
    for (int i = 0; i < 3; ++i) {
      const auto& field = desk->Panel<QLineEdit>(At("txbCHact", i));
      EXPECT_TRUE(field.isReadOnly());
      EXPECT_EQ(Fore(At("txbCHact", i)), kGreen);
      EXPECT_GE(field.fontMetrics().height(), 5 * usual);
    }
    ExpectSeenWhole(*FindWindow("frm61"));
  });
  desk->Run();
}

TEST_F(Panel61Test, TheMenusFollowTheProduct) {
  Start(bothGases);
  OnPanel([] {
    for (const char* name :
         {"mCalO2zero", "mCalO2span", "mLoadsettings", "mSavesettings", "mCalCO2SPBackground"}) {
      EXPECT_TRUE(Entry(name).isEnabled() && Entry(name).isVisible()) << name;
    }
    EXPECT_EQ(Entry("mCalO2span").text().remove('&'), "O2 span");
  });
  desk->Run();
  Start(rows);
  OnPanel([] {
    for (const char* name : {"mCalO2zero", "mCalO2span"}) EXPECT_TRUE(Entry(name).isEnabled()) << name;
    for (const char* name : {"mLoadsettings", "mSavesettings"}) EXPECT_FALSE(Entry(name).isEnabled()) << name;
    for (const char* name : {"mCalCO2SPBackground", "mCalCO2SPOther"}) EXPECT_FALSE(Entry(name).isVisible());
  });
  desk->Run();
}

TEST_F(Panel61Test, OnlyTheFaceWithoutAlarmsHasDisplaysThatCannotBeChosen) {
  for (const auto face : {bothGases, gasAlone, rows}) {
    Start(face);
    OnPanel([this, face = face] {
      for (int i = 0; i < 4; ++i) EXPECT_EQ(Widget(At("lblDisp", i)).isEnabled(), face != gasAlone);
    });
    desk->Run();
  }
}

// Platform 61 with fixed alarms

TEST_F(Panel61Test, ALevelThatIsLeftIsStored) {
  Start(bothGases);
  desk->port.sensor.Eeprom()[82] = 77;
  desk->port.sensor.Eeprom()[83] = 99;
  // 2.5 % in thousandths, 17.5 % in hundredths, and the offset of 5000.
  Edit("txbAlarm061Level(0)", "2.5");
  OnPanel([this] {
    EXPECT_EQ(ImageWord(76), 7500);
    EXPECT_EQ(Back("txbAlarm061Level(0)"), QColor(0x54, 0x6C, 0x8D));
    Type(Widget("txbAlarm061Level(3)"), "17.5");
    EXPECT_EQ(ImageWord(84), 6800);
    Press(Widget("txbAlarm061Level(1)"));
  });
  OnPanel([this] {
    EXPECT_EQ(ImageWord(84), 6750);
    EXPECT_THAT((std::array{Image(82), Image(83)}), ElementsAre(77, 99));
    EXPECT_EQ(Back("txbAlarm061Level(1)"), QColor(Qt::white));
    EXPECT_EQ(Widget("txbAlarm061Level(3)").accessibleName(), "O2 MAIN ALARM: level, %");
  });
  desk->Run();
}

TEST_F(Panel61Test, AChosenDisplayIsStoredWithTheNextEdit) {
  Start(bothGases);
  Choose("lblDisp(1)", "O2");
  Edit("txbAlarm061Level(0)", "2.5");
  OnPanel([this] { EXPECT_EQ(Image(50) >> 4, 6); });
  desk->Run();
}

TEST_F(Panel61Test, LampsFollowTheSensorWithinOnePoll) {
  Start(bothGases);
  // At the levels: 1.5 and 3 % CO2, 19 and 18 % O2.
  InOnePoll(
      [this] {
        Live(kGas, 6500);
        Live(kOxygen, 6900);
      },
      [this] {
        ExpectLamps({false, false, false, false});
      });
  InOnePoll([this] { Live(kGas, 6501); }, [this] { ExpectLamps({true, false, false, false}); });
  InOnePoll(
      [this] {
        Live(kGas, 8001);
        Live(kOxygen, 6899);
      },
      [this] {
        ExpectLamps({true, true, true, false});
      });
  InOnePoll(
      [this] {
        Live(kGas, 5400);
        Live(kOxygen, 6799);
      },
      [this] {
        ExpectLamps({false, false, true, true});
        EXPECT_EQ(Widget("txbAlarm061Status(2)").accessibleName(), "O2 PRE ALARM: ALARM");
      });
  desk->Run();
  EXPECT_EQ(desk->StepsLeft(), 0U);
}

TEST_F(Panel61Test, ATypedValueSetsTheLampsAtOnce) {
  Start(bothGases);
  GoOffLine();
  Retype("txbCHact(2)", "20.9");
  Retype("txbCHact(1)", "1.5");
  OnPanel([this] {
    EXPECT_EQ(Fore("txbCHact(2)"), kYellow);
    EXPECT_EQ(RamWord(kOxygen), 7090);
    ExpectLamps({false, false, false, false});
  });
  Retype("txbCHact(1)", "1.501");
  OnPanel([this] {
    EXPECT_EQ(RamWord(kGas), 6501);
    ExpectLamps({true, false, false, false});
  });
  Retype("txbCHact(2)", "17.99");
  OnPanel([this] { ExpectLamps({true, false, true, true}); });
  desk->Run();
}

class OutputChoiceTest : public Panel61Test {
 protected:
  std::vector<std::string> Logic(const char* group) const {
    std::vector<std::string> texts;
    for (int i = 0; i < 3; ++i) texts.push_back(Caption(At(group, i)).toStdString());
    return texts;
  }
};

TEST_F(OutputChoiceTest, AClickOnOneLinkChangesTheWholeGroupAndNoMemory) {
  Start(bothGases);
  std::vector<int> before;
  OnPanel([&] {
    before = Memory();
    EXPECT_THAT(Logic("lblAlarm061Logic1"), ElementsAre("OR", "OR", "OR"));
    Press(Widget("lblAlarm061Logic1(1)"));
    Press(Widget("cbxOC4(2)"));
  });
  OnPanel([&] {
    EXPECT_THAT(Logic("lblAlarm061Logic1"), ElementsAre("AND", "AND", "AND"));
    EXPECT_THAT(Logic("lblAlarm061Logic2"), ElementsAre("OR", "OR", "OR"));
    EXPECT_EQ(Widget("lblAlarm061Logic1(0)").accessibleName(), "OC 1, alarms joined by AND");
    EXPECT_TRUE(Ticked("cbxOC4(2)"));
    EXPECT_FALSE(Ticked("cbxOC3(2)"));
    auto& panel = *desk->program.session.CurrentPanel;
    panel.FormRead();
    panel.FormUpdate();
    EXPECT_EQ(Memory(), before);
  });
  OnPanel([&] {
    EXPECT_THAT(Logic("lblAlarm061Logic1"), ElementsAre("AND", "AND", "AND"));
    EXPECT_TRUE(Ticked("cbxOC4(2)"));
    Press(Widget("lblAlarm061Logic1(2)"));
    Press(Widget("lblAlarm061Logic2(0)"));
  });
  OnPanel([&] {
    EXPECT_THAT(Logic("lblAlarm061Logic1"), ElementsAre("OR", "OR", "OR"));
    EXPECT_THAT(Logic("lblAlarm061Logic2"), ElementsAre("AND", "AND", "AND"));
  });
  desk->Run();
}

TEST_F(OutputChoiceTest, TheWindowSaysThatTheChoiceIsNotStored) {
  Start(bothGases);
  OnPanel([this] {
    const auto& window = *FindWindow("frm61");
    const auto labels = window.findChildren<QLabel*>();
    const auto note = std::find_if(labels.begin(), labels.end(), [](const QLabel* label) {
      return label->isVisible() && label->text() == "Not stored in the sensor";
    });
    ASSERT_NE(note, labels.end());
    // Below the two columns that it speaks of.
    const auto place = PlaceIn(window, **note);
    for (const char* name : {"cbxOC3(3)", "cbxOC4(3)"}) {
      const auto tick = PlaceIn(window, Widget(name));
      EXPECT_LT(tick.bottom(), place.top());
      EXPECT_TRUE(place.left() <= tick.left() && tick.right() <= place.right()) << name;
      EXPECT_EQ(Widget(name).accessibleDescription(), "Not stored in the sensor");
    }
    EXPECT_LT(PlaceIn(window, Widget("lblAlarm061Unit(3)")).right(), place.left());
  });
  desk->Run();
}

TEST_F(OutputChoiceTest, TheLinksStandBetweenTheTicksThatTheyJoin) {
  Start(bothGases);
  OnPanel([this] {
    const auto& window = *FindWindow("frm61");
    for (int i = 0; i < 3; ++i) {
      const auto link = PlaceIn(window, Widget(At("lblAlarm061Logic2", i)));
      EXPECT_LE(PlaceIn(window, Widget(At("cbxOC4", i))).bottom(), link.top());
      EXPECT_LE(link.bottom(), PlaceIn(window, Widget(At("cbxOC4", i + 1))).top());
    }
  });
  desk->Run();
}

// Platform 7

TEST_F(Panel61Test, ARowStandsBesideTheLampThatItDrives) {
  Start(rows);
  OnPanel([this] {
    const auto& window = *FindWindow("frm61");
    const std::array<const char*, 3> lamps{"txbAlarm7StatusPre", "txbAlarm7StatusMain", "txbAlarm7StatusPre"};
    for (int k = 0; k < 3; ++k) {
      const auto lamp = PlaceIn(window, Widget(lamps.at(static_cast<std::size_t>(k))));
      for (const char* part : {"lblAlarm7Channel", "lblAlarm7Slope", "lblAlarm7Level", "lblAlarm7Unit"}) {
        const auto place = PlaceIn(window, Widget(At(part, k)));
        EXPECT_GT(place.left(), lamp.right()) << part << k;
        EXPECT_TRUE(lamp.top() <= place.center().y() && place.center().y() <= lamp.bottom()) << part << k;
      }
    }
  });
  desk->Run();
}

TEST_F(Panel61Test, ALevelOfARowIsStoredThroughItsChannel) {
  Start(rows);
  Edit("lblAlarm7Level(1)", "2.75");
  Edit("lblAlarm7Level(2)", "18.5");
  OnPanel([this] {
    EXPECT_EQ(ImageWord(840), 2750);
    EXPECT_EQ(ImageWord(846), 1850);
    EXPECT_EQ(ImageWord(844), 16383);
    EXPECT_EQ(Text("lblAlarm7Level(1)"), "2.75");
    EXPECT_EQ(Widget("lblAlarm7Level(2)").accessibleName(), "Alarm 3 level, %");
  });
  desk->Run();
}

TEST_F(Panel61Test, AClickOnTheSlopeTogglesIt) {
  Start(rows);
  OnPanel([this] {
    EXPECT_EQ(Caption("lblAlarm7Slope(0)"), ">");
    EXPECT_EQ(Caption("lblAlarm7Slope(2)"), "<");
    EXPECT_EQ(Widget("lblAlarm7Slope(2)").accessibleName(), "Alarm 3, alarm below the level");
    Press(Widget("lblAlarm7Slope(0)"));
  });
  OnPanel([this] {
    EXPECT_EQ(Caption("lblAlarm7Slope(0)"), "<");
    EXPECT_EQ(Widget("lblAlarm7Slope(0)").accessibleName(), "Alarm 1, alarm below the level");
    EXPECT_EQ(Widget("lblAlarm7Slope(0)").toolTip(), "Alarm 1, alarm below the level");
    EXPECT_EQ(Image(836) & 128, 0);
  });
  // Whatever is taken next takes it along.
  Edit("lblAlarm7Level(0)", "1.5");
  OnPanel([this] {
    EXPECT_EQ(Image(836) & 128, 128);
    Press(Widget("lblAlarm7Slope(0)"));
  });
  OnPanel([this] {
    EXPECT_EQ(Caption("lblAlarm7Slope(0)"), ">");
    EXPECT_EQ(Widget("lblAlarm7Slope(0)").toolTip(), "Alarm 1, alarm above the level");
  });
  desk->Run();
}

TEST_F(Panel61Test, AChosenChannelGoesIntoTheLowHalfOfItsByte) {
  Start(rows);
  desk->port.sensor.Eeprom()[925] = 0x95;
  Choose("lblAlarm7Channel(0)", "Temp");
  OnPanel([this] {
    EXPECT_EQ(Image(925), 0x94);
    EXPECT_EQ(Caption("lblAlarm7Channel(0)"), "Temp");
    EXPECT_EQ(Widget("lblAlarm7Channel(0)").accessibleName(), "Alarm 1 channel: Temp");
    EXPECT_EQ(Label("lblAlarm7Unit(0)"), "C");
    EXPECT_EQ(Widget("lblAlarm7Level(0)").accessibleName(), "Alarm 1 level, C");
  });
  desk->Run();
}

TEST_F(Panel61Test, TheOuterRowsDriveThePreAlarmAndTheMiddleOneTheMainAlarm) {
  Start(rows);
  // Row 1: CO2 above 1.5 %. Row 2: CO2 above 3 %. Row 3: O2 below 19 %.
  InOnePoll(
      [this] {
        Live(kGas, 1500);
        Live(kOxygen, 1900);
      },
      [this] { ExpectPreAndMain(false, false); });
  InOnePoll([this] { Live(kGas, 1501); }, [this] { ExpectPreAndMain(true, false); });
  InOnePoll([this] { Live(kGas, 3001); }, [this] { ExpectPreAndMain(true, true); });
  InOnePoll(
      [this] {
        Live(kGas, 400);
        Live(kOxygen, 1899);
      },
      [this] {
        ExpectPreAndMain(true, false);
        EXPECT_EQ(Widget("txbAlarm7StatusPre").accessibleName(), "PRE ALARM: ALARM");
      });
  desk->Run();
  EXPECT_EQ(desk->StepsLeft(), 0U);
}

TEST_F(Panel61Test, ATypedValueSetsThePreAndMainAlarmAtOnce) {
  Start(rows);
  GoOffLine();
  Retype("txbCHact(2)", "20.9");
  Retype("txbCHact(1)", "3.2");
  OnPanel([this] {
    EXPECT_EQ(RamWord(kGas), 3200);
    EXPECT_EQ(RamWord(kOxygen), 2090);
    ExpectPreAndMain(true, true);
  });
  Retype("txbCHact(1)", "1.2");
  OnPanel([this] { ExpectPreAndMain(false, false); });
  desk->Run();
}

class StatusTest : public Panel61Test {
 protected:
  void ExpectStatus(const QString& text, const QColor& ink) {
    const auto& status = desk->Panel<QLabel>("txbCHact(5)");
    EXPECT_EQ(status.text(), text);
    EXPECT_EQ(status.toolTip(), text);
    EXPECT_EQ(status.accessibleName(), "Status, " + text);
    EXPECT_EQ(status.palette().color(QPalette::WindowText), ink);
    EXPECT_GT(PixelsIn(status, ink), 20) << "not drawn in that colour";
    EXPECT_LE(status.heightForWidth(status.width()), status.height()) << "cut off";
  }
  static int PixelsIn(const QWidget& widget, const QColor& colour) {
    const auto& window = *widget.window();
    const auto image = FindWindow("frm61")->grab(PlaceIn(window, widget)).toImage();
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) count += image.pixelColor(x, y) == colour ? 1 : 0;
    }
    return count;
  }
  void Status(int byte) { desk->port.sensor.Ram()[67] = static_cast<std::uint8_t>(byte); }
};

TEST_F(StatusTest, SaysWhatIsWrongInRedAndOtherwiseOKInGreen) {
  Start(rows);
  InOnePoll([this] { Status(5); }, [this] { ExpectStatus("FatalError Algorithm error ", kRed); });
  InOnePoll([this] { Status(2); }, [this] { ExpectStatus("OK", kGreen); });
  desk->Run();
  EXPECT_EQ(desk->StepsLeft(), 0U);
}

TEST_F(StatusTest, AllFaultsAtOnceAreReadableAndTheWindowKeepsItsSize) {
  Start(rows);
  QSize before;
  InOnePoll([&] { before = FindWindow("frm61")->size(); }, [this] { ExpectStatus("OK", kGreen); });
  InOnePoll([this] { Status(255); },
            [&] {
              ExpectStatus(
                  "FatalError Algorithm error Output error Selfdiagnostic error Out of range Memory error "
                  "Warming up ",
                  kRed);
              EXPECT_EQ(FindWindow("frm61")->size(), before);
              ExpectSeenWhole(*FindWindow("frm61"));
            });
  desk->Run();
  EXPECT_EQ(desk->StepsLeft(), 0U);
}

// The keyboard

class KeyboardTest : public Panel61Test {
 protected:
  static std::vector<std::string> Order(const QString& from, int count) {
    Activate(*FindWindow("frm61"));
    FindWindow("frm61")->findChild<QWidget*>(from)->setFocus();
    std::vector<std::string> order;
    for (int i = 0; i < count; ++i) {
      order.push_back(QApplication::focusWidget()->objectName().toStdString());
      PressKey(*QApplication::focusWidget(), Qt::Key_Tab);
    }
    return order;
  }
};

TEST_F(KeyboardTest, TheTabKeyFollowsTheEye) {
  Start(bothGases);
  OnPanel([] {
    EXPECT_THAT(Order("txbID", 22), ElementsAreArray({"txbID",
                                                      "lblDisp(0)",
                                                      "lblDisp(1)",
                                                      "lblDisp(2)",
                                                      "lblDisp(3)",
                                                      "cbxSimulated",
                                                      "btnReadFromSensor",
                                                      "btnSendToSensor",
                                                      "txbAlarm061Level(0)",
                                                      "txbAlarm061Level(1)",
                                                      "txbAlarm061Level(2)",
                                                      "txbAlarm061Level(3)",
                                                      "cbxOC3(0)",
                                                      "lblAlarm061Logic1(0)",
                                                      "cbxOC3(1)",
                                                      "lblAlarm061Logic1(1)",
                                                      "cbxOC3(2)",
                                                      "lblAlarm061Logic1(2)",
                                                      "cbxOC3(3)",
                                                      "cbxOC4(0)",
                                                      "lblAlarm061Logic2(0)",
                                                      "cbxOC4(1)"}));
  });
  desk->Run();
  Start(rows);
  OnPanel([] {
    EXPECT_THAT(
        Order("btnSendToSensor", 10),
        ElementsAreArray({"btnSendToSensor", "lblAlarm7Channel(0)", "lblAlarm7Slope(0)", "lblAlarm7Level(0)",
                          "lblAlarm7Channel(2)", "lblAlarm7Slope(2)", "lblAlarm7Level(2)",
                          "lblAlarm7Channel(1)", "lblAlarm7Slope(1)", "lblAlarm7Level(1)"}));
  });
  desk->Run();
}

TEST_F(KeyboardTest, TheSpaceBarTogglesASlopeAndALink) {
  Start(rows);
  OnPanel([this] {
    Widget("lblAlarm7Slope(1)").setFocus(Qt::TabFocusReason);
    PressKey(Widget("lblAlarm7Slope(1)"), Qt::Key_Space);
  });
  OnPanel([this] { EXPECT_EQ(Caption("lblAlarm7Slope(1)"), "<"); });
  desk->Run();
  Start(bothGases);
  OnPanel([this] {
    Widget("lblAlarm061Logic2(1)").setFocus(Qt::TabFocusReason);
    PressKey(Widget("lblAlarm061Logic2(1)"), Qt::Key_Space);
  });
  OnPanel([this] { EXPECT_EQ(Caption("lblAlarm061Logic2(0)"), "AND"); });
  desk->Run();
}

}  // namespace
}  // namespace brelant::test
