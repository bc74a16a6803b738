// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace brelant {

/// The file system. Paths are built with backslashes, a doubled one is harmless; the implementation turns
/// them into the machine's own form (docs/architecture.md, Files). Operations throw MachineError on failure.
class Files {
 public:
  /// A text file open for appending; closed when destroyed.
  class Log {
   public:
    virtual ~Log() = default;
    /// Appends the text and the platform's line end.
    virtual void PrintLine(const std::string& text) = 0;
  };

  virtual ~Files() = default;

  /// True if there is anything of that name, a folder too. Never throws.
  virtual bool Exists(const std::string& path) const = 0;
  /// The first `limit` bytes of the file, or all there are.
  virtual std::vector<std::uint8_t> Read(const std::string& path, std::size_t limit) const = 0;
  /// Writes the whole file such that a loss of power leaves the old file or the new one.
  virtual void Write(const std::string& path, std::span<const std::uint8_t> bytes) = 0;
  virtual void Remove(const std::string& path) = 0;
  /// Names of the files in a folder, sorted; empty if it cannot be read. Never throws.
  virtual std::vector<std::string> List(const std::string& folder) const = 0;
  virtual std::unique_ptr<Log> OpenLog(const std::string& path) = 0;
};

}  // namespace brelant
