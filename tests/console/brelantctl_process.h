// SPDX-License-Identifier: GPL-3.0-or-later
// The program brelantctl from outside, alone and on a virtual sensor.
#pragma once

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace brelant::test {

using nlohmann::json;

struct Outcome {
  int status;
  std::string out;
  std::string error;

  std::vector<json> Lines() const {
    std::vector<json> lines;
    std::istringstream text(out);
    for (std::string line; std::getline(text, line);) lines.push_back(json::parse(line));
    return lines;
  }
};

class BrelantctlTest : public ::testing::Test {
 protected:
  QStringList WithStore(const QStringList& arguments) const {
    return QStringList{"--settings", folder_.filePath("store.ini")} + arguments;
  }
  void Start(QProcess& process, const QStringList& arguments) const {
    process.start(PROGRAM, WithStore(arguments));
    ASSERT_TRUE(process.waitForStarted());
  }
  static Outcome End(QProcess& process) {
    EXPECT_TRUE(process.waitForFinished()) << "the program does not end";
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    return {process.exitCode(), process.readAllStandardOutput().toStdString(),
            process.readAllStandardError().toStdString()};
  }
  Outcome Run(const QStringList& arguments, const QByteArray& input = {}) const {
    QProcess process;
    Start(process, arguments);
    process.write(input);
    process.closeWriteChannel();
    return End(process);
  }
  QString Put(const QByteArray& content) const {
    QFile file(folder_.filePath("script.txt"));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
    return file.fileName();
  }

  QTemporaryDir folder_;
};

/// A sensor that answers at once.
class SensorTest : public BrelantctlTest {
 protected:
  void StartSensor(const QStringList& options) {
    sensor_.start(SENSOR, options);
    while (!sensor_.canReadLine()) ASSERT_TRUE(sensor_.waitForReadyRead());
    port_ = QString(sensor_.readLine()).trimmed();
  }
  void TearDown() override {
    sensor_.terminate();
    sensor_.waitForFinished();
  }
  QStringList OnPort(const QStringList& arguments) const { return arguments + QStringList{"--port", port_}; }

  QProcess sensor_;
  QString port_;
};

}  // namespace brelant::test
