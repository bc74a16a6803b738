// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace brelant {

/// The master of a Modbus RTU line. One request at a time; waits on the pump.
class ModbusMaster {
 public:
  enum class Bank { input, holding };
  enum class Parity { none, even, odd };

  struct Line {
    int baud = 9600;
    Parity parity = Parity::none;
    int stopBits = 1;
  };

  /// Why a request has no result. The text is for people.
  class Failure : public std::runtime_error {
   public:
    enum class Kind { port, silence, exception, broken, cancelled };
    Failure(Kind why, const std::string& text) : std::runtime_error(text), kind(why) {}
    Kind kind;
  };

  virtual ~ModbusMaster() = default;

  /// Opens the port that is named as SerialPort names it. Throws Failure.
  virtual void Open(const std::string& port, const Line& line) = 0;
  virtual bool IsOpen() const = 0;
  /// Never throws.
  virtual void Close() = 0;
  /// `count` registers of the unit, at most 125. Throws Failure.
  virtual std::vector<std::uint16_t> Read(int unit, Bank bank, int first, int count) = 0;
  /// Holding registers, at most 123. Throws Failure.
  virtual void Write(int unit, int first, std::span<const std::uint16_t> values) = 0;
};

}  // namespace brelant
