// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/kit/Acts.h"

#include <utility>

namespace brelant {

void Acts::Report(QWidget& source, std::function<void()> act) {
  waiting_.push_back({&source, std::move(act)});
}

bool Acts::CarryOut() {
  if (waiting_.empty()) return false;
  auto outer = std::exchange(source_, {});
  while (!waiting_.empty()) {
    const auto act = std::move(waiting_.front());
    waiting_.pop_front();
    if (act.source.isNull()) continue;
    source_ = act.source;
    act.run();
  }
  source_ = std::move(outer);
  return true;
}

}  // namespace brelant
