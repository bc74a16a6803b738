// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/windows/SimWindow.h"

#include <QPushButton>

#include "desktop/kit/bind.h"
#include "desktop/kit/make.h"
#include "desktop/kit/text.h"

namespace brelant {

SimWindow::SimWindow(frmSim& chooser, Acts& acts) : DialogWindow(chooser.form, acts) {
  auto& layout = LayOut<QVBoxLayout>(*this, 10);
  layout.setContentsMargins(20, 18, 20, 16);
  auto& label = Make<QLabel>(*this);
  Bind(views_, chooser.Label1, label);
  layout.addWidget(&label);
  auto& list = Make<QListWidget>(*this);
  list_ = &list;
  list.setMinimumWidth(Digits(list, 40));
  list.setSpacing(2);
  Bind(views_, chooser.cmbTypeOfS, list, TextOf(chooser.Label1));
  layout.addWidget(&list);
  auto& buttons = AddRow(layout, 8);
  buttons.addStretch();
  auto& cancel = Make<QPushButton>(*this);
  cancel.setAutoDefault(false);
  Bind(views_, chooser.Command2, cancel, {'C'});
  auto& next = Make<QPushButton>(*this);
  next.setDefault(true);
  Bind(views_, chooser.Command1, next, {'N'});
  buttons.addWidget(&cancel);
  buttons.addWidget(&next);
  QObject::connect(&list, &QListWidget::itemDoubleClicked, &next, [&next] { next.click(); });
}

}  // namespace brelant
