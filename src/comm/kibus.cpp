// SPDX-License-Identifier: GPL-3.0-or-later
#include "comm/kibus.h"

#include <algorithm>

#include "shell/Common.h"

namespace brelant::kibus {

namespace {

constexpr std::uint8_t kReadBit = 128;
constexpr std::uint8_t kHighBank = 64;
constexpr std::uint8_t kEepromBit = 8;
/// Both bits that no other frame sets; a single one would look like a command of another platform.
constexpr std::uint8_t kWideRam = 48;
constexpr int kBankSize = 128;
constexpr int kPageSize = 16;
constexpr std::size_t kWordEeprom = 512;

std::uint8_t Byte(int value) {
  return static_cast<std::uint8_t>(value & 0xFF);
}

/// Command byte and address bytes, which reads and writes have in common.
Frame Header(AddressForm form, std::uint8_t direction, int address, std::size_t count) {
  const auto base = static_cast<std::uint8_t>(direction + count);
  switch (form) {
    case AddressForm::R:
      if (address >= kBankSize) return {Byte(base + kHighBank), Byte(address - kBankSize)};
      return {base, Byte(address)};
    case AddressForm::W:
      return {Byte(base + kEepromBit), Byte(address / 2)};
    case AddressForm::RL:
      return {Byte(base + kWideRam), Byte(address / 256), Byte(address)};
    default:
      return {Byte(base + kEepromBit), Byte(address / 256), Byte(address)};
  }
}

void AppendChecksum(Frame& frame) {
  frame.push_back(Checksum(frame));
}

/// Chunk length by the distance of the farthest flagged byte ahead, 0 being the first byte itself.
using Lengths = std::span<const int>;

template <typename CountsAhead>
int FarthestLength(const std::vector<bool>& flags, std::size_t start, Lengths lengths,
                   CountsAhead countsAhead) {
  int length = lengths.front();
  for (std::size_t ahead = 1; ahead < lengths.size(); ++ahead) {
    const std::size_t position = start + ahead;
    if (position < flags.size() && flags[position] && countsAhead(position)) length = lengths[ahead];
  }
  return length;
}

template <typename LengthAt>
std::vector<Chunk> Walk(const std::vector<bool>& flags, LengthAt lengthAt) {
  std::vector<Chunk> chunks;
  std::size_t i = 0;
  while (i < flags.size()) {
    if (!flags[i]) {
      ++i;
      continue;
    }
    const int length = lengthAt(i);
    chunks.push_back({static_cast<int>(i), length});
    i += static_cast<std::size_t>(length);
  }
  return chunks;
}

Lengths ReadLengths(bool isEeprom, std::size_t size) {
  static constexpr std::array kRam{1, 2, 3, 4, 5, 6};
  static constexpr std::array kWords{2, 2, 4, 4, 6, 6};
  static constexpr std::array kBytes{1, 2, 4, 4};
  if (!isEeprom) return kRam;
  return size == kWordEeprom ? Lengths(kWords) : Lengths(kBytes);
}

Lengths WriteLengths(bool isEeprom, std::size_t size) {
  static constexpr std::array kBytes{1, 2, 3, 4};
  static constexpr std::array kWords{2, 2, 4, 4};
  return isEeprom && size == kWordEeprom ? Lengths(kWords) : Lengths(kBytes);
}

/// A read of 5 bytes from here is, byte for byte, the command that unlocks the EEPROM of a generation 2
/// sensor.
constexpr Chunk kLooksLikeUnlock{183, 5};

}  // namespace

AddressForm FormOf(bool isEeprom, std::uint8_t platform) {
  if (!isEeprom) return AddressForm::R;
  return platform == 7 || platform == 8 ? AddressForm::L : AddressForm::W;
}

std::uint8_t RequestToSend(float sensorId) {
  return static_cast<std::uint8_t>(AsByte(224 + sensorId));
}

std::uint8_t Checksum(std::span<const std::uint8_t> bytes) {
  float sum = 0;
  for (const auto byte : bytes) sum += byte;
  return LowByte(sum);
}

bool IsAck(std::uint8_t status) {
  return status == kAck || status == kAckWithFlag;
}

Frame ReadRequest(AddressForm form, const Chunk& chunk) {
  Frame frame = Header(form, kReadBit, chunk.address, static_cast<std::size_t>(chunk.count));
  AppendChecksum(frame);
  return frame;
}

Frame WriteFrame(AddressForm form, int address, std::span<const std::uint8_t> data) {
  Frame frame = Header(form, 0, address, data.size());
  frame.insert(frame.end(), data.begin(), data.end());
  AppendChecksum(frame);
  return frame;
}

std::optional<std::array<std::uint8_t, 3>> CommandFrame(int operation, std::uint8_t generation) {
  using Bytes = std::array<std::uint8_t, 3>;
  static constexpr std::array<Bytes, 4> kFirst{{{32, 0, 32}, {161, 0, 161}, {16, 0, 16}, {147, 0, 147}}};
  static constexpr std::array<Bytes, 6> kSecond{
      {{145, 0, 145}, {153, 173, 70}, {169, 171, 84}, {197, 55, 252}, {161, 0, 161}, {185, 1, 186}}};
  const auto frames = generation == 1 ? std::span<const Bytes>(kFirst) : std::span<const Bytes>(kSecond);
  if (generation == 0 || operation < 0 || static_cast<std::size_t>(operation) >= frames.size()) return {};
  return frames[static_cast<std::size_t>(operation)];
}

std::vector<Chunk> PlanRead(const std::vector<bool>& flags, bool isEeprom) {
  const auto lengths = ReadLengths(isEeprom, flags.size());
  auto chunks = Walk(flags, [&](std::size_t start) {
    const int length = FarthestLength(flags, start, lengths, [](std::size_t) { return true; });
    const bool belowBank = !isEeprom && start < static_cast<std::size_t>(kBankSize);
    return belowBank ? std::min(length, kBankSize - static_cast<int>(start)) : length;
  });
  const auto clash = isEeprom ? chunks.end() : std::find(chunks.begin(), chunks.end(), kLooksLikeUnlock);
  if (clash != chunks.end()) {
    clash->count = 4;
    chunks.insert(clash + 1, Chunk{kLooksLikeUnlock.address + 4, 1});
  }
  return chunks;
}

std::vector<Chunk> PlanWrite(const std::vector<bool>& flags, bool isEeprom) {
  const auto lengths = WriteLengths(isEeprom, flags.size());
  const bool paged = isEeprom && flags.size() > kWordEeprom;
  return Walk(flags, [&](std::size_t start) {
    return FarthestLength(flags, start, lengths, [&](std::size_t position) {
      return !paged || position / kPageSize == start / kPageSize;
    });
  });
}

}  // namespace brelant::kibus
