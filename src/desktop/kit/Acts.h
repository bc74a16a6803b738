// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPointer>
#include <QWidget>
#include <deque>
#include <functional>

namespace brelant {

/// The acts of a user, from the widgets' event handlers to the next pass of the pump, which carries them out.
/// Never inside such a handler: an act may wait for the sensor, or take the window away that it came from.
class Acts {
 public:
  /// An act whose widget is gone by its turn is dropped, because its form may be gone too.
  void Report(QWidget& source, std::function<void()> act);
  /// Carries out what waits, in order. True if there was anything.
  bool CarryOut();
  /// The widget of the act that is being carried out, nullptr if none is.
  QWidget* Source() const { return source_; }

 private:
  struct Act {
    QPointer<QWidget> source;
    std::function<void()> run;
  };

  std::deque<Act> waiting_;
  QPointer<QWidget> source_;
};

}  // namespace brelant
