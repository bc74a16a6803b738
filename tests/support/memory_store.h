// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/settings_store.h"

namespace brelant::test {

/// A settings store in memory that remembers the order of what is asked of it.
class MemoryStore : public SettingsStore {
 public:
  std::string Read(const std::string& application, const std::string& section, const std::string& key,
                   const std::string& fallback) const override;
  void Write(const std::string& application, const std::string& section, const std::string& key,
             const std::string& value) override;

  /// By "application/section/key".
  std::map<std::string, std::string> values;
  /// Keys read, in order.
  mutable std::vector<std::string> reads;
  /// "key=value" for each write, in order.
  std::vector<std::string> writes;
  /// Reading answers the fallback, writing is forgotten.
  bool broken = false;
};

}  // namespace brelant::test
