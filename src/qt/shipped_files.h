// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace brelant {

/// Copies the data files that come with the program (definition, simulation and help files) from one folder
/// to another, which is made if need be. A file that is there already stays as it is.
void CopyShippedFiles(const QString& from, const QString& to);

}  // namespace brelant
