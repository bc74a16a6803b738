// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/serial_port.h"
#include "support/virtual_clock.h"
#include "support/virtual_pump.h"

namespace brelant::test {

using Bytes = std::vector<std::uint8_t>;

/// A serial port that remembers all that is done to it, hands what is sent to a test and receives what the
/// test lets arrive.
class ScriptedPort : public SerialPort {
 public:
  enum class Act { open, close, output, dtrOn, dtrOff };

  struct Event {
    Act act;
    std::chrono::microseconds at;
    Bytes bytes;
  };

  ScriptedPort(VirtualClock& clock, VirtualPump& pump) : clock_(clock), pump_(pump) {}

  void SetCommPort(const std::string& port) override { selected = port; }
  std::vector<Description> AvailablePorts() const override { return available; }
  bool PortOpen() const override { return open_; }
  void SetPortOpen(bool open) override;
  int InBufferCount() override;
  std::vector<std::uint8_t> Input() override;
  void Output(std::span<const std::uint8_t> bytes) override;
  void SetDTREnable(bool on) override;

  /// Bytes that are there at once, in the middle of whatever runs; lost while the port is closed.
  void Receive(const Bytes& bytes);
  /// Lets bytes arrive together, `after` from now; while the port is closed they are lost.
  void Arrive(const Bytes& bytes, std::chrono::microseconds after = {});

  const std::vector<Event>& Events() const { return events_; }
  /// The events of one kind.
  std::vector<Event> Of(Act act) const;
  /// All bytes sent, in order.
  Bytes Sent() const;
  /// What was done, as words: "open", "close", "dtr on", "dtr off", or the bytes of one output: "131 65 196".
  std::vector<std::string> Story() const;
  void Forget() { events_.clear(); }

  /// Operations that can fail, so far: openings, looks at the input, reads, outputs and turns of DTR.
  int Operations() const { return operations_; }

  std::string selected;
  std::vector<Description> available;
  /// Gets what each output sends.
  std::function<void(const Bytes&)> onOutput;
  /// What lies in the input of a port that is opened.
  Bytes waitingAtOpen;
  /// The operation of that number fails, counted as by Operations(); 0: none does.
  int failAt = 0;
  /// From the failure on every operation fails, as on an adapter that was pulled out.
  bool staysBroken = false;
  bool failDtr = false;
  bool failOpen = false;

 private:
  void Operate();
  void RequireOpen() const;
  void Remember(Act act, Bytes bytes = {}) { events_.push_back({act, clock_.Now(), std::move(bytes)}); }

  VirtualClock& clock_;
  VirtualPump& pump_;
  bool open_ = false;
  Bytes input_;
  std::vector<Event> events_;
  int operations_ = 0;
};

}  // namespace brelant::test
