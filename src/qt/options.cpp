// SPDX-License-Identifier: GPL-3.0-or-later
#include "qt/options.h"

#include <CLI/CLI.hpp>
#include <QCoreApplication>
#include <QFileInfo>
#include <QStandardPaths>

#include "qt/shipped_files.h"

namespace brelant {

void AddCommonOptions(CLI::App& app, Options& options) {
  app.add_option("--app-dir", options.appDir,
                 "Folder of definition, simulation, settings, log and help files")
      ->type_name("DIR")
      ->check(CLI::ExistingDirectory);
  app.add_option("--settings", options.settings, "The settings store, an INI file")->type_name("FILE");
  app.add_option("--port", options.port, "Serial port: its number among the machine's ports, or a device")
      ->type_name("PORT");
}

std::string ResolveAppDir(const Options& options) {
  if (!options.appDir.empty()) return options.appDir;
  const auto beside = QCoreApplication::applicationDirPath();
  if (QFileInfo(beside).isWritable()) return beside.toStdString();
  const auto own = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/BRELANT";
  CopyShippedFiles(beside, own);
  return own.toStdString();
}

}  // namespace brelant
