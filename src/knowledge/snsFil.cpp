// SPDX-License-Identifier: GPL-3.0-or-later
#include "knowledge/snsFil.h"

#include <algorithm>
#include <array>
#include <exception>
#include <limits>
#include <stdexcept>

#include "knowledge/little_endian.h"
#include "knowledge/settings_container.h"
#include "shell/Common.h"

namespace brelant {

namespace {

constexpr std::size_t kLowPart = 112;
constexpr std::size_t kHighPart = 128;
constexpr std::size_t kRamBytes = 256;
constexpr std::size_t kEepromBytes = 512;
constexpr std::size_t kSelectionPad = 30;
constexpr std::size_t kPartCopy = 164;
constexpr std::size_t kPartAddress = 65;

using container::Bytes;
using container::kBlockHeader;
using container::kHeaderSize;
using container::kReadLimit;

/// The test for the name starts one place early, so that no name that ends in "last.set" meets it.
bool IsNamedLast(const std::string& name) {
  constexpr std::size_t kName = 8;
  return name.size() > kName && container::Lower(name).substr(name.size() - kName - 1, kName) == "last.set";
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
    session_.Fail(container::NotFound(fileName));
    return Found::failed;
  }
  try {
    auto file = machine_.files.Read(fileName, kReadLimit);
    const auto size = file.size();
    file.resize(kReadLimit);
    if (size > kHeaderSize && container::LengthOf(file) + kHeaderSize >= kReadLimit) {
      throw std::out_of_range("Subscript out of range");
    }
    if (!container::IsSound(std::span(file).first(size))) {
      session_.Fail(container::Damaged(fileName));
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
  const auto count = container::CountOf(file);
  std::size_t offset = kHeaderSize;
  for (std::uint32_t i = 0; i < count; ++i) {
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
  session_.Fail(container::kNoBlock);
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
  const auto name = container::WithEnding(fileName);
  try {
    auto file = KeptFile(name, fresh);
    for (const auto& block : blocks) container::PutBlock(file, block.type, Payload(block));
    container::Seal(file, version);
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
  return IsNamedLast(name) || !container::IsSound(file) ? container::Empty() : file;
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
