// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <numeric>
#include <set>
#include <utility>
#include <vector>

#include "support/scripted_port.h"

namespace brelant::test {

/// A unit at the far end of the line with RAM and EEPROM of 8192 bytes each, which reads memory frames by
/// itself (docs/protocol.md, Memory frames).
class KiBusUnit {
 public:
  explicit KiBusUnit(ScriptedPort& port, std::uint8_t requestToSend = 254)
      : port_(port), requestToSend_(requestToSend) {
    port_.onOutput = [this](const Bytes& bytes) {
      for (const auto byte : bytes) Hear(byte);
    };
    ram.at(65) = 154;
  }
  KiBusUnit(const KiBusUnit&) = delete;
  KiBusUnit& operator=(const KiBusUnit&) = delete;

  void PutWord(std::size_t address, int value) {
    eeprom.at(address) = static_cast<std::uint8_t>(value >> 8 & 255);
    eeprom.at(address + 1) = static_cast<std::uint8_t>(value & 255);
  }

  std::vector<std::uint8_t> ram = std::vector<std::uint8_t>(8192);
  std::vector<std::uint8_t> eeprom = std::vector<std::uint8_t>(8192);
  /// Hears and says nothing.
  bool isSilent = false;
  /// Cells of EEPROM: a write that touches one is not carried out, and not answered.
  std::set<std::size_t> refused;
  /// The frames that were whole and right, without their checksum.
  std::vector<Bytes> frames;

 private:
  void Hear(std::uint8_t byte) {
    if (isSilent) return;
    if (!isCleared_) {
      isCleared_ = byte == requestToSend_;
      if (isCleared_) port_.Arrive({223}, std::chrono::milliseconds(1));
      return;
    }
    heard_.push_back(byte);
    if (heard_.size() < Length()) return;
    const auto frame = std::exchange(heard_, {});
    isCleared_ = false;
    const auto sum = std::accumulate(frame.begin(), frame.end() - 1, 0);
    if (sum % 256 == frame.back()) Carry({frame.begin(), frame.end() - 1});
  }

  bool IsEeprom() const { return (heard_.front() & 56) == 8; }
  bool IsWide() const { return (heard_.front() & 56) != 0; }
  bool IsRead() const { return heard_.front() >= 128; }
  std::size_t Length() const {
    const std::size_t data = IsRead() ? 0 : heard_.front() % 8U;
    return 1 + (IsWide() ? 2U : 1U) + data + 1;
  }

  void Carry(const Bytes& frame) {
    frames.push_back(frame);
    const auto command = frame.front();
    const bool isWide = (command & 56) != 0;
    const std::size_t header = isWide ? 3 : 2;
    std::size_t address =
        isWide ? frame.at(1) * 256U + frame.at(2) : frame.at(1) + (command & 64 ? 128U : 0U);
    const bool isEeprom = (command & 56) == 8;
    const auto cell = [&](std::size_t at) -> std::uint8_t& { return isEeprom ? eeprom.at(at) : ram.at(at); };
    Bytes reply{6};
    const auto bad = refused.lower_bound(address);
    if (command < 128 && isEeprom && bad != refused.end() && *bad < address + frame.size() - header) return;
    if (command >= 128) {
      for (std::size_t i = 0; i < command % 8U; ++i) reply.push_back(cell(address + i));
      reply.push_back(static_cast<std::uint8_t>(std::accumulate(reply.begin(), reply.end(), 0)));
    } else {
      for (std::size_t i = header; i < frame.size(); ++i) cell(address++) = frame.at(i);
    }
    port_.Arrive(reply, std::chrono::milliseconds(3));
  }

  ScriptedPort& port_;
  std::uint8_t requestToSend_;
  bool isCleared_ = false;
  Bytes heard_;
};

}  // namespace brelant::test
