// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "connection/BRECOM.h"
#include "knowledge/settings_container.h"
#include "platform/files.h"
#include "platform/user_interface.h"

namespace brelant {

/// Settings files of units that are reached by name (docs/files.md). Operations throw ConnectionError, with
/// the text that the user is to see.
class BREFILE {
 public:
  struct Context {
    BRECOM& connection;
    Files& files;
    UserInterface& userInterface;
  };

  explicit BREFILE(const Context& context) : context_(context) {}

  /// The file that Write will write. An empty name asks the user; false: cancelled.
  bool ChooseForSave(const std::string& name);
  /// Reads what is marked on the connection from the unit, then writes the chosen file, which has it all or
  /// is not written. The marks are used up by a file that was written.
  void Write();

  /// Takes a file in place of the one before. An empty name asks the user; false: cancelled.
  bool Read(const std::string& name);
  /// Sends what was read, each value verified by reading it back. Nothing is sent of a file that has
  /// something in it that cannot be sent, nor to a unit of another kind.
  void Send();

  /// What begins, for a progress box.
  std::function<void(const std::string&)> onAction;
  /// The part of Write or Send that is done, in percent.
  std::function<void(int)> onProgress;

 private:
  /// What two units have in common that can use the same file.
  struct Kind {
    std::uint8_t part;
    std::int32_t userInfo28;
    std::int32_t userInfo29;
  };
  struct Item {
    std::string name;
    std::int32_t mask;
    std::int32_t value;
  };
  struct Range {
    int kind;
    int address;
    int mask;
    std::vector<std::uint8_t> bytes;
  };
  struct Content {
    Kind unit{};
    std::vector<Item> items;
    std::vector<Range> ranges;
  };

  /// Throws std::length_error where there is too much for a file.
  static container::Bytes Packed(const Content& content);
  /// Throws std::out_of_range where they are not those of such a file.
  static Content Unpacked(std::span<const container::Block> blocks);

  Kind KindOfUnit();
  Content FromUnit();
  void RequireSendable(const Content& content);
  void RequireSendable(const Item& item);
  void RequireSameKind(const Kind& unit);
  void Send(const Item& item);
  void Send(const Range& range);
  void Tell(const std::string& action) const;
  void TellDone(std::size_t done, std::size_t all) const;

  Context context_;
  std::string chosen_;
  std::optional<Content> read_;
};

}  // namespace brelant
