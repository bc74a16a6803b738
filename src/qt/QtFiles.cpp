// SPDX-License-Identifier: GPL-3.0-or-later
#include "qt/QtFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <algorithm>
#include <cstdint>

#include "platform/machine_error.h"
#include "qt/machine_path.h"

namespace brelant {

namespace {

#ifdef Q_OS_WIN
constexpr auto kLineEnd = "\r\n";
#else
constexpr auto kLineEnd = "\n";
#endif

[[noreturn]] void Fail(const QFileDevice& file) {
  throw MachineError(file.fileName().toStdString() + ": " + file.errorString().toStdString());
}

/// Not in Qt's text mode, which would double the carriage returns inside a record where lines end in one.
class LogFile : public Files::Log {
 public:
  explicit LogFile(const QString& path) : file_(path) {
    if (!file_.open(QIODevice::WriteOnly | QIODevice::Append)) Fail(file_);
  }

  void PrintLine(const std::string& text) override {
    const auto line = QByteArray::fromStdString(text + kLineEnd);
    if (file_.write(line) != line.size() || !file_.flush()) Fail(file_);
  }

 private:
  QFile file_;
};

}  // namespace

bool QtFiles::Exists(const std::string& path) const {
  return QFileInfo::exists(ExistingPath(path));
}

std::vector<std::uint8_t> QtFiles::Read(const std::string& path, std::size_t limit) const {
  QFile file(ExistingPath(path));
  if (!file.open(QIODevice::ReadOnly)) Fail(file);
  const auto size = static_cast<std::uint64_t>(file.size());
  const auto bytes = file.read(static_cast<qint64>(std::min<std::uint64_t>(limit, size)));
  if (file.error() != QFileDevice::NoError) Fail(file);
  return {bytes.begin(), bytes.end()};
}

void QtFiles::Write(const std::string& path, std::span<const std::uint8_t> bytes) {
  QSaveFile file(MachinePath(path));
  if (!file.open(QIODevice::WriteOnly)) Fail(file);
  const auto size = static_cast<qint64>(bytes.size());
  // commit() alone takes a file for whole whose buffer a full disk did not take.
  const bool written = file.write(reinterpret_cast<const char*>(bytes.data()), size) == size && file.flush();
  if (!written || !file.commit()) Fail(file);
}

void QtFiles::Remove(const std::string& path) {
  QFile file(ExistingPath(path));
  if (!file.remove()) Fail(file);
}

std::vector<std::string> QtFiles::List(const std::string& folder) const {
  std::vector<std::string> names;
  for (const auto& name : QDir(MachinePath(folder)).entryList(QDir::Files | QDir::Hidden, QDir::Name)) {
    names.push_back(name.toStdString());
  }
  return names;
}

std::unique_ptr<Files::Log> QtFiles::OpenLog(const std::string& path) {
  return std::make_unique<LogFile>(MachinePath(path));
}

}  // namespace brelant
