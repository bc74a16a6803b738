// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <deque>
#include <functional>
#include <string>

#include "console/json_lines.h"
#include "platform/user_interface.h"

namespace brelant::script {

/// A person whose answers are queued, and who tells about every question that comes. With none queued a
/// message box is acknowledged (those with Yes and No: No) and everything else is cancelled.
class ScriptedUser : public UserInterface {
 public:
  /// `helpPath` turns the path of a help page into the machine's own.
  ScriptedUser(JsonLines& out, std::function<std::string(const std::string&)> helpPath);

  UserInterface::Reply MessageBox(const std::string& text, Buttons buttons, const std::string& title,
                                  Icon icon) override;
  using UserInterface::InputBox;
  std::optional<std::string> InputBox(const std::string& prompt, const std::string& title) override;
  std::optional<std::string> FileDialog(FileUse use, const std::string& filter) override;
  std::optional<std::size_t> PopupMenu(const std::vector<std::string>& captions) override;
  void ShellOpen(const std::string& path) override;

  /// Message boxes that have come so far.
  int Messages() const { return messages_; }

  std::deque<Reply> replies;
  std::deque<std::optional<std::string>> answers;
  std::deque<std::optional<std::string>> files;
  std::deque<std::string> choices;
  /// Told when a queued answer does not fit the question. The question is then answered as with none queued.
  std::function<void(const std::string& why)> onMisfit;

 private:
  JsonLines& out_;
  std::function<std::string(const std::string&)> helpPath_;
  int messages_ = 0;
};

}  // namespace brelant::script
