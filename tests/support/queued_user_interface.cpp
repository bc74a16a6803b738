// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/queued_user_interface.h"

#include <utility>

namespace brelant::test {

namespace {

template <typename Answer>
Answer Next(std::deque<Answer>& answers, Answer otherwise) {
  if (answers.empty()) return otherwise;
  auto answer = std::move(answers.front());
  answers.pop_front();
  return answer;
}

}  // namespace

UserInterface::Reply QueuedUserInterface::MessageBox(const std::string& text, Buttons buttons,
                                                     const std::string& title, Icon icon) {
  messages.push_back({text, buttons, title, icon});
  if (onMessage) onMessage();
  return Next(replies, buttons == Buttons::yesNo ? Reply::no : Reply::ok);
}

std::optional<std::string> QueuedUserInterface::InputBox(const std::string& prompt,
                                                         const std::string& /*title*/) {
  prompts.push_back(prompt);
  return Next(inputs, std::optional<std::string>());
}

std::optional<std::string> QueuedUserInterface::FileDialog(FileUse use, const std::string& filter) {
  dialogs.push_back({use, filter});
  return Next(chosenFiles, std::optional<std::string>());
}

std::optional<std::size_t> QueuedUserInterface::PopupMenu(const std::vector<std::string>& captions) {
  popups.push_back(captions);
  return Next(choices, std::optional<std::size_t>());
}

std::vector<std::string> QueuedUserInterface::Texts() const {
  std::vector<std::string> texts;
  texts.reserve(messages.size());
  for (const auto& message : messages) texts.push_back(message.text);
  return texts;
}

}  // namespace brelant::test
