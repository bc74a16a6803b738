// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "knowledge/SnsInfo.h"
#include "panels/FunctionBlocks.h"
#include "shell/form.h"

namespace brelant {

/// The function blocks of a panel: input, ends of the ramp, shape, and the outputs that each feeds. A record
/// of five bytes holds a block (docs/memory-maps.md, Platform 5).
class FunctionRows {
 public:
  static constexpr int kRecordSize = 5;

  struct Size {
    int functions;
    int outputs;
    int types = FunctionBlocks::kUsualTypes;
  };
  struct Rules {
    std::function<FunctionClass(int)> classOf;
    /// Gives a field the edit rules.
    std::function<void(Control&)> makeEditable;
    /// After a user has changed a shape or a tick.
    std::function<void()> changed;
  };

  FunctionRows(Form& form, const Size& size, const Rules& rules);

  /// Fills the row of a function; `channel` is what the record's input byte stands for.
  void Update(int function, std::span<const float> record, float channel, const std::string& caption,
              SnsInfo& info);
  /// The name and the units of its input alone.
  void UpdateInput(int function, float channel, const std::string& caption, SnsInfo& info);
  /// Takes the row into the record, but for the input byte.
  void Read(int function, std::span<float> record, float channel, SnsInfo& info) const;

  /// The ticks of an output, by function.
  const ControlArray& FeedsOf(int output) const { return cbxFout.at(static_cast<std::size_t>(output)); }
  bool FeedsOutput(int function, int output) const { return FeedsOf(output)[function].Value() == 1; }
  bool FeedsDigital(int function, const ControlArray& digitalOutputs) const;

  /// Present value of the channel of that name; nothing if the panel shows none.
  using Input = std::function<std::optional<double>(const std::string&)>;
  /// `sum` with what the functions add to an output, limited after each of them. Throws NoResult.
  double Sum(int output, double sum, const Input& input) const;

  ControlArray lblFchannel;
  ControlArray txbFa;
  ControlArray lblFaUnit;
  ControlArray txbFb;
  ControlArray lblFbUnit;
  /// cbxFout1, cbxFout2 and so on, each by function.
  std::vector<ControlArray> cbxFout;
  FunctionBlocks functions;
};

}  // namespace brelant
