// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QWidget>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "desktop/kit/Acts.h"
#include "shell/form.h"

namespace brelant {

/// The views of one window on the controls of one form. They keep no values: each re-reads its control when
/// the form has changed (docs/architecture.md, Forms are models).
class Views {
 public:
  Views(Form& form, Acts& acts) : form_(form), acts_(acts) {}

  Form& Model() const { return form_; }
  /// Throws std::out_of_range if the form has no such control.
  Control& operator()(const std::string& name) const;
  Control& operator()(const std::string& name, int index) const;

  /// Reads now and whenever the form has changed.
  void OnRefresh(std::function<void()> refresh);
  /// Re-reads what the form shows now; `always` also if its revision has not moved, to take back what a
  /// widget did by itself and the form refused.
  void Refresh(bool always);

  /// Holds a helper of a widget for as long as the views last, which is longer than their widgets do.
  void Keep(std::unique_ptr<QObject> helper) { helpers_.push_back(std::move(helper)); }

  void Report(QWidget& source, std::function<void()> act) { acts_.Report(source, std::move(act)); }
  void ReportClick(QWidget& source, Control& control);

 private:
  Form& form_;
  Acts& acts_;
  std::vector<std::function<void()>> refreshers_;
  std::vector<std::unique_ptr<QObject>> helpers_;
  std::uint64_t seen_ = 0;
};

}  // namespace brelant
