// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "desktop/windows/DialogWindow.h"
#include "shell/frmMsg.h"

namespace brelant {

/// The progress box. It takes no key for Cancel but Escape, lest a key that was meant for the panel breaks a
/// transfer.
class MsgWindow : public DialogWindow {
 public:
  MsgWindow(frmMsg& box, Acts& acts);

 protected:
  QWidget* PreferredFocus() override { return this; }
};

}  // namespace brelant
