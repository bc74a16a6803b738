// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <vector>

#include "platform/machine.h"
#include "shell/session.h"

namespace brelant {

/// The serial port with the two forms of waiting that all bus traffic is made of (docs/protocol.md, Waits and
/// pauses). Operations throw MachineError; after the session is over every one of them does.
class SerialLink {
 public:
  SerialLink(Session& session, const Machine& machine);

  void SetCommPort(const std::string& port) { machine_.serialPort.SetCommPort(port); }

  /// True when the line is silent for that many seconds, rounded to a whole second of the clock, and the port
  /// can be opened. Leaves the port closed; on failure the reason is in LastError.
  bool ProbePort(float seconds);

  void Open();
  void Close();
  void Reopen();

  void Pause(int milliseconds);
  /// True if at least that many bytes are waiting at the end, however it came.
  bool WaitForBytes(int count, int milliseconds);

  /// All bytes received so far.
  std::vector<std::uint8_t> Read();
  void Discard() { Read(); }
  /// One write to the port for the whole of the bytes.
  void Send(std::span<const std::uint8_t> bytes);
  /// One write to the port for each byte.
  void SendSingly(std::span<const std::uint8_t> bytes);
  /// A pulse of DTR and "ATO", which returns a modem on the line to its data mode.
  void WakeModem();

 private:
  std::chrono::microseconds Deadline(int milliseconds) const;
  void PumpUntil(std::chrono::microseconds deadline, int wantedBytes);
  void RequireSession() const;

  Session& session_;
  Machine machine_;
};

}  // namespace brelant
