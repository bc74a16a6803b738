// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/script/stdin_reader.h"

#include <array>
#include <cerrno>

#include <unistd.h>

namespace brelant::script {

StdinReader::StdinReader(Script& script) : script_(script), notifier_(STDIN_FILENO, QSocketNotifier::Read) {
  QObject::connect(&notifier_, &QSocketNotifier::activated, [this] { TakeBytes(); });
}

void StdinReader::TakeBytes() {
  std::array<char, 4096> bytes{};
  const auto count = read(STDIN_FILENO, bytes.data(), bytes.size());
  if (count < 0 && (errno == EINTR || errno == EAGAIN)) return;
  if (count <= 0) return End();
  partial_.append(bytes.data(), static_cast<std::size_t>(count));
  TakeLines();
}

void StdinReader::TakeLines() {
  std::size_t from = 0;
  for (auto end = partial_.find('\n'); end != std::string::npos; end = partial_.find('\n', from)) {
    script_.Append(std::string_view(partial_).substr(from, end - from));
    from = end + 1;
  }
  partial_.erase(0, from);
}

void StdinReader::End() {
  notifier_.setEnabled(false);
  if (!partial_.empty()) script_.Append(partial_);
  script_.Complete();
}

}  // namespace brelant::script
