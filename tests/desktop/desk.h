// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>
#include <deque>
#include <functional>
#include <stdexcept>
#include <string>

#include "app/Program.h"
#include "desktop/Desktop.h"
#include "desktop/DesktopUserInterface.h"
#include "hand.h"
#include "support/memory_files.h"
#include "support/memory_store.h"
#include "support/sensor_port.h"
#include "support/virtual_clock.h"
#include "support/virtual_modbus.h"
#include "support/virtual_pump.h"

namespace brelant::test {

/// A person at the desktop program, with a virtual sensor on the line and a clock that jumps. What the person
/// does is told beforehand, step by step; each step waits until it can be taken.
class Desk {
 public:
  using Step = std::function<void()>;
  using Condition = std::function<bool()>;

  /// The files of a platform 5 part number lie where the program looks for them. There a variant above 0 has
  /// the panel of five alarm levels.
  explicit Desk(int part = 120, int variant = 0);

  /// Takes the step in the first pass of the pump in which the condition holds.
  void When(Condition condition, Step step);
  /// When that window is open, and nothing is being done.
  void In(const QString& window, Step step);
  /// On the panel when it is idle.
  void OnPanel(Step step) { In(panel_, std::move(step)); }
  /// From the dialog to the panel of the single sensor.
  void StartSession();
  /// From the dialog to the panel of the simulated sensor of the same part and panel.
  void StartSimulation();

  /// Clicks through the menus of the panel, from the bar to an entry.
  void ClickMenu(const QStringList& names) const;
  /// Answers the input box by typing and Enter.
  void Answer(const QString& text);

  /// Runs the program until all steps are taken, or until it ends by itself.
  void Run();

  /// A widget of an open window; throws if there is none of that name.
  template <typename Widget = QWidget>
  Widget& Find(const QString& window, const QString& name) const {
    auto* top = FindWindow(window);
    auto* found = top == nullptr ? nullptr : top->findChild<Widget*>(name);
    if (found == nullptr) throw std::out_of_range((window + " has no " + name).toStdString());
    return *found;
  }
  template <typename Widget = QWidget>
  Widget& Panel(const QString& name) const {
    return Find<Widget>(panel_, name);
  }
  /// Number of steps that were not taken.
  std::size_t StepsLeft() const { return steps_.size(); }

  VirtualClock clock;
  VirtualPump pump{clock};
  SensorPort port;
  VirtualModbus modbus{clock, pump};
  MemoryFiles files;
  MemoryStore store;
  DesktopUserInterface ui;
  Program program;
  Desktop desktop;

 private:
  struct Waiting {
    Condition condition;
    Step step;
  };

  Machine TheMachine() { return {clock, pump, port, modbus, files, store, ui}; }
  void PutFile(const std::string& name);
  bool IsIdle() const;
  bool Pass();

  QString panel_;
  std::deque<Waiting> steps_;
};

}  // namespace brelant::test
