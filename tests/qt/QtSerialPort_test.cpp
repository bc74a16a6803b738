// SPDX-License-Identifier: GPL-3.0-or-later
#include "qt/QtSerialPort.h"

#include <QFile>
#include <QTemporaryDir>
#include <array>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

#include "platform/machine_error.h"
#include "qt/QtClock.h"
#include "qt/QtPump.h"

namespace brelant {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::seconds;

using Bytes = std::vector<std::uint8_t>;

/// The far end of the line.
class Pty {
 public:
  Pty() {
    std::array<char, 256> name{};
    EXPECT_EQ(openpty(&controller_, &device_, name.data(), nullptr, nullptr), 0);
    name_ = name.data();
    termios settings{};
    tcgetattr(device_, &settings);
    cfmakeraw(&settings);
    tcsetattr(device_, TCSANOW, &settings);
  }
  ~Pty() { HangUp(); }
  Pty(const Pty&) = delete;
  Pty& operator=(const Pty&) = delete;

  const std::string& Name() const { return name_; }
  void Send(const Bytes& bytes) const {
    ASSERT_EQ(write(controller_, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  }
  /// What has arrived by now.
  // The kernel hands the bytes over on a thread of its own, so they may take a moment.
  Bytes Receive(int limit = 5000) const {
    Bytes bytes(256);
    pollfd source{controller_, POLLIN, 0};
    if (poll(&source, 1, limit) != 1) return {};
    const auto count = read(controller_, bytes.data(), bytes.size());
    bytes.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    return bytes;
  }
  void HangUp() {
    for (int* end : {&device_, &controller_}) {
      if (*end >= 0) close(*end);
      *end = -1;
    }
  }
  termios Settings() const {
    termios settings{};
    tcgetattr(device_, &settings);
    return settings;
  }

 private:
  int controller_ = -1;
  int device_ = -1;
  std::string name_;
};

class QtSerialPortTest : public ::testing::Test {
 protected:
  void Open() {
    port_.SetCommPort(line_.Name());
    port_.SetPortOpen(true);
  }
  /// Pumps until that many bytes are there, or a long time has passed.
  void Await(int count) {
    const auto deadline = clock_.Now() + seconds(10);
    while (port_.InBufferCount() < count && clock_.Now() < deadline) pump_.Wait(deadline);
  }
  /// Pumps until an operation throws.
  bool AwaitLoss() {
    const auto deadline = clock_.Now() + seconds(10);
    while (clock_.Now() < deadline) {
      try {
        port_.InBufferCount();
      } catch (const MachineError&) {
        return true;
      }
      pump_.Wait(deadline);
    }
    return false;
  }

  Pty line_;
  QtClock clock_;
  QtPump pump_{clock_};
  QtSerialPort port_;
};

TEST_F(QtSerialPortTest, OpensAndClosesAPseudoTerminal) {
  EXPECT_FALSE(port_.PortOpen());
  Open();
  EXPECT_TRUE(port_.PortOpen());
  port_.SetPortOpen(true);
  EXPECT_TRUE(port_.PortOpen());
  port_.SetPortOpen(false);
  EXPECT_FALSE(port_.PortOpen());
  port_.SetPortOpen(false);
  EXPECT_FALSE(port_.PortOpen());
}

TEST_F(QtSerialPortTest, IsRawAt9600Bits8N1WithoutHandshake) {
  Open();
  const auto settings = line_.Settings();
  EXPECT_EQ(cfgetospeed(&settings), static_cast<speed_t>(B9600));
  EXPECT_EQ(settings.c_cflag & (CSIZE | PARENB | CSTOPB | CRTSCTS), static_cast<tcflag_t>(CS8));
  EXPECT_EQ(settings.c_iflag & (IXON | IXOFF | ICRNL | ISTRIP), 0U);
  EXPECT_EQ(settings.c_lflag & (ICANON | ECHO | ISIG), 0U);
}

TEST_F(QtSerialPortTest, CarriesEveryByteBothWays) {
  Bytes all;
  for (int i = 0; i < 256; ++i) all.push_back(static_cast<std::uint8_t>(i));
  Open();
  line_.Send(all);
  Await(256);
  EXPECT_EQ(port_.InBufferCount(), 256);
  EXPECT_EQ(port_.Input(), all);
  EXPECT_EQ(port_.InBufferCount(), 0);
  EXPECT_EQ(port_.Input(), Bytes{});
  port_.Output(all);
  EXPECT_EQ(line_.Receive(), all);
}

TEST_F(QtSerialPortTest, OutputLeavesAtOnceByteByByte) {
  Open();
  for (const std::uint8_t byte : {254, 129, 65, 194}) {
    port_.Output(Bytes{byte});
    EXPECT_EQ(line_.Receive(), Bytes{byte});
  }
}

TEST_F(QtSerialPortTest, WhatCameBeforeTheOpeningIsNotHeard) {
  line_.Send({1, 2, 3});
  Open();
  line_.Send({4});
  Await(1);
  EXPECT_EQ(port_.Input(), Bytes{4});
}

TEST_F(QtSerialPortTest, ADeviceWithoutDtrIsNoError) {
  Open();
  EXPECT_NO_THROW(port_.SetDTREnable(true));
  EXPECT_NO_THROW(port_.SetDTREnable(false));
  port_.Output(Bytes{'A'});
  EXPECT_EQ(line_.Receive(), Bytes{'A'});
  line_.Send({7});
  Await(1);
  EXPECT_EQ(port_.Input(), Bytes{7});
}

TEST_F(QtSerialPortTest, ANameMayBeALink) {
  const QTemporaryDir folder;
  const auto link = folder.filePath("sensor");
  ASSERT_TRUE(QFile::link(QString::fromStdString(line_.Name()), link));
  port_.SetCommPort(link.toStdString());
  port_.SetPortOpen(true);
  port_.Output(Bytes{1});
  EXPECT_EQ(line_.Receive(), Bytes{1});
}

TEST_F(QtSerialPortTest, ADeviceIsOpenedOnce) {
  Open();
  const QTemporaryDir folder;
  const auto link = folder.filePath("sensor");
  ASSERT_TRUE(QFile::link(QString::fromStdString(line_.Name()), link));
  QtSerialPort other;
  for (const auto& name : {line_.Name(), link.toStdString()}) {
    other.SetCommPort(name);
    EXPECT_THROW(other.SetPortOpen(true), MachineError) << name;
    EXPECT_FALSE(other.PortOpen());
  }
  port_.SetPortOpen(false);
  EXPECT_NO_THROW(other.SetPortOpen(true));
}

TEST_F(QtSerialPortTest, WhatCannotBeOpenedThrowsAndStaysClosed) {
  for (const std::string name :
       {"/dev/no-such-device", "", "0", "9999", "99999999999999999999", "/dev/null"}) {
    port_.SetCommPort(name);
    EXPECT_THROW(port_.SetPortOpen(true), MachineError) << name;
    EXPECT_FALSE(port_.PortOpen()) << name;
  }
}

TEST_F(QtSerialPortTest, AnOperationOnAClosedPortThrows) {
  EXPECT_THROW(port_.InBufferCount(), MachineError);
  EXPECT_THROW(port_.Input(), MachineError);
  EXPECT_THROW(port_.Output(Bytes{1}), MachineError);
}

TEST_F(QtSerialPortTest, AnotherPortTakesEffectAtTheNextOpening) {
  Open();
  const Pty second;
  port_.SetCommPort(second.Name());
  port_.Output(Bytes{1});
  EXPECT_EQ(line_.Receive(), Bytes{1});
  port_.SetPortOpen(false);
  port_.SetPortOpen(true);
  port_.Output(Bytes{2});
  EXPECT_EQ(second.Receive(), Bytes{2});
  EXPECT_EQ(line_.Receive(0), Bytes{});
}

TEST_F(QtSerialPortTest, AHungUpLineThrowsUntilThePortIsClosed) {
  Open();
  line_.HangUp();
  EXPECT_TRUE(AwaitLoss());
  EXPECT_THROW(port_.InBufferCount(), MachineError);
  EXPECT_THROW(port_.Input(), MachineError);
  EXPECT_THROW(port_.Output(Bytes{1}), MachineError);
  EXPECT_TRUE(port_.PortOpen());
  EXPECT_NO_THROW(port_.SetPortOpen(false));
  EXPECT_FALSE(port_.PortOpen());
  EXPECT_THROW(port_.SetPortOpen(true), MachineError);
}

TEST_F(QtSerialPortTest, AWriteToAHungUpLineThrows) {
  Open();
  line_.HangUp();
  EXPECT_THROW(port_.Output(Bytes{1}), MachineError);
}

TEST_F(QtSerialPortTest, AHungUpLineDoesNotSpin) {
  Open();
  line_.HangUp();
  ASSERT_TRUE(AwaitLoss());
  int passes = 0;
  pump_.OnPass([&] {
    ++passes;
    return false;
  });
  const auto deadline = clock_.Now() + milliseconds(20);
  while (clock_.Now() < deadline) pump_.Wait(deadline);
  EXPECT_LE(passes, 10);
}

TEST_F(QtSerialPortTest, WorksAgainOnANewDevice) {
  Open();
  line_.HangUp();
  ASSERT_TRUE(AwaitLoss());
  port_.SetPortOpen(false);
  const Pty replacement;
  port_.SetCommPort(replacement.Name());
  port_.SetPortOpen(true);
  pump_.DoEvents();
  pump_.DoEvents();
  port_.Output(Bytes{5});
  EXPECT_EQ(replacement.Receive(), Bytes{5});
}

}  // namespace
}  // namespace brelant
