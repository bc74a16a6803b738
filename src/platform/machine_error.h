// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <stdexcept>

namespace brelant {

/// A failure of the machine: a port that cannot be had, a file that cannot be read. Thrown at the platform
/// edge only; bus and file operations turn it into a false result and a text in Session::LastError.
class MachineError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace brelant
