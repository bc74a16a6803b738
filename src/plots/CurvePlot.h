// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QList>
#include <QPointF>
#include <QString>
#include <QWidget>
#include <optional>
#include <vector>

class QAbstractSeries;
class QChart;
class QChartView;
class QGraphicsRectItem;
class QGraphicsSimpleTextItem;
class QLineSeries;
class QScatterSeries;
class QValueAxis;

namespace brelant {

/// Draws curves, and one point with a note beside it. Knows no form.
class CurvePlot : public QWidget {
 public:
  struct Colours {
    QColor ground;
    QColor area;
    QColor grid;
    QColor text;
    QColor point;
  };
  struct Curve {
    QString name;
    QColor colour;
    /// What is looked for, rather than what it is compared with.
    bool strong;
    bool dashed;
    QList<QPointF> points;
  };
  struct Range {
    double least;
    double greatest;
  };
  struct Axis {
    QString title;
    /// Nothing: as the points need it.
    std::optional<Range> range;
  };
  /// x and y are in the units that the titles name. Curves that come later lie above; what has no point is
  /// not in the legend either.
  struct Curves {
    Axis x;
    Axis y;
    std::vector<Curve> curves;
    std::optional<QPointF> point;
    QString pointName;
    QString note;
  };

  CurvePlot(const Colours& colours, QWidget* parent);

  void Draw(const Curves& curves);

 private:
  QLineSeries& AddSeries();
  void Attach(QAbstractSeries& series);
  void AddPoint();
  void AddAxis(QValueAxis& axis, Qt::Alignment side);
  void AddNote();
  void DressLegend();
  void DrawCurves(const std::vector<Curve>& curves);
  void PlaceNote();
  int CountPointsIn(const QRectF& place) const;

  Colours colours_;
  // All belong to the view.
  QChartView* view_;
  QChart* chart_;
  QValueAxis* x_;
  QValueAxis* y_;
  std::vector<QLineSeries*> series_;
  QScatterSeries* point_;
  QGraphicsRectItem* note_;
  QGraphicsSimpleTextItem* noteText_;
};

}  // namespace brelant
