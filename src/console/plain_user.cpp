// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/plain_user.h"

#include <iostream>

namespace brelant {

UserInterface::Reply PlainUser::MessageBox(const std::string& text, Buttons buttons,
                                           const std::string& /*title*/, Icon /*icon*/) {
  std::cerr << text << std::endl;
  if (onMessage) onMessage();
  return buttons == Buttons::yesNo ? Reply::no : Reply::ok;
}

std::optional<std::string> PlainUser::InputBox(const std::string& /*prompt*/, const std::string& /*title*/) {
  return {};
}

std::optional<std::string> PlainUser::FileDialog(FileUse /*use*/, const std::string& /*filter*/) {
  return {};
}

std::optional<std::size_t> PlainUser::PopupMenu(const std::vector<std::string>& /*captions*/) {
  return {};
}

void PlainUser::ShellOpen(const std::string& /*path*/) {}

}  // namespace brelant
