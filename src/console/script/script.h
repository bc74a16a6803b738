// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <deque>
#include <optional>
#include <string>
#include <string_view>

#include "console/script/command.h"

namespace brelant::script {

struct Line {
  int number;
  std::string text;
  Command command;
};

/// The commands that are still to be carried out. It may grow while it is played.
class Script {
 public:
  /// Takes the next line of the source. What follows a line that makes no sense is not looked at.
  void Append(std::string_view text);
  /// Nothing follows.
  void Complete() { complete_ = true; }

  /// Nothing if there is no command now.
  std::optional<Line> Take();
  /// No command is left, and none will come.
  bool Over() const { return lines_.empty() && (complete_ || fault_); }

  struct Fault {
    int line;
    std::string text;
    std::string why;
  };
  /// The line that makes no sense; the commands before it are in the script.
  const std::optional<Fault>& FaultyLine() const { return fault_; }

 private:
  std::deque<Line> lines_;
  std::optional<Fault> fault_;
  int count_ = 0;
  bool complete_ = false;
};

/// The whole script of a file. Nothing if it cannot be read.
std::optional<Script> LoadScript(const std::string& path);

}  // namespace brelant::script
