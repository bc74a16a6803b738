// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/windows/MsgWindow.h"

#include <QPushButton>

#include "desktop/kit/bind.h"
#include "desktop/kit/make.h"
#include "desktop/kit/text.h"

namespace brelant {

MsgWindow::MsgWindow(frmMsg& box, Acts& acts) : DialogWindow(box.form, acts) {
  auto& layout = LayOut<QVBoxLayout>(*this, 10);
  layout.setContentsMargins(20, 18, 20, 16);
  layout.setSizeConstraint(QLayout::SetFixedSize);
  for (auto* line : {&box.Label1, &box.Label2, &box.Label3}) {
    auto& label = Make<QLabel>(*this);
    // The lines come and go with the step that runs; the box keeps its width.
    label.setMinimumWidth(Digits(label, 42));
    if (line == &box.Label1) ScaleFont(label, 1.2, QFont::DemiBold);
    Bind(views_, *line, label);
    layout.addWidget(&label);
  }
  auto& bar = Make<QProgressBar>(*this);
  bar.setAccessibleName("Progress");
  Bind(views_, box.ProgressBar1, bar);
  layout.addWidget(&bar);
  auto& cancel = Make<QPushButton>(*this);
  cancel.setAutoDefault(false);
  Bind(views_, box.Command1, cancel, {'C'});
  layout.addWidget(&cancel, 0, Qt::AlignRight);
}

}  // namespace brelant
