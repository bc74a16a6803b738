// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cerrno>
#include <system_error>
#include <utility>

#include <unistd.h>

namespace brelant::bench {

/// A file descriptor that closes itself.
class Descriptor {
 public:
  explicit Descriptor(int fd = -1) : fd_(fd) {}
  Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
  }
  ~Descriptor() {
    if (fd_ >= 0) close(fd_);
  }
  int Get() const { return fd_; }

 private:
  int fd_;
};

/// The result of a system call; throws std::system_error if it failed.
inline int Checked(int result, const char* what) {
  if (result < 0) throw std::system_error(errno, std::generic_category(), what);
  return result;
}

}  // namespace brelant::bench
