// SPDX-License-Identifier: GPL-3.0-or-later
#include <QAbstractButton>
#include <QApplication>
#include <QChart>
#include <QChartView>
#include <QGraphicsSimpleTextItem>
#include <QLabel>
#include <QTableWidget>
#include <QValueAxis>
#include <QXYSeries>

#include <gtest/gtest.h>

#include "desk.h"

namespace brelant::test {
namespace {

class CalCurveTest : public testing::Test {
 protected:
  CalCurveTest() {
    curve.lblChannel.SetText("CO2 (ppm)");
    // After has two points less.
    for (int i = 0; i < 16; ++i) {
      Put(curve.lblBeforeSignal[i], 60000 - 1000 * i);
      Put(curve.lblBeforeValue[i], 100 * i);
      if (i > 13) continue;
      Put(curve.lblAfterSignal[i], 62000 - 1000 * i);
      Put(curve.lblAfterValue[i], 100 * i);
    }
    curve.lblMeasuredSignal.SetText("58500");
    curve.lblMeasuredValue.SetText("350");
  }

  static void Put(Control& control, int number) { control.SetText(std::to_string(number)); }
  /// Opens the window over the dialog.
  void Open() {
    desk.In("frmComSet", [this] { curve.form.Show(); });
  }
  void InWindow(Desk::Step step) { desk.In("frmCalCurve", std::move(step)); }
  static const QChart& Chart() { return *FindWindow("frmCalCurve")->findChild<QChartView*>()->chart(); }
  static const QXYSeries& Series(const QString& name) {
    for (const auto* series : Chart().series()) {
      if (series->name() == name) return *static_cast<const QXYSeries*>(series);
    }
    throw std::out_of_range(name.toStdString());
  }
  static QTableWidget& Table() { return *FindWindow("frmCalCurve")->findChild<QTableWidget*>(); }

  Desk desk;
  frmCalCurve& curve = desk.program.calCurve;
};

TEST_F(CalCurveTest, DrawsThePointsOfTheForm) {
  Open();
  InWindow([] {
    EXPECT_EQ(FindWindow("frmCalCurve")->windowTitle(), "Calibration curve");
    ASSERT_EQ(Series("Before").count(), 16);
    ASSERT_EQ(Series("After").count(), 14);
    ASSERT_EQ(Series("Measured").count(), 1);
    for (int i = 0; i < 16; ++i) EXPECT_EQ(Series("Before").at(i), QPointF(60000 - 1000 * i, 100 * i));
    for (int i = 0; i < 14; ++i) EXPECT_EQ(Series("After").at(i), QPointF(62000 - 1000 * i, 100 * i));
    EXPECT_EQ(Series("Measured").at(0), QPointF(58500, 350));
  });
  desk.Run();
}

TEST_F(CalCurveTest, AfterIsTheStrongerLine) {
  Open();
  InWindow([] { EXPECT_GE(Series("After").pen().widthF(), 1.5 * Series("Before").pen().widthF()); });
  desk.Run();
}

TEST_F(CalCurveTest, AxesSayWhatTheyMeasureAndHoldEveryPoint) {
  Open();
  InWindow([] {
    const auto& signals = *static_cast<QValueAxis*>(Chart().axes(Qt::Horizontal).constFirst());
    const auto& values = *static_cast<QValueAxis*>(Chart().axes(Qt::Vertical).constFirst());
    EXPECT_EQ(signals.titleText(), "Signal");
    EXPECT_EQ(values.titleText(), "CO2 (ppm)");
    EXPECT_LE(signals.min(), 45000);
    EXPECT_GE(signals.max(), 62000);
    EXPECT_LE(values.min(), 0);
    EXPECT_GE(values.max(), 1500);
  });
  desk.Run();
}

TEST_F(CalCurveTest, TheMeasuredPointHasItsNumbers) {
  Open();
  InWindow([this] {
    QStringList notes;
    for (const auto* item : FindWindow("frmCalCurve")->findChild<QChartView*>()->scene()->items()) {
      const auto* note = qgraphicsitem_cast<const QGraphicsSimpleTextItem*>(item);
      if (note == nullptr || !note->isVisible()) continue;
      notes.append(note->text());
      EXPECT_TRUE(Chart().plotArea().contains(note->sceneBoundingRect())) << note->text().toStdString();
    }
    EXPECT_TRUE(notes.contains("350 at signal 58500"));
    EXPECT_EQ(desk.Find<QLabel>("frmCalCurve", "lblMeasuredSignal").text(), "58500");
    EXPECT_EQ(desk.Find<QLabel>("frmCalCurve", "lblMeasuredValue").text(), "350");
    EXPECT_EQ(desk.Find<QLabel>("frmCalCurve", "lblChannel").text(), "CO2 (ppm)");
  });
  desk.Run();
}

TEST_F(CalCurveTest, TheTableHoldsTheSameNumbers) {
  Open();
  InWindow([] {
    auto& table = Table();
    ASSERT_EQ(table.rowCount(), 16);
    ASSERT_EQ(table.columnCount(), 4);
    EXPECT_EQ(table.item(2, 0)->text(), "58000");
    EXPECT_EQ(table.item(2, 1)->text(), "200");
    EXPECT_EQ(table.item(2, 2)->text(), "60000");
    EXPECT_EQ(table.item(2, 3)->text(), "200");
    EXPECT_EQ(table.item(15, 0)->text(), "45000");
    EXPECT_EQ(table.item(15, 2)->text(), "");
    EXPECT_FALSE(table.accessibleName().isEmpty());
    EXPECT_EQ(table.editTriggers(), QAbstractItemView::NoEditTriggers);
    EXPECT_LE(table.rowViewportPosition(15) + table.rowHeight(15), table.viewport()->height()) << "cut off";
  });
  desk.Run();
}

TEST_F(CalCurveTest, WhatIsNotThereIsNotDrawn) {
  for (int i = 0; i < 16; ++i) {
    curve.lblBeforeSignal[i].SetText("");
    curve.lblBeforeValue[i].SetText("");
  }
  curve.lblMeasuredSignal.SetText("");
  Open();
  InWindow([] {
    EXPECT_FALSE(Series("Before").isVisible());
    EXPECT_TRUE(Series("After").isVisible());
    EXPECT_FALSE(Series("Measured").isVisible());
    for (const auto* item : FindWindow("frmCalCurve")->findChild<QChartView*>()->scene()->items()) {
      const auto* note = qgraphicsitem_cast<const QGraphicsSimpleTextItem*>(item);
      EXPECT_FALSE(note != nullptr && note->isVisible());
    }
  });
  desk.Run();
}

TEST_F(CalCurveTest, FollowsTheForm) {
  Open();
  InWindow([this] {
    curve.lblAfterValue[3].SetText("320,5");
    curve.lblMeasuredValue.SetText("360");
  });
  InWindow([] {
    EXPECT_EQ(Series("After").at(3), QPointF(59000, 320.5));
    EXPECT_EQ(Series("Measured").at(0), QPointF(58500, 360));
    EXPECT_EQ(Table().item(3, 3)->text(), "320,5");
  });
  desk.Run();
}

TEST_F(CalCurveTest, IsClosedByItsButtonByEscapeAndByTheFrame) {
  const Desk::Step ways[] = {[this] { Press(desk.Find("frmCalCurve", "btnClose")); },
                             [] { PressKey(*FindWindow("frmCalCurve"), Qt::Key_Escape); },
                             [] { PressKey(*FindWindow("frmCalCurve")->focusWidget(), Qt::Key_Return); },
                             [] { FindWindow("frmCalCurve")->close(); }};
  for (const auto& way : ways) {
    Open();
    InWindow(way);
    desk.When([] { return FindWindow("frmCalCurve") == nullptr; },
              [this] { EXPECT_FALSE(curve.form.Visible()); });
  }
  desk.Run();
  EXPECT_EQ(desk.StepsLeft(), 0U);
}

TEST_F(CalCurveTest, FitsASmallLaptop) {
  Open();
  InWindow([] {
    EXPECT_LE(FindWindow("frmCalCurve")->width(), 1366);
    EXPECT_LE(FindWindow("frmCalCurve")->height(), 690);
  });
  desk.Run();
}

}  // namespace
}  // namespace brelant::test
