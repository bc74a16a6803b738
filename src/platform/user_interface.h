// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace brelant {

/// The questions that a person answers in a box of the machine's own. Every call returns when it is answered.
class UserInterface {
 public:
  enum class Buttons { ok, okCancel, yesNo };
  enum class Reply { ok, cancel, yes, no };
  enum class Icon { none, stop };
  enum class FileUse { open, save };

  virtual ~UserInterface() = default;

  /// A box with a text and an OK button.
  void Tell(const std::string& text) { MessageBox(text, Buttons::ok, "", Icon::none); }
  virtual Reply MessageBox(const std::string& text, Buttons buttons, const std::string& title, Icon icon) = 0;
  /// Nothing if cancelled.
  virtual std::optional<std::string> InputBox(const std::string& prompt, const std::string& title) = 0;
  std::optional<std::string> InputBox(const std::string& prompt) { return InputBox(prompt, ""); }
  /// `filter` is of the form "(*.Set)|*.Set". Nothing if cancelled.
  virtual std::optional<std::string> FileDialog(FileUse use, const std::string& filter) = 0;
  /// Index of the chosen caption, nothing if the menu was left.
  virtual std::optional<std::size_t> PopupMenu(const std::vector<std::string>& captions) = 0;
  /// Opens a help page with the program that the machine has for it.
  virtual void ShellOpen(const std::string& path) = 0;
};

}  // namespace brelant
