// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>

#include "desktop/windows/FormWindow.h"

namespace brelant {

/// A form as a dialog. Escape is the close button's key.
class DialogWindow : public FormWindow, public QDialog {
 public:
  DialogWindow(Form& form, Acts& acts) : FormWindow(form, acts) {}

  QWidget& Window() override { return *this; }
  void reject() override { ReportClose(); }

 protected:
  void closeEvent(QCloseEvent* event) override {
    event->ignore();
    ReportClose();
  }
};

}  // namespace brelant
