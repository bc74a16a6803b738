// SPDX-License-Identifier: GPL-3.0-or-later
#include "knowledge/snsFil.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <exception>
#include <limits>
#include <stdexcept>

#include "knowledge/little_endian.h"
#include "shell/Common.h"

namespace brelant {

namespace {

constexpr std::size_t kHeaderSize = 17;
constexpr std::size_t kBlockHeader = 4;
constexpr std::size_t kReadLimit = 1501;
constexpr std::uint32_t kMostBlocks = 255;
constexpr std::size_t kChecksumAt = 1;
constexpr std::size_t kLengthAt = 3;
constexpr std::size_t kCountAt = 5;

constexpr std::size_t kLowPart = 112;
constexpr std::size_t kHighPart = 128;
constexpr std::size_t kRamBytes = 256;
constexpr std::size_t kEepromBytes = 512;
constexpr std::size_t kSelectionPad = 30;
constexpr std::size_t kPartCopy = 164;
constexpr std::size_t kPartAddress = 65;

using Bytes = std::vector<std::uint8_t>;

/// Sum of the bytes from 17 up to and including length + 17; the one past the end of the file counts as 0.
std::uint16_t ChecksumOf(std::span<const std::uint8_t> file, std::size_t length) {
  std::uint32_t sum = 0;
  for (std::size_t i = kHeaderSize; i <= length + kHeaderSize; ++i) sum += i < file.size() ? file[i] : 0;
  return static_cast<std::uint16_t>(sum);
}

std::string Lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

std::string WithEnding(const std::string& name) {
  const auto lower = Lower(name);
  return lower.size() >= 4 && lower.ends_with(".set") ? name : name + ".Set";
}

/// The test for the name starts one place early, so that no name that ends in "last.set" meets it.
bool IsNamedLast(const std::string& name) {
  constexpr std::size_t kName = 8;
  return name.size() > kName && Lower(name).substr(name.size() - kName - 1, kName) == "last.set";
}

bool IsDiscarded(const std::string& name, const Bytes& old) {
  if (IsNamedLast(name) || old.size() <= kHeaderSize) return true;
  const auto length = ReadLittleEndian(old, kLengthAt, 2);
  return length == 0 || ChecksumOf(old, length) != ReadLittleEndian(old, kChecksumAt, 2);
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

/// Replaces the block of that type, or puts it behind the last one.
void PutBlock(Bytes& file, std::uint8_t type, const Bytes& payload) {
  const std::uint32_t count = file[kCountAt];
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

}  // namespace

snsFil::snsFil(Session& session, SensorImage& image, snscom& com, SnsInfo& info, Table& table,
               const Machine& machine)
    : session_(session), image_(image), com_(com), info_(info), table_(table), machine_(machine) {}

bool snsFil::ReadSetBlock(const std::string& fileName, std::uint8_t& block, bool reportError, bool apply) {
  return ReadBlock(fileName, {block, apply}, reportError) != Found::failed;
}

snsFil::Found snsFil::ReadBlock(const std::string& fileName, const Wanted& wanted, bool reportError) {
  std::fill_n(image_.SetBuffer.begin(), kEepromBytes, std::uint8_t{0});
  if (fileName.empty() || !machine_.files.Exists(fileName)) {
    session_.Fail("File not found " + fileName);
    return Found::failed;
  }
  try {
    auto file = machine_.files.Read(fileName, kReadLimit);
    const auto size = file.size();
    file.resize(kReadLimit);
    const auto length = ReadLittleEndian(file, kLengthAt, 2);
    if (size <= kHeaderSize || length == 0) {
      session_.Fail("File is damaged " + fileName);
      return Found::failed;
    }
    if (length + kHeaderSize >= kReadLimit) throw std::out_of_range("Subscript out of range");
    if (ChecksumOf(file, length) != ReadLittleEndian(file, kChecksumAt, 2)) {
      session_.Fail("File is damaged " + fileName);
      return Found::failed;
    }
    return TakeBlocks(file, wanted);
  } catch (const std::exception& fault) {
    if (reportError) session_.Fail(fault.what());
    return Found::failed;
  }
}

snsFil::Found snsFil::TakeBlocks(std::span<const std::uint8_t> file, const Wanted& wanted) {
  auto& block = wanted.block;
  const int count = file[kCountAt];
  std::size_t offset = kHeaderSize;
  for (int i = 0; i < count; ++i) {
    machine_.pump.DoEvents();
    const auto type = ReadLittleEndian(file, offset, 2);
    const auto size = ReadLittleEndian(file, offset + 2, 2);
    if (block == first && (type == ram5 || type == eeprom)) block = static_cast<std::uint8_t>(type);
    if (type == block && wanted.size && size != *wanted.size) return Found::otherSize;
    if (type == block) {
      const auto payload = file.subspan(offset + kBlockHeader);
      if (type == ram5) {
        TakeRamBlock(payload, wanted.apply);
      } else {
        if (size > payload.size()) throw std::out_of_range("Subscript out of range");
        TakeBlock(type, payload.first(size), wanted.apply);
      }
      return Found::block;
    }
    offset += kBlockHeader + size;
  }
  if (count == 0) return Found::noBlocks;
  session_.Fail("Setfile error");
  return Found::failed;
}

void snsFil::TakeRamBlock(std::span<const std::uint8_t> payload, bool apply) {
  if (payload.size() < kLowPart + kHighPart) throw std::out_of_range("Subscript out of range");
  for (std::size_t i = 0; i < kLowPart + kHighPart; ++i) {
    const std::size_t address = i < kLowPart ? i : i - kLowPart + kHighPart;
    image_.SetBuffer[address] = payload[i];
    if (!apply) continue;
    image_.RamImage[address] = payload[i];
    image_.RamValid[address] = true;
  }
}

void snsFil::TakeBlock(std::uint32_t type, std::span<const std::uint8_t> payload, bool apply) {
  if (payload.size() > image_.SetBuffer.size()) throw std::out_of_range("Subscript out of range");
  std::copy(payload.begin(), payload.end(), image_.SetBuffer.begin());
  if (type == selection && payload.size() > kSelectionPad) {
    std::copy(payload.begin() + kSelectionPad, payload.end(), image_.ReadRequest.begin());
  }
  if ((type != eeprom && type != upperEeprom) || !apply) return;
  const std::size_t base = type == eeprom ? 0 : kEepromBytes;
  for (std::size_t i = 0; i < payload.size(); ++i) {
    image_.EepromImage[base + i] = payload[i];
    image_.EepromValid[base + i] = true;
  }
  if (type != eeprom) return;
  image_.RamImage[kPartAddress] = image_.EepromImage[kPartCopy];
  image_.RamValid[kPartAddress] = true;
}

bool snsFil::SaveSettings(std::uint8_t& block, const std::string& fileName, std::uint8_t version,
                          bool useSelection, bool fresh) {
  if (block == first) block = BlockOfPlatform();
  if (block == first) return false;
  const BlockWrite write{block, useSelection};
  return SaveBlocks(fileName, version, {&write, 1}, fresh);
}

bool snsFil::SaveBlocks(const std::string& fileName, std::uint8_t version, std::span<const BlockWrite> blocks,
                        bool fresh) {
  const auto name = WithEnding(fileName);
  try {
    auto file = KeptFile(name, fresh);
    for (const auto& block : blocks) PutBlock(file, block.type, Payload(block));
    const auto length = file.size() - kHeaderSize;
    WriteLittleEndian(file, 0, 1, version);
    WriteLittleEndian(file, kChecksumAt, 2, ChecksumOf(file, length));
    WriteLittleEndian(file, kLengthAt, 2, static_cast<std::uint32_t>(length));
    machine_.files.Write(name, file);
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

/// The old file, or the header of a new one if there is none worth keeping.
Bytes snsFil::KeptFile(const std::string& name, bool fresh) const {
  Bytes file;
  if (!fresh && machine_.files.Exists(name)) {
    file = machine_.files.Read(name, std::numeric_limits<std::size_t>::max());
  }
  if (IsDiscarded(name, file)) file.assign(kHeaderSize, 0);
  return file;
}

std::uint8_t snsFil::BlockOfPlatform() {
  switch (com_.GetPlatform()) {
    case 5:
      return ram5;
    case 6:
    case 61:
      return eeprom;
    default:
      return first;
  }
}

Bytes snsFil::Payload(const BlockWrite& block) const {
  Bytes payload;
  const auto append = [&](const auto& image, std::size_t from, std::size_t to) {
    for (std::size_t i = from; i < to; ++i) payload.push_back(static_cast<std::uint8_t>(AsByte(image[i])));
  };
  switch (block.type) {
    case ram5:
      append(image_.RamImage, 0, kLowPart);
      append(image_.RamImage, kHighPart, kRamBytes);
      break;
    case eeprom:
      append(image_.EepromImage, 0, kEepromBytes);
      break;
    case upperEeprom:
      append(image_.EepromImage, kEepromBytes, 2 * kEepromBytes);
      break;
    case selection:
      if (block.useSelection) {
        payload.resize(kSelectionPad + kEepromBytes);
        std::copy_n(image_.ReadRequest.begin(), kEepromBytes, payload.begin() + kSelectionPad);
      } else {
        payload.assign(image_.SetBuffer.begin(), image_.SetBuffer.begin() + kSelectionPad + kEepromBytes);
      }
      break;
    default:
      append(image_.RamImage, 0, kRamBytes);
  }
  return payload;
}

}  // namespace brelant
