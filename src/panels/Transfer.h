// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace brelant {

/// What the outputs of a panel do with their inputs (docs/architecture.md, The offline model). Everything
/// that is not asked about is as the panel shows it now.
class Transfer {
 public:
  /// A live channel that functions of an output stand on.
  struct Input {
    std::string name;
    std::string unit;
    /// Nothing while the panel shows none.
    std::optional<double> value;
    /// The values at which a function on it begins or ends to move, in rising order; never empty.
    std::vector<double> ends;
  };

  Transfer() = default;
  virtual ~Transfer() = default;
  Transfer(const Transfer&) = delete;
  Transfer& operator=(const Transfer&) = delete;

  /// Number of outputs that the panel shows now.
  virtual int Outputs() const = 0;
  virtual std::string NameOf(int output) const = 0;
  virtual bool IsDigital(int output) const = 0;
  /// In the order of the functions, each channel once.
  virtual std::vector<Input> InputsOf(int output) const = 0;
  /// Percent that the panel shows now; nothing while it shows none.
  virtual std::optional<double> ShownOf(int output) const = 0;
  /// Percent, before it is rounded, that the offline model would show if that channel had that value.
  /// `shown`: what the output showed before, which a digital one may keep. Nothing if the model cannot tell,
  /// since the ends of a function are equal.
  virtual std::optional<double> PercentAt(int output, const std::string& channel, double value,
                                          double shown) const = 0;
};

}  // namespace brelant
