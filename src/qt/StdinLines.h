// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSocketNotifier>
#include <functional>
#include <string>
#include <string_view>

namespace brelant {

/// The lines of the standard input inside pump passes, as they come, so that another program may write a
/// line, read what it led to, and write the next.
class StdinLines {
 public:
  StdinLines(std::function<void(std::string_view)> onLine, std::function<void()> onEnd);

 private:
  void TakeBytes();
  void TakeLines();
  void End();

  std::function<void(std::string_view)> onLine_;
  std::function<void()> onEnd_;
  std::string partial_;
  QSocketNotifier notifier_;
};

}  // namespace brelant
