// SPDX-License-Identifier: GPL-3.0-or-later
#include "comm/SerialLink.h"

#include <algorithm>
#include <array>
#include <limits>

#include "platform/machine_error.h"
#include "shell/Common.h"

namespace brelant {

using std::chrono::duration_cast;
using std::chrono::microseconds;
using std::chrono::milliseconds;

SerialLink::SerialLink(Session& session, const Machine& machine) : session_(session), machine_(machine) {}

bool SerialLink::ProbePort(float seconds) {
  auto& port = machine_.serialPort;
  try {
    Open();
    Discard();
    const double start = machine_.clock.Timer();
    const double waitUntil = Round(start + seconds);
    double now = start;
    // The clock falls below its start when midnight passes, which must not be slept through.
    constexpr double kDay = 86400;
    while (port.InBufferCount() == 0 && now < waitUntil && now >= start) {
      const auto left =
          duration_cast<microseconds>(std::chrono::duration<double>(std::min(waitUntil, kDay) - now));
      PumpUntil(machine_.clock.Now() + left + milliseconds(1), 1);
      now = machine_.clock.Timer();
    }
    const bool silent = port.InBufferCount() == 0;
    Close();
    if (!silent) session_.LastError = "Central unit must be set to slave mode or be disconnected.";
    return silent;
  } catch (const MachineError&) {
    session_.LastError = "This port is locked by other devise";
    Close();
    return false;
  }
}

void SerialLink::Open() {
  RequireSession();
  if (!machine_.serialPort.PortOpen()) machine_.serialPort.SetPortOpen(true);
}

void SerialLink::Close() {
  if (machine_.serialPort.PortOpen()) machine_.serialPort.SetPortOpen(false);
}

void SerialLink::Reopen() {
  Close();
  Open();
}

void SerialLink::Pause(int pause) {
  const auto deadline = Deadline(pause);
  do {
    PumpUntil(deadline, std::numeric_limits<int>::max());
  } while (machine_.clock.Now() < deadline);
}

bool SerialLink::WaitForBytes(int count, int limit) {
  const auto deadline = Deadline(limit);
  auto& port = machine_.serialPort;
  do {
    PumpUntil(deadline, count);
  } while (port.InBufferCount() < count && machine_.clock.Now() < deadline);
  return port.InBufferCount() >= count;
}

std::vector<std::uint8_t> SerialLink::Read() {
  return machine_.serialPort.Input();
}

void SerialLink::Send(std::span<const std::uint8_t> bytes) {
  machine_.serialPort.Output(bytes);
}

void SerialLink::SendSingly(std::span<const std::uint8_t> bytes) {
  for (std::size_t i = 0; i < bytes.size(); ++i) Send(bytes.subspan(i, 1));
}

void SerialLink::WakeModem() {
  try {
    machine_.serialPort.SetDTREnable(true);
    machine_.serialPort.SetDTREnable(false);
  } catch (const MachineError&) {
    // A device without modem lines has no modem behind it either.
  }
  SendSingly(std::array<std::uint8_t, 3>{'A', 'T', 'O'});
}

microseconds SerialLink::Deadline(int wait) const {
  if (machine_.clock.GetTickCount() > std::numeric_limits<std::int32_t>::max() - wait) {
    throw MachineError("Overflow");
  }
  return machine_.clock.Now() + milliseconds(wait);
}

void SerialLink::PumpUntil(microseconds deadline, int wantedBytes) {
  if (machine_.serialPort.InBufferCount() >= wantedBytes) {
    machine_.pump.DoEvents();
  } else {
    machine_.pump.Wait(deadline);
  }
  RequireSession();
}

void SerialLink::RequireSession() const {
  if (session_.Over()) throw MachineError("The session is over");
}

}  // namespace brelant
