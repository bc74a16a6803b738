// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <span>
#include <string>

#include "panels/FunctionRows.h"
#include "shell/form.h"

namespace brelant::platform6 {

/// The outputs of a platform 6 panel. A record of three bytes holds one (docs/memory-maps.md, Platform 6).
class OutputRows {
 public:
  static constexpr int kOutputs = 4;
  static constexpr int kRecordSize = 3;

  struct Rules {
    /// Gives a field the edit rules, with a check of its own.
    std::function<void(Control&, std::function<void()>)> makeEditable;
    std::function<void()> changed;
  };

  OutputRows(Form& form, const Rules& rules);

  /// `feeds` and `trigger` are the ticks of functions and trigger that a record holds too.
  void Update(int output, std::span<const float> record, const ControlArray& feeds, Control& trigger);
  /// Takes the row into the record; bits that no field shows stay. Throws NoResult for an integration time
  /// that is no number above 0.
  void Read(int output, std::span<float> record, const ControlArray& feeds, const Control& trigger);

  /// Throws NoResult if an integration time cannot be stored.
  void RequireTimes() const;
  bool IsDigital(int output) const { return optOut6Digital[output].Value() == 1; }

  ControlArray lblOutName;
  ControlArray optOut6Analog;
  ControlArray optOut6Digital;
  ControlArray optOut6TMO;
  ControlArray cbxOut6Invert;
  ControlArray txbOutBaseLine;
  ControlArray txbOutIntTime;
  ControlArray txbOutOut;
  /// cbxDigout1 to cbxDigout4: the digital input feeds the output.
  ControlArray cbxDigout;

 private:
  Form& form_;
};

/// The exponent of an integration time, 0 to 7. Throws NoResult if the time is no number above 0.
int IntegrationExponent(double seconds);
/// The time of the exponent in bits 0 to 2 of a byte, as a text.
std::string IntegrationText(float byte);

}  // namespace brelant::platform6
