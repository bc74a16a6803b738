// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <numeric>
#include <vector>

#include "support/scripted_port.h"

namespace brelant::test {

struct Block {
  int type;
  Bytes payload;
};

/// A 16-bit field, least significant byte first.
inline void PutWord(Bytes& bytes, std::size_t offset, std::size_t value) {
  bytes[offset] = static_cast<std::uint8_t>(value & 255);
  bytes[offset + 1] = static_cast<std::uint8_t>(value >> 8 & 255);
}

/// Makes the checksum right for as many bytes as the length field tells and the file has.
inline void Mend(Bytes& bytes) {
  const std::size_t end = std::min<std::size_t>(bytes.size(), bytes[3] + 256U * bytes[4] + 18U);
  PutWord(
      bytes, 1,
      std::accumulate(bytes.begin() + 17, bytes.begin() + static_cast<std::ptrdiff_t>(end), std::size_t{0}));
}

/// A settings file of these blocks, sound in all respects (docs/memory-maps.md, Settings files).
inline Bytes SetFile(const std::vector<Block>& blocks) {
  Bytes bytes(17);
  bytes[0] = 1;
  for (const auto& block : blocks) {
    const auto at = bytes.size();
    bytes.resize(at + 4);
    PutWord(bytes, at, static_cast<std::size_t>(block.type));
    PutWord(bytes, at + 2, block.payload.size());
    bytes.insert(bytes.end(), block.payload.begin(), block.payload.end());
  }
  PutWord(bytes, 3, bytes.size() - 17);
  PutWord(bytes, 5, blocks.size());
  Mend(bytes);
  return bytes;
}

/// 0, 1, 2 ... and round again.
inline Bytes Rising(std::size_t size, int first = 0) {
  Bytes bytes(size);
  for (std::size_t i = 0; i < size; ++i) {
    bytes[i] = static_cast<std::uint8_t>(i + static_cast<std::size_t>(first));
  }
  return bytes;
}

}  // namespace brelant::test
