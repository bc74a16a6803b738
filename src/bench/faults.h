// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <random>
#include <set>
#include <vector>

#include "bench/line_time.h"

namespace brelant::bench {

/// How often each fault befalls a reply, 0 (never) to 1 (always). A clear-to-receive counts as a reply.
struct FaultRates {
  double silence = 0;      ///< no reply
  double wrong_byte = 0;   ///< one byte is another
  double late = 0;         ///< the reply comes after the host has stopped waiting for it
  double short_reply = 0;  ///< the last byte or bytes are missing
  double noise = 0;        ///< stray bytes before the reply or in its place
  double nak = 0;          ///< 134 for 6, with a checksum that fits; on Modbus exception 4
  double hang_up = 0;      ///< the device is gone
};

/// Addresses of EEPROM that a host cannot write.
struct BadCells {
  std::set<std::size_t> stuck{};    ///< a write is acknowledged and not kept
  std::set<std::size_t> refused{};  ///< no reply and nothing written; on Modbus exception 4
};

/// What a reply answers; it decides how long the host waits for it.
enum class ReplyKind { kClearToReceive, kData, kWritten, kCommandDone, kModbus };

/// What becomes of one reply.
struct SpoiltReply {
  std::vector<std::uint8_t> bytes{};
  LineTime delay{};
  bool lost = false;  ///< nothing of the reply itself is sent
  bool hung_up = false;
  bool refused = false;  ///< a Modbus exception in place of the reply; the request is not carried out
  bool touched = false;  ///< a fault fired
};

/// Draws the faults. The same seed gives the same faults on every machine.
class FaultMaker {
 public:
  /// Throws std::invalid_argument for a rate outside 0..1.
  FaultMaker(const FaultRates& rates, std::uint32_t seed);

  SpoiltReply Spoil(std::vector<std::uint8_t> reply, ReplyKind kind);

 private:
  bool Happens(double rate);
  std::uint32_t Below(std::uint32_t limit);
  std::uint8_t AnyByte() { return static_cast<std::uint8_t>(Below(256)); }
  void AddNoise(SpoiltReply& reply);

  FaultRates rates_;
  // Its sequence is fixed by the language; the distributions of <random> are not, and are not used.
  std::mt19937 random_;
};

}  // namespace brelant::bench
