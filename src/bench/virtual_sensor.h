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
#include "bench/line_clock.h"
#include "bench/line_end.h"
#include "bench/memory.h"
#include "bench/product.h"
#include "bench/unit_tasks.h"
#include "bench/wire_frame.h"

namespace brelant::bench {

/// What the virtual sensor is to be.
struct SensorSetup {
  /// The part number, a byte. It must lie in platform 5, 6, 61, 7, 8 or 9 (docs/memory-maps.md).
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
  BadCells bad_cells = {};
};

/// A sensor at the far end of a KiBus line (docs/protocol.md). Turnaround is zero: a reply begins when the
/// last byte of what it answers has arrived.
class VirtualSensor : public LineEnd {
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

  void Receive(std::uint8_t byte, std::chrono::microseconds now) override;
  std::vector<TimedByte> TakeReply() override { return line_.TakeReply(); }
  bool HungUp() const override { return line_.HungUp(); }
  void Advance(std::chrono::microseconds now) override;
  int Saves() const override { return counters_.saves; }

  /// Carries out what a word in memory asks for and is due at `now`. Receive and Advance do so too; whoever
  /// writes into the memories in another way calls it before and after.
  void MindTasks(std::chrono::microseconds now);

  /// The memories themselves, to look at and to poke: 256 bytes of RAM, 512 or 7168; 512 bytes of EEPROM,
  /// 1024 or 8192.
  std::span<std::uint8_t> Ram() { return memory_.ram; }
  std::span<std::uint8_t> Eeprom() { return memory_.eeprom; }

  /// EEPROM that the host cannot write, to change while the sensor runs.
  BadCells& Bad() { return bad_cells_; }
  /// False if one of `count` bytes from `address` on refuses a write.
  bool TakesWrite(std::size_t address, std::size_t count) const;
  /// Writes a byte of EEPROM as a host does.
  void WriteEeprom(std::size_t address, std::uint8_t byte);

  /// All memory as one piece, RAM and then EEPROM.
  std::vector<std::uint8_t> Image() const;
  /// Takes such a piece over and starts as after power-on. False, and nothing changed, if its size or its
  /// part number is not this sensor's.
  bool Restore(std::span<const std::uint8_t> image);

  /// The EEPROM's write protection; on after power-on. A sensor without command frames has none.
  bool Locked() const { return locked_; }
  /// The bus ID in force, as RAM holds it.
  int Id() const;
  void SetId(int id);

  int Platform() const { return product_.platform; }
  /// The command set that it understands, 1 or 2; 0 if there is none.
  int Generation() const { return product_.generation; }

  /// The complete message frames that followed a clear-to-receive, good or bad, oldest first. Only the newest
  /// 10000 are kept.
  std::vector<std::vector<std::uint8_t>> Frames() const { return {frames_.begin(), frames_.end()}; }
  void ForgetFrames() { frames_.clear(); }
  const Counters& Count() const { return counters_; }

 private:
  bool HasTasks() const { return product_.platform == 8 || product_.platform == 9; }
  void StartTasks();
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
  std::chrono::microseconds minded_{};
  FaultMaker faults_;
  BadCells bad_cells_;
  LineClock line_;
  UnitTasks tasks_;
  bool locked_;
  bool clear_to_receive_ = false;
  std::vector<std::uint8_t> incoming_;
  std::deque<std::vector<std::uint8_t>> frames_;
  Counters counters_;
};

}  // namespace brelant::bench
