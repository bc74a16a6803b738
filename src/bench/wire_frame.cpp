// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/wire_frame.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace brelant::bench {
namespace {

constexpr unsigned kRead = 0x80;
constexpr unsigned kUpperRam = 0x40;
constexpr unsigned kNoTransfer = 0x30;
constexpr unsigned kEeprom = 0x08;
constexpr unsigned kCount = 0x07;

struct Command {
  Operation operation;
  std::uint8_t command;
  std::uint8_t parameter;
};

constexpr std::array kFirstGeneration{
    Command{Operation::kSettingsToRam, 32, 0},
    Command{Operation::kSettingsToEeprom, 161, 0},
    Command{Operation::kLock, 16, 0},
    Command{Operation::kUnlock, 147, 0},
};

constexpr std::array kSecondGeneration{
    Command{Operation::kSettingsToRam, 145, 0}, Command{Operation::kSettingsToEeprom, 153, 173},
    Command{Operation::kLock, 169, 171},        Command{Operation::kUnlock, 197, 55},
    Command{Operation::kSaveId, 161, 0},        Command{Operation::kResetAverage, 185, 1},
};

std::optional<Operation> Find(std::span<const Command> set, std::span<const std::uint8_t> frame) {
  const auto found = std::ranges::find_if(
      set, [&](const Command& c) { return c.command == frame[0] && c.parameter == frame[1]; });
  if (found == set.end()) return std::nullopt;
  return found->operation;
}

bool IsTransfer(unsigned first) {
  const bool both_memories = (first & kUpperRam) != 0 && (first & kEeprom) != 0;
  return (first & kNoTransfer) == 0 && (first & kCount) != 0 && !both_memories;
}

FrameKind KindOf(unsigned first) {
  if (!IsTransfer(first)) return FrameKind::kCommand;
  if ((first & kEeprom) != 0) return (first & kRead) != 0 ? FrameKind::kReadEeprom : FrameKind::kWriteEeprom;
  return (first & kRead) != 0 ? FrameKind::kReadRam : FrameKind::kWriteRam;
}

bool OfEeprom(FrameKind kind) {
  return kind == FrameKind::kReadEeprom || kind == FrameKind::kWriteEeprom;
}
bool IsWrite(FrameKind kind) {
  return kind == FrameKind::kWriteRam || kind == FrameKind::kWriteEeprom;
}

std::size_t AddressBytes(FrameKind kind, AddressForm form) {
  return OfEeprom(kind) && form == AddressForm::kLong ? 2 : 1;
}

std::size_t AddressOf(FrameKind kind, std::span<const std::uint8_t> bytes, AddressForm form) {
  if (!OfEeprom(kind)) return bytes[1] + ((bytes[0] & kUpperRam) != 0 ? 128U : 0U);
  return form == AddressForm::kLong ? bytes[1] * 256U + bytes[2] : bytes[1] * 2U;
}

}  // namespace

std::size_t FrameLength(std::uint8_t first, AddressForm eeprom_form) {
  const FrameKind kind = KindOf(first);
  if (kind == FrameKind::kCommand) return 3;
  return 1 + AddressBytes(kind, eeprom_form) + (IsWrite(kind) ? first & kCount : 0) + 1;
}

Frame ParseFrame(std::span<const std::uint8_t> bytes, AddressForm eeprom_form) {
  const FrameKind kind = KindOf(bytes[0]);
  if (kind == FrameKind::kCommand) return {kind, bytes, 0, 0, {}};
  const std::size_t count = bytes[0] & kCount;
  const std::size_t head = 1 + AddressBytes(kind, eeprom_form);
  return {kind, bytes, AddressOf(kind, bytes, eeprom_form), count,
          IsWrite(kind) ? bytes.subspan(head, count) : std::span<const std::uint8_t>{}};
}

std::optional<Operation> CommandOf(std::span<const std::uint8_t> frame, int generation) {
  return generation == 1 ? Find(kFirstGeneration, frame) : Find(kSecondGeneration, frame);
}

std::uint8_t Checksum(std::span<const std::uint8_t> bytes) {
  return static_cast<std::uint8_t>(std::accumulate(bytes.begin(), bytes.end(), 0U) & 255U);
}

bool ChecksumHolds(std::span<const std::uint8_t> frame) {
  return Checksum(frame.first(frame.size() - 1)) == frame.back();
}

}  // namespace brelant::bench
