// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <stdexcept>
#include <string_view>

#include "console/script/command.h"

namespace brelant::script {

/// A line that makes no sense, with a text for people.
class SyntaxError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The command of one line; nothing for a blank line or a comment. Throws SyntaxError.
///
/// Words are separated by blanks, "#" in front of a word begins a comment. A text is the rest of the line
/// without the blanks around it, or stands in double quotes, where "" is one quote.
std::optional<Command> ParseLine(std::string_view line);

}  // namespace brelant::script
