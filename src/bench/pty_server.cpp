// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/pty_server.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <termios.h>
#include <unistd.h>

namespace brelant::bench {
namespace {

// Often enough for a poll every two seconds, seldom enough to stay out of the way of the line.
constexpr std::chrono::microseconds kLivePeriod = std::chrono::milliseconds(200);

// A machine that sleeps takes up to half a millisecond to wake, several times an exchange, which would be
// seen as a slower line. So a paced sensor stays awake from the host's last byte past the end of its
// exchange.
constexpr std::chrono::microseconds kAwake = std::chrono::milliseconds(20);

Descriptor OpenController() {
  Descriptor controller(Checked(posix_openpt(O_RDWR | O_NOCTTY), "posix_openpt"));
  Checked(grantpt(controller.Get()), "grantpt");
  Checked(unlockpt(controller.Get()), "unlockpt");
  Checked(fcntl(controller.Get(), F_SETFL, O_NONBLOCK), "fcntl");
  return controller;
}

std::string DeviceNameOf(const Descriptor& controller) {
  std::array<char, 256> name{};
  if (ptsname_r(controller.Get(), name.data(), name.size()) != 0) Checked(-1, "ptsname_r");
  return name.data();
}

// Held open all the time, so that a host may close and open as it likes.
Descriptor OpenRaw(const std::string& name) {
  Descriptor device(Checked(open(name.c_str(), O_RDWR | O_NOCTTY), name.c_str()));
  termios settings{};
  Checked(tcgetattr(device.Get(), &settings), "tcgetattr");
  cfmakeraw(&settings);
  Checked(tcsetattr(device.Get(), TCSANOW, &settings), "tcsetattr");
  return device;
}

Descriptor CatchEndSignals() {
  sigset_t ends{};
  sigemptyset(&ends);
  sigaddset(&ends, SIGINT);
  sigaddset(&ends, SIGTERM);
  Checked(sigprocmask(SIG_BLOCK, &ends, nullptr), "sigprocmask");
  return Descriptor(Checked(signalfd(-1, &ends, SFD_CLOEXEC), "signalfd"));
}

timespec Span(std::chrono::microseconds span) {
  const auto whole = std::chrono::duration_cast<std::chrono::seconds>(span);
  return {static_cast<time_t>(whole.count()),
          static_cast<long>(std::chrono::nanoseconds(span - whole).count())};
}

}  // namespace

DeviceLink::DeviceLink(std::filesystem::path path, std::filesystem::path device)
    : path_(std::move(path)), device_(std::move(device)) {
  if (std::filesystem::is_symlink(path_)) std::filesystem::remove(path_);
  std::filesystem::create_symlink(device_, path_);
}

DeviceLink::~DeviceLink() {
  std::error_code ignored;
  if (std::filesystem::read_symlink(path_, ignored) == device_) std::filesystem::remove(path_, ignored);
}

PtyServer::PtyServer(LineEnd& unit, bool paced)
    : unit_(unit),
      paced_(paced),
      controller_(OpenController()),
      name_(DeviceNameOf(controller_)),
      start_(std::chrono::steady_clock::now()) {
  device_ = OpenRaw(name_);
  signals_ = CatchEndSignals();
  // The usual slack of 50 us at each wake-up would show in every exchange.
  Checked(prctl(PR_SET_TIMERSLACK, 1UL), "prctl");
}

void PtyServer::Serve(const std::function<void()>& after_save) {
  int saves = unit_.Saves();
  while (!unit_.HungUp() && Wait()) {
    TakeBytes();
    SendDueBytes();
    if (unit_.Saves() == saves) continue;
    saves = unit_.Saves();
    after_save();
  }
  controller_ = Descriptor();
  device_ = Descriptor();
}

std::chrono::microseconds PtyServer::Now() const {
  return std::chrono::duration_cast<Time>(std::chrono::steady_clock::now() - start_);
}

// Until there is something to do; false when a signal ends it.
bool PtyServer::Wait() {
  std::array<pollfd, 2> sources{pollfd{controller_.Get(), POLLIN, 0}, pollfd{signals_.Get(), POLLIN, 0}};
  timespec timeout{};
  const bool hurried = Now() < awake_until_;
  if (!hurried && !waiting_.empty()) timeout = Span(std::max(Time::zero(), waiting_.front().at - Now()));
  const bool endless = !hurried && waiting_.empty();
  const int ready = ppoll(sources.data(), sources.size(), endless ? nullptr : &timeout, nullptr);
  if (ready < 0 && errno != EINTR) Checked(ready, "ppoll");
  return sources[1].revents == 0;
}

void PtyServer::TakeBytes() {
  std::array<std::uint8_t, 256> bytes{};
  const ssize_t count = read(controller_.Get(), bytes.data(), bytes.size());
  if (count <= 0) return;  // nothing there, which is no fault
  const Time now = Now();
  if (paced_) awake_until_ = now + kAwake;
  if (!moved_ || now - *moved_ >= kLivePeriod) {
    unit_.Advance(now);
    moved_ = now;
  }
  for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) unit_.Receive(bytes[i], now);
  const std::vector<TimedByte> reply = unit_.TakeReply();
  waiting_.insert(waiting_.end(), reply.begin(), reply.end());
}

void PtyServer::SendDueBytes() {
  const Time now = Now();
  std::vector<std::uint8_t> due;
  while (!waiting_.empty() && waiting_.front().at <= now) {
    due.push_back(waiting_.front().value);
    waiting_.pop_front();
  }
  // With nobody reading, the bytes are lost, as on a line.
  if (!due.empty() && write(controller_.Get(), due.data(), due.size()) < 0 && errno != EAGAIN) {
    Checked(-1, "write");
  }
}

}  // namespace brelant::bench
