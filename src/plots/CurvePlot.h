// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QList>
#include <QPointF>
#include <QString>
#include <QWidget>
#include <optional>

class QChart;
class QChartView;
class QGraphicsRectItem;
class QGraphicsSimpleTextItem;
class QLineSeries;
class QScatterSeries;
class QValueAxis;

namespace brelant {

/// Draws a response before and after a change, and the point that was measured. Knows no form.
class CurvePlot : public QWidget {
 public:
  struct Colours {
    QColor ground;
    QColor area;
    QColor grid;
    QColor text;
    QColor before;
    QColor after;
    QColor measured;
  };
  /// x is the signal, y the value, in the units that the titles name.
  struct Curves {
    QString signalTitle;
    QString valueTitle;
    QList<QPointF> before;
    QList<QPointF> after;
    std::optional<QPointF> measured;
    /// What stands beside the measured point.
    QString measuredNote;
  };

  CurvePlot(const Colours& colours, QWidget* parent);

  void Draw(const Curves& curves);

 private:
  void AddAxis(QValueAxis& axis, Qt::Alignment side);
  void AddNote();
  void DressSeries();
  void Scale(const Curves& curves);
  void PlaceNote();

  Colours colours_;
  // All belong to the view.
  QChartView* view_;
  QChart* chart_;
  QValueAxis* signals_;
  QValueAxis* values_;
  QLineSeries* before_;
  QLineSeries* after_;
  QScatterSeries* measured_;
  QGraphicsRectItem* note_;
  QGraphicsSimpleTextItem* noteText_;
};

}  // namespace brelant
