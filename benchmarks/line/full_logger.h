// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTemporaryDir>
#include <string>
#include <vector>

namespace brelant::benchmark {

/// The memory of a central unit that has logged until its loggers were full and beyond, as a file for
/// brelant-sensor. The unit's own model has done it, in the 13 days of its own time that it takes.
class FullLogger {
 public:
  /// Throws std::runtime_error if the file cannot be written.
  FullLogger();

  std::string ImageFile() const { return folder_.filePath("unit.img").toStdString(); }
  std::string ExportFile() const { return folder_.filePath("export.txt").toStdString(); }
  /// Throws std::runtime_error if the rows of ExportFile are not what the first logger holds.
  void CheckExport() const;

 private:
  QTemporaryDir folder_;
  /// Raw words, the oldest first.
  std::vector<int> logged_;
};

}  // namespace brelant::benchmark
