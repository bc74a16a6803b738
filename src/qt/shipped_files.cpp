// SPDX-License-Identifier: GPL-3.0-or-later
#include "qt/shipped_files.h"

#include <QDir>
#include <QFile>

namespace brelant {

void CopyShippedFiles(const QString& from, const QString& to) {
  const QStringList shipped{"*.pdt", "*.sim", "help*.html", "help.css"};
  const QDir source(from);
  const QDir target(to);
  target.mkpath(".");
  for (const auto& name : source.entryList(shipped, QDir::Files)) {
    if (!target.exists(name)) QFile::copy(source.filePath(name), target.filePath(name));
  }
}

}  // namespace brelant
