// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace brelant {

/// What cells of a unit are counted in: bytes of its memories, or Modbus registers.
enum class Space { ram, eeprom, input, holding };

/// The bus ID that stands for the only unit on the line.
inline constexpr int kOnlyUnit = -1;

/// A way to the memory of a unit: KiBus or Modbus. Every operation throws ConnectionError, and waits on the
/// pump.
class Road {
 public:
  virtual ~Road() = default;

  /// Opens the port and attaches to the unit of that ID, or to the only one. Fails if it is not there.
  virtual void Connect(const std::string& port, int id) = 0;
  /// Closes the port; never throws.
  virtual void Disconnect() = 0;
  /// The cells from `first` on, each a byte or a register. A road throws for a space that it does not reach.
  virtual std::vector<std::uint16_t> Read(Space space, int first, int count) = 0;
  virtual void Write(Space space, int first, std::span<const std::uint16_t> cells) = 0;
  /// Most cells of one read.
  virtual int Most(Space space) const = 0;
};

}  // namespace brelant
