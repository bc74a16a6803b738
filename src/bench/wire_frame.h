// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "bench/product.h"

namespace brelant::bench {

enum class FrameKind { kReadRam, kWriteRam, kReadEeprom, kWriteEeprom, kCommand };

/// One message frame as it came off the line (docs/protocol.md), taken apart by its first byte.
struct Frame {
  FrameKind kind;
  std::span<const std::uint8_t> bytes;  ///< the whole frame
  std::size_t address;                  ///< of a memory transfer: the byte address
  std::size_t count;                    ///< of a memory transfer: its data bytes
  bool wide;                            ///< of a transfer of RAM: its address has two bytes
  std::span<const std::uint8_t> data;   ///< of a write
};

/// How many bytes a frame has that begins with `first`, to a sensor with this address form.
std::size_t FrameLength(std::uint8_t first, AddressForm form);

/// Takes a whole frame apart. The spans of the result look into `bytes`.
Frame ParseFrame(std::span<const std::uint8_t> bytes, AddressForm form);

/// What a command frame asks for.
enum class Operation { kSettingsToRam, kSettingsToEeprom, kLock, kUnlock, kSaveId, kResetAverage };

/// The operation of a frame in the command set of `generation`, if it is one. The unlock frame of generation
/// 2 looks like a read of RAM and counts as unlock.
std::optional<Operation> CommandOf(std::span<const std::uint8_t> frame, int generation);

/// The low eight bits of the sum.
std::uint8_t Checksum(std::span<const std::uint8_t> bytes);

bool ChecksumHolds(std::span<const std::uint8_t> frame);

}  // namespace brelant::bench
