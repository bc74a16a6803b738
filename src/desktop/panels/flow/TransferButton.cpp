// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/flow/TransferButton.h"

#include <QPainter>
#include <QPainterPath>
#include <utility>

#include "desktop/kit/make.h"

namespace brelant::flow {

TransferButton::TransferButton(Views& views, const Transfer& transfer, int output,
                               std::function<std::size_t()> place, QWidget* parent)
    : QToolButton(parent) {
  setObjectName(QString("transfer(%1)").arg(output));
  setFocusPolicy(Qt::TabFocus);
  setFixedSize(fontMetrics().height() * 5 / 2, fontMetrics().height() * 9 / 5);
  views.OnRefresh([this, &transfer, output] {
    // An output that is not there has no name that could be spoken.
    if (output >= transfer.Outputs()) return;
    const auto name = "Transfer of " + QString::fromStdString(transfer.NameOf(output));
    if (accessibleName() == name) return;
    setAccessibleName(name);
    setToolTip(name);
  });
  connect(this, &QAbstractButton::clicked, this, [this, &views, &transfer, output, place = std::move(place)] {
    if (window_ == nullptr) window_ = &Make<TransferWindow>(*window(), views, transfer, output, place);
    window_->Open();
  });
}

/// The axes of a plot, and a curve that rises between them.
void TransferButton::paintEvent(QPaintEvent* event) {
  QToolButton::paintEvent(event);
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const double unit = height() / 16.0;
  const auto frame = QRectF(rect()).adjusted(4 * unit, 3 * unit, -4 * unit, -3.5 * unit);
  QPainterPath axes(frame.topLeft());
  axes.lineTo(frame.bottomLeft());
  axes.lineTo(frame.bottomRight());
  QPainterPath curve(frame.bottomLeft() + QPointF(2 * unit, -2 * unit));
  curve.lineTo(frame.left() + frame.width() * 0.4, frame.bottom() - 2 * unit);
  curve.lineTo(frame.left() + frame.width() * 0.75, frame.top() + unit);
  curve.lineTo(frame.right(), frame.top() + unit);
  const auto ink = palette().color(QPalette::ButtonText);
  painter.setPen(QPen(ink, unit));
  painter.drawPath(axes);
  painter.setPen(QPen(ink, 1.6 * unit, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin));
  painter.drawPath(curve);
}

}  // namespace brelant::flow
