// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/header.h"

#include <QCheckBox>
#include <QPushButton>

#include "desktop/kit/ModeBadge.h"
#include "desktop/kit/PopupLabel.h"
#include "desktop/kit/bind.h"
#include "desktop/kit/fields.h"
#include "desktop/kit/make.h"
#include "desktop/kit/text.h"

namespace brelant {

namespace {

constexpr int kSpacing = 10;
constexpr int kDisplays = 4;

void AddFact(Views& views, const QString& caption, Control& control, int digits, QBoxLayout& layout) {
  auto& ground = *layout.parentWidget();
  AddCaption(caption, ground, layout);
  layout.addWidget(&MakeFact(views, control, digits, Always(caption), ground));
}

/// On some panels it is only told.
void AddId(Views& views, QBoxLayout& layout) {
  auto& id = views("txbID");
  if (!id.Editable()) return AddFact(views, "ID", id, 3, layout);
  auto& ground = *layout.parentWidget();
  AddCaption("ID", ground, layout);
  layout.addWidget(&MakeNumber(views, id, Digits(ground, 5), Always("Bus ID"), ground));
}

void AddIdentity(Views& views, const Displays& displays, QBoxLayout& layout) {
  auto& ground = *layout.parentWidget();
  AddFact(views, "Serial number", views("txbSN"), 10, layout);
  // Not all panels show it.
  if (auto* version = views.Model().Find("txbVersion")) AddFact(views, "Version", *version, 3, layout);
  AddId(views, layout);
  layout.addSpacing(kSpacing);
  AddCaption("Display", ground, layout);
  for (const auto& [display, name] : displays) {
    layout.addWidget(&Make<PopupLabel>(ground, views, *display, Always(name), true));
  }
}

void AddCommands(Views& views, Panel& panel, QBoxLayout& layout) {
  auto& ground = *layout.parentWidget();
  layout.addWidget(&Make<ModeBadge>(ground, views, panel.cbxSimulated));
  auto& simulated = Make<QCheckBox>(ground);
  Bind(views, panel.cbxSimulated, simulated, {'u'});
  layout.addWidget(&simulated);
  layout.addSpacing(kSpacing);
  auto& read = Make<QPushButton>(ground);
  Bind(views, panel.btnReadFromSensor, read, {'R'});
  layout.addWidget(&read);
  auto& send = Make<QPushButton>(ground);
  Bind(views, panel.btnSendToSensor, send, {'d'});
  layout.addWidget(&send);
}

}  // namespace

Displays FourDisplays(const Views& views, const std::string& labels) {
  Displays displays;
  for (int i = 0; i < kDisplays; ++i) {
    displays.emplace_back(&views(labels, i), QString("Display %1").arg(i + 1));
  }
  return displays;
}

QBoxLayout& LayOutPanel(Views& views, Panel& panel, const Displays& displays, QWidget& ground) {
  auto& layout = LayOut<QVBoxLayout>(ground, kSpacing);
  layout.setContentsMargins(14, 10, 14, 12);
  auto& row = AddRow(layout, kSpacing);
  AddIdentity(views, displays, row);
  row.addStretch();
  AddCommands(views, panel, row);
  return layout;
}

}  // namespace brelant
