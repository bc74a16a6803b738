// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSettings>

#include "platform/settings_store.h"

namespace brelant {

/// The settings store in an INI file, with one group for each application and section.
class QtSettingsStore : public SettingsStore {
 public:
  /// Without a file the store is the user's own.
  explicit QtSettingsStore(const std::string& file);

  std::string Read(const std::string& application, const std::string& section, const std::string& key,
                   const std::string& fallback) const override;
  void Write(const std::string& application, const std::string& section, const std::string& key,
             const std::string& value) override;

 private:
  QSettings settings_;
};

}  // namespace brelant
