// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <map>
#include <memory>

#include "app/Program.h"
#include "desktop/DesktopUserInterface.h"
#include "desktop/kit/Acts.h"
#include "desktop/windows/FormWindow.h"

namespace brelant {

/// The face of a program on the screen: a window for each form that is visible.
class Desktop {
 public:
  Desktop(Program& program, Pump& pump, DesktopUserInterface& userInterface);
  ~Desktop();
  Desktop(const Desktop&) = delete;
  Desktop& operator=(const Desktop&) = delete;

  /// To be called at the start of every pass of the pump: carries out what the user has done and shows what
  /// has changed. True if there was something to carry out.
  bool Pass();

 private:
  void Show(Form& form, bool visible);
  std::unique_ptr<FormWindow> MakeWindow(Form& form);
  /// The window in front, nullptr if there is none.
  QWidget* Front() const;

  Program& program_;
  Acts acts_;
  std::map<const Form*, std::unique_ptr<FormWindow>> windows_;
};

}  // namespace brelant
