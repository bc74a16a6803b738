// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/platform6/ChainView.h"

#include <QGridLayout>
#include <QPainter>
#include <QPainterPath>
#include <functional>

#include "desktop/Appearance.h"
#include "desktop/kit/Card.h"
#include "desktop/kit/arrow.h"
#include "desktop/kit/fields.h"
#include "desktop/kit/make.h"
#include "desktop/kit/text.h"
#include "panels/frm6.h"
#include "shell/Common.h"

namespace brelant::platform6 {

namespace {

/// An output beside the other: the functions that are its own stand below it.
constexpr int kColumns = 3;
constexpr int kSpacing = 10;
/// Between the two rows, where the wire runs.
constexpr int kGutter = 24;
constexpr double kBadgeSize = 1.3;
constexpr double kNumberSize = 1.15;
constexpr double kWire = 2;

bool StandsOnFunction1(int index) {
  return index >= kColumns;
}

/// A text that follows the controls, whether or not they can be reached.
QLabel& AddText(Views& views, const std::function<QString()>& text, Card& card, QBoxLayout& layout) {
  auto& label = AddCaption({}, card, layout);
  views.OnRefresh([&label, text] { label.setText(text()); });
  return label;
}

void AddEnd(Views& views, const QString& letter, const std::function<float()>& end, Card& card,
            QBoxLayout& layout) {
  AddCaption(letter, card, layout);
  const auto text = [end] { return QString::fromStdString(NumberText(end())); };
  ScaleFont(AddText(views, text, card, layout), kNumberSize, QFont::DemiBold);
}

}  // namespace

ChainView::ChainView(Views& views, const JumperFace& jumper, QWidget* parent) : QWidget(parent) {
  auto& grid = LayOut<QGridLayout>(*this, kSpacing);
  grid.setVerticalSpacing(kGutter);
  for (int i = 0; i < frm6::kFunctions; ++i) {
    functions_.push_back(&MakeFunction(views, jumper, i));
    grid.addWidget(functions_.back(), i / kColumns, i % kColumns);
  }
  for (int column = 0; column < kColumns; ++column) grid.setColumnStretch(column, 1);
}

QWidget& ChainView::MakeFunction(Views& views, const JumperFace& jumper, int index) {
  auto& card = Make<Card>(*this);
  card.setObjectName(QString("function(%1)").arg(index));
  auto& row = LayOut<QHBoxLayout>(card, 6);
  row.setContentsMargins(10, 5, 10, 5);
  auto& badge = AddCaption(QString::number(index + 1), card, row);
  ScaleFont(badge, kBadgeSize, QFont::DemiBold);
  const auto& channel = views("lblFchannel", index);
  const auto& unit = views("lblFaUnit", index);
  AddText(
      views,
      [index, &channel] { return StandsOnFunction1(index) ? QString("on function 1") : TextOf(channel); },
      card, row);
  row.addStretch();
  AddEnd(
      views, "a", [&jumper, index] { return jumper.Ends().A(index + 1); }, card, row);
  row.addSpacing(6);
  AddEnd(
      views, "b", [&jumper, index] { return jumper.Ends().B(index + 1); }, card, row);
  // What function 1 gives is percent, whatever channel the record names.
  AddText(
      views, [index, &unit] { return StandsOnFunction1(index) ? QString("%") : TextOf(unit); }, card, row);
  return card;
}

void ChainView::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const auto ink = InkOf(palette()).wire;
  const QRectF source(functions_.front()->geometry());
  const double turn = source.bottom() + kGutter / 2.5;
  QPainterPath lines;
  QPainterPath heads;
  for (int i = kColumns; i < frm6::kFunctions; ++i) {
    const QRectF target(functions_.at(static_cast<std::size_t>(i))->geometry());
    const QPointF tip(target.center().x(), target.top());
    lines.moveTo(source.center().x(), source.bottom());
    lines.lineTo(source.center().x(), turn);
    lines.lineTo(tip.x(), turn);
    lines.lineTo(tip.x(), tip.y() - kArrow / 2);
    heads.addPath(ArrowHead(tip, {0, 1}));
  }
  painter.setPen(QPen(ink, kWire, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin));
  painter.drawPath(lines);
  painter.fillPath(heads, ink);
}

}  // namespace brelant::platform6
