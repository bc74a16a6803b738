// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>
#include <QLabel>
#include <QLineEdit>

#include "desktop/kit/EditBinding.h"
#include "desktop/kit/Views.h"

namespace brelant {

/// A number field of that width.
QLineEdit& MakeNumber(Views& views, Control& control, int width, SpokenName name, QWidget& parent);

/// A field that is only read, as a text on the ground that can be copied.
QLineEdit& MakeFact(Views& views, Control& control, int digits, SpokenName name, QWidget& parent);

/// Adds a text of the program's own.
QLabel& AddCaption(const QString& text, QWidget& parent, QBoxLayout& layout);

/// Adds a label of the form, at least so many digits wide.
QLabel& AddLabel(Views& views, Control& control, int digits, QWidget& parent, QBoxLayout& layout);

/// A name that never changes.
SpokenName Always(const QString& name);

/// The place of a widget stays free while it is hidden.
void KeepPlace(QWidget& widget);

}  // namespace brelant
