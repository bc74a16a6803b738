// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace brelant::container {

/// The container that all settings files have in common, whatever they hold (docs/memory-maps.md, Settings
/// files).

using Bytes = std::vector<std::uint8_t>;

inline constexpr std::size_t kHeaderSize = 17;
inline constexpr std::size_t kBlockHeader = 4;
/// A reader takes no more of a file; none as long is written.
inline constexpr std::size_t kReadLimit = 1501;

/// What the user is told of a file.
inline std::string NotFound(const std::string& name) {
  return "File not found " + name;
}
inline std::string Damaged(const std::string& name) {
  return "File is damaged " + name;
}
/// It holds no block of the wanted type.
inline constexpr const char* kNoBlock = "Setfile error";
inline constexpr const char* kOtherSensor = "This setfile can't be used on this sensor";

std::string Lower(std::string name);
/// The name of a file that is to be saved: with ".Set" behind it unless it ends so, in whatever case.
std::string WithEnding(const std::string& name);

/// The length that the header tells. Throws std::out_of_range for a file without one.
std::size_t LengthOf(std::span<const std::uint8_t> file);
/// How many blocks the header tells. Throws std::out_of_range for a file without one.
std::uint32_t CountOf(std::span<const std::uint8_t> file);
/// There is something behind the header, and the checksum is right.
bool IsSound(std::span<const std::uint8_t> file);

struct Block {
  std::uint32_t type;
  std::span<const std::uint8_t> payload;
};
/// The blocks of a file, which fill it to its end. Throws std::out_of_range if they do not, and if the length
/// of the header is not that of the file.
std::vector<Block> BlocksOf(std::span<const std::uint8_t> file);

/// The header of a file without blocks.
inline Bytes Empty() {
  return Bytes(kHeaderSize);
}
/// Replaces the block of that type, or puts it behind the last one. Throws std::length_error where the file
/// holds one of another size, or would be one that cannot be read.
void PutBlock(Bytes& file, std::uint8_t type, std::span<const std::uint8_t> payload);
/// Makes the header right. The file must have one.
void Seal(Bytes& file, std::uint8_t version);

}  // namespace brelant::container
