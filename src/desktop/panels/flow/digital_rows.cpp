// SPDX-License-Identifier: GPL-3.0-or-later
#include <QCheckBox>
#include <QPainterPath>
#include <QPushButton>

#include "desktop/Appearance.h"
#include "desktop/kit/PictureButton.h"
#include "desktop/kit/PopupLabel.h"
#include "desktop/kit/bind.h"
#include "desktop/kit/fields.h"
#include "desktop/kit/make.h"
#include "desktop/kit/text.h"
#include "desktop/panels/flow/SignalRow.h"
#include "desktop/panels/flow/columns.h"

namespace brelant::flow {

namespace {

/// The pulse of a trigger, above or below the axis, and on it as a thick line the part that is over.
void PaintPulse(QPainter& painter, const QRectF& rect, bool isNegative, const Control& bar,
                const QPalette& palette) {
  const auto ink = InkOf(palette);
  const double unit = rect.height() / 40;
  const auto frame = rect.adjusted(2 * unit, 6 * unit, -2 * unit, -6 * unit);
  const double axis = isNegative ? frame.top() : frame.bottom();
  const double level = isNegative ? frame.bottom() : frame.top();
  const double begin = frame.left() + frame.width() * 0.15;
  const double end = frame.left() + frame.width() * 0.85;
  painter.fillRect(QRectF(QPointF(begin, frame.top()), QPointF(end, frame.bottom())), ink.area);
  QPainterPath pulse(QPointF(frame.left(), axis));
  for (const auto& point : {QPointF(begin, axis), QPointF(begin, level), QPointF(end, level),
                            QPointF(end, axis), QPointF(frame.right(), axis)}) {
    pulse.lineTo(point);
  }
  painter.setPen(QPen(palette.color(QPalette::Text), 2 * unit, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
  painter.drawPath(pulse);
  if (!bar.Visible()) return;
  painter.setPen(QPen(ink.running, 6 * unit, Qt::SolidLine, Qt::FlatCap));
  painter.drawLine(QPointF(begin, level), QPointF(begin + (end - begin) * bar.Value() / 100, level));
}

/// From off to on, above or below the axis.
void PaintStep(QPainter& painter, const QRectF& rect, bool isNegative, const QPalette& palette) {
  const double unit = rect.height() / 40;
  const auto frame = rect.adjusted(2 * unit, 6 * unit, -2 * unit, -6 * unit);
  const double axis = isNegative ? frame.top() : frame.bottom();
  const double level = isNegative ? frame.bottom() : frame.top();
  const double middle = frame.center().x();
  painter.fillRect(QRectF(QPointF(middle, frame.top()), frame.bottomRight()), InkOf(palette).area);
  QPainterPath step(QPointF(frame.left(), axis));
  for (const auto& point : {QPointF(middle, axis), QPointF(middle, level), QPointF(frame.right(), level)}) {
    step.lineTo(point);
  }
  painter.setPen(QPen(palette.color(QPalette::Text), 2 * unit, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
  painter.drawPath(step);
}

/// What the form calls the two signs of a level, and how one is painted and spoken of.
struct Signs {
  std::vector<Control*> pictures;
  QString name;
  std::function<void(QPainter&, const QRectF&, bool isNegative)> paint;
};

PictureButton& AddSigns(Views& views, const Signs& signs, const Columns& columns, Card& card,
                        QHBoxLayout& layout) {
  const PictureButton::Face face{
      [paint = signs.paint](QPainter& painter, const QRectF& rect, int sign) {
        paint(painter, rect, sign == 1);
      },
      [name = signs.name](int sign) { return name + (sign == 0 ? " adds" : " takes away"); }};
  auto& picture = Make<PictureButton>(card, views, signs.pictures, face);
  picture.setFixedSize(columns.picture);
  layout.addWidget(&picture);
  return picture;
}

void AddPulse(Views& views, const Columns& columns, Card& card, QHBoxLayout& layout) {
  const std::array<Control*, 2> bars{&views("linDigTPsign"), &views("linDigTNsign")};
  const auto paint = [&card, bars](QPainter& painter, const QRectF& rect, bool isNegative) {
    PaintPulse(painter, rect, isNegative, *bars.at(isNegative ? 1 : 0), card.palette());
  };
  auto& picture = AddSigns(views, {{&views("pctDigTPsign"), &views("pctDigTNsign")}, "Trigger", paint},
                           columns, card, layout);
  views.OnRefresh([&picture, bars] {
    if (bars[0]->Visible() || bars[1]->Visible() || picture.property("runs").toBool()) picture.update();
    picture.setProperty("runs", bars[0]->Visible() || bars[1]->Visible());
  });
}

/// A row of fields in a column of that width, under a caption.
QHBoxLayout& AddFields(const QString& caption, int width, Card& card, QHBoxLayout& layout) {
  auto& column = Make<QWidget>(card);
  column.setFixedWidth(width);
  layout.addWidget(&column);
  auto& inside = LayOut<QVBoxLayout>(column, 2);
  inside.addStretch();
  AddCaption(caption, column, inside);
  auto& row = AddRow(inside, layout.spacing());
  // All rows are as high as a choice, so that the captions are on one line.
  row.addStrut(2 * card.fontMetrics().height());
  inside.addStretch();
  return row;
}

QHBoxLayout& AddTitle(const QString& title, const Columns& columns, Card& card, QHBoxLayout& layout) {
  return AddFields(title, columns.badge + columns.gap + columns.channel, card, layout);
}

void AddLevel(Views& views, Control& level, const QString& name, const Columns& columns, Card& card,
              QHBoxLayout& layout) {
  auto& row = AddFields("Level", columns.number + columns.gap + columns.unit, card, layout);
  row.addWidget(&MakeNumber(views, level, columns.number, Always(name), card));
  AddCaption("%", card, row).setFixedWidth(columns.unit);
}

void AddTime(Views& views, const Columns& columns, Card& card, QHBoxLayout& layout) {
  auto& row = AddFields("Time", columns.number + columns.gap + columns.unit, card, layout);
  auto& unit = views("lblDigTunit");
  const auto spoken = [&unit] { return "Trigger time, " + TextOf(unit); };
  row.addWidget(&MakeNumber(views, views("txbDigTtime"), columns.number - 2 * columns.gap, spoken, card));
  row.addWidget(&Make<PopupLabel>(card, views, unit, Always("Unit of the trigger time"), true), 1);
}

void FillTrigger(Views& views, const Columns& columns, Card& card, QHBoxLayout& layout) {
  auto& row = AddTitle("Digital trigger", columns, card, layout);
  auto& button = Make<QPushButton>(card);
  Bind(views, views("btnDigTrig"), button, {'T'});
  row.addWidget(&button);
  row.addStretch();
  AddLevel(views, views("txbDigTlevel"), "Trigger level, %", columns, card, layout);
  AddTime(views, columns, card, layout);
  AddPulse(views, columns, card, layout);
}

void FillInput(Views& views, const Columns& columns, Card& card, QHBoxLayout& layout) {
  auto& row = AddTitle("Digital input", columns, card, layout);
  auto& active = Make<QCheckBox>(card);
  Bind(views, views("cbxDigActive"), active, {'A'});
  row.addWidget(&active);
  row.addStretch();
  AddLevel(views, views("txbDigLevel"), "Level of the digital input, %", columns, card, layout);
  layout.addStretch();
  const auto paint = [&card](QPainter& painter, const QRectF& rect, bool isNegative) {
    PaintStep(painter, rect, isNegative, card.palette());
  };
  AddSigns(views, {{&views("pctDigPSign"), &views("pctDigNSign")}, "Digital input", paint}, columns, card,
           layout);
}

}  // namespace

SignalRow& AddTrigger(Views& views, int outputs, bool dense, QWidget& parent) {
  return Make<SignalRow>(parent, views, QString("Trigger"), TicksOf(views, "cbxDigTout", outputs), dense,
                         [&views, dense](Card& card, QHBoxLayout& layout) {
                           FillTrigger(views, Columns(card, dense), card, layout);
                         });
}

SignalRow& AddDigitalInput(Views& views, int outputs, bool dense, QWidget& parent) {
  return Make<SignalRow>(parent, views, QString("Digital input"), TicksOf(views, "cbxDigout", outputs), dense,
                         [&views, dense](Card& card, QHBoxLayout& layout) {
                           FillInput(views, Columns(card, dense), card, layout);
                         });
}

}  // namespace brelant::flow
