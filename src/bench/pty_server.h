// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "bench/virtual_sensor.h"

namespace brelant::bench {

/// A file descriptor that closes itself.
class Descriptor {
 public:
  explicit Descriptor(int fd = -1) : fd_(fd) {}
  Descriptor(Descriptor&& other) noexcept;
  Descriptor& operator=(Descriptor&& other) noexcept;
  ~Descriptor();
  int Get() const { return fd_; }

 private:
  int fd_;
};

/// A symbolic link that goes when its maker goes.
class DeviceLink {
 public:
  /// Puts a link to `device` at `path`, in place of an older link. Throws std::filesystem::filesystem_error,
  /// also if something else than a link lies there.
  DeviceLink(std::filesystem::path path, std::filesystem::path device);
  DeviceLink(const DeviceLink&) = delete;
  DeviceLink& operator=(const DeviceLink&) = delete;
  ~DeviceLink();

 private:
  std::filesystem::path path_;
  std::filesystem::path device_;
};

/// A sensor at the far end of a pseudo-terminal. Needs SIGINT and SIGTERM for itself.
class PtyServer {
 public:
  /// Opens the pseudo-terminal. `paced`: the sensor keeps the line's speed, so the server keeps its moments
  /// closely. Throws std::system_error.
  PtyServer(VirtualSensor& sensor, bool paced);

  const std::string& DeviceName() const { return name_; }

  /// Serves until SIGINT or SIGTERM comes or the sensor hangs up. `after_save` is called when the host has
  /// had settings saved. Throws std::system_error.
  void Serve(const std::function<void()>& after_save);

 private:
  using Time = std::chrono::microseconds;

  Time Now() const;
  bool Wait();
  void TakeBytes();
  void SendDueBytes();

  VirtualSensor& sensor_;
  bool paced_;
  Time awake_until_{};
  Descriptor controller_;
  Descriptor device_;
  Descriptor signals_;
  std::string name_;
  std::chrono::steady_clock::time_point start_;
  std::optional<Time> moved_;  // when the live values moved last
  std::deque<TimedByte> waiting_;
};

}  // namespace brelant::bench
