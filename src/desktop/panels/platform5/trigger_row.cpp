// SPDX-License-Identifier: GPL-3.0-or-later
#include <QPainterPath>
#include <QPushButton>

#include "desktop/Appearance.h"
#include "desktop/kit/PictureButton.h"
#include "desktop/kit/PopupLabel.h"
#include "desktop/kit/bind.h"
#include "desktop/kit/fields.h"
#include "desktop/kit/make.h"
#include "desktop/kit/text.h"
#include "desktop/panels/platform5/SignalRow.h"
#include "desktop/panels/platform5/columns.h"

namespace brelant::platform5 {

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

void AddPulse(Views& views, Card& card, QHBoxLayout& layout) {
  const std::array<Control*, 2> bars{&views("linDigTPsign"), &views("linDigTNsign")};
  const PictureButton::Face face{
      [&card, bars](QPainter& painter, const QRectF& rect, int sign) {
        PaintPulse(painter, rect, sign == 1, *bars.at(static_cast<std::size_t>(sign)), card.palette());
      },
      [](int sign) { return QString(sign == 0 ? "Trigger adds" : "Trigger takes away"); }};
  auto& picture = Make<PictureButton>(
      card, views, std::vector<Control*>{&views("pctDigTPsign"), &views("pctDigTNsign")}, face);
  picture.setFixedSize(Columns(card).picture);
  layout.addWidget(&picture);
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
  auto& row = AddRow(inside, Columns(card).gap);
  // All rows are as high as a choice, so that the captions are on one line.
  row.addStrut(2 * card.fontMetrics().height());
  inside.addStretch();
  return row;
}

void AddTitle(Views& views, const Columns& columns, Card& card, QHBoxLayout& layout) {
  auto& row = AddFields("Digital trigger", columns.badge + columns.gap + columns.channel, card, layout);
  auto& button = Make<QPushButton>(card);
  Bind(views, views("btnDigTrig"), button, {'T'});
  row.addWidget(&button);
  row.addStretch();
}

void AddLevel(Views& views, const Columns& columns, Card& card, QHBoxLayout& layout) {
  auto& row = AddFields("Level", columns.number + columns.gap + columns.unit, card, layout);
  row.addWidget(&MakeNumber(views, views("txbDigTlevel"), columns.number, Always("Trigger level, %"), card));
  AddCaption("%", card, row).setFixedWidth(columns.unit);
}

void AddTime(Views& views, const Columns& columns, Card& card, QHBoxLayout& layout) {
  auto& row = AddFields("Time", columns.number + columns.gap + columns.unit, card, layout);
  auto& unit = views("lblDigTunit");
  const auto spoken = [&unit] { return "Trigger time, " + TextOf(unit); };
  row.addWidget(&MakeNumber(views, views("txbDigTtime"), columns.number - 2 * columns.gap, spoken, card));
  row.addWidget(&Make<PopupLabel>(card, views, unit, Always("Unit of the trigger time"), true), 1);
}

}  // namespace

SignalRow& AddTrigger(Views& views, QWidget& parent) {
  return Make<SignalRow>(parent, views, QString("Trigger"),
                         SignalRow::Feeds{&views("cbxDigTout1"), &views("cbxDigTout2")},
                         [&views](Card& card, QHBoxLayout& layout) {
                           const Columns columns(card);
                           AddTitle(views, columns, card, layout);
                           AddLevel(views, columns, card, layout);
                           AddTime(views, columns, card, layout);
                           AddPulse(views, card, layout);
                         });
}

}  // namespace brelant::platform5
