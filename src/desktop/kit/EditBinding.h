// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLineEdit>
#include <QObject>
#include <functional>

#include "desktop/kit/Views.h"

namespace brelant {

/// What a field is called for those who do not see it; asked again at each refresh, since units change.
using SpokenName = std::function<QString()>;

/// Ties a line edit to a text control: reports focus, typing and Enter, shows text and colours.
class EditBinding : public QObject {
 public:
  EditBinding(Views& views, Control& control, QLineEdit& edit, SpokenName name);

 protected:
  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  void Refresh();
  void TakeColours();
  void FocusGained(Qt::FocusReason reason);
  bool EnterPressed();

  Views& views_;
  Control& control_;
  QLineEdit& edit_;
  SpokenName name_;
  Colour back_ = kStyleColour;
  Colour fore_ = kStyleColour;
  /// A press of the mouse puts the cursor down only after the focus has come, which ends a selection.
  bool selectOnRelease_ = false;
};

}  // namespace brelant
