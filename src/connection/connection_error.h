// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <stdexcept>

namespace brelant {

/// A symbolic operation that failed: a unit that does not answer or refuses, a name that nobody knows. The
/// text is for people and says which.
class ConnectionError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace brelant
