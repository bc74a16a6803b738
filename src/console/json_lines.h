// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <iosfwd>
#include <nlohmann/json_fwd.hpp>

namespace brelant {

/// JSON with its keys in the order in which they were added.
using Json = nlohmann::ordered_json;

/// Prints one JSON value a line, each at once, for whoever reads along. What is no UTF-8 is replaced.
class JsonLines {
 public:
  explicit JsonLines(std::ostream& out) : out_(out) {}
  void Print(const Json& json);

 private:
  std::ostream& out_;
};

}  // namespace brelant
