// SPDX-License-Identifier: GPL-3.0-or-later
#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk.h"

namespace brelant::test {
namespace {

using testing::ElementsAreArray;

const QColor kRed(255, 0, 0);
const QColor kGreen(0, 255, 0);

class Panel5ChartTest : public testing::Test {
 protected:
  void OnPanel(Desk::Step step) { desk.OnPanel(std::move(step)); }
  void AfterPoll(Desk::Step step) {
    desk.When([this] { return desk.program.session.polls > 0; }, [] {});
    OnPanel(std::move(step));
  }
  void Edit(const QString& field, const QString& text) {
    OnPanel([this, field, text] {
      // Where the field has the focus already, a click selects nothing.
      Press(Widget(field));
      PressKey(Widget(field), Qt::Key_A, Qt::ControlModifier);
      QTest::keyClicks(&Widget(field), text);
      PressKey(Widget(field), Qt::Key_Return);
    });
  }
  static QString At(const QString& name, int index) { return QString("%1(%2)").arg(name).arg(index); }
  QWidget& Widget(const QString& name) const { return desk.Panel(name); }
  QString Text(const QString& name) const { return desk.Panel<QLineEdit>(name).text(); }
  QString Label(const QString& name) const { return desk.Panel<QLabel>(name).text(); }
  bool Ticked(const QString& name) const { return desk.Panel<QAbstractButton>(name).isChecked(); }
  int Ram(std::size_t address) const { return static_cast<int>(desk.program.image.RamImage.at(address)); }
  /// Word of a function block, without the flag in its highest bit.
  int Level(std::size_t address) const { return (Ram(address) & 127) * 256 + Ram(address + 1); }
  std::uint8_t& Sensor(std::size_t address) { return desk.port.sensor.Ram()[address]; }
  /// The colour that the lamp has around its word.
  QColor Lamp(int index) const {
    const auto image = Widget(At("txbStatus", index)).grab().toImage();
    return image.pixelColor(image.width() / 2, 4);
  }

  Desk desk{231, 1};
};

TEST_F(Panel5ChartTest, ShowsWhatTheSensorIs) {
  desk.StartSession();
  AfterPoll([this] {
    EXPECT_EQ(FindWindow("frm5Chart")->windowTitle(), "BRELANT");
    EXPECT_EQ(Text("txbSN"), "23101042");
    EXPECT_EQ(Text("txbVersion"), QString::number(Sensor(226)));
    EXPECT_EQ(Text("txbID"), "1");
    const char* captions[] = {
        "CO2 PRE ALARM:", "CO2 MAIN ALARM:", "CO2 TWA ALARM:", "TEMP ALARM LOW:", "TEMP ALARM HIGH:"};
    for (int i = 0; i < 5; ++i) EXPECT_EQ(Label(At("lblStatus", i)), captions[i]);
    EXPECT_EQ(Label("lblKELActTempAenable"), "Temp alarm on central unit:");
    EXPECT_EQ(Text("txbKELActTempAenable"), "Enabled");
  });
  desk.Run();
}

TEST_F(Panel5ChartTest, EveryControlOfThePanelIsOnTheWindow) {
  desk.StartSession();
  OnPanel([this] {
    for (const auto& control : desk.program.session.CurrentPanel->form.Controls()) {
      if (control.Kind() == ControlKind::menu) continue;
      const auto name = QString::fromStdString(control.Name());
      const auto* widget = FindWindow("frm5Chart")->findChild<QWidget*>(name);
      ASSERT_NE(widget, nullptr) << control.Name();
      EXPECT_EQ(widget->isVisible(), control.Visible()) << control.Name();
    }
  });
  desk.Run();
}

TEST_F(Panel5ChartTest, LampsAreRedInAlarmAndGreenWithout) {
  Sensor(255) = 1 | 4 | 8;
  desk.StartSession();
  AfterPoll([this] {
    const bool alarms[] = {true, false, true, true, false};
    for (int i = 0; i < 5; ++i) {
      EXPECT_EQ(Label(At("txbStatus", i)), alarms[i] ? "ALARM" : "OK") << i;
      EXPECT_EQ(Lamp(i), alarms[i] ? kRed : kGreen) << i;
      const auto& lamp = Widget(At("txbStatus", i));
      EXPECT_EQ(lamp.palette().color(QPalette::WindowText), QColor(Qt::black)) << i;
      EXPECT_EQ(lamp.accessibleName(), Label(At("lblStatus", i)) + (alarms[i] ? " ALARM" : " OK"));
    }
  });
  desk.Run();
}

TEST_F(Panel5ChartTest, LampsFollowTheSensor) {
  Sensor(255) = 1;
  desk.StartSession();
  AfterPoll([this] {
    EXPECT_EQ(Lamp(0), kRed);
    EXPECT_EQ(Lamp(1), kGreen);
    Sensor(255) = 2;
  });
  desk.When([this] { return Label("txbStatus(1)") == "ALARM"; },
            [this] {
              EXPECT_EQ(Lamp(0), kGreen);
              EXPECT_EQ(Lamp(1), kRed);
            });
  desk.Run();
  EXPECT_EQ(desk.StepsLeft(), 0U);
}

TEST_F(Panel5ChartTest, LiveValuesAreTheLargestNumbers) {
  desk.StartSession();
  AfterPoll([this] {
    // Channels 0, 1 and 3: the words at 20, 22 and 26.
    const int co2 = Sensor(22) * 256 + Sensor(23) - 5000;
    const int average = Sensor(26) * 256 + Sensor(27) - 5000;
    EXPECT_DOUBLE_EQ(Text("txbCHact(1)").toDouble(), co2 / 1000.0);
    EXPECT_DOUBLE_EQ(Text("txbCHact(2)").toDouble(), average / 1000.0);
    EXPECT_EQ(Widget("txbCHact(1)").accessibleName(), "CO2, %");
    for (int i = 0; i < 3; ++i) {
      const auto& field = desk.Panel<QLineEdit>(At("txbCHact", i));
      EXPECT_TRUE(field.isReadOnly());
      EXPECT_EQ(field.palette().color(QPalette::Text), kGreen);
      EXPECT_GE(field.fontMetrics().height(), 4 * Widget("txbID").fontMetrics().height() * 9 / 10);
      EXPECT_LE(field.fontMetrics().horizontalAdvance("88.888"), field.width()) << "cut off";
    }
  });
  desk.Run();
}

TEST_F(Panel5ChartTest, ALevelTurnsIntoTheWordsOfItsBlock) {
  desk.StartSession();
  // 1.5 %: 1500 and the offset of 5000; 10 below it is a.
  Edit("txbKelLevel(1)", "1.5");
  OnPanel([this] {
    EXPECT_EQ(Level(168), 6490);
    EXPECT_EQ(Level(170), 6500);
    EXPECT_EQ(Text("txbKelLevel(1)"), "1.5");
    EXPECT_EQ(Label("lblFKelunit(1)"), "%");
    EXPECT_EQ(Widget("txbKelLevel(1)").accessibleName(), "CO2 MAIN ALARM: level, %");
  });
  Edit("txbKelLevel(2)", "0.5");
  OnPanel([this] {
    EXPECT_EQ(Level(173), 5500);
    EXPECT_EQ(Level(175), 5500);
  });
  // 10 degrees: 1000 and 5000; b lies 100 above.
  Edit("txbKelLevel(3)", "10");
  OnPanel([this] {
    EXPECT_EQ(Level(178), 6000);
    EXPECT_EQ(Level(180), 6100);
  });
  Edit("txbKelLevel(4)", "30");
  OnPanel([this] {
    EXPECT_EQ(Level(183), 7900);
    EXPECT_EQ(Level(185), 8000);
  });
  Edit("txbKelLevel(0)", "0.8");
  OnPanel([this] {
    EXPECT_EQ(Level(163), 5790);
    EXPECT_EQ(Level(165), 5800);
  });
  desk.Run();
}

TEST_F(Panel5ChartTest, ALevelIsWhiteWhileItIsEdited) {
  desk.StartSession();
  OnPanel([this] { Type(Widget("txbKelLevel(0)"), "2"); });
  OnPanel([this] {
    const auto& field = Widget("txbKelLevel(0)");
    EXPECT_EQ(field.palette().color(QPalette::Base), QColor(Qt::white));
    EXPECT_EQ(field.palette().color(QPalette::Text), QColor(Qt::black));
  });
  desk.Run();
}

TEST_F(Panel5ChartTest, RelaysAreTicks) {
  Sensor(189) = 32 | 2;
  desk.StartSession();
  OnPanel([this] {
    for (int k = 0; k < 5; ++k) EXPECT_EQ(Ticked(At("cbxKelrelay", k)), k == 1) << k;
    EXPECT_EQ(Widget("cbxKelrelay(3)").accessibleName(), "TEMP ALARM LOW: Relay");
    Press(Widget("cbxKelrelay(1)"));
    Press(Widget("cbxKelrelay(3)"));
  });
  // Whatever is taken next takes the ticks along.
  Edit("txbKelLevel(4)", "30");
  OnPanel([this] { EXPECT_EQ(Ram(189), 32 | 8); });
  desk.Run();
}

TEST_F(Panel5ChartTest, TheAverageDrivesTheDisplayModes) {
  Sensor(162) = 1;
  desk.StartSession();
  OnPanel([this] {
    EXPECT_FALSE(Ticked("cbxTWAonP0"));
    Press(Widget("cbxTWAonP0"));
  });
  OnPanel([this] {
    EXPECT_EQ(Ram(162), 3);
    EXPECT_EQ(Ram(205), 243);
    Press(Widget("lblDisplayMode"));
  });
  QStringList modes;
  desk.When([] { return FindWindow("PopupMenu") != nullptr; },
            [&] {
              for (const auto* action : static_cast<QMenu*>(FindWindow("PopupMenu"))->actions()) {
                modes.append(action->text());
              }
              PressKey(*FindWindow("PopupMenu"), Qt::Key_Escape);
            });
  OnPanel([this] { Press(Widget("cbxTWAonP0")); });
  OnPanel([this] {
    EXPECT_EQ(Ram(162), 1);
    EXPECT_EQ(Ram(205), 16);
    EXPECT_EQ(Ram(207), 16);
  });
  desk.Run();
  EXPECT_TRUE(modes.contains("CO2 TWA"));
  EXPECT_TRUE(modes.contains("CO2 TWA + CO2"));
}

TEST_F(Panel5ChartTest, SendSendsTheFiveBytes) {
  Sensor(162) = 1;
  desk.StartSession();
  OnPanel([this] { Press(Widget("cbxTWAonP0")); });
  OnPanel([this] {
    EXPECT_EQ(Sensor(162), 1);
    Press(Widget("btnSendToSensor"));
  });
  OnPanel([this] {
    EXPECT_EQ(Sensor(162), 3);
    EXPECT_EQ(Sensor(205), 243);
    EXPECT_EQ(Sensor(226), 3);
  });
  desk.Run();
}

TEST_F(Panel5ChartTest, TheTabKeyFollowsTheEye) {
  desk.StartSession();
  OnPanel([this] {
    Activate(*FindWindow("frm5Chart"));
    Widget("txbID").setFocus();
    std::vector<std::string> order;
    for (int i = 0; i < 9; ++i) {
      order.push_back(QApplication::focusWidget()->objectName().toStdString());
      PressKey(*QApplication::focusWidget(), Qt::Key_Tab);
    }
    EXPECT_THAT(order, ElementsAreArray({"txbID", "lblDisplayMode", "cbxSimulated", "btnReadFromSensor",
                                         "btnSendToSensor", "lblCH_Type(0)", "txbKelLevel(0)",
                                         "cbxKelrelay(0)", "txbKelLevel(1)"}));
  });
  desk.Run();
}

TEST_F(Panel5ChartTest, EverythingThatCanBeActedOnHasASpokenName) {
  desk.StartSession();
  OnPanel([] {
    int seen = 0;
    for (const auto* widget : FindWindow("frm5Chart")->findChildren<QWidget*>()) {
      if (!widget->isVisible() || widget->objectName().startsWith("qt_")) continue;
      const auto* button = qobject_cast<const QAbstractButton*>(widget);
      if (button == nullptr && qobject_cast<const QLineEdit*>(widget) == nullptr) continue;
      const auto name = widget->accessibleName() + (button == nullptr ? QString() : button->text());
      EXPECT_FALSE(name.isEmpty()) << widget->objectName().toStdString();
      ++seen;
    }
    EXPECT_GE(seen, 20);
  });
  desk.Run();
}

TEST_F(Panel5ChartTest, FitsASmallLaptop) {
  desk.StartSession();
  OnPanel([] {
    const auto size = FindWindow("frm5Chart")->size();
    EXPECT_LE(size.width(), 1366);
    EXPECT_LE(size.height(), 690);
  });
  desk.Run();
}

TEST_F(Panel5ChartTest, SimulatedAlarmsFollowWhatIsTyped) {
  desk.StartSimulation();
  Edit("txbKelLevel(1)", "1.5");
  Edit("txbCHact(1)", "1.4");
  OnPanel([this] {
    EXPECT_EQ(FindWindow("frm5Chart")->windowTitle(), "BRELANT Simulated mode");
    EXPECT_EQ(Label("txbStatus(1)"), "OK");
    EXPECT_EQ(Lamp(1), kGreen);
  });
  // At the level is in alarm.
  Edit("txbCHact(1)", "1.5");
  OnPanel([this] {
    EXPECT_EQ(Label("txbStatus(1)"), "ALARM");
    EXPECT_EQ(Lamp(1), kRed);
  });
  Edit("txbKelLevel(3)", "10");
  Edit("txbKelLevel(4)", "30");
  Edit("txbCHact(0)", "35");
  OnPanel([this] {
    EXPECT_EQ(Label("txbStatus(3)"), "OK");
    EXPECT_EQ(Label("txbStatus(4)"), "ALARM");
  });
  Edit("txbCHact(0)", "10");
  OnPanel([this] {
    EXPECT_EQ(Label("txbStatus(3)"), "ALARM");
    EXPECT_EQ(Label("txbStatus(4)"), "OK");
  });
  desk.Run();
}

TEST_F(Panel5ChartTest, TheCentralUnitsAlarmTogglesInSimulatedModeOnly) {
  desk.StartSimulation();
  OnPanel([this] { Press(Widget("txbKELActTempAenable")); });
  OnPanel([this] {
    EXPECT_EQ(Text("txbKELActTempAenable"), "Enabled");
    Press(Widget("txbKelLevel(0)"));
  });
  OnPanel([this] { Press(Widget("txbKELActTempAenable")); });
  OnPanel([this] {
    EXPECT_EQ(Text("txbKELActTempAenable"), "Disabled");
    EXPECT_EQ(Widget("txbKELActTempAenable").palette().color(QPalette::Text), QColor(Qt::white));
  });
  desk.Run();
}

TEST_F(Panel5ChartTest, TheCentralUnitsAlarmIsAnIndicatorInLiveMode) {
  desk.StartSession();
  AfterPoll([this] {
    EXPECT_EQ(Widget("txbKELActTempAenable").palette().color(QPalette::Text), kGreen);
    Press(Widget("txbKELActTempAenable"));
  });
  OnPanel([this] { EXPECT_EQ(Text("txbKELActTempAenable"), "Enabled"); });
  desk.Run();
}

}  // namespace
}  // namespace brelant::test
