// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>
#include <QPushButton>
#include <QRadioButton>
#include <QString>

#include "desktop/kit/Views.h"

namespace brelant {

/// What dialogs are made of. The title of a frame and what stands in it.
QVBoxLayout& AddGroup(const QString& title, QWidget& window, QBoxLayout& layout);

/// A button that Enter presses only when it is the dialog's default.
QPushButton& AddButton(Views& views, Control& control, QChar mnemonic, QWidget& window, QBoxLayout& layout);

QRadioButton& AddOption(Views& views, Control& control, QChar mnemonic, QWidget& window, QBoxLayout& layout);

}  // namespace brelant
