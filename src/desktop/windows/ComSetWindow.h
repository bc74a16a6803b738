// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>

#include "desktop/windows/DialogWindow.h"
#include "shell/frmComSet.h"

namespace brelant {

/// The dialog before every session.
class ComSetWindow : public DialogWindow {
 public:
  ComSetWindow(frmComSet& dialog, Acts& acts);

 protected:
  QWidget* PreferredFocus() override { return start_; }

 private:
  void AddTitle(frmComSet& dialog, QBoxLayout& layout);
  void AddConnection(frmComSet& dialog, QBoxLayout& layout);
  void AddStartMode(frmComSet& dialog, QBoxLayout& layout);
  void AddFile(frmComSet& dialog, QBoxLayout& layout);
  void AddButtons(frmComSet& dialog, QBoxLayout& layout);

  QWidget* start_ = nullptr;
};

}  // namespace brelant
