// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/files.h"

namespace brelant {

/// The file system. Paths go through MachinePath; what is looked for is found in any case, what is written
/// gets the name that was told.
class QtFiles : public Files {
 public:
  bool Exists(const std::string& path) const override;
  std::vector<std::uint8_t> Read(const std::string& path, std::size_t limit) const override;
  void Write(const std::string& path, std::span<const std::uint8_t> bytes) override;
  void Remove(const std::string& path) override;
  std::vector<std::string> List(const std::string& folder) const override;
  std::unique_ptr<Log> OpenLog(const std::string& path) override;
};

}  // namespace brelant
