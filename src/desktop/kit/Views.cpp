// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/kit/Views.h"

#include <stdexcept>

namespace brelant {

Control& Views::operator()(const std::string& name) const {
  auto* control = form_.Find(name);
  if (control == nullptr) throw std::out_of_range("no control " + name + " on " + form_.Name());
  return *control;
}

Control& Views::operator()(const std::string& name, int index) const {
  return (*this)(name + "(" + std::to_string(index) + ")");
}

void Views::OnRefresh(std::function<void()> refresh) {
  refresh();
  refreshers_.push_back(std::move(refresh));
}

void Views::Refresh(bool always) {
  if (!always && seen_ == form_.Revision()) return;
  seen_ = form_.Revision();
  for (const auto& refresh : refreshers_) refresh();
}

void Views::ReportClick(QWidget& source, Control& control) {
  Report(source, [this, &control] { form_.Click(control); });
}

}  // namespace brelant
