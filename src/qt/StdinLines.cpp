// SPDX-License-Identifier: GPL-3.0-or-later
#include "qt/StdinLines.h"

#include <array>
#include <cerrno>
#include <utility>

#include <unistd.h>

namespace brelant {

StdinLines::StdinLines(std::function<void(std::string_view)> onLine, std::function<void()> onEnd)
    : onLine_(std::move(onLine)), onEnd_(std::move(onEnd)), notifier_(STDIN_FILENO, QSocketNotifier::Read) {
  QObject::connect(&notifier_, &QSocketNotifier::activated, [this] { TakeBytes(); });
}

void StdinLines::TakeBytes() {
  std::array<char, 4096> bytes{};
  const auto count = read(STDIN_FILENO, bytes.data(), bytes.size());
  if (count < 0 && (errno == EINTR || errno == EAGAIN)) return;
  if (count <= 0) return End();
  partial_.append(bytes.data(), static_cast<std::size_t>(count));
  TakeLines();
}

void StdinLines::TakeLines() {
  std::size_t from = 0;
  for (auto end = partial_.find('\n'); end != std::string::npos; end = partial_.find('\n', from)) {
    onLine_(std::string_view(partial_).substr(from, end - from));
    from = end + 1;
  }
  partial_.erase(0, from);
}

void StdinLines::End() {
  notifier_.setEnabled(false);
  if (!partial_.empty()) onLine_(partial_);
  onEnd_();
}

}  // namespace brelant
