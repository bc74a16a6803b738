// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// brelant-sensor as a process, from the far end of its pseudo-terminal.

#include <array>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "host.h"

namespace brelant::bench {

inline constexpr int kPatience = 10000;  // ms; reached only when something is wrong

/// The program, with its standard output and error on a pipe.
class SensorProcess {
 public:
  explicit SensorProcess(std::vector<std::string> options) {
    std::array<int, 2> ends{};
    EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    output_ = ends[0];
    posix_spawn_file_actions_t actions{};
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDERR_FILENO);
    options.insert(options.begin(), BRELANT_SENSOR);
    std::vector<char*> arguments;
    for (std::string& option : options) arguments.push_back(option.data());
    arguments.push_back(nullptr);
    EXPECT_EQ(posix_spawn(&pid_, BRELANT_SENSOR, &actions, nullptr, arguments.data(), environ), 0);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
  }
  SensorProcess(const SensorProcess&) = delete;
  SensorProcess& operator=(const SensorProcess&) = delete;
  ~SensorProcess() {
    if (pid_ > 0) End(SIGKILL);
    close(output_);
  }

  std::string Line() const {
    std::string line;
    char letter = 0;
    while (read(output_, &letter, 1) == 1 && letter != '\n') line += letter;
    return line;
  }

  int ExitStatus() {
    int status = 0;
    EXPECT_EQ(waitpid(pid_, &status, 0), pid_);
    pid_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  int End(int signal) {
    kill(pid_, signal);
    return ExitStatus();
  }

 private:
  pid_t pid_ = -1;
  int output_ = -1;
};

/// The device of such a process.
class Line {
 public:
  explicit Line(const std::string& device) : fd_(open(device.c_str(), O_RDWR | O_NOCTTY)) {
    EXPECT_GE(fd_, 0);
  }
  Line(const Line&) = delete;
  Line& operator=(const Line&) = delete;
  ~Line() { close(fd_); }

  ByteList Send(const ByteList& bytes, std::size_t expected) const {
    EXPECT_EQ(write(fd_, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    ByteList reply;
    pollfd source{fd_, POLLIN, 0};
    while (reply.size() < expected && poll(&source, 1, kPatience) == 1) {
      std::uint8_t byte = 0;
      if (read(fd_, &byte, 1) != 1) break;
      reply.push_back(byte);
    }
    return reply;
  }

 private:
  int fd_;
};

/// A path in the folder for temporary files at which nothing lies.
inline std::filesystem::path Fresh(const std::string& name) {
  const auto path = std::filesystem::path(testing::TempDir()) / (name + std::to_string(getpid()));
  std::filesystem::remove(path);
  return path;
}

}  // namespace brelant::bench
