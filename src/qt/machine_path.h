// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <string>

namespace brelant {

/// The machine's own form of a path as the program builds it (docs/architecture.md, Files): backslashes are
/// separators, doubled separators are one, and the name "last.set" is lower case however it is written.
QString MachinePath(const std::string& told);

/// The path of what is there by that name: the name itself if there is such a file, otherwise the only one in
/// the folder that differs from it in nothing but case. MachinePath if there is none.
QString ExistingPath(const std::string& told);

}  // namespace brelant
