// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/PanelWindow.h"

#include "desktop/kit/MenuBinding.h"
#include "desktop/kit/make.h"

namespace brelant {

namespace {

MenuFace FaceOf(const Panel& panel) {
  return {{{panel.mLoadsettings.Name(), QKeySequence::Open},
           {panel.mSavesettings.Name(), QKeySequence::Save},
           {panel.mExit.Name(), Qt::CTRL | Qt::Key_Q},
           {panel.mReadfromsensor.Name(), Qt::Key_F5},
           {panel.mSendtosensor.Name(), Qt::CTRL | Qt::Key_Return},
           {panel.mHelp.Name(), Qt::Key_F1}},
          {panel.mComSet.Name()}};
}

}  // namespace

PanelWindow::PanelWindow(Panel& panel, Acts& acts) : FormWindow(panel.form, acts) {
  BindMenus(views_, *menuBar(), FaceOf(panel));
  auto& ground = Make<QWidget>(*this);
  ground.setFocusPolicy(Qt::ClickFocus);
  setCentralWidget(&ground);
}

void PanelWindow::closeEvent(QCloseEvent* event) {
  event->ignore();
  ReportClose();
}

}  // namespace brelant
