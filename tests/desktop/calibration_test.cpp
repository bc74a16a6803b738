// SPDX-License-Identifier: GPL-3.0-or-later
#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QChartView>
#include <QInputDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QXYSeries>

#include <gtest/gtest.h>

#include "desk.h"

namespace brelant::test {
namespace {

/// Calibrations by real clicks, up to the memory of the sensor. Both panels of platform 5.
class CalibrationTest : public testing::TestWithParam<int> {
 protected:
  CalibrationTest() : desk(231, GetParam()), newZeroWord(SensorWord(130)) { desk.StartSession(); }

  void OnPanel(Desk::Step step) { desk.OnPanel(std::move(step)); }
  void Click(const QStringList& names) {
    OnPanel([this, names] { desk.ClickMenu(names); });
  }
  QAction& Action(const QString& name) const {
    return *FindWindow(GetParam() == 0 ? "frm5" : "frm5Chart")->findChild<QAction*>(name);
  }
  int SensorWord(std::size_t address) {
    const auto ram = desk.port.sensor.Ram();
    return ram[address] * 256 + ram[address + 1];
  }
  /// When the panel has polled after what was told last.
  void AfterNextPoll(Desk::Step step) {
    auto polls = std::make_shared<decltype(desk.program.session.polls)>();
    OnPanel([this, polls] { *polls = desk.program.session.polls; });
    desk.When([this, polls] { return desk.program.session.polls > *polls + 1; }, [] {});
    OnPanel(std::move(step));
  }
  static QString Prompt() { return static_cast<QInputDialog*>(FindWindow("InputBox"))->labelText(); }
  static int Points(const QString& series) {
    for (const auto* candidate : FindWindow("frmCalCurve")->findChild<QChartView*>()->chart()->series()) {
      if (candidate->name() == series) return static_cast<const QXYSeries*>(candidate)->count();
    }
    return -1;
  }

  Desk desk;
  /// Of channel 1, as the sensor left the factory.
  const int newZeroWord;
  const QStringList calibrate{"M0", "mCalibrate"};
  const QStringList singlePoint{"M0", "mCalibrate", "mCalCO2"};
};

TEST_P(CalibrationTest, ZeroGasReachesTheSensor) {
  int signal = 0;
  Click(singlePoint + QStringList{"mCalCO2Zero"});
  // The zero word of channel 1 puts the signal at zero gas.
  OnPanel([this] {
    const int zeroWord = SensorWord(130);
    EXPECT_NE(zeroWord, newZeroWord);
    EXPECT_EQ(desk.program.image.RamImage[130] * 256 + desk.program.image.RamImage[131], zeroWord);
    EXPECT_EQ(desk.port.sensor.Count().saves, 1);
  });
  desk.Run();
  signal = SensorWord(70);
  EXPECT_NEAR(SensorWord(130), 61440.0 * 2048 / signal, 0.05 * SensorWord(130)) << "the gas has moved on";
}

TEST_P(CalibrationTest, AGasThatIsToldReachesTheSensor) {
  Click(singlePoint + QStringList{"mCalCO2Other"});
  desk.When([] { return FindWindow("InputBox") != nullptr; },
            [] { EXPECT_EQ(Prompt(), "Please enter CO2 concentration"); });
  desk.Answer("0.5");
  OnPanel([this] {
    EXPECT_NE(SensorWord(130), newZeroWord);
    EXPECT_EQ(desk.port.sensor.Count().saves, 1);
  });
  desk.Run();
}

TEST_P(CalibrationTest, TheTemperatureReachesTheSensor) {
  Click(calibrate + QStringList{"CalTemp"});
  desk.When([] { return FindWindow("InputBox") != nullptr; },
            [] { EXPECT_EQ(Prompt(), "Please enter correct temperature"); });
  desk.Answer("40");
  OnPanel([this] {
    EXPECT_EQ(desk.port.sensor.Count().saves, 1);
    desk.port.sensor.Advance(desk.clock.Now());
  });
  AfterNextPoll([this] { EXPECT_NEAR(desk.Panel<QLineEdit>("txbCHact(0)").text().toDouble(), 40, 2); });
  desk.Run();
}

TEST_P(CalibrationTest, TheSpanComesBehindItsNote) {
  const int spanWord = SensorWord(138);
  Click(calibrate + QStringList{"mCalCO2span"});
  desk.When([] { return FindWindow("frmSpanCalNote") != nullptr; },
            [this] {
              EXPECT_EQ(FindWindow("InputBox"), nullptr);
              Press(desk.Find("frmSpanCalNote", "Command2"));
            });
  desk.When([] { return FindWindow("InputBox") != nullptr; },
            [] { EXPECT_EQ(Prompt(), "Please enter span gas concentration"); });
  desk.Answer("4");
  OnPanel([this, spanWord] { EXPECT_NE(SensorWord(138), spanWord); });
  desk.Run();
}

TEST_P(CalibrationTest, WhatIsCancelledSendsNothing) {
  Click(calibrate + QStringList{"CalTemp"});
  desk.When([] { return FindWindow("InputBox") != nullptr; },
            [] { PressKey(*FindWindow("InputBox"), Qt::Key_Escape); });
  Click(singlePoint + QStringList{"mCalCO2Other"});
  desk.Answer("");
  Click(calibrate + QStringList{"mCalCO2span"});
  desk.When([] { return FindWindow("frmSpanCalNote") != nullptr; },
            [] { PressKey(*FindWindow("frmSpanCalNote"), Qt::Key_Escape); });
  OnPanel([this] {
    EXPECT_EQ(FindWindow("MessageBox"), nullptr);
    EXPECT_EQ(FindWindow("InputBox"), nullptr);
    EXPECT_EQ(desk.port.sensor.Count().saves, 0);
    EXPECT_EQ(SensorWord(130), newZeroWord);
  });
  desk.Run();
  EXPECT_EQ(desk.StepsLeft(), 0U);
}

TEST_P(CalibrationTest, TheCurveIsThereAfterwards) {
  OnPanel([this] { EXPECT_FALSE(Action("mCalCurve").isEnabled()); });
  Click(singlePoint + QStringList{"mCalCO2Zero"});
  OnPanel([this] { EXPECT_TRUE(Action("mCalCurve").isEnabled()); });
  Click(calibrate + QStringList{"mCalCurve"});
  desk.In("frmCalCurve", [this] {
    EXPECT_GE(Points("Before"), 2);
    EXPECT_GE(Points("After"), 2);
    EXPECT_EQ(Points("Measured"), 1);
    EXPECT_NE(desk.program.calCurve.lblChannel.Text().find("CO2"), std::string::npos);
    PressKey(*FindWindow("frmCalCurve"), Qt::Key_Escape);
  });
  OnPanel([] { EXPECT_EQ(FindWindow("frmCalCurve"), nullptr); });
  desk.Run();
}

TEST_P(CalibrationTest, TheCurveGoesWithThePanel) {
  Click(singlePoint + QStringList{"mCalCO2Zero"});
  Click(calibrate + QStringList{"mCalCurve"});
  desk.In("frmCalCurve", [this] { desk.program.session.CurrentPanel->form.Close(); });
  desk.In("frmComSet", [] { EXPECT_EQ(FindWindow("frmCalCurve"), nullptr); });
  desk.Run();
  EXPECT_EQ(desk.StepsLeft(), 0U);
}

TEST_P(CalibrationTest, IsReachedByLettersToo) {
  OnPanel([this] {
    auto& window = *FindWindow(GetParam() == 0 ? "frm5" : "frm5Chart");
    Activate(window);
    PressKey(window, Qt::Key_S, Qt::AltModifier);
    for (const char* name : {"mCalibrate", "mCalCO2", "mCalCO2Zero"}) {
      const auto& text = Action(name).text();
      const auto letter = text.at(text.indexOf('&') + 1).toUpper().unicode();
      ASSERT_NE(QApplication::activePopupWidget(), nullptr) << name;
      PressKey(*QApplication::activePopupWidget(), static_cast<Qt::Key>(letter));
    }
  });
  OnPanel([this] { EXPECT_EQ(desk.port.sensor.Count().saves, 1); });
  desk.Run();
}

TEST_P(CalibrationTest, IsNotOfferedInSimulatedMode) {
  OnPanel([this] {
    EXPECT_TRUE(Action("mCalibrate").isEnabled());
    EXPECT_TRUE(Action("mCalCO2").isEnabled());
    Press(desk.Panel("cbxSimulated"));
  });
  OnPanel([this] { EXPECT_FALSE(Action("mCalibrate").isEnabled()); });
  desk.Run();
}

INSTANTIATE_TEST_SUITE_P(Panels, CalibrationTest, testing::Values(0, 1), [](const auto& variant) {
  return variant.param == 0 ? "TwoOutputs" : "FiveLevels";
});

}  // namespace
}  // namespace brelant::test
