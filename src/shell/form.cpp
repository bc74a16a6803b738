// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/form.h"

#include <algorithm>
#include <utility>

namespace brelant {

Control::Control(Form& form, ControlKind kind, std::string name, std::string text)
    : form_(&form), kind_(kind), name_(std::move(name)), text_(std::move(text)) {}

template <typename T>
void Control::Assign(T& member, T value) {
  if (member == value) return;
  member = std::move(value);
  ++form_->revision_;
}

void Control::SetText(std::string text) {
  Assign(text_, std::move(text));
}
void Control::SetValue(int value) {
  Assign(value_, value);
}
void Control::SetItems(std::vector<std::string> items) {
  Assign(items_, std::move(items));
}
void Control::SetEnabled(bool enabled) {
  Assign(enabled_, enabled);
}
void Control::SetVisible(bool visible) {
  Assign(visible_, visible);
}
void Control::SetBack(Colour back) {
  Assign(back_, back);
}
void Control::SetFore(Colour fore) {
  Assign(fore_, fore);
}
void Control::SetTip(std::string tip) {
  Assign(tip_, std::move(tip));
}

Form* Screen::Find(std::string_view name) const {
  const auto found =
      std::find_if(forms_.begin(), forms_.end(), [&](const Form* form) { return form->Name() == name; });
  return found == forms_.end() ? nullptr : *found;
}

Form* Screen::Front() const {
  return shown_.empty() ? nullptr : shown_.back();
}

void Screen::Register(Form& form) {
  forms_.insert(forms_.begin(), &form);
}

void Screen::Unregister(Form& form) {
  std::erase(forms_, &form);
  if (std::erase(shown_, &form) > 0 && onShow) onShow(form, false);
}

void Screen::Show(Form& form, bool visible) {
  std::erase(shown_, &form);
  if (visible) shown_.push_back(&form);
  if (onShow) onShow(form, visible);
}

Form::Form(Screen& screen, std::string name, std::string caption)
    : screen_(screen), name_(std::move(name)), caption_(std::move(caption)) {
  screen_.Register(*this);
}

Form::~Form() {
  screen_.Unregister(*this);
}

Control& Form::Add(ControlKind kind, const std::string& name, const std::string& text) {
  return controls_.emplace_back(*this, kind, name, text);
}

ControlArray Form::AddArray(ControlKind kind, const std::string& name, int count) {
  std::vector<Control*> controls;
  controls.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) controls.push_back(&AddIndexed(kind, name, i));
  return ControlArray(std::move(controls));
}

Control& Form::AddIndexed(ControlKind kind, const std::string& name, int index, const std::string& text) {
  return Add(kind, name + "(" + std::to_string(index) + ")", text);
}

Control& Form::AddMenu(const std::string& parent, const std::string& name, const std::string& text) {
  auto& entry = Add(ControlKind::menu, name, text);
  entry.parent = parent;
  return entry;
}

Control* Form::Find(std::string_view name) {
  const auto found = std::find_if(controls_.begin(), controls_.end(),
                                  [&](const Control& control) { return control.Name() == name; });
  return found == controls_.end() ? nullptr : &*found;
}

void Form::SetCaption(std::string caption) {
  if (caption_ == caption) return;
  caption_ = std::move(caption);
  ++revision_;
}

void Form::SetBusy(bool busy) {
  if (busy_ == busy) return;
  busy_ = busy;
  ++revision_;
}

void Form::Show() {
  if (visible_) return;
  visible_ = true;
  focused_ = initialFocus;
  screen_.Show(*this, true);
}

void Form::Hide() {
  if (!visible_) return;
  visible_ = false;
  focused_ = nullptr;
  screen_.Show(*this, false);
}

void Form::ShowModal(Pump& pump, const std::function<bool()>& over) {
  modal_ = true;
  Show();
  while (visible_ && !over()) pump.Wait(std::chrono::microseconds::max());
  Hide();
  modal_ = false;
}

bool Form::Reachable(const Control& control) const {
  if (!control.Visible() || !control.Enabled()) return false;
  // The menu of an entry must open; one that is only popped up is hidden, but its entries can be chosen.
  const auto menu = std::find_if(controls_.begin(), controls_.end(), [&](const Control& candidate) {
    return !control.parent.empty() && candidate.Name() == control.parent;
  });
  return menu == controls_.end() || (menu->Enabled() && (menu->parent.empty() || Reachable(*menu)));
}

bool Form::GainFocus(Control& control) {
  if (!Reachable(control)) return false;
  if (focused_ == &control) return true;
  if (focused_ != nullptr) LoseFocus(*focused_);
  focused_ = &control;
  if (control.onFocus) control.onFocus();
  return true;
}

bool Form::ChangeText(Control& control, const std::string& text) {
  if (!Reachable(control)) return false;
  if (!control.Editable()) return true;
  control.SetText(text);
  if (control.onChange) control.onChange();
  return true;
}

bool Form::LoseFocus(Control& control) {
  if (focused_ != &control) return false;
  focused_ = nullptr;
  if (control.onLeave) control.onLeave();
  return true;
}

bool Form::PressKey(Control& control, int code) {
  if (!Reachable(control)) return false;
  return control.onKey && control.onKey(code);
}

bool Form::Click(Control& control) {
  if (!Reachable(control)) return false;
  // A press on a button takes the focus from the field being edited; labels, pictures and menus do not.
  const bool takesFocus = control.Kind() == ControlKind::button || control.Kind() == ControlKind::check ||
                          control.Kind() == ControlKind::option;
  if (takesFocus && focused_ != nullptr && focused_ != &control) LoseFocus(*focused_);
  if (control.Kind() == ControlKind::check) control.SetValue(control.Value() == 0 ? 1 : 0);
  if (control.Kind() == ControlKind::option) Select(control);
  if (control.onClick) control.onClick();
  return true;
}

bool Form::Choose(Control& control, const std::string& item) {
  if (!Reachable(control)) return false;
  const auto& items = control.Items();
  const auto found = std::find(items.begin(), items.end(), item);
  if (found == items.end()) return false;
  control.SetValue(static_cast<int>(found - items.begin()));
  control.SetText(item);
  if (control.onChange) control.onChange();
  return true;
}

void Form::Close() {
  if (onClose) {
    onClose();
  } else {
    Hide();
  }
}

void Form::Select(Control& option) {
  for (auto& control : controls_) {
    if (control.Kind() == ControlKind::option && control.group == option.group) control.SetValue(0);
  }
  option.SetValue(1);
}

}  // namespace brelant
