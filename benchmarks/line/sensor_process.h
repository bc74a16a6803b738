// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QProcess>
#include <string>

namespace brelant::benchmark {

/// A paced virtual sensor as a child process, ended with this object.
class SensorProcess {
 public:
  /// `image`: the file that holds its memory. Throws std::runtime_error if it does not start.
  SensorProcess(const std::string& program, int part, bool modbus = false, const std::string& image = {});
  ~SensorProcess();
  SensorProcess(const SensorProcess&) = delete;
  SensorProcess& operator=(const SensorProcess&) = delete;

  const std::string& Device() const { return device_; }

 private:
  QProcess process_;
  std::string device_;
};

}  // namespace brelant::benchmark
