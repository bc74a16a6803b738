// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>
#include <QString>
#include <functional>
#include <vector>

#include "panels/Transfer.h"
#include "shell/form.h"

namespace brelant::flow {

class SignalRow;

/// What the board of a panel is made of.

/// A text beside a field: a label of the form, or where the form has none the program's own.
struct Caption {
  Control* label;
  QString text;
};

struct OutputPlan {
  struct Setting {
    Control* field;
    Caption caption;
    Caption unit;
  };

  Control* value;
  /// Tells whether there is such an output; nullptr: always.
  Control* presence;
  /// The output's name; nullptr: it is called by its place.
  Control* name;
  /// Options and ticks that say what kind of output it is.
  std::vector<Control*> kinds;
  std::vector<Setting> settings;
};

struct BoardPlan {
  int inputs;
  /// The unit of the last input where no control shows it.
  QString unitOfLast;
  int functions;
  std::vector<OutputPlan> outputs;
  /// What makes signals besides the functions, given the widget that it shall stand in.
  std::vector<std::function<SignalRow&(QWidget&)>> others;
  /// Adds what stands below the inputs, if anything does.
  std::function<void(QBoxLayout&)> belowInputs;
  /// Lower rows and smaller numbers, so that many of them fit on a small screen.
  bool dense;
  /// What the outputs do with their inputs, to be shown as plots; nullptr: nobody tells.
  const Transfer* transfer = nullptr;
};

/// The output that stands in each place, from the first one on.
using Order = std::vector<std::size_t>;

}  // namespace brelant::flow
