// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/platform5/OutputBlock.h"

#include <QGridLayout>
#include <QPainter>
#include <QRadioButton>
#include <array>

#include "desktop/Appearance.h"
#include "desktop/kit/Gauge.h"
#include "desktop/kit/bind.h"
#include "desktop/kit/fields.h"
#include "desktop/kit/make.h"
#include "desktop/kit/text.h"

namespace brelant::platform5 {

namespace {

constexpr double kNumberSize = 4.2;
constexpr double kUnitSize = 1.6;
constexpr int kEdge = 5;

/// Indexes of the labels around the settings of an output: base line and its unit, integration time and its
/// unit.
constexpr std::array<std::array<int, 4>, 2> kLabels{{{42, 49, 38, 50}, {12, 15, 11, 16}}};

}  // namespace

OutputBlock::OutputBlock(Views& views, int index, QWidget* parent) : Card(parent), index_(index) {
  auto& layout = LayOut<QVBoxLayout>(*this, 6);
  layout.setContentsMargins(12 + kEdge, 8, 12, 10);
  AddValue(views, layout);
  layout.addStretch();
  AddKinds(views, layout);
  AddSettings(views, layout);
  setFixedWidth(Digits(*this, 36));
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
}

void OutputBlock::AddValue(Views& views, QBoxLayout& layout) {
  auto& title = AddCaption(QString("Out %1").arg(index_ + 1), *this, layout);
  ScaleFont(title, 1.15, QFont::DemiBold);
  auto& row = AddRow(layout, 6);
  auto& value = Make<QLineEdit>(*this);
  ScaleFont(value, kNumberSize, QFont::DemiBold);
  value.setFrame(false);
  value.setAlignment(Qt::AlignRight);
  QPalette onCard;
  onCard.setColor(QPalette::Base, Qt::transparent);
  value.setPalette(onCard);
  auto& control = views("txbOutOut", index_);
  Bind(views, control, value, Always(Spoken("%")));
  row.addWidget(&value, 1);
  auto& unit = AddCaption("%", *this, row);
  ScaleFont(unit, kUnitSize);
  unit.setContentsMargins(ToBaseLineOf(value, unit));
  row.setAlignment(&unit, Qt::AlignBottom);
  layout.addWidget(&Make<Gauge>(*this, views, control, static_cast<std::size_t>(index_)));
}

void OutputBlock::AddKinds(Views& views, QBoxLayout& layout) {
  auto& kinds = Make<QWidget>(*this);
  layout.addWidget(&kinds);
  auto& row = LayOut<QHBoxLayout>(kinds, 10);
  for (const char* name : {"optOut5V", "optOut5mA", "optOut5Digital"}) {
    auto& option = Make<QRadioButton>(kinds);
    Bind(views, views(name, index_), option);
    option.setAccessibleName(Spoken(option.text()));
    row.addWidget(&option);
  }
  row.addStretch();
}

void OutputBlock::AddSettings(Views& views, QBoxLayout& layout) {
  auto& grid = *std::make_unique<QGridLayout>().release();
  grid.setVerticalSpacing(4);
  layout.addLayout(&grid);
  const std::array<const char*, 2> fields{"txbOutBaseLine", "txbOutIntTime"};
  const auto& labels = kLabels.at(static_cast<std::size_t>(index_));
  for (int line = 0; line < 2; ++line) {
    auto& caption = views("Label1", labels.at(static_cast<std::size_t>(2 * line)));
    auto& unit = views("Label1", labels.at(static_cast<std::size_t>(2 * line + 1)));
    auto& before = Make<QLabel>(*this);
    auto& after = Make<QLabel>(*this);
    Bind(views, caption, before);
    Bind(views, unit, after);
    auto& edit = MakeNumber(
        views, views(fields.at(static_cast<std::size_t>(line)), index_), Digits(*this, 9),
        [this, &caption, &unit] { return Spoken(TextOf(caption) + ", " + TextOf(unit)); }, *this);
    for (auto* widget : std::initializer_list<QWidget*>{&before, &edit, &after}) KeepPlace(*widget);
    grid.addWidget(&before, line, 0);
    grid.addWidget(&edit, line, 1);
    grid.addWidget(&after, line, 2);
  }
  grid.setColumnStretch(0, 1);
}

QString OutputBlock::Spoken(const QString& what) const {
  return QString("Output %1, ").arg(index_ + 1) + what;
}

void OutputBlock::paintEvent(QPaintEvent* event) {
  Card::paintEvent(event);
  QPainter painter(this);
  painter.fillRect(QRect(0, 0, kEdge, height()),
                   InkOf(palette()).output.at(static_cast<std::size_t>(index_)));
}

}  // namespace brelant::platform5
