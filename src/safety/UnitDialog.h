// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>

#include "connection/BRECOM.h"
#include "platform/machine.h"
#include "safety/snsZ7731.h"
#include "shell/form.h"
#include "shell/session.h"

namespace brelant {

/// What the dialogs of the safety panel work on: the one unit that the panel shows.
struct UnitDesk {
  Machine machine;
  Session& session;
  Screen& screen;
  snsZ7731& unit;
  /// Seconds from poll to poll.
  int& UpdatePeriod;
  /// Throws ConnectionError if there is none.
  std::function<BRECOM&()> connection;
  /// The panel's verified write.
  std::function<bool(const std::string& name, float value)> WriteToSensor;
  /// Puts away what an operation has left on the screen.
  std::function<void()> clear;
};

/// A dialog over the safety panel. Its buttons talk to the unit at once: the panel does not poll meanwhile.
class UnitDialog {
 public:
  virtual ~UnitDialog() = default;
  UnitDialog(const UnitDialog&) = delete;
  UnitDialog& operator=(const UnitDialog&) = delete;

  /// Fills the dialog and shows it until it is closed. One that cannot be filled tells why.
  void ShowModal();

  Form form;

 protected:
  UnitDialog(const UnitDesk& desk, const std::string& name, const std::string& title);

  virtual void Fill() = 0;
  /// A button's work; `failure` is told of a work that fails, its own reason if that is empty.
  Control::Handler Working(std::function<void()> work, const std::string& failure = {});
  void Tell(const std::string& text) { desk_.machine.userInterface.Tell(text); }
  std::int32_t Read(std::string_view name);
  bool Write(std::string_view name, std::int32_t value);

  /// Lists every channel that the display can show, and selects one by its name.
  static void Offer(Control& list, const std::string& selected);
  /// The number of the channel that is selected.
  static int SelectedChannel(const Control& list);
  /// A whole number as a user types it; throws std::invalid_argument for any other text.
  static int IntegerOf(const Control& field);

  UnitDesk desk_;

 private:
  bool isWorking_ = false;
};

}  // namespace brelant
