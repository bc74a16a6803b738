// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace brelant::kibus {

/// How a message names an address (docs/protocol.md, Address forms).
enum class AddressForm { R, W, L, RL };

inline constexpr std::uint8_t kClearToReceive = 223;
inline constexpr std::uint8_t kAck = 6;
inline constexpr std::uint8_t kAckWithFlag = 134;

/// A run of consecutive bytes that goes in one exchange.
struct Chunk {
  int address;
  int count;
  bool operator==(const Chunk&) const = default;
};

using Frame = std::vector<std::uint8_t>;

AddressForm FormOf(bool isEeprom, std::uint8_t platform);

std::uint8_t RequestToSend(float sensorId);

/// The sum of the bytes, low 8 bits.
std::uint8_t Checksum(std::span<const std::uint8_t> bytes);

bool IsAck(std::uint8_t status);

Frame ReadRequest(AddressForm form, const Chunk& chunk);
/// `data` has 1 to 4 bytes.
Frame WriteFrame(AddressForm form, int address, std::span<const std::uint8_t> data);
/// Nothing for an operation that has no frame in that generation.
std::optional<std::array<std::uint8_t, 3>> CommandFrame(int operation, std::uint8_t generation);

/// The exchanges that read, or write, the flagged bytes of a memory whose highest address is flags.size() - 1
/// (docs/protocol.md, Chunks).
std::vector<Chunk> PlanRead(const std::vector<bool>& flags, bool isEeprom);
std::vector<Chunk> PlanWrite(const std::vector<bool>& flags, bool isEeprom);

}  // namespace brelant::kibus
