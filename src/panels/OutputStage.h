// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "panels/FunctionRows.h"
#include "panels/Transfer.h"
#include "shell/form.h"

namespace brelant {

/// The outputs of a panel that functions feed. The offline model and the transfer are one computation.
class OutputStage : public Transfer {
 public:
  std::vector<Input> InputsOf(int output) const override;
  std::optional<double> ShownOf(int output) const override;
  std::optional<double> PercentAt(int output, const std::string& channel, double value,
                                  double shown) const override;

 protected:
  /// One pass of the offline model. Computes all outputs before it shows the first one: one that cannot be
  /// computed leaves all as they were.
  void ShowOutputs();

  virtual const FunctionRows& Rows() const = 0;
  /// The fields of percent, by output.
  virtual const ControlArray& OutputFields() const = 0;
  /// The field of a channel's live value; nullptr if the panel shows none.
  virtual const Control* LiveField(const std::string& channel) const = 0;
  /// What is added to a live value on its way to the functions.
  virtual double ShiftOf(const std::string& /*channel*/) const { return 0; }
  /// Percent of an output that showed `shown` before. Throws NoResult.
  virtual double Percent(int output, double shown, const FunctionRows::Input& input) const = 0;

 private:
  std::optional<double> InputNow(const std::string& channel) const;
};

}  // namespace brelant
