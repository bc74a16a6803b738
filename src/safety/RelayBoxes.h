// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>

#include "platform/user_interface.h"
#include "safety/snsZ7731.h"
#include "shell/form.h"

namespace brelant {

/// The boxes of one relay, a row an alarm: which of them drive it. A click changes the unit's record only; it
/// reaches the unit when the form is next sent (docs/architecture.md, The safety panel).
class RelayBoxes {
 public:
  static constexpr int kBoxes = 10;
  /// The box of "no alarm", which takes the free entries of the list.
  static constexpr int kNoAlarm = 5;

  /// `list` outlives the boxes.
  RelayBoxes(Form& form, const std::string& name, snsZ7731::RelayList& list, UserInterface& userInterface);

  /// Ticks what the list holds.
  void Show();

  ControlArray boxes;

 private:
  void Click(int box);
  void Set(int box, bool ticked);

  snsZ7731::RelayList& list_;
  UserInterface& userInterface_;
};

}  // namespace brelant
