// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <vector>

#include "bench/atmosphere.h"
#include "bench/faults.h"
#include "bench/line_time.h"
#include "bench/memory.h"
#include "bench/product.h"
#include "bench/wire_frame.h"

namespace brelant::bench {

struct TimedByte {
  std::chrono::microseconds at;
  std::uint8_t value;
  bool operator==(const TimedByte&) const = default;
};

/// What the virtual sensor is to be.
struct SensorSetup {
  /// The part number, a byte. It must lie in platform 5, 6, 61 or 7 (docs/memory-maps.md).
  int part;
  /// The product variant; without it one that suits the part number.
  std::optional<int> variant = std::nullopt;
  /// The bus ID, 1..29. The sensor answers to it and to the broadcast form.
  int id = 1;
  /// Each byte takes 10/9600 s on the line, in either direction. Otherwise the line takes no time.
  bool pace = false;
  FaultRates faults = {};
  /// The same seed gives the same faults.
  std::uint32_t seed = 1;
};

/// A sensor at the far end of a KiBus line (docs/protocol.md), on whatever clock its user has. Turnaround is
/// zero: a reply begins when the last byte of what it answers has arrived.
class VirtualSensor {
 public:
  /// What came in, counted.
  struct Counters {
    int requests = 0;         ///< requests to send that were for this sensor
    int frames = 0;           ///< complete message frames, good or bad
    int wrong_checksums = 0;  ///< of these, frames with a wrong checksum
    int refused = 0;          ///< of these, frames with a right checksum that cannot be carried out
    int saves = 0;            ///< commands carried out that store or fetch settings, or store the ID
    int twa_resets = 0;
    int faults = 0;  ///< replies spoilt on purpose
  };

  /// Throws std::invalid_argument, with a text for people, for a setup that cannot be.
  explicit VirtualSensor(const SensorSetup& setup);

  /// The host put `byte` on the line at `now`; `now` must not fall from call to call.
  void Receive(std::uint8_t byte, std::chrono::microseconds now);

  /// What the sensor sends since the last call, each byte with the moment its last bit reaches the host, in
  /// order of time. A moment may lie ahead of the last `now`.
  std::vector<TimedByte> TakeReply();

  /// The device was pulled off on purpose (the fault `hang_up`); from then on nothing is heard or sent.
  bool HungUp() const { return hung_up_; }

  /// Moves the live values to what they are at `now`. Receive leaves them as they are.
  void Advance(std::chrono::microseconds now);

  /// The memories themselves, to look at and to poke: 256 bytes of RAM, 512 or 1024 of EEPROM.
  std::span<std::uint8_t> Ram() { return memory_.ram; }
  std::span<std::uint8_t> Eeprom() { return memory_.eeprom; }

  /// All memory as one piece, RAM and then EEPROM.
  std::vector<std::uint8_t> Image() const;
  /// Takes such a piece over and starts as after power-on. False, and nothing changed, if its size or its
  /// part number is not this sensor's.
  bool Restore(std::span<const std::uint8_t> image);

  /// The EEPROM's write protection; on after power-on.
  bool Locked() const { return locked_; }
  /// The bus ID in force, as RAM holds it.
  int Id() const;
  void SetId(int id);

  int Platform() const { return product_.platform; }
  /// The command set that it understands, 1 or 2.
  int Generation() const { return product_.generation; }

  /// The complete message frames that followed a clear-to-receive, good or bad, oldest first. Only the newest
  /// 10000 are kept.
  std::vector<std::vector<std::uint8_t>> Frames() const { return {frames_.begin(), frames_.end()}; }
  void ForgetFrames() { frames_.clear(); }
  const Counters& Count() const { return counters_; }

 private:
  void ForgetIfSilent(LineTime begin);
  void TakeRequest(std::uint8_t byte);
  void TakeFrame(const std::vector<std::uint8_t>& bytes);
  bool CarryOut(const Frame& frame);
  bool ReadMemory(const Frame& frame);
  bool WriteMemory(const Frame& frame);
  void Run(Operation operation);
  bool Send(std::vector<std::uint8_t> bytes, ReplyKind kind);

  Product product_;
  Memory memory_;
  Moment moment_;
  FaultMaker faults_;
  LineTime byte_time_;
  bool locked_ = true;
  bool hung_up_ = false;
  bool clear_to_receive_ = false;
  std::vector<std::uint8_t> incoming_;
  std::vector<TimedByte> outgoing_;
  LineTime heard_{};       // the last bit of the newest byte from the host
  LineTime sent_{};        // the last bit of the newest byte to the host
  LineTime busy_until_{};  // a sensor that is late does not listen meanwhile
  std::deque<std::vector<std::uint8_t>> frames_;
  Counters counters_;
};

}  // namespace brelant::bench
