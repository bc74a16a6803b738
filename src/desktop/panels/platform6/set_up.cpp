// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/platform6/set_up.h"

#include <algorithm>
#include <memory>

#include "desktop/kit/fields.h"
#include "desktop/kit/make.h"
#include "desktop/kit/text.h"
#include "panels/frm6.h"

namespace brelant::platform6 {

namespace {

constexpr int kSpacing = 8;
constexpr double kTitleSize = 1.15;
constexpr double kOutputSize = 4.2;
constexpr int kCaptionDigits = 22;

enum Column { kCaption, kField, kUnit };

QVBoxLayout& AddEmptyCard(QBoxLayout& layout) {
  auto& card = Make<Card>(*layout.parentWidget());
  layout.addWidget(&card);
  auto& inside = LayOut<QVBoxLayout>(card, kSpacing);
  inside.setContentsMargins(14, 10, 14, 12);
  return inside;
}

}  // namespace

QVBoxLayout& AddCard(const QString& title, QBoxLayout& layout) {
  auto& inside = AddEmptyCard(layout);
  ScaleFont(AddCaption(title, *inside.parentWidget(), inside), kTitleSize, QFont::DemiBold);
  return inside;
}

QVBoxLayout& AddOutputCard(Views& views, const QString& title, Control& value, std::size_t place,
                           bool withBar, QBoxLayout& layout) {
  auto& inside = AddEmptyCard(layout);
  auto& card = *inside.parentWidget();
  const OutputValue::Face face{&Make<QLabel>(card, title), false, kOutputSize,
                               withBar ? std::optional(place) : std::nullopt};
  inside.addWidget(&Make<OutputValue>(card, views, value, face, Always(title + ", %")));
  return inside;
}

QGridLayout& AddNumbers(QBoxLayout& layout) {
  auto& grid = *std::make_unique<QGridLayout>().release();
  grid.setHorizontalSpacing(kSpacing);
  grid.setVerticalSpacing(kSpacing);
  grid.setColumnStretch(kUnit + 1, 1);
  layout.addLayout(&grid);
  return grid;
}

QLabel& MakeCaption(const QString& caption, QWidget& card) {
  auto& label = Make<QLabel>(card, caption);
  label.setMinimumWidth(Digits(label, kCaptionDigits));
  return label;
}

Unit Fixed(const QString& unit) {
  return [unit] { return unit; };
}

Unit UnitOf(const Views& views, const std::vector<int>& channels) {
  return [&views, channels]() -> QString {
    for (const int channel : channels) {
      for (int i = 0; i < frm6::kLiveValues; ++i) {
        const auto& picture = views("pctChannel", i);
        if (picture.Visible() && picture.Value() == channel) return TextOf(views("lblCH_Type", i));
      }
    }
    return {};
  };
}

void AddNumber(Views& views, Control& field, const QString& title, const QString& caption, const Unit& unit,
               QGridLayout& grid) {
  constexpr int kUnitWidth = 5;
  auto& card = *grid.parentWidget();
  const int row = grid.rowCount();
  grid.addWidget(&MakeCaption(caption, card), row, kCaption);
  grid.addWidget(&MakeNumber(
                     views, field, Digits(card, 9),
                     [title, caption, unit] { return title + ", " + caption + ", " + unit(); }, card),
                 row, kField);
  auto& label = Make<QLabel>(card);
  label.setMinimumWidth(Digits(label, kUnitWidth));
  views.OnRefresh([&label, unit] { label.setText(unit()); });
  grid.addWidget(&label, row, kUnit);
}

}  // namespace brelant::platform6
