// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/platform5/Panel5Window.h"

#include <QCheckBox>
#include <QPushButton>

#include "desktop/kit/ModeBadge.h"
#include "desktop/kit/PopupLabel.h"
#include "desktop/kit/bind.h"
#include "desktop/kit/fields.h"
#include "desktop/kit/make.h"
#include "desktop/kit/text.h"
#include "desktop/panels/platform5/FlowBoard.h"

namespace brelant {

namespace {

constexpr int kLastChannel = 3;

/// The one unit that no control shows. Asked when the window opens: with the sensor's memory at hand the
/// answer costs nothing on the line.
QString UnitOfLastChannel(const Views& views, const Panel& panel) {
  const auto isThere = [&](int channel) { return views("pctChannel", channel).Visible(); };
  if (!isThere(kLastChannel)) return {};
  // Live values come in the order of the channels, without those that are not there.
  std::size_t before = 0;
  for (int channel = 0; channel < kLastChannel; ++channel) before += isThere(channel) ? 1 : 0;
  return QString::fromStdString(panel.LiveValues().at(before).unit);
}

}  // namespace

Panel5Window::Panel5Window(Panel& panel, Acts& acts) : PanelWindow(panel, acts) {
  auto& layout = LayOut<QVBoxLayout>(*centralWidget(), 10);
  layout.setContentsMargins(14, 10, 14, 12);
  auto& header = AddRow(layout, 10);
  AddIdentity(header);
  header.addStretch();
  AddCommands(panel, header);
  layout.addWidget(&Make<platform5::FlowBoard>(*centralWidget(), views_, UnitOfLastChannel(views_, panel)),
                   1);
}

void Panel5Window::AddIdentity(QBoxLayout& layout) {
  auto& ground = *centralWidget();
  AddCaption("Serial number", ground, layout);
  auto& serial = Make<QLineEdit>(ground);
  ScaleFont(serial, 1.25, QFont::DemiBold);
  serial.setFrame(false);
  QPalette onGround;
  onGround.setColor(QPalette::Base, Qt::transparent);
  serial.setPalette(onGround);
  serial.setFixedWidth(Digits(serial, 10));
  Bind(views_, views_("txbSN"), serial, Always("Serial number"));
  layout.addWidget(&serial);
  AddCaption("ID", ground, layout);
  layout.addWidget(&MakeNumber(views_, views_("txbID"), Digits(ground, 5), Always("Bus ID"), ground));
  layout.addSpacing(10);
  AddCaption("Display", ground, layout);
  layout.addWidget(&Make<PopupLabel>(ground, views_, views_("lblDisplayMode"), Always("Display mode"), true));
}

void Panel5Window::AddCommands(Panel& panel, QBoxLayout& layout) {
  auto& ground = *centralWidget();
  layout.addWidget(&Make<ModeBadge>(ground, views_, panel.cbxSimulated));
  auto& simulated = Make<QCheckBox>(ground);
  Bind(views_, panel.cbxSimulated, simulated, {'u'});
  layout.addWidget(&simulated);
  layout.addSpacing(10);
  auto& read = Make<QPushButton>(ground);
  Bind(views_, panel.btnReadFromSensor, read, {'R'});
  layout.addWidget(&read);
  auto& send = Make<QPushButton>(ground);
  Bind(views_, panel.btnSendToSensor, send, {'d'});
  layout.addWidget(&send);
}

}  // namespace brelant
