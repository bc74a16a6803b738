// SPDX-License-Identifier: GPL-3.0-or-later
#include "line/sensor_process.h"

#include <stdexcept>

namespace brelant::benchmark {

SensorProcess::SensorProcess(const std::string& program, int part, bool modbus, const std::string& image) {
  process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
  QStringList arguments{"--part", QString::number(part), "--pace"};
  if (modbus) arguments.append("--modbus");
  if (!image.empty()) arguments << "--image" << QString::fromStdString(image);
  process_.start(QString::fromStdString(program), arguments);
  while (!process_.canReadLine()) {
    if (!process_.waitForReadyRead()) throw std::runtime_error(program + " does not start");
  }
  device_ = process_.readLine().trimmed().toStdString();
}

SensorProcess::~SensorProcess() {
  process_.terminate();
  process_.waitForFinished();
}

}  // namespace brelant::benchmark
