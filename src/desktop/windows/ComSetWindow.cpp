// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/windows/ComSetWindow.h"

#include <QCheckBox>
#include <QKeySequence>
#include <QShortcut>

#include "desktop/kit/bind.h"
#include "desktop/kit/fields.h"
#include "desktop/kit/make.h"
#include "desktop/kit/text.h"
#include "desktop/windows/dialog_parts.h"

namespace brelant {

ComSetWindow::ComSetWindow(frmComSet& dialog, Acts& acts) : DialogWindow(dialog.form, acts) {
  auto& layout = LayOut<QVBoxLayout>(*this, 12);
  layout.setContentsMargins(20, 16, 20, 16);
  layout.setSizeConstraint(QLayout::SetFixedSize);
  AddTitle(dialog, layout);
  AddStartMode(dialog, layout);
  AddConnection(dialog, layout);
  AddFile(dialog, layout);
  AddButtons(dialog, layout);
}

void ComSetWindow::AddTitle(frmComSet& dialog, QBoxLayout& layout) {
  auto& row = AddRow(layout, 12);
  auto& title = Make<QLabel>(*this);
  ScaleFont(title, 1.5, QFont::DemiBold);
  Bind(views_, dialog.Label1, title);
  row.addWidget(&title, 1);
  auto& version = Make<QLabel>(*this);
  Bind(views_, dialog.Label2, version);
  row.addWidget(&version, 0, Qt::AlignBottom);
}

void ComSetWindow::AddStartMode(frmComSet& dialog, QBoxLayout& layout) {
  auto& group = AddGroup("Start with", *this, layout);
  AddOption(views_, dialog.optStartMode[frmComSet::singleSensor], 'S', *this, group);
  auto& network = AddRow(group, 8);
  AddOption(views_, dialog.optStartMode[frmComSet::networkSensor], 'N', *this, network);
  network.addSpacing(12);
  auto& label = Make<QLabel>(*this);
  Bind(views_, dialog.lblID, label);
  network.addWidget(&label);
  auto& id = Make<QLineEdit>(*this);
  id.setFixedWidth(Digits(id, 6));
  Bind(views_, dialog.txbID, id, Always("Bus ID of the network sensor"));
  // The row is as high without the field as with it.
  KeepPlace(id);
  network.addWidget(&id);
  network.addStretch();
  AddOption(views_, dialog.optStartMode[frmComSet::simulatedMode], 'm', *this, group);
}

void ComSetWindow::AddConnection(frmComSet& dialog, QBoxLayout& layout) {
  auto& group = AddGroup("Connection", *this, layout);
  auto& port = AddRow(group, 8);
  auto& caption = Make<QLabel>(*this, "&Port");
  port.addWidget(&caption);
  auto& box = Make<QComboBox>(*this);
  box.setEditable(true);
  box.setMinimumWidth(Digits(box, 36));
  Bind(views_, dialog.txbComPort, box, Always("Serial port: its number, or a device"));
  caption.setBuddy(&box);
  port.addWidget(&box, 1);
  auto& protocol = Make<QWidget>(*this);
  group.addWidget(&protocol);
  auto& protocols = LayOut<QHBoxLayout>(protocol, 16);
  protocols.addWidget(&Make<QLabel>(protocol, "Protocol"));
  AddOption(views_, dialog.optComProt[frmComSet::kiBus], 'K', protocol, protocols);
  AddOption(views_, dialog.optComProt[frmComSet::modBus], 'B', protocol, protocols);
  protocols.addStretch();
  for (auto* control : {&dialog.cbxLoggcom, &dialog.cbxDontShow}) {
    auto& check = Make<QCheckBox>(*this);
    Bind(views_, *control, check, {control == &dialog.cbxLoggcom ? 'L' : 'D'});
    group.addWidget(&check);
  }
}

void ComSetWindow::AddFile(frmComSet& dialog, QBoxLayout& layout) {
  auto& group = AddGroup("Settings file", *this, layout);
  auto& row = AddRow(group, 8);
  auto& file = Make<QLineEdit>(*this);
  Bind(views_, dialog.txbFileName, file, Always("Settings file to send"));
  row.addWidget(&file, 1);
  auto& choose = AddButton(views_, dialog.Command5, {}, *this, row);
  choose.setAccessibleName("Choose a settings file");
  choose.setShortcut(QKeySequence::Open);
  choose.setFixedWidth(choose.sizeHint().height() * 3 / 2);
  AddButton(views_, dialog.cmdSendFile, 'f', *this, row);
}

void ComSetWindow::AddButtons(frmComSet& dialog, QBoxLayout& layout) {
  auto& row = AddRow(layout, 8);
  auto& help = AddButton(views_, dialog.btnHelp, 'H', *this, row);
  auto& helpKey = Make<QShortcut>(*this, QKeySequence(QKeySequence::HelpContents));
  connect(&helpKey, &QShortcut::activated, &help, [&help] { help.click(); });
  row.addStretch();
  AddButton(views_, dialog.btnExit, 'x', *this, row);
  auto& start = AddButton(views_, dialog.btnStartKVX, 't', *this, row);
  start.setDefault(true);
  start_ = &start;
}

}  // namespace brelant
