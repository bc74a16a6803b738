// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "connection/unit_names.h"
#include "platform/files.h"

namespace brelant {

/// A names file that says what cannot be. The text names the row.
class NamesError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The table that comes with the program, corrected by the text of a names.json (docs/names.md). Throws
/// NamesError.
UnitNames ParseNames(std::string_view text);

/// The same by the file of that name in the program's folder, if there is one.
UnitNames ReadUnitNames(const Files& files, const std::string& applicationPath);

}  // namespace brelant
