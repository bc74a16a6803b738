// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/Appearance.h"
#include "desktop/kit/PictureButton.h"
#include "desktop/kit/PopupLabel.h"
#include "desktop/kit/Shape.h"
#include "desktop/kit/bind.h"
#include "desktop/kit/fields.h"
#include "desktop/kit/make.h"
#include "desktop/kit/text.h"
#include "desktop/panels/flow/SignalRow.h"
#include "desktop/panels/flow/columns.h"
#include "panels/FunctionBlocks.h"

namespace brelant::flow {

namespace {

/// Those that the panel has.
std::vector<Control*> PicturesOf(Views& views, int index) {
  std::vector<Control*> pictures;
  for (const char* name : FunctionBlocks::kPictures) {
    auto* picture = views.Model().Find(name + ("(" + std::to_string(index) + ")"));
    if (picture != nullptr) pictures.push_back(picture);
  }
  return pictures;
}

void AddPicture(Views& views, int index, const Columns& columns, Card& card, QHBoxLayout& layout) {
  const PictureButton::Face face{
      [&card](QPainter& painter, const QRectF& rect, int type) {
        const auto ink = InkOf(card.palette());
        const auto curve = card.palette().color(QPalette::Text);
        PaintShape(painter, rect, static_cast<FunctionBlocks::Type>(type), {ink.wire, curve, ink.area});
      },
      [index](int type) {
        return QString("Function %1, ").arg(index + 1) +
               ShapeInWords(static_cast<FunctionBlocks::Type>(type));
      }};
  auto& picture = Make<PictureButton>(card, views, PicturesOf(views, index), face);
  picture.setFixedSize(columns.picture);
  layout.addWidget(&picture);
}

void AddLimit(Views& views, int index, const std::string& letter, const Columns& columns, Card& card,
              QHBoxLayout& layout) {
  auto& unit = views("lblF" + letter + "Unit", index);
  layout.addWidget(&MakeNumber(
      views, views("txbF" + letter, index), columns.number,
      [index, letter, &unit] {
        return QString("Function %1, %2, %3")
            .arg(index + 1)
            .arg(QString::fromStdString(letter), TextOf(unit));
      },
      card));
  AddLabel(views, unit, 0, card, layout).setFixedWidth(columns.unit);
}

void FillFunction(Views& views, int index, const Columns& columns, Card& card, QHBoxLayout& layout) {
  auto& badge = AddCaption(QString::number(index + 1), card, layout);
  ScaleFont(badge, 1.3, QFont::DemiBold);
  badge.setFixedWidth(columns.badge);
  badge.setAlignment(Qt::AlignCenter);
  auto& channel = Make<PopupLabel>(
      card, views, views("lblFchannel", index),
      [index] { return QString("Function %1, channel").arg(index + 1); }, true);
  channel.setFixedWidth(columns.channel);
  layout.addWidget(&channel);
  AddLimit(views, index, "a", columns, card, layout);
  AddLimit(views, index, "b", columns, card, layout);
  AddPicture(views, index, columns, card, layout);
}

}  // namespace

SignalRow& AddFunction(Views& views, int index, int outputs, bool dense, QWidget& parent) {
  return Make<SignalRow>(parent, views, QString("Function %1").arg(index + 1),
                         TicksOf(views, "cbxFout", outputs, "(" + std::to_string(index) + ")"), dense,
                         [&views, index, dense](Card& card, QHBoxLayout& layout) {
                           FillFunction(views, index, Columns(card, dense), card, layout);
                         });
}

QWidget& AddHeadings(Views& views, int outputs, bool dense, const std::function<QString(std::size_t)>& nameOf,
                     QWidget& parent) {
  auto& headings = Make<QWidget>(parent);
  auto& layout = LayOut<QHBoxLayout>(headings, 0);
  const Columns columns(headings, dense);
  const auto add = [&](const QString& text, int width, Qt::Alignment alignment) -> QLabel& {
    auto& label = AddCaption(text, headings, layout);
    ScaleFont(label, 1, QFont::DemiBold);
    label.setFixedWidth(width);
    label.setAlignment(alignment);
    return label;
  };
  const int limit = columns.number + columns.unit + 2 * columns.gap;
  add("Functions", columns.badge + columns.channel + 3 * columns.gap, Qt::AlignLeft);
  add("a", limit, Qt::AlignLeft);
  add("b", limit, Qt::AlignLeft);
  add("Shape", columns.picture.width() + columns.gap, Qt::AlignLeft);
  for (std::size_t place = 0; place < static_cast<std::size_t>(outputs); ++place) {
    auto& name = add({}, columns.tick, Qt::AlignCenter);
    views.OnRefresh([&name, nameOf, place] {
      name.setText(nameOf(place));
      SetShown(name, !name.text().isEmpty());
    });
  }
  return headings;
}

}  // namespace brelant::flow
