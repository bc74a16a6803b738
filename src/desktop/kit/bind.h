// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>

#include "desktop/kit/EditBinding.h"
#include "desktop/kit/Views.h"

namespace brelant {

/// Each ties one of Qt's own widgets to a control. The widget gets the control's name.

void Bind(Views& views, Control& control, QLineEdit& edit, SpokenName name);

/// Text, and whether it is to be seen.
void Bind(Views& views, Control& control, QLabel& label);

/// How a button says what it is: its own text with an underlined letter, or, where the text stands elsewhere,
/// a name for those who do not see it.
struct ButtonFace {
  QChar mnemonic = {};
  QString spokenName = {};
};

/// Push buttons, check boxes and options. One that no rule stands behind is drawn as disabled.
void Bind(Views& views, Control& control, QAbstractButton& button, const ButtonFace& face = {});

/// A text control that offers items. Choosing one is a change of its text.
void Bind(Views& views, Control& control, QComboBox& box, SpokenName name);

/// A list control as a choice that opens: one entry for each item.
void BindChoice(Views& views, Control& control, QComboBox& box, SpokenName name);

/// A list control: one line for each item.
void Bind(Views& views, Control& control, QListWidget& list, const QString& name);

void Bind(Views& views, Control& control, QProgressBar& bar);

}  // namespace brelant
