// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <functional>
#include <optional>

#include "platform/clock.h"
#include "shell/form.h"

namespace brelant {

/// A level in percent whose sign is shown by one of two pictures.
struct SignedLevel {
  Control& level;
  Control& positive;
  Control& negative;

  /// The amount of `byte`, where bit 7 is the sign and 127 is 100 %, through `round`.
  void ShowText(float byte, double (*round)(double));
  /// The same with the picture of its sign.
  void Show(float byte, double (*round)(double));
  void ShowSign(bool isNegative);
  /// The byte of what is shown.
  float Byte() const;
  /// A click on the picture of either sign turns the level round.
  void SetRules();
};

/// The digital trigger of a panel, and its run in simulated mode.
class DigitalTrigger {
 public:
  struct Rules {
    std::function<void(Control&)> makeEditable;
    /// After a user has changed a tick.
    std::function<void()> changed;
    /// Lets the user choose from a menu on a label.
    std::function<void(Control&, const ControlArray&)> choose;
  };

  DigitalTrigger(Form& form, int outputs, const Clock& clock, const Rules& rules);

  /// Shows the unit that bit 7 of the time byte tells, and reads it back as that bit.
  void ShowUnit(float timeByte);
  int UnitBit() const;

  bool Runs() const { return run_.has_value(); }
  /// Moves the bar of a trigger that runs, and ends it when its time is over.
  void Move();
  void HideBar();
  /// A line of the trigger is to be seen.
  bool Active() const { return linDigTPsign.Visible() || linDigTNsign.Visible(); }
  bool Feeds(int output) const { return cbxDigTout[output].Value() == 1; }

  /// cbxDigTout1, cbxDigTout2 and so on.
  ControlArray cbxDigTout;
  Control& txbDigTtime;
  Control& lblDigTunit;
  Control& txbDigTlevel;
  Control& pctDigTPsign;
  Control& pctDigTNsign;
  Control& linDigTPsign;
  Control& linDigTNsign;
  Control& btnDigTrig;
  Control& mTimeUnits;
  Control& mTimeUnitMin;
  Control& mTimeUnitSec;
  SignedLevel triggerLevel;

 private:
  struct Run {
    std::chrono::microseconds start;
    std::chrono::microseconds end;
  };

  void Start();

  const Clock& clock_;
  std::optional<Run> run_;
};

}  // namespace brelant
