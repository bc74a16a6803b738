// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/settings_store.h"

namespace brelant {

/// A store that holds nothing, so that a command neither depends on the user's settings nor changes them.
class NoSettings : public SettingsStore {
 public:
  std::string Read(const std::string& /*application*/, const std::string& /*section*/,
                   const std::string& /*key*/, const std::string& fallback) const override {
    return fallback;
  }
  void Write(const std::string& /*application*/, const std::string& /*section*/, const std::string& /*key*/,
             const std::string& /*value*/) override {}
};

}  // namespace brelant
