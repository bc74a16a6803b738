// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <deque>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "bench/descriptor.h"
#include "bench/line_end.h"

namespace brelant::bench {

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

/// A unit at the far end of a pseudo-terminal. Needs SIGINT and SIGTERM for itself.
class PtyServer {
 public:
  /// Opens the pseudo-terminal. `paced`: the unit keeps the line's speed, so the server keeps its moments
  /// closely. Throws std::system_error.
  PtyServer(LineEnd& unit, bool paced);

  /// The time that the unit is told.
  std::chrono::microseconds Now() const;

  const std::string& DeviceName() const { return name_; }

  /// Serves until SIGINT or SIGTERM comes or the unit hangs up. `after_save` is called when the host has
  /// had settings saved. Throws std::system_error.
  void Serve(const std::function<void()>& after_save);

 private:
  using Time = std::chrono::microseconds;

  bool Wait();
  void TakeBytes();
  void SendDueBytes();

  LineEnd& unit_;
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
