// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/kit/PopupLabel.h"

#include <QKeyEvent>
#include <QPainterPath>
#include <QStylePainter>
#include <utility>

#include "desktop/kit/make.h"
#include "desktop/kit/text.h"

namespace brelant {

PopupLabel::PopupLabel(Views& views, Control& control, SpokenName name, bool framed, QWidget* parent)
    : QAbstractButton(parent), framed_(framed) {
  setObjectName(QString::fromStdString(control.Name()));
  setAttribute(Qt::WA_Hover);
  setSizePolicy(framed ? QSizePolicy::Preferred : QSizePolicy::Fixed, QSizePolicy::Fixed);
  views.OnRefresh([this, &control, name = std::move(name)] {
    SetShown(*this, control.Visible());
    setEnabled(control.Enabled());
    setFocusPolicy(control.Enabled() ? Qt::TabFocus : Qt::NoFocus);
    setToolTip(QString::fromStdString(control.Tip()));
    if (text() != TextOf(control)) {
      setText(TextOf(control));
      updateGeometry();
    }
    const auto spoken = name() + ": " + text();
    if (accessibleName() != spoken) setAccessibleName(spoken);
  });
  connect(this, &QAbstractButton::clicked, this,
          [this, &views, &control] { views.ReportClick(*this, control); });
}

QSize PopupLabel::sizeHint() const {
  const QSize content(fontMetrics().horizontalAdvance(text()), fontMetrics().height());
  const auto margins = contentsMargins();
  if (!framed_) return content + QSize(ArrowWidth(), margins.top() + margins.bottom());
  const auto option = ChoiceOption();
  return style()->sizeFromContents(QStyle::CT_ComboBox, &option, content, this);
}

void PopupLabel::paintEvent(QPaintEvent* /*event*/) {
  if (framed_) {
    PaintFramed();
  } else {
    PaintFlat();
  }
}

/// The keys that open a choice elsewhere, besides the space bar of every button.
void PopupLabel::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Down:
    case Qt::Key_F4:
      click();
      break;
    default:
      QAbstractButton::keyPressEvent(event);
  }
}

QStyleOptionComboBox PopupLabel::ChoiceOption() const {
  QStyleOptionComboBox option;
  option.initFrom(this);
  option.currentText = text();
  option.state |= isDown() ? QStyle::State_Sunken : QStyle::State_Raised;
  return option;
}

void PopupLabel::PaintFramed() {
  QStylePainter painter(this);
  const auto option = ChoiceOption();
  painter.drawComplexControl(QStyle::CC_ComboBox, option);
  painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}

void PopupLabel::PaintFlat() {
  QStylePainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const auto ink = palette().color(QPalette::Active, QPalette::WindowText);
  const auto place = contentsRect();
  painter.setPen(ink);
  painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter, text());
  if (!isEnabled()) return;
  const double side = ArrowWidth() * 0.22;
  const double left = fontMetrics().horizontalAdvance(text()) + side;
  const QPointF tip(left + side, place.center().y() + side);
  QPainterPath arrow(tip);
  arrow.lineTo(tip + QPointF(-side, -side));
  arrow.lineTo(tip + QPointF(side, -side));
  painter.fillPath(arrow, ink);
  if (!hasFocus() && !underMouse()) return;
  painter.setPen(QPen(ink, 1, hasFocus() ? Qt::DotLine : Qt::SolidLine));
  painter.drawLine(QPointF(0, place.bottom()), QPointF(left + 2 * side, place.bottom()));
}

int PopupLabel::ArrowWidth() const {
  return fontMetrics().height();
}

}  // namespace brelant
