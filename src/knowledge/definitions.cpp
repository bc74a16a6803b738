// SPDX-License-Identifier: GPL-3.0-or-later
#include "knowledge/definitions.h"

#include <algorithm>
#include <cmath>
#include <exception>

#include "knowledge/little_endian.h"
#include "knowledge/table_address.h"

namespace brelant {

namespace {

constexpr const char* kProductionFolder = "g:\\produktion\\produktionsprogram\\def\\";
constexpr std::size_t kReadLimit = 4096;

constexpr std::size_t kFirstBlock = 8;
constexpr std::size_t kBlockSize = 96;
constexpr std::size_t kNames = 424;
constexpr std::size_t kNameWidth = 15;
constexpr std::size_t kTypes = 624;
constexpr std::size_t kTextWidth = 20;
constexpr std::array<std::size_t, 3> kTexts{404, 584, 604};

using Bytes = std::span<const std::uint8_t>;

float Integer(Bytes bytes, std::size_t offset) {
  return static_cast<float>(static_cast<std::int32_t>(ReadLittleEndian(bytes, offset, 4)));
}

float Coefficient(Bytes bytes, std::size_t offset) {
  const auto mantissa = static_cast<std::int32_t>(ReadLittleEndian(bytes, offset, 4));
  const auto exponent = static_cast<std::int32_t>(ReadLittleEndian(bytes, offset + 4, 4));
  const auto value = static_cast<float>(mantissa * std::pow(10.0, exponent));
  if (!std::isfinite(value)) throw NoResult("Overflow");
  return value;
}

std::string ToUtf8(std::uint8_t latin1) {
  if (latin1 < 0x80) return {static_cast<char>(latin1)};
  return {static_cast<char>(0xC0 | latin1 >> 6), static_cast<char>(0x80 | (latin1 & 0x3F))};
}

/// A zero byte is skipped wherever it stands.
std::string Text(Bytes bytes, std::size_t offset, std::size_t width) {
  std::string text;
  for (std::size_t i = 0; i < width; ++i) {
    const auto c = static_cast<std::uint8_t>(ReadLittleEndian(bytes, offset + i, 1));
    if (c != 0) text += ToUtf8(c);
  }
  const auto first = text.find_first_not_of(' ');
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::string FileName(std::uint8_t part) {
  std::string number = std::to_string(part);
  number.insert(0, 5 - number.size(), '0');
  return "\\DEF" + number + ".PDT";
}

}  // namespace

Definitions::Content ParseDefinition(Bytes bytes) {
  Definitions::Content content;
  for (std::size_t i = 0; i < content.channels.size(); ++i) {
    const std::size_t block = kFirstBlock + kBlockSize * i;
    auto& channel = content.channels[i];
    const auto flagsA = ReadLittleEndian(bytes, block, 4);
    const auto flagsB = ReadLittleEndian(bytes, block + 4, 4);
    const auto flag = [&](std::uint32_t bit, std::size_t shift) {
      return static_cast<std::uint8_t>((bit & 1U) << shift);
    };
    content.DefinitionFlagsA |= static_cast<std::uint8_t>(flag(flagsA, i) | flag(flagsA >> 1, i + 4));
    content.DefinitionFlagsB |= flag(flagsB, i);
    channel.A1 = Coefficient(bytes, block + 32);
    channel.K = Coefficient(bytes, block + 40);
    channel.A2 = Coefficient(bytes, block + 48);
    channel.B = Coefficient(bytes, block + 56);
    channel.A3 = Coefficient(bytes, block + 64);
    channel.FullScale = Integer(bytes, block + 72);
    channel.Active = Integer(bytes, block + 80);
    channel.ChannelName = Text(bytes, kNames + kNameWidth * i, kNameWidth);
    channel.ChannelType = Integer(bytes, kTypes + 4 * i);
  }
  for (std::size_t i = 0; i < kTexts.size(); ++i) content.texts[i] = Text(bytes, kTexts[i], kTextWidth);
  return content;
}

Definitions::Definitions(Session& session, SensorImage& image, snscom& com, const Machine& machine)
    : session_(session), image_(image), com_(com), machine_(machine) {}

bool Definitions::LoadDefinition() {
  const auto name = FileName(com_.GetPartNumber());
  std::string path = kProductionFolder + name;
  if (!machine_.files.Exists(path)) path = session_.AppDir + name;
  part_ = 0;
  if (!machine_.files.Exists(path)) {
    session_.LastError = "Can't find file: " + path + ", ";
    return false;
  }
  try {
    auto content = ParseDefinition(machine_.files.Read(path, kReadLimit));
    std::array<std::optional<GasTable>, kChannels> tables;
    // All four before the first is stored, so that a file that fits only in part leaves the image alone.
    for (std::size_t i = 0; i < tables.size(); ++i) {
      const auto& channel = content.channels[i];
      if (channel.Curve().Empty()) continue;
      tables[i] = NormalisedTable(channel.Curve(), channel.FullScale, [this] { machine_.pump.DoEvents(); });
    }
    content_ = std::move(content);
    for (int i = 0; i < kChannels; ++i) {
      const auto& table = tables[static_cast<std::size_t>(i)];
      if (table) StoreTable(i, *table);
    }
  } catch (const std::exception&) {
    session_.Fail("File error '" + path + ", ");
    return false;
  }
  part_ = com_.GetPartNumber();
  return true;
}

bool Definitions::RequireDefinition() {
  return com_.GetPartNumber() == part_ || LoadDefinition();
}

bool Definitions::BuildGasTable(int table, const GasCurve& curve, float fullScale, float yFull) {
  if (curve.Empty()) return false;
  const auto pass = [this] { machine_.pump.DoEvents(); };
  const auto entries =
      yFull == 0 ? NormalisedTable(curve, fullScale, pass) : SteppedTable(curve, yFull, pass);
  if (!entries) return false;
  StoreTable(table, *entries);
  return true;
}

void Definitions::StoreTable(int table, const GasTable& entries) {
  const auto platform = com_.GetPlatform();
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const auto address = TableAddress(platform, table, static_cast<int>(i));
    if (address) image_.SetEepromWord(*address, entries[i]);
  }
}

}  // namespace brelant
