// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/memory_files.h"

#include <algorithm>
#include <cctype>

#include "platform/machine_error.h"

namespace brelant::test {

class MemoryFiles::MemoryLog : public Files::Log {
 public:
  MemoryLog(MemoryFiles& files, std::string key) : files_(files), key_(std::move(key)) {
    ++files_.openLogs;
    files_.acts.push_back("open log " + key_);
  }
  MemoryLog(const MemoryLog&) = delete;
  MemoryLog& operator=(const MemoryLog&) = delete;
  ~MemoryLog() override {
    --files_.openLogs;
    files_.acts.push_back("close log " + key_);
  }

  void PrintLine(const std::string& text) override {
    if (files_.failPrint) throw MachineError("Disk full");
    files_.acts.push_back("print " + key_);
    auto& content = files_.files_[key_];
    content.insert(content.end(), text.begin(), text.end());
    content.push_back('\n');
  }

 private:
  MemoryFiles& files_;
  std::string key_;
};

bool MemoryFiles::Exists(const std::string& path) const {
  return files_.count(Key(path)) > 0 || folders_.count(Key(path)) > 0 || broken_.count(Key(path)) > 0;
}

std::vector<std::uint8_t> MemoryFiles::Read(const std::string& path, std::size_t limit) const {
  RequireSound(Key(path));
  auto content = Get(path);
  content.resize(std::min(content.size(), limit));
  return content;
}

void MemoryFiles::Write(const std::string& path, std::span<const std::uint8_t> bytes) {
  RequireSound(Key(path));
  acts.push_back("write " + Key(path));
  files_[Key(path)].assign(bytes.begin(), bytes.end());
}

void MemoryFiles::Remove(const std::string& path) {
  RequireSound(Key(path));
  if (files_.erase(Key(path)) == 0) throw MachineError("File not found");
  acts.push_back("remove " + Key(path));
}

std::vector<std::string> MemoryFiles::List(const std::string& folder) const {
  const auto start = Key(folder + "/");
  std::vector<std::string> names;
  for (const auto& [key, content] : files_) {
    if (!key.starts_with(start)) continue;
    const auto name = key.substr(start.size());
    if (name.find('/') == std::string::npos) names.push_back(name);
  }
  return names;
}

std::unique_ptr<Files::Log> MemoryFiles::OpenLog(const std::string& path) {
  RequireSound(Key(path));
  return std::make_unique<MemoryLog>(*this, Key(path));
}

MemoryFiles::Content MemoryFiles::Get(const std::string& path) const {
  const auto found = files_.find(Key(path));
  if (found == files_.end()) throw MachineError("File not found");
  return found->second;
}

std::string MemoryFiles::Text(const std::string& path) const {
  const auto content = Get(path);
  return {content.begin(), content.end()};
}

std::string MemoryFiles::Key(const std::string& path) {
  std::string key;
  for (const char c : path) {
    const char step = c == '\\' ? '/' : c;
    if (step != '/' || key.empty() || key.back() != '/') key += step;
  }
  const auto name = key.find_last_of('/') + 1;
  std::string lower = key.substr(name);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return lower == "last.set" ? key.substr(0, name) + lower : key;
}

void MemoryFiles::RequireSound(const std::string& key) const {
  if (broken_.count(key) > 0) throw MachineError("Permission denied: " + key);
  if (folders_.count(key) > 0) throw MachineError("Is a folder: " + key);
}

}  // namespace brelant::test
