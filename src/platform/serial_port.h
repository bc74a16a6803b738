// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace brelant {

/// One serial port at 9600 bit/s, no parity, 8 data bits, 1 stop bit, no handshaking
/// (docs/protocol.md, The line). Every operation may throw MachineError unless said otherwise.
class SerialPort {
 public:
  struct Description {
    std::string device;
    std::string about;
  };

  virtual ~SerialPort() = default;

  /// Selects the port by its number among the machine's ports or by a device name; never throws and takes
  /// effect at the next opening.
  virtual void SetCommPort(const std::string& port) = 0;

  /// The ports that are there now, in the order in which numbers count them. Never throws.
  virtual std::vector<Description> AvailablePorts() const = 0;

  virtual bool PortOpen() const = 0;
  /// Opening fails with MachineError if the port cannot be had. Closing never throws.
  virtual void SetPortOpen(bool open) = 0;

  /// Number of bytes received and not yet read.
  virtual int InBufferCount() = 0;
  /// All bytes received so far; empties the input buffer.
  virtual std::vector<std::uint8_t> Input() = 0;
  /// Queues the bytes for sending, does not wait for the line.
  virtual void Output(std::span<const std::uint8_t> bytes) = 0;
  /// Drives the DTR line; a device without one is no error.
  virtual void SetDTREnable(bool on) = 0;
};

}  // namespace brelant
