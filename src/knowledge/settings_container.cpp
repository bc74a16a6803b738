// SPDX-License-Identifier: GPL-3.0-or-later
#include "knowledge/settings_container.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>

#include "knowledge/little_endian.h"

namespace brelant::container {

namespace {

constexpr std::uint32_t kMostBlocks = 255;
constexpr std::size_t kChecksumAt = 1;
constexpr std::size_t kLengthAt = 3;
constexpr std::size_t kCountAt = 5;

/// Sum of the bytes from 17 up to and including length + 17; the one past the end of the file counts as 0.
std::uint16_t ChecksumOf(std::span<const std::uint8_t> file, std::size_t length) {
  std::uint32_t sum = 0;
  for (std::size_t i = kHeaderSize; i <= length + kHeaderSize; ++i) sum += i < file.size() ? file[i] : 0;
  return static_cast<std::uint16_t>(sum);
}

/// Where a block of that type stands in the file, or the end of the known blocks.
struct Place {
  std::size_t offset;
  bool found;
};

Place FindPlace(const Bytes& file, std::uint32_t count, std::uint8_t block) {
  std::size_t offset = kHeaderSize;
  for (std::uint32_t i = 0; i < count; ++i) {
    if (ReadLittleEndian(file, offset, 2) == block) return {offset, true};
    offset += kBlockHeader + ReadLittleEndian(file, offset + 2, 2);
  }
  return {offset, false};
}

}  // namespace

std::string Lower(std::string name) {
  std::transform(name.begin(), name.end(), name.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return name;
}

std::string WithEnding(const std::string& name) {
  return Lower(name).ends_with(".set") ? name : name + ".Set";
}

std::size_t LengthOf(std::span<const std::uint8_t> file) {
  return ReadLittleEndian(file, kLengthAt, 2);
}

std::uint32_t CountOf(std::span<const std::uint8_t> file) {
  return ReadLittleEndian(file, kCountAt, 1);
}

bool IsSound(std::span<const std::uint8_t> file) {
  if (file.size() <= kHeaderSize || LengthOf(file) == 0) return false;
  return ChecksumOf(file, LengthOf(file)) == ReadLittleEndian(file, kChecksumAt, 2);
}

std::vector<Block> BlocksOf(std::span<const std::uint8_t> file) {
  const auto require = [](bool fits) {
    if (!fits) throw std::out_of_range("Subscript out of range");
  };
  require(LengthOf(file) + kHeaderSize == file.size());
  std::vector<Block> blocks;
  std::size_t offset = kHeaderSize;
  for (auto left = CountOf(file); left > 0; --left) {
    const auto type = ReadLittleEndian(file, offset, 2);
    const auto size = ReadLittleEndian(file, offset + 2, 2);
    offset += kBlockHeader;
    require(size <= file.size() - offset);
    blocks.push_back({type, file.subspan(offset, size)});
    offset += size;
  }
  require(offset == file.size());
  return blocks;
}

void PutBlock(Bytes& file, std::uint8_t type, std::span<const std::uint8_t> payload) {
  const auto count = CountOf(file);
  const auto place = FindPlace(file, count, type);
  const auto end = place.offset + kBlockHeader + payload.size();
  if (place.found && ReadLittleEndian(file, place.offset + 2, 2) != payload.size()) {
    throw std::length_error("The block in the file has another size");
  }
  if (std::max(file.size(), end) >= kReadLimit || (!place.found && count == kMostBlocks)) {
    throw std::length_error("The file would be one that cannot be read");
  }
  if (file.size() < end) file.resize(end);
  WriteLittleEndian(file, place.offset, 2, type);
  WriteLittleEndian(file, place.offset + 2, 2, static_cast<std::uint32_t>(payload.size()));
  std::copy(payload.begin(), payload.end(),
            file.begin() + static_cast<std::ptrdiff_t>(place.offset + kBlockHeader));
  WriteLittleEndian(file, kCountAt, 2, place.found ? count : count + 1);
}

void Seal(Bytes& file, std::uint8_t version) {
  const auto length = file.size() - kHeaderSize;
  WriteLittleEndian(file, 0, 1, version);
  WriteLittleEndian(file, kChecksumAt, 2, ChecksumOf(file, length));
  WriteLittleEndian(file, kLengthAt, 2, static_cast<std::uint32_t>(length));
}

}  // namespace brelant::container
