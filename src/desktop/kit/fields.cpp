// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/kit/fields.h"

#include <utility>

#include "desktop/kit/bind.h"
#include "desktop/kit/make.h"
#include "desktop/kit/text.h"

namespace brelant {

namespace {

/// Numbers are what is read from a distance.
constexpr double kNumberSize = 1.15;
constexpr double kFactSize = 1.25;

}  // namespace

QLineEdit& MakeNumber(Views& views, Control& control, int width, SpokenName name, QWidget& parent) {
  auto& edit = Make<QLineEdit>(parent);
  ScaleFont(edit, kNumberSize);
  edit.setAlignment(Qt::AlignRight);
  edit.setFixedWidth(width);
  Bind(views, control, edit, std::move(name));
  return edit;
}

QLineEdit& MakeFact(Views& views, Control& control, int digits, SpokenName name, QWidget& parent) {
  auto& fact = Make<QLineEdit>(parent);
  ScaleFont(fact, kFactSize, QFont::DemiBold);
  fact.setFrame(false);
  QPalette onGround;
  onGround.setColor(QPalette::Base, Qt::transparent);
  fact.setPalette(onGround);
  fact.setFixedWidth(Digits(fact, digits));
  Bind(views, control, fact, std::move(name));
  return fact;
}

QLabel& AddCaption(const QString& text, QWidget& parent, QBoxLayout& layout) {
  auto& label = Make<QLabel>(parent, text);
  layout.addWidget(&label);
  return label;
}

QLabel& AddLabel(Views& views, Control& control, int digits, QWidget& parent, QBoxLayout& layout) {
  auto& label = Make<QLabel>(parent);
  label.setMinimumWidth(Digits(label, digits));
  Bind(views, control, label);
  layout.addWidget(&label);
  return label;
}

SpokenName Always(const QString& name) {
  return [name] { return name; };
}

void KeepPlace(QWidget& widget) {
  auto policy = widget.sizePolicy();
  policy.setRetainSizeWhenHidden(true);
  widget.setSizePolicy(policy);
}

}  // namespace brelant
