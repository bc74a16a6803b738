// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCloseEvent>
#include <QWidget>

#include "desktop/kit/Views.h"

namespace brelant {

/// The window of a form, for as long as the form is visible. What it shows and when it closes is the form's
/// affair: closing it is an act that is reported like any other.
class FormWindow {
 public:
  FormWindow(Form& form, Acts& acts) : views_(form, acts) {}
  virtual ~FormWindow() = default;
  FormWindow(const FormWindow&) = delete;
  FormWindow& operator=(const FormWindow&) = delete;

  virtual QWidget& Window() = 0;

  /// Shows it, in front of `owner` if there is one.
  void Open(const QWidget* owner);
  void Refresh(bool always);

 protected:
  void ReportClose();
  /// Gives the focus to the control that the form wants it on, otherwise to what the window prefers.
  virtual QWidget* PreferredFocus() { return nullptr; }

  Views views_;

 private:
  void RefreshFrame();
};

}  // namespace brelant
