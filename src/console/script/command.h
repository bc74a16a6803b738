// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <variant>

#include "console/script/property.h"
#include "platform/user_interface.h"

namespace brelant::script {

/// A control as a script names it. Without a form it is looked for from the form in front backwards.
struct ControlName {
  std::string form;
  std::string control;

  bool operator==(const ControlName&) const = default;
};

/// The commands of a script (docs/architecture.md, The scripted user). An empty form is the one in front.
struct Get {
  ControlName control;
  std::optional<Property> property;
  bool operator==(const Get&) const = default;
};
struct Dump {
  std::string form;
  bool operator==(const Dump&) const = default;
};
struct Type {
  ControlName control;
  std::string text;
  bool operator==(const Type&) const = default;
};
struct Enter {
  ControlName control;
  std::string text;
  bool operator==(const Enter&) const = default;
};
struct Focus {
  ControlName control;
  bool operator==(const Focus&) const = default;
};
struct Leave {
  ControlName control;
  bool operator==(const Leave&) const = default;
};
struct Click {
  ControlName control;
  bool operator==(const Click&) const = default;
};
struct Select {
  ControlName control;
  std::string text;
  bool operator==(const Select&) const = default;
};
struct Choose {
  std::string caption;
  bool operator==(const Choose&) const = default;
};
/// Nothing: cancelled.
struct Answer {
  std::optional<std::string> text;
  bool operator==(const Answer&) const = default;
};
struct Reply {
  UserInterface::Reply reply;
  bool operator==(const Reply&) const = default;
};
/// Nothing: cancelled.
struct File {
  std::optional<std::string> path;
  bool operator==(const File&) const = default;
};
struct Wait {
  enum class For { time, idle, form, message, progress, poll };
  For what;
  std::string text;
  int polls = 0;
  std::chrono::milliseconds limit;
  bool operator==(const Wait&) const = default;
};
struct Expect {
  ControlName control;
  Property property;
  std::string value;
  bool operator==(const Expect&) const = default;
};
struct Image {
  bool isEeprom;
  int from;
  int count;
  bool operator==(const Image&) const = default;
};
struct Close {
  std::string form;
  bool operator==(const Close&) const = default;
};
struct Quit {
  bool operator==(const Quit&) const = default;
};

using Command = std::variant<Get, Dump, Type, Enter, Focus, Leave, Click, Select, Choose, Answer, Reply, File,
                             Wait, Expect, Image, Close, Quit>;

}  // namespace brelant::script
