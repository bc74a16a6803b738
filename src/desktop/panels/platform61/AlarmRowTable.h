// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QGridLayout>
#include <QString>
#include <vector>

#include "desktop/kit/Card.h"
#include "desktop/kit/Views.h"

namespace brelant::platform61 {

/// The alarm rows of platform 7, each to be read as a sentence: channel, above or below, level. They stand
/// beside the lamp that they drive, so that nobody needs to know which does.
class AlarmRowTable : public Card {
 public:
  AlarmRowTable(Views& views, QWidget* parent);

 private:
  /// A lamp and its rows.
  struct Group {
    QString title;
    Control& state;
    std::vector<int> rows;
  };

  void AddGroup(Views& views, const Group& group, QGridLayout& grid);
  void AddRow(Views& views, int index, int row, QGridLayout& grid);
  void AddSlope(Views& views, int index, int row, QGridLayout& grid);
};

}  // namespace brelant::platform61
