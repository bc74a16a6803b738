// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <initializer_list>
#include <numeric>

#include "arithmetic.h"
#include "host.h"

namespace brelant::bench {

// What the tests of platforms 8 and 9 share.

inline int SignedAt(ConstBytes memory, std::size_t address) {
  const int word = WordAt(memory, address);
  return word > 32767 ? word - 65536 : word;
}

inline ByteList Summed(ByteList frame) {
  frame.push_back(static_cast<std::uint8_t>(std::accumulate(frame.begin(), frame.end(), 0)));
  return frame;
}

/// A frame with an address of two bytes.
inline ByteList LongFrame(int command, std::size_t address, std::initializer_list<int> data = {}) {
  ByteList frame{static_cast<std::uint8_t>(command), static_cast<std::uint8_t>(address / 256),
                 static_cast<std::uint8_t>(address % 256)};
  for (const int byte : data) frame.push_back(static_cast<std::uint8_t>(byte));
  return Summed(frame);
}

inline ByteList Peek(ConstBytes memory, std::size_t address, std::size_t count) {
  const ConstBytes bytes = memory.subspan(address, count);
  return {bytes.begin(), bytes.end()};
}

/// A host that reads and writes words of a unit.
class UnitHost : public Host {
 public:
  using Host::Host;

  /// -1: no such reply.
  int RamWord(std::size_t address) { return WordOf(Exchange(LongFrame(178, address))); }
  int EepromWord(std::size_t address) { return WordOf(Exchange(LongFrame(138, address))); }
  bool WriteRam(std::size_t address, int word) { return Write(50, address, word); }
  bool WriteEeprom(std::size_t address, int word) { return Write(10, address, word); }

  /// What the unit itself makes of the moment.
  int LiveWord(std::size_t address) {
    sensor.Advance(now);
    return SignedAt(sensor.Ram(), address);
  }

 private:
  static int WordOf(const ByteList& reply) { return reply.size() == 4 ? reply[1] * 256 + reply[2] : -1; }
  bool Write(int command, std::size_t address, int word) {
    return Exchange(LongFrame(command, address, {word >> 8 & 255, word & 255})) == ByteList{6};
  }
};

}  // namespace brelant::bench
