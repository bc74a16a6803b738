// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/pump.h"

namespace brelant {

class Form;

enum class ControlKind { text, label, check, option, list, button, picture, menu, lamp, bar };

/// A colour as one number with red in the lowest byte; kStyleColour leaves it to the face.
using Colour = std::int32_t;
inline constexpr Colour kStyleColour = -1;

/// One named control of a form: values and rules, nothing that draws (docs/architecture.md, Forms are
/// models).
class Control {
 public:
  using Handler = std::function<void()>;

  Control(Form& form, ControlKind kind, std::string name, std::string text);

  /// The name with its index where it is one of an array, as in "txbFa(0)".
  const std::string& Name() const { return name_; }
  ControlKind Kind() const { return kind_; }
  Form& Owner() const { return *form_; }

  const std::string& Text() const { return text_; }
  void SetText(std::string text);
  /// Checks, options, menu entries: 0 or 1. Lists: the index chosen, -1 for none. Bars: 0 to 100.
  int Value() const { return value_; }
  void SetValue(int value);
  const std::vector<std::string>& Items() const { return items_; }
  void SetItems(std::vector<std::string> items);
  bool Enabled() const { return enabled_; }
  void SetEnabled(bool enabled);
  bool Visible() const { return visible_; }
  void SetVisible(bool visible);
  Colour Back() const { return back_; }
  void SetBack(Colour back);
  Colour Fore() const { return fore_; }
  void SetFore(Colour fore);
  const std::string& Tip() const { return tip_; }
  void SetTip(std::string tip);

  /// Text fields: whether they take an edit now. Empty: always.
  std::function<bool()> editable;
  bool Editable() const { return !editable || editable(); }

  /// Name of the menu that a menu entry stands in, empty on the menu bar itself and for other kinds.
  std::string parent;
  /// Options of one form with the same group exclude each other.
  int group = 0;

  /// The rules, called by the acts of the form. Empty: nothing happens.
  Handler onFocus;
  Handler onChange;
  Handler onLeave;
  Handler onClick;
  /// Takes the key code, true if the key was swallowed.
  std::function<bool(int)> onKey;

 private:
  template <typename T>
  void Assign(T& member, T value);

  Form* form_;
  ControlKind kind_;
  std::string name_;
  std::string text_;
  int value_ = 0;
  std::vector<std::string> items_;
  bool enabled_ = true;
  bool visible_ = true;
  Colour back_ = kStyleColour;
  Colour fore_ = kStyleColour;
  std::string tip_;
};

/// The controls of one name, by index.
class ControlArray {
 public:
  explicit ControlArray(std::vector<Control*> controls = {}) : controls_(std::move(controls)) {}
  Control& operator[](int index) const { return *controls_.at(static_cast<std::size_t>(index)); }
  int Count() const { return static_cast<int>(controls_.size()); }
  auto begin() const { return controls_.begin(); }
  auto end() const { return controls_.end(); }

 private:
  std::vector<Control*> controls_;
};

/// All forms that exist, and which of them are to be seen.
class Screen {
 public:
  Form* Find(std::string_view name) const;
  /// The visible form that was shown last, nullptr if none is visible.
  Form* Front() const;
  /// The visible forms, the front one last.
  const std::vector<Form*>& Shown() const { return shown_; }

  /// Told after a form was shown, or before it is gone.
  std::function<void(Form&, bool visible)> onShow;

 private:
  friend class Form;
  void Register(Form& form);
  void Unregister(Form& form);
  void Show(Form& form, bool visible);

  std::vector<Form*> forms_;
  std::vector<Form*> shown_;
};

/// A named set of controls. The face draws what it finds and reports acts; the rules live in the handlers.
class Form {
 public:
  Form(Screen& screen, std::string name, std::string caption);
  ~Form();
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;

  Control& Add(ControlKind kind, const std::string& name, const std::string& text = {});
  ControlArray AddArray(ControlKind kind, const std::string& name, int count);
  /// One element of an array whose indexes have gaps.
  Control& AddIndexed(ControlKind kind, const std::string& name, int index, const std::string& text = {});
  Control& AddMenu(const std::string& parent, const std::string& name, const std::string& text);
  Control* Find(std::string_view name);
  const std::deque<Control>& Controls() const { return controls_; }
  std::deque<Control>& Controls() { return controls_; }

  const std::string& Name() const { return name_; }
  const std::string& Caption() const { return caption_; }
  void SetCaption(std::string caption);
  bool Visible() const { return visible_; }
  /// Counts up with every change of the form or one of its controls.
  std::uint64_t Revision() const { return revision_; }

  void Show();
  void Hide();
  /// Shows the form in front of all others and pumps until it is hidden or `over` holds.
  void ShowModal(Pump& pump, const std::function<bool()>& over);
  bool Modal() const { return modal_; }
  /// The mouse pointer of the form is the hourglass.
  bool Busy() const { return busy_; }
  void SetBusy(bool busy);

  /// Has the focus when the form opens.
  Control* initialFocus = nullptr;

  /// What the close act does; empty: the form is hidden.
  Control::Handler onClose;

  /// The acts of a user. Each is ignored, and answered with false, on a control that is hidden or disabled.
  bool GainFocus(Control& control);
  /// A field that takes no edit now keeps its text, which is no failure.
  bool ChangeText(Control& control, const std::string& text);
  bool LoseFocus(Control& control);
  bool PressKey(Control& control, int code);
  bool Click(Control& control);
  bool Choose(Control& control, const std::string& item);
  void Close();

  Control* Focused() const { return focused_; }
  /// Exclusive choice of one option of a group, without its handler.
  void Select(Control& option);

 private:
  friend class Control;
  bool Reachable(const Control& control) const;

  Screen& screen_;
  std::string name_;
  std::string caption_;
  std::deque<Control> controls_;
  bool visible_ = false;
  bool modal_ = false;
  bool busy_ = false;
  Control* focused_ = nullptr;
  std::uint64_t revision_ = 0;
};

}  // namespace brelant
