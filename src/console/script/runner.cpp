// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/script/runner.h"

#include <algorithm>
#include <iostream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <utility>

#include "console/form_json.h"

namespace brelant::script {

namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;

constexpr int kEnterKey = 13;

/// A command that cannot be carried out, with a text for people.
struct CommandFailure {
  std::string why;
};

/// A menu entry can be reached only through the menus that it stands in.
bool IsReachable(Control& control) {
  for (auto* at = &control; at != nullptr; at = at->Owner().Find(at->parent)) {
    if (!at->Visible() || !at->Enabled()) return false;
  }
  return true;
}

std::string PlainText(const Json& property) {
  return property.is_string() ? property.get<std::string>() : property.dump();
}

/// A byte of the image, which between two edits may be no whole number.
Json ByteJson(float value) {
  const auto whole = static_cast<int>(value);
  return static_cast<float>(whole) == value ? Json(whole) : Json(value);
}

template <typename Bytes, typename Flags>
void AddBytes(Json& json, const Bytes& bytes, const Flags& flags, const Image& range) {
  const auto from = static_cast<std::size_t>(range.from);
  const auto count = static_cast<std::size_t>(range.count);
  if (from >= bytes.size() || count > bytes.size() - from) {
    throw CommandFailure{"the image ends at " + std::to_string(bytes.size() - 1)};
  }
  for (auto i = from; i < from + count; ++i) {
    json["bytes"].push_back(ByteJson(bytes[i]));
    json["valid"].push_back(static_cast<bool>(flags[i]));
  }
}

std::string Seconds(milliseconds time) {
  std::ostringstream text;
  text << static_cast<double>(time.count()) / 1000 << " s";
  return text.str();
}

}  // namespace

Runner::Runner(Script& script, ScriptedUser& user, JsonLines& out, const Stage& stage)
    : script_(script), user_(user), out_(out), stage_(stage), messagesTaken_(user.Messages()) {
  user_.onMisfit = [this](const std::string& why) { Fail(why); };
  stage_.screen.onShow = [this](Form& form, bool visible) { NoteShown(form, visible); };
}

Runner::~Runner() {
  user_.onMisfit = nullptr;
  stage_.screen.onShow = nullptr;
}

bool Runner::Pass() {
  NoteProgress();
  // A process that is over must not sleep on its way out.
  if (stage_.session.processOver) return true;
  if (!WaitIsOver()) return over_;
  if (auto line = script_.Take()) {
    CarryOut(std::move(*line));
    return true;
  }
  // The last command is over when it has returned, not in the passes inside it.
  if (script_.Over() && depth_ == 0) EndOfScript();
  return over_;
}

int Runner::Finish() {
  NoteProgress();
  if (!over_) {
    if (pending_ && pending_->wait.what != Wait::For::time) {
      Fail("the process has ended");
    } else if (const auto next = script_.Take(); next && !std::holds_alternative<Quit>(next->command)) {
      current_ = *next;
      Fail("the process has ended");
    }
  }
  out_.Print({{"event", "exit"}, {"status", status_}});
  return status_;
}

void Runner::CarryOut(Line line) {
  current_ = std::move(line);
  // A nested pass replaces the current line while its command is still at work.
  const auto command = current_.command;
  ++depth_;
  try {
    std::visit([this](const auto& told) { Do(told); }, command);
  } catch (const CommandFailure& failure) {
    Fail(failure.why);
  }
  --depth_;
}

void Runner::EndOfScript() {
  if (const auto& fault = script_.FaultyLine()) {
    Report(fault->line, fault->text, fault->why);
    End(kMakesNoSense);
  } else {
    End(kDone);
  }
}

void Runner::Fail(const std::string& why) {
  if (over_) return;
  Report(current_.number, current_.text, why);
  End(kFailed);
}

void Runner::Report(int line, const std::string& command, const std::string& why) {
  out_.Print({{"event", "error"}, {"line", line}, {"command", command}, {"text", why}});
  std::cerr << "line " << line << ": " << command << ": " << why << std::endl;
}

void Runner::End(int status) {
  over_ = true;
  status_ = status;
  stage_.session.processOver = true;
}

void Runner::Do(const Get& command) {
  const auto& control = FindControl(command.control);
  out_.Print(command.property ? PropertyJson(control, *command.property) : ControlJson(control));
}

void Runner::Do(const Dump& command) {
  out_.Print(FormJson(FindForm(command.form)));
}

void Runner::Do(const Type& command) {
  auto& control = Reach(command.control);
  auto& form = control.Owner();
  Replace(control, command.text);
  form.LoseFocus(control);
}

void Runner::Do(const Enter& command) {
  auto& control = Reach(command.control);
  Replace(control, command.text);
  control.Owner().PressKey(control, kEnterKey);
}

void Runner::Do(const Focus& command) {
  auto& control = Reach(command.control);
  control.Owner().GainFocus(control);
}

void Runner::Do(const Leave& command) {
  auto& control = Reach(command.control);
  if (!control.Owner().LoseFocus(control)) throw CommandFailure{control.Name() + " does not have the focus"};
}

void Runner::Do(const Click& command) {
  auto& control = Reach(command.control);
  control.Owner().Click(control);
}

void Runner::Do(const Select& command) {
  auto& control = Reach(command.control);
  if (!control.Owner().Choose(control, command.text)) {
    throw CommandFailure{control.Name() + " offers " + Json(control.Items()).dump()};
  }
}

void Runner::Do(const Choose& command) {
  user_.choices.push_back(command.caption);
}

void Runner::Do(const Answer& command) {
  user_.answers.push_back(command.text);
}

void Runner::Do(const Reply& command) {
  user_.replies.push_back(command.reply);
}

void Runner::Do(const File& command) {
  user_.files.push_back(command.path);
}

void Runner::Do(const Wait& command) {
  pending_ = Pending{command, stage_.clock.Now() + command.limit, stage_.session.polls};
  WakeAt(pending_->deadline);
}

void Runner::Do(const Expect& command) {
  const auto is = PlainText(PropertyJson(FindControl(command.control), command.property));
  if (is != command.value) throw CommandFailure{"it is \"" + is + "\""};
}

void Runner::Do(const Image& command) {
  Json json{{"image", command.isEeprom ? "eeprom" : "ram"},
            {"from", command.from},
            {"bytes", Json::array()},
            {"valid", Json::array()}};
  const auto& image = stage_.image;
  if (command.isEeprom) {
    AddBytes(json, image.EepromImage, image.EepromValid, command);
  } else {
    AddBytes(json, image.RamImage, image.RamValid, command);
  }
  out_.Print(json);
}

void Runner::Do(const Close& command) {
  auto& form = FindForm(command.form);
  RequireInReach(form);
  BeginAct();
  form.Close();
}

void Runner::Do(const Quit& /*command*/) {
  End(kDone);
}

void Runner::Replace(Control& control, const std::string& text) {
  if (control.Kind() != ControlKind::text) throw CommandFailure{control.Name() + " is not a text field"};
  control.Owner().GainFocus(control);
  control.Owner().ChangeText(control, text);
}

Form& Runner::FindForm(const std::string& name) const {
  auto* form = name.empty() ? stage_.screen.Front() : stage_.screen.Find(name);
  if (form == nullptr) throw CommandFailure{name.empty() ? "no form is shown" : "there is no form " + name};
  return *form;
}

/// The progress box comes and goes in front of a panel, so the name is looked for behind it too.
Control& Runner::FindControl(const ControlName& name) const {
  if (!name.form.empty()) {
    if (auto* control = FindForm(name.form).Find(name.control)) return *control;
    throw CommandFailure{"form " + name.form + " has no control " + name.control};
  }
  const auto& shown = stage_.screen.Shown();
  for (auto form = shown.rbegin(); form != shown.rend(); ++form) {
    if (auto* control = (*form)->Find(name.control)) return *control;
    if ((*form)->Modal()) break;
  }
  throw CommandFailure{"form " + FindForm("").Name() + " in front has no control " + name.control};
}

void Runner::RequireInReach(const Form& form) const {
  if (!form.Visible()) throw CommandFailure{"form " + form.Name() + " is not shown"};
  const auto& shown = stage_.screen.Shown();
  const auto modal =
      std::find_if(shown.rbegin(), shown.rend(), [](const Form* other) { return other->Modal(); });
  if (modal == shown.rend()) return;
  if (std::find(modal.base() - 1, shown.end(), &form) == shown.end()) {
    throw CommandFailure{"form " + (*modal)->Name() + " has to be left first"};
  }
}

Control& Runner::Reach(const ControlName& name) {
  auto& control = FindControl(name);
  RequireInReach(control.Owner());
  if (!IsReachable(control)) {
    throw CommandFailure{control.Name() + (control.Visible() ? " is disabled" : " is hidden")};
  }
  BeginAct();
  return control;
}

/// What came before an act cannot be what a wait behind it is for.
void Runner::BeginAct() {
  messagesTaken_ = user_.Messages();
  progressSeen_.clear();
}

bool Runner::WaitIsOver() {
  if (!pending_) return true;
  if (HasHappened(*pending_)) {
    pending_.reset();
    wake_.reset();
    return true;
  }
  if (stage_.clock.Now() >= pending_->deadline) {
    Fail("it has not happened within " + Seconds(pending_->wait.limit));
  } else if (woken_) {
    WakeAt(pending_->deadline);
  }
  return false;
}

bool Runner::HasHappened(Pending& pending) {
  switch (pending.wait.what) {
    case Wait::For::time:
      return stage_.clock.Now() >= pending.deadline;
    case Wait::For::idle:
      return IsIdle();
    case Wait::For::form: {
      const auto* form = stage_.screen.Find(pending.wait.text);
      return form != nullptr && form->Visible();
    }
    case Wait::For::message:
      return TakeMessage();
    case Wait::For::progress:
      return TakeProgress(pending.wait.text);
    case Wait::For::poll:
      return TakePolls(pending);
  }
  return false;
}

bool Runner::TakeMessage() {
  if (user_.Messages() == messagesTaken_) return false;
  ++messagesTaken_;
  return true;
}

bool Runner::TakeProgress(const std::string& text) {
  const auto seen = std::find(progressSeen_.begin(), progressSeen_.end(), text);
  if (seen != progressSeen_.end()) {
    progressSeen_.erase(progressSeen_.begin(), seen + 1);
    return true;
  }
  // A closed box counts only when it is not just about to open.
  return progress_ == text && (!text.empty() || stage_.session.PanelCommand == 0);
}

/// The limit holds for each poll, or no wait could be for more than thirty.
bool Runner::TakePolls(Pending& pending) {
  const auto polls = stage_.session.polls;
  if (polls != pending.polls) {
    pending.wait.polls -= static_cast<int>(polls - pending.polls);
    pending.polls = polls;
    pending.deadline = stage_.clock.Now() + pending.wait.limit;
  }
  return pending.wait.polls <= 0;
}

bool Runner::IsIdle() const {
  const auto& session = stage_.session;
  return session.PanelCommand == 0 && session.BusBusyText.empty() && !stage_.msg.Visible() &&
         stage_.screen.Front() != nullptr;
}

/// The pump may sleep for ever, and its timers are no finer than milliseconds.
void Runner::WakeAt(microseconds moment) {
  const auto left = std::max(moment - stage_.clock.Now(), microseconds(0));
  woken_ = false;
  wake_ =
      stage_.pump.Every(std::chrono::ceil<milliseconds>(left) + milliseconds(1), [this] { woken_ = true; });
}

void Runner::NoteShown(const Form& form, bool visible) {
  out_.Print({{"event", "form"}, {"form", form.Name()}, {"visible", visible}});
  NoteProgress();
}

void Runner::NoteProgress() {
  const auto& says = stage_.msg.Visible() ? stage_.msg.Label1.Text() : std::string();
  if (says == progress_) return;
  progress_ = says;
  progressSeen_.push_back(says);
  out_.Print({{"event", "progress"}, {"text", says}});
}

}  // namespace brelant::script
