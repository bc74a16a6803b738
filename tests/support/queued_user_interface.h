// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <deque>
#include <functional>

#include "platform/user_interface.h"

namespace brelant::test {

/// A person whose answers are queued. With none queued, boxes are acknowledged (those with Yes and No: No),
/// everything else is cancelled.
class QueuedUserInterface : public UserInterface {
 public:
  struct Message {
    std::string text;
    Buttons buttons;
    std::string title;
    Icon icon;
  };
  struct Dialog {
    FileUse use;
    std::string filter;
  };

  Reply MessageBox(const std::string& text, Buttons buttons, const std::string& title, Icon icon) override;
  using UserInterface::InputBox;
  std::optional<std::string> InputBox(const std::string& prompt, const std::string& title) override;
  std::optional<std::string> FileDialog(FileUse use, const std::string& filter) override;
  std::optional<std::size_t> PopupMenu(const std::vector<std::string>& captions) override;
  void ShellOpen(const std::string& path) override { opened.push_back(path); }

  /// The texts of the message boxes, in order.
  std::vector<std::string> Texts() const;

  std::deque<Reply> replies;
  std::deque<std::optional<std::string>> inputs;
  std::deque<std::optional<std::string>> chosenFiles;
  std::deque<std::optional<std::size_t>> choices;

  std::vector<Message> messages;
  std::vector<std::string> prompts;
  std::vector<Dialog> dialogs;
  std::vector<std::vector<std::string>> popups;
  std::vector<std::string> opened;
  /// Happens while a message box is open.
  std::function<void()> onMessage;
};

}  // namespace brelant::test
