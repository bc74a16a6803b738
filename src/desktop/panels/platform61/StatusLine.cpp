// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/platform61/StatusLine.h"

#include <QPainter>

#include "desktop/kit/bind.h"
#include "desktop/kit/make.h"
#include "desktop/kit/text.h"
#include "panels/PanelFrame.h"

namespace brelant::platform61 {

namespace {

constexpr double kNameSize = 1.15;
constexpr double kStatusSize = 1.6;

QPalette Inked(const QColor& ink) {
  QPalette palette;
  palette.setColor(QPalette::WindowText, ink);
  return palette;
}

}  // namespace

StatusLine::StatusLine(Views& views, QWidget* parent) : QFrame(parent) {
  const auto& presence = views("pctChannel(5)");
  setObjectName(QString::fromStdString(presence.Name()));
  auto& layout = LayOut<QHBoxLayout>(*this, 16);
  layout.setContentsMargins(12, 6, 12, 6);
  AddName(views, layout);
  AddStatus(views, layout);
  views.OnRefresh([this, &presence] { SetShown(*this, presence.Visible()); });
}

void StatusLine::AddName(Views& views, QBoxLayout& layout) {
  auto& name = Make<QLabel>(*this);
  ScaleFont(name, kNameSize, QFont::DemiBold);
  name.setPalette(Inked(Qt::white));
  Bind(views, views("lblCH_Name(5)"), name);
  layout.addWidget(&name);
}

void StatusLine::AddStatus(Views& views, QBoxLayout& layout) {
  auto& status = Make<QLabel>(*this);
  ScaleFont(status, kStatusSize, QFont::Bold);
  status.setWordWrap(true);
  // Room for two lines, so that the window keeps its size when many faults come.
  status.setText("\n");
  status.setMinimumHeight(status.sizeHint().height());
  auto& control = views("txbCHact(5)");
  const auto& name = views("lblCH_Name(5)");
  Bind(views, control, status);
  layout.addWidget(&status, 1);
  views.OnRefresh([&status, &control, &name] {
    status.setPalette(Inked(ToQColor(control.Fore())));
    status.setAccessibleName(TextOf(name) + ", " + status.text());
  });
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

}  // namespace brelant::platform61
