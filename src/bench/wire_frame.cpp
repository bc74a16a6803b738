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

bool IsWide(unsigned first, AddressForm form) {
  return form == AddressForm::kLongAndWideRam &&
         (first & (kNoTransfer | kUpperRam | kEeprom)) == kNoTransfer && (first & kCount) != 0;
}

bool IsTransfer(unsigned first, AddressForm form) {
  if (IsWide(first, form)) return true;
  const bool both_memories = (first & kUpperRam) != 0 && (first & kEeprom) != 0;
  return (first & kNoTransfer) == 0 && (first & kCount) != 0 && !both_memories;
}

FrameKind KindOf(unsigned first, AddressForm form) {
  if (!IsTransfer(first, form)) return FrameKind::kCommand;
  if ((first & kEeprom) != 0) return (first & kRead) != 0 ? FrameKind::kReadEeprom : FrameKind::kWriteEeprom;
  return (first & kRead) != 0 ? FrameKind::kReadRam : FrameKind::kWriteRam;
}

bool IsWrite(FrameKind kind) {
  return kind == FrameKind::kWriteRam || kind == FrameKind::kWriteEeprom;
}

std::size_t AddressBytes(unsigned first, AddressForm form) {
  const bool long_eeprom = (first & kEeprom) != 0 && form != AddressForm::kWords;
  return long_eeprom || IsWide(first, form) ? 2 : 1;
}

std::size_t AddressOf(std::span<const std::uint8_t> bytes, AddressForm form) {
  if (AddressBytes(bytes[0], form) == 2) return std::size_t{256} * bytes[1] + bytes[2];
  if ((bytes[0] & kEeprom) != 0) return std::size_t{2} * bytes[1];
  return bytes[1] + ((bytes[0] & kUpperRam) != 0 ? 128U : 0U);
}

}  // namespace

std::size_t FrameLength(std::uint8_t first, AddressForm form) {
  const FrameKind kind = KindOf(first, form);
  if (kind == FrameKind::kCommand) return 3;
  return 1 + AddressBytes(first, form) + (IsWrite(kind) ? first & kCount : 0) + 1;
}

Frame ParseFrame(std::span<const std::uint8_t> bytes, AddressForm form) {
  const FrameKind kind = KindOf(bytes[0], form);
  if (kind == FrameKind::kCommand) return {kind, bytes, 0, 0, false, {}};
  const std::size_t count = bytes[0] & kCount;
  const std::size_t head = 1 + AddressBytes(bytes[0], form);
  return {kind,
          bytes,
          AddressOf(bytes, form),
          count,
          IsWide(bytes[0], form),
          IsWrite(kind) ? bytes.subspan(head, count) : std::span<const std::uint8_t>{}};
}

std::optional<Operation> CommandOf(std::span<const std::uint8_t> frame, int generation) {
  if (generation == 0) return std::nullopt;
  return generation == 1 ? Find(kFirstGeneration, frame) : Find(kSecondGeneration, frame);
}

std::uint8_t Checksum(std::span<const std::uint8_t> bytes) {
  return static_cast<std::uint8_t>(std::accumulate(bytes.begin(), bytes.end(), 0U) & 255U);
}

bool ChecksumHolds(std::span<const std::uint8_t> frame) {
  return Checksum(frame.first(frame.size() - 1)) == frame.back();
}

}  // namespace brelant::bench
