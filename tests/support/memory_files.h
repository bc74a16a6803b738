// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/files.h"

namespace brelant::test {

/// Files in memory. Paths are held with single slashes, and "last.set" is one file whatever its case
/// (docs/architecture.md, Files).
class MemoryFiles : public Files {
 public:
  using Content = std::vector<std::uint8_t>;

  bool Exists(const std::string& path) const override;
  std::vector<std::uint8_t> Read(const std::string& path, std::size_t limit) const override;
  void Write(const std::string& path, std::span<const std::uint8_t> bytes) override;
  void Remove(const std::string& path) override;
  std::vector<std::string> List(const std::string& folder) const override;
  std::unique_ptr<Log> OpenLog(const std::string& path) override;

  void Put(const std::string& path, const Content& content) { files_[Key(path)] = content; }
  void PutFolder(const std::string& path) { folders_.insert(Key(path)); }
  /// Every operation on that path fails from now on, though it exists.
  void Break(const std::string& path) { broken_.insert(Key(path)); }
  void Mend(const std::string& path) { broken_.erase(Key(path)); }

  Content Get(const std::string& path) const;
  /// The same as text.
  std::string Text(const std::string& path) const;

  /// What was done, in order: "write P", "remove P", "open log P", "print P", "close log P".
  mutable std::vector<std::string> acts;
  /// Logs that are open now.
  int openLogs = 0;
  /// Logs fail when a line is printed, not when they are opened.
  bool failPrint = false;

 private:
  class MemoryLog;

  static std::string Key(const std::string& path);
  void RequireSound(const std::string& key) const;

  std::map<std::string, Content> files_;
  std::set<std::string> folders_;
  std::set<std::string> broken_;
};

}  // namespace brelant::test
