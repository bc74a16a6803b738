// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/alarms/StatusLine.h"

#include <QPainter>

#include "desktop/kit/bind.h"
#include "desktop/kit/make.h"
#include "desktop/kit/text.h"
#include "panels/PanelFrame.h"

namespace brelant::alarms {

namespace {

constexpr double kNameSize = 1.15;
constexpr double kStatusSize = 1.6;
/// So that the line keeps its width where it is as wide as its text.
constexpr int kWidth = 9;

QPalette Inked(const QColor& ink) {
  QPalette palette;
  palette.setColor(QPalette::WindowText, ink);
  return palette;
}

}  // namespace

StatusLine::StatusLine(Views& views, const Controls& controls, const QString& fixedName, int lines,
                       QWidget* parent)
    : QFrame(parent), controls_(controls) {
  auto& layout = LayOut<QHBoxLayout>(*this, 16);
  layout.setContentsMargins(12, 6, 12, 6);
  const auto& name = AddName(views, fixedName, layout);
  AddState(views, name, lines, layout);
}

QLabel& StatusLine::AddName(Views& views, const QString& fixedName, QBoxLayout& layout) {
  auto& name = Make<QLabel>(*this, fixedName);
  ScaleFont(name, kNameSize, QFont::DemiBold);
  name.setPalette(Inked(Qt::white));
  if (controls_.name != nullptr) Bind(views, *controls_.name, name);
  layout.addWidget(&name);
  return name;
}

void StatusLine::AddState(Views& views, const QLabel& name, int lines, QBoxLayout& layout) {
  if (controls_.state.onFocus) return AddField(views, name, layout);
  auto& state = Make<QLabel>(*this);
  ScaleFont(state, kStatusSize, QFont::Bold);
  state.setWordWrap(lines > 1);
  state.setText(QString(lines - 1, '\n'));
  state.setMinimumSize(Digits(state, kWidth), state.sizeHint().height());
  auto& control = controls_.state;
  Bind(views, control, state);
  layout.addWidget(&state, 1);
  views.OnRefresh([&state, &control, &name] {
    state.setPalette(Inked(ToQColor(control.Fore())));
    state.setAccessibleName(name.text() + ", " + state.text());
  });
}

/// A text that hears of the focus.
void StatusLine::AddField(Views& views, const QLabel& name, QBoxLayout& layout) {
  auto& state = Make<QLineEdit>(*this);
  ScaleFont(state, kStatusSize, QFont::Bold);
  state.setFrame(false);
  state.setFixedWidth(Digits(state, kWidth));
  // Handed down from here, as the field's own palette is that of its control.
  QPalette onGround;
  onGround.setColor(QPalette::Base, Qt::transparent);
  setPalette(onGround);
  Bind(views, controls_.state, state, [&name] { return name.text(); });
  layout.addWidget(&state, 1);
}

void StatusLine::paintEvent(QPaintEvent* /*event*/) {
  // Red and green are both read on it, and on none of the other grounds.
  constexpr int kDarker = 600;
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(ToQColor(colours::kFieldBack).darker(kDarker));
  painter.drawRoundedRect(QRectF(rect()), 5, 5);
}

}  // namespace brelant::alarms
