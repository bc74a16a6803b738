// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/script/scripted_user.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <utility>

namespace brelant::script {

namespace {

using Buttons = UserInterface::Buttons;
using Reply = UserInterface::Reply;

const char* NameOf(Buttons buttons) {
  constexpr std::array<const char*, 3> kNames{"ok", "okcancel", "yesno"};
  return kNames.at(static_cast<std::size_t>(buttons));
}

const char* NameOf(Reply reply) {
  constexpr std::array<const char*, 4> kNames{"ok", "cancel", "yes", "no"};
  return kNames.at(static_cast<std::size_t>(reply));
}

bool Fits(Reply reply, Buttons buttons) {
  switch (buttons) {
    case Buttons::ok:
      return reply == Reply::ok;
    case Buttons::okCancel:
      return reply == Reply::ok || reply == Reply::cancel;
    case Buttons::yesNo:
      return reply == Reply::yes || reply == Reply::no;
  }
  return false;
}

template <typename Queue>
auto TakeFrom(Queue& queue) {
  auto first = std::move(queue.front());
  queue.pop_front();
  return first;
}

Json TextOrNull(const std::optional<std::string>& text) {
  return text ? Json(*text) : Json(nullptr);
}

}  // namespace

ScriptedUser::ScriptedUser(JsonLines& out, std::function<std::string(const std::string&)> helpPath)
    : out_(out), helpPath_(std::move(helpPath)) {}

Reply ScriptedUser::MessageBox(const std::string& text, Buttons buttons, const std::string& title,
                               Icon /*icon*/) {
  ++messages_;
  auto reply = buttons == Buttons::yesNo ? Reply::no : Reply::ok;
  std::string misfit;
  if (!replies.empty()) {
    const auto queued = TakeFrom(replies);
    if (Fits(queued, buttons)) {
      reply = queued;
    } else {
      misfit = std::string("the message box has no button ") + NameOf(queued);
    }
  }
  out_.Print({{"event", "message"},
              {"text", text},
              {"title", title},
              {"buttons", NameOf(buttons)},
              {"reply", NameOf(reply)}});
  if (!misfit.empty() && onMisfit) onMisfit(misfit);
  return reply;
}

std::optional<std::string> ScriptedUser::InputBox(const std::string& prompt, const std::string& title) {
  auto answer = answers.empty() ? std::nullopt : TakeFrom(answers);
  Json asked{{"event", "input"}, {"prompt", prompt}, {"answer", TextOrNull(answer)}};
  if (!title.empty()) asked["title"] = title;
  out_.Print(asked);
  return answer;
}

std::optional<std::string> ScriptedUser::FileDialog(FileUse use, const std::string& filter) {
  auto path = files.empty() ? std::nullopt : TakeFrom(files);
  out_.Print({{"event", "file"},
              {"use", use == FileUse::open ? "open" : "save"},
              {"filter", filter},
              {"path", TextOrNull(path)}});
  return path;
}

std::optional<std::size_t> ScriptedUser::PopupMenu(const std::vector<std::string>& captions) {
  std::optional<std::size_t> choice;
  std::string misfit;
  if (!choices.empty()) {
    const auto caption = TakeFrom(choices);
    const auto found = std::find(captions.begin(), captions.end(), caption);
    if (found == captions.end()) {
      misfit = "the popup menu has no \"" + caption + "\"";
    } else {
      choice = static_cast<std::size_t>(found - captions.begin());
    }
  }
  out_.Print({{"event", "popup"},
              {"captions", captions},
              {"choice", choice ? Json(captions[*choice]) : Json(nullptr)}});
  if (!misfit.empty() && onMisfit) onMisfit(misfit);
  return choice;
}

void ScriptedUser::ShellOpen(const std::string& path) {
  out_.Print({{"event", "help"}, {"path", helpPath_(path)}});
}

}  // namespace brelant::script
