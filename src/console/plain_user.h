// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include "platform/user_interface.h"

namespace brelant {

/// Nobody to ask: what there is to tell goes to the standard error, every question is declined.
class PlainUser : public UserInterface {
 public:
  Reply MessageBox(const std::string& text, Buttons buttons, const std::string& title, Icon icon) override;
  using UserInterface::InputBox;
  std::optional<std::string> InputBox(const std::string& prompt, const std::string& title) override;
  std::optional<std::string> FileDialog(FileUse use, const std::string& filter) override;
  std::optional<std::size_t> PopupMenu(const std::vector<std::string>& captions) override;
  void ShellOpen(const std::string& path) override;

  /// Called after each message.
  std::function<void()> onMessage;
};

}  // namespace brelant
