// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>
#include <QGridLayout>
#include <QLabel>
#include <QString>
#include <functional>

#include "desktop/kit/Card.h"
#include "desktop/kit/OutputValue.h"
#include "desktop/kit/Views.h"

namespace brelant::platform6 {

/// What the faces of platform 6 are put together from.

/// A card with a title, its contents below each other.
QVBoxLayout& AddCard(const QString& title, QBoxLayout& layout);

/// A card with what an output puts out now on top.
QVBoxLayout& AddOutputCard(Views& views, const QString& title, Control& value, std::size_t place,
                           bool withBar, QBoxLayout& layout);

/// A caption, as wide as those of other numbers.
QLabel& MakeCaption(const QString& caption, QWidget& card);

/// Numbers below each other, each with its caption and its unit.
QGridLayout& AddNumbers(QBoxLayout& layout);

/// Asked again at each refresh.
using Unit = std::function<QString()>;

/// A unit that never changes.
Unit Fixed(const QString& unit);
/// The unit of the first of those channels that is among the live values; empty if none is.
Unit UnitOf(const Views& views, const std::vector<int>& channels);

/// `title`: what the caption belongs to, for those who do not see it.
void AddNumber(Views& views, Control& field, const QString& title, const QString& caption, const Unit& unit,
               QGridLayout& grid);

}  // namespace brelant::platform6
