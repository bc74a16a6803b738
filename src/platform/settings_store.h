// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace brelant {

/// Per-user store of strings. A store that cannot be read answers the fallback and one that cannot be written
/// forgets; neither stops the program.
class SettingsStore {
 public:
  virtual ~SettingsStore() = default;
  virtual std::string Read(const std::string& application, const std::string& section, const std::string& key,
                           const std::string& fallback) const = 0;
  virtual void Write(const std::string& application, const std::string& section, const std::string& key,
                     const std::string& value) = 0;
};

}  // namespace brelant
