// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <deque>
#include <initializer_list>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/modbus_master.h"
#include "platform/pump.h"
#include "support/virtual_clock.h"

namespace brelant::test {

/// A Modbus line in memory with as many units as a test puts on it. Requests take their time on the virtual
/// clock, and the pump runs meanwhile.
class VirtualModbus : public ModbusMaster {
 public:
  using Kind = Failure::Kind;

  /// The registers of a unit; it refuses a request that touches any other.
  struct Unit {
    std::map<int, std::uint16_t> input;
    std::map<int, std::uint16_t> holding;
  };

  struct Request {
    int unit;
    Bank bank;
    int first;
    int count;
    /// Empty of a read.
    std::vector<std::uint16_t> written;
    std::chrono::microseconds at;
  };

  VirtualModbus(VirtualClock& clock, Pump& pump) : clock_(clock), pump_(pump) {}

  void Open(const std::string& port, const Line& line) override;
  bool IsOpen() const override { return opening_ > 0; }
  /// The request that runs, if one does, ends as cancelled.
  void Close() override { opening_ = 0; }
  std::vector<std::uint16_t> Read(int unit, Bank bank, int first, int count) override;
  void Write(int unit, int first, std::span<const std::uint16_t> values) override;

  /// The next requests go wrong, one after the other; an empty place lets one through.
  void Fail(std::initializer_list<std::optional<Kind>> failures);
  const std::vector<Request>& Requests() const { return requests_; }
  /// The requests as words: "1 input 7", "1 input 7+3" for three registers, "1 holding 20 = 5 6".
  std::vector<std::string> Story() const;
  void Forget() { requests_.clear(); }

  std::map<int, Unit> units;
  std::string port;
  Line line;
  bool failOpen = false;
  /// How long a reply takes, and how long a master waits for one.
  std::chrono::microseconds replyTime = std::chrono::milliseconds(20);
  std::chrono::microseconds limit = std::chrono::milliseconds(500);

 private:
  std::map<int, std::uint16_t>& Ask(const Request& request);
  void Spend(std::chrono::microseconds time);

  VirtualClock& clock_;
  Pump& pump_;
  /// Number of the present opening; 0 while the port is closed.
  int opening_ = 0;
  int lastOpening_ = 0;
  std::deque<std::optional<Kind>> failures_;
  std::vector<Request> requests_;
};

}  // namespace brelant::test
