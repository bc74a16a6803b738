// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/kit/EditBinding.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <utility>

#include "desktop/kit/make.h"
#include "desktop/kit/text.h"

namespace brelant {

namespace {

constexpr int kEnterKey = 13;

/// The focus comes back by itself when the box, the menu or the other program is left.
bool IsInterlude(Qt::FocusReason reason) {
  return reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason ||
         reason == Qt::MenuBarFocusReason;
}

bool IsEnter(const QKeyEvent& event) {
  const bool isPlain = (event.modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
  return isPlain && (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter);
}

}  // namespace

EditBinding::EditBinding(Views& views, Control& control, QLineEdit& edit, SpokenName name)
    : views_(views), control_(control), edit_(edit), name_(std::move(name)) {
  edit.setObjectName(QString::fromStdString(control.Name()));
  edit.installEventFilter(this);
  // The edit of a choice hears of focus and keys only from the box around it, past all filters.
  if (auto* box = edit.focusProxy()) box->installEventFilter(this);
  connect(&edit, &QLineEdit::textEdited, this, [this](const QString& text) {
    views_.Report(edit_, [this, text] { views_.Model().ChangeText(control_, text.toStdString()); });
  });
  views_.OnRefresh([this] { Refresh(); });
}

bool EditBinding::eventFilter(QObject* object, QEvent* event) {
  switch (event->type()) {
    case QEvent::FocusIn:
      FocusGained(static_cast<QFocusEvent*>(event)->reason());
      break;
    case QEvent::FocusOut:
      if (IsInterlude(static_cast<QFocusEvent*>(event)->reason())) break;
      views_.Report(edit_, [this] { views_.Model().LoseFocus(control_); });
      break;
    case QEvent::MouseButtonRelease:
      if (std::exchange(selectOnRelease_, false) && !edit_.hasSelectedText()) edit_.selectAll();
      break;
    case QEvent::KeyPress:
      if (IsEnter(*static_cast<QKeyEvent*>(event))) return EnterPressed();
      break;
    default:
      break;
  }
  return QObject::eventFilter(object, event);
}

void EditBinding::FocusGained(Qt::FocusReason reason) {
  const bool isBackFromInterlude = views_.Model().Focused() == &control_;
  views_.Report(edit_, [this] { views_.Model().GainFocus(control_); });
  if (isBackFromInterlude || edit_.isReadOnly()) return;
  edit_.selectAll();
  selectOnRelease_ = reason == Qt::MouseFocusReason;
}

/// Where the form has no use for the key it goes on to the window's default button.
bool EditBinding::EnterPressed() {
  if (!control_.onKey) return false;
  views_.Report(edit_, [this] { views_.Model().PressKey(control_, kEnterKey); });
  return true;
}

void EditBinding::Refresh() {
  const auto text = TextOf(control_);
  if (edit_.text() != text) edit_.setText(text);
  edit_.setReadOnly(!control_.Editable());
  // What takes no edit is passed over by the Tab key, and can still be clicked and copied.
  edit_.setFocusPolicy(control_.Editable() ? Qt::StrongFocus : Qt::ClickFocus);
  edit_.setEnabled(control_.Enabled());
  edit_.setToolTip(QString::fromStdString(control_.Tip()));
  const auto pointer = control_.Owner().Busy() ? Qt::WaitCursor : Qt::IBeamCursor;
  if (edit_.cursor().shape() != pointer) edit_.setCursor(pointer);
  const auto name = name_();
  if (edit_.accessibleName() != name) edit_.setAccessibleName(name);
  SetShown(edit_, control_.Visible());
  TakeColours();
}

void EditBinding::TakeColours() {
  if (back_ == control_.Back() && fore_ == control_.Fore()) return;
  back_ = control_.Back();
  fore_ = control_.Fore();
  QPalette palette;
  if (back_ != kStyleColour) palette.setColor(QPalette::Base, ToQColor(back_));
  if (fore_ != kStyleColour) palette.setColor(QPalette::Text, ToQColor(fore_));
  edit_.setPalette(palette);
}

}  // namespace brelant
