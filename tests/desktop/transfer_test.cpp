// SPDX-License-Identifier: GPL-3.0-or-later
#include <QApplication>
#include <QChart>
#include <QChartView>
#include <QComboBox>
#include <QGraphicsSimpleTextItem>
#include <QLabel>
#include <QToolButton>
#include <QValueAxis>
#include <QXYSeries>
#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desktop/Appearance.h"
#include "panel_fixture.h"
#include "panels/transfer_curve.h"
#include "seen_whole.h"

namespace brelant::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

QWidget* Plot(int output) {
  return FindWindow(QString("Transfer(%1)").arg(output));
}
const QChartView& View(int output) {
  return *Plot(output)->findChild<QChartView*>();
}
/// Names of the curves that are to be seen, and of the point.
std::vector<std::string> Drawn(int output) {
  std::vector<std::string> names;
  for (const auto* series : View(output).chart()->series()) {
    if (series->isVisible()) names.push_back(series->name().toStdString());
  }
  return names;
}
const QXYSeries& Series(int output, const QString& name) {
  for (const auto* series : View(output).chart()->series()) {
    if (series->name() == name) return *static_cast<const QXYSeries*>(series);
  }
  throw std::out_of_range(name.toStdString());
}
const QValueAxis& Axis(int output, Qt::Orientation side) {
  return *static_cast<QValueAxis*>(View(output).chart()->axes(side).constFirst());
}
/// What a curve says at one of its points.
double PercentAt(const QXYSeries& series, double input) {
  for (const auto& point : series.points()) {
    if (point.x() == input) return point.y();
  }
  ADD_FAILURE() << series.name().toStdString() << " has no point at " << input;
  return -1;
}
std::string Reason(int output) {
  const auto* reason = Plot(output)->findChild<QLabel*>("reason");
  EXPECT_NE(View(output).isVisible(), reason->isVisible());
  return reason->isVisible() ? reason->text().toStdString() : "";
}

/// On platform 6: function 1 goes by CO2 from 800 to 1200, from -100 to 100, and feeds output 1.
class TransferTest : public PanelTest {
 protected:
  void Start(int variant = 0, int part = 88) {
    PanelTest::Start(part, variant);
    PutFunction(0, 9, 800, 1200);
    for (const std::size_t output : {138U, 141U, 144U, 147U}) Put(output, {0, 128, 3});
    Put(138, {1});
  }
  void Put(std::size_t address, const std::vector<int>& bytes) {
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      desk->port.sensor.Eeprom()[address + i] = static_cast<std::uint8_t>(bytes[i]);
    }
  }
  /// Rising; `input` 9 is CO2, 0 the first temperature.
  void PutFunction(std::size_t function, int input, int a, int b) {
    a += 5000;
    b += 5000;
    Put(106 + 5 * function, {input, 128 + a / 256, a % 256, 128 + b / 256, b % 256});
  }
  void Open(int output = 0) {
    OnPanel([this, output] { Press(Button(output)); });
  }
  QWidget& Button(int output) const { return Widget(QString("transfer(%1)").arg(output)); }
  const Transfer& Model() const { return dynamic_cast<const Transfer&>(*desk->program.session.CurrentPanel); }
  void GoOffLine() {
    OnPanel([this] { Press(Widget("cbxSimulated")); });
  }
  void SetCO2(const QString& text) {
    // A field that has the focus takes what is typed behind its text.
    OnPanel([this] { Press(Widget("txbCHact(2)")); });
    Edit("txbCHact(3)", text);
    // The model runs once more before the loop sleeps again.
    OnPanel([] {});
  }
};

TEST_F(TransferTest, OpensFromEachOutput) {
  Start();
  for (int j = 0; j < 4; ++j) {
    OnPanel([this, j] {
      EXPECT_EQ(Plot(j), nullptr);
      EXPECT_TRUE(Button(j).isVisible());
      Press(Button(j));
    });
    OnPanel([this, j] {
      ASSERT_NE(Plot(j), nullptr);
      const auto name = QString("Transfer of Out %1").arg(j + 1);
      EXPECT_EQ(Plot(j)->windowTitle(), name);
      EXPECT_EQ(Button(j).accessibleName(), name);
      EXPECT_EQ(Button(j).toolTip(), name);
    });
  }
  desk->Run();
}

TEST_F(TransferTest, AnOutputThatIsNotThereHasNone) {
  Start(2);
  OnPanel([this] {
    EXPECT_TRUE(Button(2).isVisible());
    EXPECT_FALSE(Button(3).isVisible());
  });
  desk->Run();
}

TEST_F(TransferTest, BelongsToTheOutputOfItsNameWhereTwoAreExchanged) {
  Start(0, 223);
  Open(0);
  OnPanel([this] {
    EXPECT_EQ(Button(0).accessibleName(), "Transfer of Out 2");
    EXPECT_EQ(Plot(0)->windowTitle(), "Transfer of Out 2");
    // The first output has the function, in the second place and its colour.
    EXPECT_EQ(Series(0, "Out 2").pen().color(), InkOf(QApplication::palette()).output[1]);
  });
  desk->Run();
}

TEST_F(TransferTest, DrawsEveryPointOfTheModel) {
  Start();
  Open();
  OnPanel([this] {
    const auto& series = Series(0, "Out 1");
    const auto curve = TransferCurveOf(Model(), 0, Model().InputsOf(0).at(0)).value();
    EXPECT_GE(series.count(), kTransferSteps + 1);
    ASSERT_EQ(series.count(), static_cast<int>(curve.rising.size()));
    // -100 at 800 and 100 at 1200, without what is below 0.
    for (const auto& point : series.points()) {
      EXPECT_NEAR(point.y(), std::clamp((point.x() - 1000) / 2, 0.0, 100.0), 1e-9) << point.x();
    }
    EXPECT_EQ(PercentAt(series, 1200), 100);
    EXPECT_EQ(Axis(0, Qt::Horizontal).titleText(), "CO2 (ppm)");
    EXPECT_EQ(Axis(0, Qt::Vertical).titleText(), "Out 1 (%)");
    EXPECT_EQ(Reason(0), "");
  });
  desk->Run();
}

TEST_F(TransferTest, FollowsAnEdit) {
  Start();
  Open();
  OnPanel([] { EXPECT_EQ(PercentAt(Series(0, "Out 1"), 1200), 100); });
  Edit("txbFb(0)", "1600");
  OnPanel([] {
    // Half way is 1200 now.
    EXPECT_EQ(PercentAt(Series(0, "Out 1"), 1600), 100);
    for (const auto& point : Series(0, "Out 1").points()) {
      EXPECT_NEAR(point.y(), std::clamp((point.x() - 1200) / 4, 0.0, 100.0), 1e-9) << point.x();
    }
  });
  desk->Run();
}

TEST_F(TransferTest, ThePresentPointIsWhatThePanelShows) {
  Start();
  GoOffLine();
  SetCO2("1100");
  Open();
  const auto expectPoint = [this](double input, double percent, const QString& note) {
    ASSERT_THAT(Drawn(0), ElementsAre("Out 1", "Now"));
    EXPECT_EQ(Series(0, "Now").at(0), QPointF(input, percent));
    EXPECT_EQ(Text("txbOutOut(0)").toDouble(), percent);
    EXPECT_EQ(Plot(0)->findChild<QLabel*>("now")->text(), "CO2 " + note);
    QStringList notes;
    for (const auto* item : View(0).scene()->items()) {
      const auto* text = qgraphicsitem_cast<const QGraphicsSimpleTextItem*>(item);
      if (text == nullptr || !text->isVisible()) continue;
      notes.append(text->text());
      EXPECT_TRUE(View(0).chart()->plotArea().contains(text->sceneBoundingRect()));
      EXPECT_GT(text->font().pointSizeF(), Widget("lblCH_Type(3)").font().pointSizeF() * 0.8);
    }
    EXPECT_EQ(notes, QStringList(note));
  };
  OnPanel([expectPoint] { expectPoint(1100, 50, "1100 ppm: 50 %"); });
  SetCO2("1150.5");
  // 75.25, which the panel rounds.
  OnPanel([expectPoint] { expectPoint(1150.5, 75, "1150.5 ppm: 75 %"); });
  SetCO2("9000");
  OnPanel([expectPoint] {
    expectPoint(9000, 100, "9000 ppm: 100 %");
    EXPECT_LT(Axis(0, Qt::Horizontal).min(), 800);
    EXPECT_GT(Axis(0, Qt::Horizontal).max(), 9000);
  });
  desk->Run();
}

TEST_F(TransferTest, FollowsTheLiveValues) {
  Start();
  Open();
  AfterPoll([this] {
    EXPECT_EQ(Series(0, "Now").at(0).x(), Text("txbCHact(3)").toDouble());
    EXPECT_EQ(Series(0, "Now").at(0).y(), Text("txbOutOut(0)").toDouble());
  });
  desk->Run();
}

TEST_F(TransferTest, TheAxisOfPercentIsAlwaysTheSame) {
  Start();
  Open();
  const auto expectAxis = [] {
    EXPECT_EQ(Axis(0, Qt::Vertical).tickInterval(), 20);
    EXPECT_LE(Axis(0, Qt::Vertical).min(), 0);
    EXPECT_GT(Axis(0, Qt::Vertical).min(), -20);
    EXPECT_GE(Axis(0, Qt::Vertical).max(), 100);
    EXPECT_LT(Axis(0, Qt::Vertical).max(), 120);
  };
  OnPanel(expectAxis);
  // The output stays at 0 then.
  Edit("txbOutBaseLine(0)", "-200");
  OnPanel(expectAxis);
  desk->Run();
}

TEST_F(TransferTest, OneOfSeveralInputsIsChosen) {
  Start();
  PutFunction(3, 0, 2000, 2600);
  Put(138, {1 | 8});
  Open();
  OnPanel([] {
    auto& input = *Plot(0)->findChild<QComboBox*>("input");
    EXPECT_TRUE(input.isVisible());
    ASSERT_EQ(input.count(), 2);
    EXPECT_EQ(input.itemText(1), "Temp 1");
    EXPECT_FALSE(input.accessibleName().isEmpty());
    Activate(*Plot(0));
    input.setFocus();
    PressKey(input, Qt::Key_Down);
  });
  const auto expectTemp = [] {
    EXPECT_EQ(Plot(0)->findChild<QComboBox*>("input")->currentText(), "Temp 1");
    EXPECT_EQ(Axis(0, Qt::Horizontal).titleText(), "Temp 1 (C)");
    EXPECT_LT(Axis(0, Qt::Horizontal).max(), 100);
  };
  OnPanel(expectTemp);
  // The choice stays when the panel changes.
  Edit("txbFa(3)", "18");
  OnPanel([this, expectTemp] {
    expectTemp();
    Press(Widget("cbxFout1(3)"));
  });
  OnPanel([] {
    EXPECT_FALSE(Plot(0)->findChild<QComboBox*>("input")->isVisible()) << "there is one only";
    EXPECT_EQ(Axis(0, Qt::Horizontal).titleText(), "CO2 (ppm)");
  });
  desk->Run();
}

TEST_F(TransferTest, ADigitalOutputHasTwoWays) {
  Start();
  Open();
  OnPanel([this] { Press(Widget("optOut6Digital(0)")); });
  OnPanel([] {
    ASSERT_THAT(Drawn(0), testing::IsSupersetOf({"CO2 rising", "CO2 falling"}));
    // Between 0 % at 1000 and 100 % at 1200 it stays what it was.
    const auto expectAt = [](const QString& name, double input, double percent) {
      for (const auto& point : Series(0, name).points()) {
        EXPECT_TRUE(std::abs(point.x() - input) > 5 || point.y() == percent) << point.x();
      }
    };
    for (const auto& [input, rising, falling] :
         {std::array{900.0, 0.0, 0.0}, std::array{1100.0, 0.0, 100.0}, std::array{1220.0, 100.0, 100.0}}) {
      expectAt("CO2 rising", input, rising);
      expectAt("CO2 falling", input, falling);
    }
    EXPECT_NE(Series(0, "CO2 rising").pen().style(), Series(0, "CO2 falling").pen().style());
    Press(*Plot(0)->findChild<QAbstractButton*>("close"));
  });
  OnPanel([this] { Press(Widget("optOut6Analog(0)")); });
  Open();
  OnPanel([] { EXPECT_THAT(Drawn(0), testing::Contains("Out 1")); });
  OnPanel([] { EXPECT_THAT(Drawn(0), testing::Not(testing::Contains("CO2 falling"))); });
  desk->Run();
}

TEST_F(TransferTest, AnOutputWithoutACurveSaysWhy) {
  Start();
  Open(1);
  OnPanel([this] {
    EXPECT_EQ(Reason(1), "No function leads a live value to Out 2, so there is no curve to draw.");
    ExpectSeenWhole(*Plot(1));
    Press(Widget("cbxFout2(0)"));
  });
  OnPanel([] { EXPECT_EQ(Reason(1), ""); });
  Edit("txbFb(0)", "800");
  OnPanel([] { EXPECT_EQ(Reason(1), "a and b of a function are equal, so Out 2 cannot be computed."); });
  Edit("txbFb(0)", "1200");
  OnPanel([] { EXPECT_EQ(Reason(1), ""); });
  desk->Run();
}

TEST_F(TransferTest, IsReachedAndLeftByKey) {
  Start();
  OnPanel([this] {
    Activate(*FindWindow("frm6"));
    Widget("cbxDigout4").setFocus();
    for (int i = 0; i < 12 && QApplication::focusWidget() != &Button(0); ++i) {
      PressKey(*QApplication::focusWidget(), Qt::Key_Tab);
    }
    ASSERT_EQ(QApplication::focusWidget(), &Button(0));
    PressKey(Button(0), Qt::Key_Space);
  });
  OnPanel([] {
    ASSERT_NE(Plot(0), nullptr);
    PressKey(*Plot(0), Qt::Key_Escape);
  });
  OnPanel([this] {
    EXPECT_EQ(Plot(0), nullptr);
    PressKey(Button(0), Qt::Key_Space);
  });
  OnPanel([] {
    ASSERT_NE(Plot(0), nullptr);
    PressKey(*Plot(0), Qt::Key_Return);
  });
  OnPanel([] { EXPECT_EQ(Plot(0), nullptr); });
  desk->Run();
}

TEST_F(TransferTest, AClickOnItsButtonEndsAnEdit) {
  Start();
  OnPanel([this] {
    Type(Widget("txbFa(0)"), "850");
    Press(Button(0));
  });
  OnPanel([] {
    // From 850 to 1200 the middle is 1025.
    for (const auto& point : Series(0, "Out 1").points()) {
      EXPECT_NEAR(point.y(), std::clamp((point.x() - 1025) / 1.75, 0.0, 100.0), 1e-9) << point.x();
    }
  });
  desk->Run();
}

TEST_F(TransferTest, ClosesWhereTheFaceGoes) {
  Start();
  Open();
  OnPanel([this] {
    EXPECT_NE(Plot(0), nullptr);
    Put(173, {3});
    Press(Widget("btnReadFromSensor"));
  });
  OnPanel([] { EXPECT_EQ(Plot(0), nullptr); });
  desk->Run();
}

TEST_F(TransferTest, GoesWithThePanel) {
  Start();
  Open();
  OnPanel([] {
    ASSERT_NE(Plot(0), nullptr);
    FindWindow("frm6")->close();
  });
  desk->In("frmComSet", [] { EXPECT_EQ(Plot(0), nullptr); });
  desk->Run();
}

TEST_F(TransferTest, IsSeenWholeAndFitsASmallLaptop) {
  Start();
  PutFunction(3, 0, 2000, 2600);
  Put(138, {1 | 8 | 64});
  Open();
  AfterPoll([] {
    ExpectSeenWhole(*Plot(0));
    ExpectFitsASmallLaptop("Transfer(0)");
    // The legend and both axes have their room.
    EXPECT_GT(View(0).chart()->plotArea().width(), 300);
    EXPECT_GT(View(0).chart()->plotArea().height(), 200);
  });
  desk->Run();
}

class Transfer5Test : public TransferTest {};

TEST_F(Transfer5Test, PlatformFiveHasTheSame) {
  PanelTest::Start(231, 0);
  // Function 1: CO2, 5000 + 50 to 5000 + 250 hundredths, sign and slope positive, alone on output 1.
  auto ram = desk->port.sensor.Ram();
  const std::vector<int> function{1, 128 + 5050 / 256, 5050 % 256, 128 + 5250 / 256, 5250 % 256};
  for (std::size_t i = 0; i < function.size(); ++i) ram[162 + i] = static_cast<std::uint8_t>(function[i]);
  ram[189] = 1;
  ram[190] = 128;
  ram[191] = 0;
  Open(0);
  OnPanel([this] {
    EXPECT_EQ(Plot(0)->windowTitle(), "Transfer of Out 1");
    const double a = Text("txbFa(0)").toDouble();
    const double b = Text("txbFb(0)").toDouble();
    ASSERT_LT(a, b);
    double shift = 0;
    if (Caption("lblShiftb") == Caption("lblFchannel(0)")) shift = Text("txbShiftBamount").toDouble();
    for (const auto& point : Series(0, "Out 1").points()) {
      const double expected = std::clamp((point.x() + shift - a) / (b - a) * 100, 0.0, 100.0);
      EXPECT_NEAR(point.y(), expected, 1e-4) << point.x();
    }
    Press(Button(1));
  });
  OnPanel([] { EXPECT_EQ(Plot(1)->windowTitle(), "Transfer of Out 2"); });
  desk->Run();
}

}  // namespace
}  // namespace brelant::test
