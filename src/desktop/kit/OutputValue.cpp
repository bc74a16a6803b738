// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/kit/OutputValue.h"

#include <QLineEdit>
#include <utility>

#include "desktop/kit/bind.h"
#include "desktop/kit/fields.h"
#include "desktop/kit/make.h"
#include "desktop/kit/text.h"

namespace brelant {

namespace {

constexpr double kTitleSize = 1.15;
constexpr double kUnitSize = 1.6;
constexpr int kSpacing = 6;

}  // namespace

OutputValue::OutputValue(Views& views, Control& value, const Face& face, SpokenName name, QWidget* parent)
    : QWidget(parent) {
  auto& layout = LayOut<QVBoxLayout>(*this, kSpacing);
  ScaleFont(*face.title, kTitleSize, QFont::DemiBold);
  auto& titles = AddRow(layout, kSpacing);
  titles.addWidget(face.title);
  if (!face.beside) titles.addStretch();
  if (face.button != nullptr) titles.addWidget(face.button);
  auto& row = face.beside ? titles : AddRow(layout, kSpacing);
  auto& number = Make<QLineEdit>(*this);
  ScaleFont(number, face.size, QFont::DemiBold);
  number.setFrame(false);
  number.setAlignment(Qt::AlignRight);
  number.setMinimumWidth(Digits(number, 4));
  // What a line edit would like to be wide is far too much for numbers of this size.
  number.setSizePolicy(QSizePolicy::Ignored, number.sizePolicy().verticalPolicy());
  QPalette onCard;
  onCard.setColor(QPalette::Base, Qt::transparent);
  number.setPalette(onCard);
  Bind(views, value, number, std::move(name));
  row.addWidget(&number, 1);
  auto& unit = AddCaption("%", *this, row);
  ScaleFont(unit, kUnitSize);
  unit.setContentsMargins(ToBaseLineOf(number, unit));
  row.setAlignment(&unit, Qt::AlignBottom);
  if (!face.place) return;
  gauge_ = &Make<Gauge>(*this, views, value, *face.place);
  layout.addWidget(gauge_);
}

}  // namespace brelant
