// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSocketNotifier>
#include <string>

#include "console/script/script.h"

namespace brelant::script {

/// Appends the lines of the standard input to a script inside pump passes, as they come, so that another
/// program may write a line, read what it led to, and write the next.
class StdinReader {
 public:
  explicit StdinReader(Script& script);

 private:
  void TakeBytes();
  void TakeLines();
  void End();

  Script& script_;
  std::string partial_;
  QSocketNotifier notifier_;
};

}  // namespace brelant::script
