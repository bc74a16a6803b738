// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/kit/LiveTile.h"

#include <QApplication>
#include <QPainter>

#include "desktop/kit/PopupLabel.h"
#include "desktop/kit/bind.h"
#include "desktop/kit/make.h"
#include "desktop/kit/text.h"

namespace brelant {

namespace {

constexpr double kUnitSize = 1.25;
constexpr double kNameSize = 1.15;

}  // namespace

LiveTile::LiveTile(Views& views, const Controls& controls, const QString& fixedUnit, double numberSize,
                   QWidget* parent)
    : QFrame(parent), controls_(controls) {
  auto& layout = LayOut<QVBoxLayout>(*this, 0);
  layout.setContentsMargins(12, 8, 12, 8);
  AddName(views, layout);
  AddValue(views, layout, fixedUnit, numberSize);
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding);
  views.OnRefresh([this] {
    SetShown(*this, controls_.presence.Visible());
    TakeColour();
    TakeEditable();
  });
}

void LiveTile::AddName(Views& views, QBoxLayout& layout) {
  auto& name = Make<QLabel>(*this);
  Bind(views, controls_.name, name);
  ScaleFont(name, kNameSize, QFont::DemiBold);
  layout.addWidget(&name);
}

void LiveTile::AddValue(Views& views, QBoxLayout& layout, const QString& fixedUnit, double numberSize) {
  auto& row = AddRow(layout, 8);
  auto& value = Make<QLineEdit>(*this);
  value_ = &value;
  ScaleFont(value, numberSize, QFont::DemiBold);
  value.setFrame(false);
  value.setAlignment(Qt::AlignRight);
  value.setMinimumWidth(Digits(value, 6));
  // What a line edit would like to be wide is far too much for numbers of this size.
  value.setSizePolicy(QSizePolicy::Ignored, value.sizePolicy().verticalPolicy());
  row.addWidget(&value, 1);
  Bind(views, controls_.value, value,
       [this, fixedUnit] { return TextOf(controls_.name) + ", " + Unit(fixedUnit); });
  auto& unit = MakeUnit(views, fixedUnit);
  ScaleFont(unit, kUnitSize);
  unit.setFixedWidth(Digits(unit, 5));
  unit.setContentsMargins(ToBaseLineOf(value, unit));
  row.addWidget(&unit, 0, Qt::AlignBottom);
}

QWidget& LiveTile::MakeUnit(Views& views, const QString& fixedUnit) {
  if (controls_.unit == nullptr) return Make<QLabel>(*this, fixedUnit);
  if (!controls_.unit->onClick) {
    auto& label = Make<QLabel>(*this);
    Bind(views, *controls_.unit, label);
    return label;
  }
  const auto spoken = [this] { return "Unit of " + TextOf(controls_.name); };
  return Make<PopupLabel>(*this, views, *controls_.unit, spoken, false);
}

QString LiveTile::Unit(const QString& fixedUnit) const {
  return controls_.unit == nullptr ? fixedUnit : TextOf(*controls_.unit);
}

void LiveTile::TakeColour() {
  const auto told = ToQColor(controls_.value.Back());
  const auto back = told.isValid() ? told : QApplication::palette().color(QPalette::Base);
  if (back == back_) return;
  back_ = back;
  QPalette palette;
  for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
    palette.setColor(group, QPalette::WindowText, InkOn(back));
  }
  setPalette(palette);
  update();
}

void LiveTile::TakeEditable() {
  if (editable_ == controls_.value.Editable()) return;
  editable_ = controls_.value.Editable();
  update();
}

void LiveTile::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(back_.darker(130), 1));
  painter.setBrush(back_);
  painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 5, 5);
  if (!editable_) return;
  // Shows where to type, when there is no number yet.
  painter.setPen(QPen(palette().color(QPalette::WindowText), 1, Qt::DotLine));
  const auto field = value_->geometry().adjusted(0, 0, 0, 1);
  painter.drawLine(field.bottomLeft(), field.bottomRight());
}

}  // namespace brelant
