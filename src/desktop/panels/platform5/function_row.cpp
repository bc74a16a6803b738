// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/Appearance.h"
#include "desktop/kit/PictureButton.h"
#include "desktop/kit/PopupLabel.h"
#include "desktop/kit/Shape.h"
#include "desktop/kit/bind.h"
#include "desktop/kit/fields.h"
#include "desktop/kit/make.h"
#include "desktop/kit/text.h"
#include "desktop/panels/platform5/SignalRow.h"
#include "desktop/panels/platform5/columns.h"
#include "panels/FunctionBlocks.h"

namespace brelant::platform5 {

namespace {

/// In the order of FunctionBlocks::Type.
constexpr std::array<const char*, FunctionBlocks::kUsualTypes> kPictures{
    "pctFDigPsignPslope", "pctFDigPsignNslope", "pctFDigNsignPslope", "pctFDigNsignNslope", "pctFNsignNslope",
    "pctFNsignPslope",    "pctFPsignNslope",    "pctFPsignPslope",    "pctFPslope",         "pctFNslope"};

std::vector<Control*> PicturesOf(Views& views, int index) {
  std::vector<Control*> pictures;
  pictures.reserve(kPictures.size());
  for (const char* name : kPictures) pictures.push_back(&views(name, index));
  return pictures;
}

void AddPicture(Views& views, int index, Card& card, QHBoxLayout& layout) {
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
  picture.setFixedSize(Columns(card).picture);
  layout.addWidget(&picture);
}

void AddLimit(Views& views, int index, const std::string& letter, Card& card, QHBoxLayout& layout) {
  auto& unit = views("lblF" + letter + "Unit", index);
  const Columns columns(card);
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

void FillFunction(Views& views, int index, Card& card, QHBoxLayout& layout) {
  const Columns columns(card);
  auto& badge = AddCaption(QString::number(index + 1), card, layout);
  ScaleFont(badge, 1.3, QFont::DemiBold);
  badge.setFixedWidth(columns.badge);
  badge.setAlignment(Qt::AlignCenter);
  auto& channel = Make<PopupLabel>(
      card, views, views("lblFchannel", index),
      [index] { return QString("Function %1, channel").arg(index + 1); }, true);
  channel.setFixedWidth(columns.channel);
  layout.addWidget(&channel);
  AddLimit(views, index, "a", card, layout);
  AddLimit(views, index, "b", card, layout);
  AddPicture(views, index, card, layout);
}

}  // namespace

SignalRow& AddFunction(Views& views, int index, QWidget& parent) {
  return Make<SignalRow>(
      parent, views, QString("Function %1").arg(index + 1),
      SignalRow::Feeds{&views("cbxFout1", index), &views("cbxFout2", index)},
      [&views, index](Card& card, QHBoxLayout& layout) { FillFunction(views, index, card, layout); });
}

QWidget& AddHeadings(QWidget& parent) {
  auto& headings = Make<QWidget>(parent);
  auto& layout = LayOut<QHBoxLayout>(headings, 0);
  const Columns columns(headings);
  const auto add = [&](const QString& text, int width, Qt::Alignment alignment) {
    auto& label = AddCaption(text, headings, layout);
    ScaleFont(label, 1, QFont::DemiBold);
    label.setFixedWidth(width);
    label.setAlignment(alignment);
  };
  const int limit = columns.number + columns.unit + 2 * columns.gap;
  add("Functions", columns.badge + columns.channel + 3 * columns.gap, Qt::AlignLeft);
  add("a", limit, Qt::AlignLeft);
  add("b", limit, Qt::AlignLeft);
  add("Shape", columns.picture.width() + columns.gap, Qt::AlignLeft);
  add("Out 1", columns.tick, Qt::AlignCenter);
  add("Out 2", columns.tick, Qt::AlignCenter);
  return headings;
}

}  // namespace brelant::platform5
