// SPDX-License-Identifier: GPL-3.0-or-later
#include "qt/machine_path.h"

#include <QDir>
#include <QFileInfo>

namespace brelant {

namespace {

constexpr auto kLastSettings = "last.set";
#ifdef Q_OS_WIN
constexpr bool kHasNetworkPaths = true;
#else
constexpr bool kHasNetworkPaths = false;
#endif

QString NameOf(const QString& path) {
  return path.mid(path.lastIndexOf('/') + 1);
}

}  // namespace

QString MachinePath(const std::string& told) {
  auto path = QString::fromStdString(told).replace('\\', '/');
  // The doubled separator in front of a server's name has a meaning of its own.
  const auto server = kHasNetworkPaths && path.startsWith("//") ? QString("/") : QString();
  while (path.contains("//")) path.replace("//", "/");
  path.prepend(server);
  const auto name = NameOf(path);
  if (name.compare(kLastSettings, Qt::CaseInsensitive) == 0) {
    path.replace(path.size() - name.size(), name.size(), kLastSettings);
  }
  return path;
}

QString ExistingPath(const std::string& told) {
  auto path = MachinePath(told);
  const QFileInfo exact(path);
  if (exact.exists()) return path;
  const auto name = NameOf(path);
  const QDir folder = exact.dir();
  QString match;
  for (const auto& entry : folder.entryList(QDir::Files | QDir::Hidden)) {
    if (entry.compare(name, Qt::CaseInsensitive) != 0) continue;
    if (!match.isEmpty()) return path;
    match = entry;
  }
  return match.isEmpty() ? path : folder.filePath(match);
}

}  // namespace brelant
