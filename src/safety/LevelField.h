// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>

#include "shell/form.h"

namespace brelant {

/// A level that the user may be typing while the panel sends and reads: what is half typed is not sent, and
/// what is typed is not overwritten before it was sent.
class LevelField {
 public:
  explicit LevelField(Control& field) : field_(field) {}

  /// The text that counts: as it was before an edit that is under way.
  const std::string& Text() const { return isEdited_ ? finished_ : field_.Text(); }
  /// Shows what the unit holds.
  void Show(const std::string& text) {
    if (isUnsent_) return;
    finished_ = text;
    if (!isEdited_) field_.SetText(text);
  }
  /// Shows a text in place of what the user has typed.
  void Correct(const std::string& text) {
    finished_ = text;
    if (!isEdited_) field_.SetText(text);
  }

  /// Shows both the text that counts and one that is half typed in another unit.
  void Convert(const std::function<std::string(const std::string&)>& converted) {
    finished_ = converted(Text());
    field_.SetText(isEdited_ ? converted(field_.Text()) : finished_);
  }

  /// With the first key, not with the focus alone, there is something that may not be overwritten.
  void EditBegins() {
    if (!isEdited_) finished_ = field_.Text();
  }
  /// Typing may go on after Enter, when the text has changed already.
  void Typed() { isEdited_ = true; }
  void EditEnds() {
    isEdited_ = false;
    isUnsent_ = true;
    finished_ = field_.Text();
  }
  /// The text that counts is on its way to the unit, or will never be.
  void Taken() { isUnsent_ = false; }

 private:
  Control& field_;
  std::string finished_;
  bool isEdited_ = false;
  bool isUnsent_ = false;
};

}  // namespace brelant
