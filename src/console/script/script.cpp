// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/script/script.h"

#include <fstream>
#include <utility>

#include "console/script/parser.h"

namespace brelant::script {

void Script::Append(std::string_view text) {
  ++count_;
  if (fault_) return;
  try {
    if (auto command = ParseLine(text)) lines_.push_back({count_, std::string(text), std::move(*command)});
  } catch (const SyntaxError& error) {
    fault_ = Fault{count_, std::string(text), error.what()};
  }
}

std::optional<Line> Script::Take() {
  if (lines_.empty()) return {};
  auto line = std::move(lines_.front());
  lines_.pop_front();
  return line;
}

std::optional<Script> LoadScript(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  Script script;
  for (std::string line; std::getline(file, line);) script.Append(line);
  if (!file.eof()) return {};
  script.Complete();
  return script;
}

}  // namespace brelant::script
