// SPDX-License-Identifier: GPL-3.0-or-later
#include "qt/shipped_files.h"

#include <QDir>
#include <QFile>

namespace brelant {

namespace {

void CopyMissing(const QDir& source, const QDir& target, const QStringList& names) {
  target.mkpath(".");
  for (const auto& name : source.entryList(names, QDir::Files)) {
    if (!target.exists(name)) QFile::copy(source.filePath(name), target.filePath(name));
  }
}

}  // namespace

void CopyShippedFiles(const QString& from, const QString& to) {
  CopyMissing(from, to, {"*.pdt", "*.sim", "help*.html", "help.css"});
  CopyMissing(from + "/Support", to + "/Support", {"help*.html"});
}

}  // namespace brelant
