// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/windows/FormWindow.h"

#include <QApplication>

#include "desktop/kit/placement.h"

namespace brelant {

void FormWindow::Open(const QWidget* owner) {
  auto& window = Window();
  auto& form = views_.Model();
  window.setObjectName(QString::fromStdString(form.Name()));
  if (form.Modal()) window.setWindowModality(Qt::WindowModal);
  views_.OnRefresh([this] { RefreshFrame(); });
  PlaceOver(window, owner);
  auto* focus = PreferredFocus();
  if (form.initialFocus != nullptr) {
    focus = window.findChild<QWidget*>(QString::fromStdString(form.initialFocus->Name()));
  }
  if (focus != nullptr) focus->setFocus();
  window.show();
  window.activateWindow();
}

void FormWindow::Refresh(bool always) {
  views_.Refresh(always);
}

void FormWindow::ReportClose() {
  views_.Report(Window(), [this] { views_.Model().Close(); });
}

void FormWindow::RefreshFrame() {
  const auto& form = views_.Model();
  const auto told = QString::fromStdString(form.Caption());
  const auto caption = told.isEmpty() ? QApplication::applicationName() : told;
  if (Window().windowTitle() != caption) Window().setWindowTitle(caption);
  if (form.Busy()) {
    Window().setCursor(Qt::WaitCursor);
  } else {
    Window().unsetCursor();
  }
}

}  // namespace brelant
