// SPDX-License-Identifier: GPL-3.0-or-later
#include "connection/BREFILE.h"

#include <algorithm>
#include <exception>
#include <limits>
#include <span>
#include <stdexcept>
#include <string_view>

#include "comm/platform_rule.h"
#include "connection/connection_error.h"
#include "connection/name_table.h"
#include "knowledge/little_endian.h"
#include "knowledge/settings_container.h"
#include "platform/machine_error.h"

namespace brelant {

namespace {

using container::Bytes;

/// The blocks of such a file.
enum BlockType : std::uint8_t { unitBlock = 30, itemBlock = 31, rangeBlock = 32 };

constexpr std::uint8_t kVersion = 1;
constexpr const char* kFilter = "(*.Set)|*.Set";
/// What the names of stored parameters begin with. A file that wrote others could start a calibration.
constexpr std::string_view kStored = "ea";
constexpr const char* kUserInfo28 = "eaUserInfo_28";
constexpr const char* kUserInfo29 = "eaUserInfo_29";
constexpr int kByte = 8;
constexpr std::uint8_t kWholeByte = std::numeric_limits<std::uint8_t>::max();
constexpr int kTries = 5;
constexpr int kDone = 100;

void Append(Bytes& bytes, std::size_t width, std::uint32_t value) {
  bytes.resize(bytes.size() + width);
  WriteLittleEndian(bytes, bytes.size() - width, width, value);
}

/// The fields of a payload, one behind the other.
class Fields {
 public:
  explicit Fields(std::span<const std::uint8_t> payload) : left_(payload) {}

  bool AtEnd() const { return left_.empty(); }
  std::uint32_t Number(std::size_t width) { return ReadLittleEndian(Take(width), 0, width); }
  std::int32_t Signed() { return static_cast<std::int32_t>(Number(4)); }
  Bytes Raw(std::size_t width) {
    const auto part = Take(width);
    return {part.begin(), part.end()};
  }

 private:
  std::span<const std::uint8_t> Take(std::size_t width) {
    if (width > left_.size()) throw std::out_of_range("Subscript out of range");
    const auto part = left_.first(width);
    left_ = left_.subspan(width);
    return part;
  }

  std::span<const std::uint8_t> left_;
};

bool IsOurs(const container::Block& block) {
  return block.type == unitBlock || block.type == itemBlock || block.type == rangeBlock;
}

/// A file without one of the blocks that belong together is not whole.
Fields FieldsOf(std::span<const container::Block> blocks, BlockType type) {
  const auto found =
      std::find_if(blocks.begin(), blocks.end(), [&](const auto& each) { return each.type == type; });
  if (found == blocks.end()) throw std::out_of_range("A block is missing");
  return Fields(found->payload);
}

template <typename Field, typename Sequence>
std::uint32_t SizeOf(const Sequence& sequence) {
  if (sequence.size() > std::numeric_limits<Field>::max()) throw std::length_error("The name is too long");
  return static_cast<std::uint32_t>(sequence.size());
}

/// What the machine throws, in the words of this floor.
template <typename Operation>
auto OnMachine(Operation operation) {
  try {
    return operation();
  } catch (const MachineError& failure) {
    throw ConnectionError(failure.what());
  }
}

std::uint32_t Bits(std::int32_t value) {
  return static_cast<std::uint32_t>(value);
}

/// The bits of a value of that width that a mask names.
std::uint32_t Covered(int width, std::int32_t mask) {
  return Bits(mask) & static_cast<std::uint32_t>((std::uint64_t{1} << width) - 1);
}

/// All bits, or some of those that the bytes of the parameter have.
bool IsSensible(int width, std::int32_t mask) {
  const int whole = (width + kByte - 1) / kByte * kByte;
  const bool isWhole = mask == -1 || (mask > 0 && mask < std::int64_t{1} << whole);
  return isWhole && Covered(width, mask) != 0;
}

/// The bits of the mask from the file, the others from the unit.
std::uint32_t Merged(std::int32_t unit, std::int32_t file, std::uint32_t mask) {
  return (Bits(unit) & ~mask) | (Bits(file) & mask);
}

/// The write that is not believed until it has been read back.
void Verified(const std::string& what, const std::function<void()>& write,
              const std::function<bool()>& isThere) {
  for (int attempt = 1; attempt <= kTries; ++attempt) {
    write();
    if (isThere()) return;
  }
  throw ConnectionError("The unit did not take " + what + ".");
}

[[noreturn]] void ThrowUnfit(const std::string& what) {
  throw ConnectionError("The file holds " + what + ", which cannot be sent.");
}

}  // namespace

bool BREFILE::ChooseForSave(const std::string& name) {
  const auto chosen = name.empty() ? context_.userInterface.FileDialog(UserInterface::FileUse::save, kFilter)
                                   : std::optional(name);
  if (!chosen) return false;
  chosen_ = container::WithEnding(*chosen);
  return true;
}

void BREFILE::Write() {
  if (chosen_.empty()) throw ConnectionError("No file has been chosen.");
  Tell("Saving settings");
  const auto content = FromUnit();
  RequireSendable(content);
  Bytes file;
  try {
    file = Packed(content);
  } catch (const std::length_error& fault) {
    throw ConnectionError(fault.what());
  }
  OnMachine([&] { context_.files.Write(chosen_, file); });
  context_.connection.ForgetMarks();
}

bool BREFILE::Read(const std::string& name) {
  read_.reset();
  const auto chosen = name.empty() ? context_.userInterface.FileDialog(UserInterface::FileUse::open, kFilter)
                                   : std::optional(name);
  if (!chosen) return false;
  if (!context_.files.Exists(*chosen)) throw ConnectionError(container::NotFound(*chosen));
  const auto file = OnMachine([&] { return context_.files.Read(*chosen, container::kReadLimit); });
  try {
    if (!container::IsSound(file)) throw std::out_of_range("The checksum is wrong");
    const auto blocks = container::BlocksOf(file);
    if (std::none_of(blocks.begin(), blocks.end(), IsOurs)) throw ConnectionError(container::kNoBlock);
    read_ = Unpacked(blocks);
  } catch (const std::out_of_range&) {
    throw ConnectionError(container::Damaged(*chosen));
  }
  return true;
}

void BREFILE::Send() {
  if (!read_) throw ConnectionError("No file has been read.");
  // The pump runs meanwhile, and another file may be read in it.
  const auto content = *read_;
  RequireSendable(content);
  Tell("Loading settings");
  RequireSameKind(content.unit);
  const auto all = content.items.size() + content.ranges.size();
  std::size_t done = 0;
  for (const auto& item : content.items) {
    Send(item);
    TellDone(++done, all);
  }
  for (const auto& range : content.ranges) {
    Send(range);
    TellDone(++done, all);
  }
}

BREFILE::Kind BREFILE::KindOfUnit() {
  const auto nodes = context_.connection.Nodes();
  const auto part = context_.connection.Memory().PartNumber();
  return {part, nodes.FindNode(kUserInfo28, "").GetValue(true),
          nodes.FindNode(kUserInfo29, "").GetValue(true)};
}

BREFILE::Content BREFILE::FromUnit() {
  // Copies: the pump runs meanwhile.
  const auto marks = context_.connection.Marked();
  if (marks.names.empty() && marks.blocks.empty()) throw ConnectionError("There is nothing to save.");
  Content content;
  content.unit = KindOfUnit();
  auto nodes = context_.connection.Nodes();
  std::vector<std::string> names;
  for (const auto& mark : marks.names) names.push_back(mark.name);
  nodes.Announce(names);
  const auto all = marks.names.size() + marks.blocks.size();
  std::size_t done = 0;
  for (const auto& [name, mask] : marks.names) {
    content.items.push_back({name, mask, nodes.FindNode(name, "").GetValue(true)});
    TellDone(++done, all);
  }
  nodes.Announce({});
  for (const auto& [address, count, kind, mask] : marks.blocks) {
    content.ranges.push_back(
        {kind, address, mask, context_.connection.Memory().ReadBlock(address, count, kind)});
    TellDone(++done, all);
  }
  return content;
}

void BREFILE::RequireSendable(const Content& content) {
  for (const auto& item : content.items) RequireSendable(item);
  for (const auto& range : content.ranges) {
    const bool isThere = range.kind == SensorMemory::eeprom &&
                         IsInMemory({Space::eeprom, range.address, static_cast<int>(range.bytes.size())});
    if (!isThere || range.mask <= 0 || range.mask > kWholeByte) {
      ThrowUnfit("memory " + std::to_string(range.address));
    }
  }
}

void BREFILE::RequireSendable(const Item& item) {
  const auto node = context_.connection.Nodes().FindNode(item.name, "");
  const bool isStored = item.name.starts_with(kStored);
  if (!isStored || !IsSensible(node.Width(), item.mask) || !node.Takes(item.value)) {
    ThrowUnfit("'" + item.name + "'");
  }
}

void BREFILE::RequireSameKind(const Kind& unit) {
  const auto here = KindOfUnit();
  const auto platform = PlatformOfPart(here.part);
  if (platform == 0 || PlatformOfPart(unit.part) != platform || unit.userInfo29 != here.userInfo29) {
    throw ConnectionError(container::kOtherSensor);
  }
}

void BREFILE::Send(const Item& item) {
  auto node = context_.connection.Nodes().FindNode(item.name, "");
  const auto all = Covered(node.Width(), -1);
  const auto mask = Covered(node.Width(), item.mask);
  const auto write = [&] {
    const auto value = mask == all ? item.value : Merged(node.GetValue(true), item.value, mask) & all;
    node.SetValue(true, static_cast<std::int32_t>(value));
  };
  Verified("'" + item.name + "'", write,
           [&] { return (Bits(node.GetValue(true) ^ item.value) & mask) == 0; });
}

void BREFILE::Send(const Range& range) {
  auto memory = context_.connection.Memory();
  const auto mask = Bits(range.mask);
  const auto count = static_cast<int>(range.bytes.size());
  const auto fromUnit = [&] { return memory.ReadBlock(range.address, count, range.kind); };
  const auto write = [&] {
    const auto unit = mask == kWholeByte ? range.bytes : fromUnit();
    for (std::size_t i = 0; i < range.bytes.size(); ++i) {
      const auto value = static_cast<std::int32_t>(Merged(unit.at(i), range.bytes[i], mask));
      memory.WriteWord(range.address + static_cast<int>(i), 1, range.kind, 0, value);
    }
  };
  const auto isThere = [&] {
    const auto unit = fromUnit();
    return std::equal(range.bytes.begin(), range.bytes.end(), unit.begin(),
                      [&](auto file, auto there) { return (Bits(file ^ there) & mask) == 0; });
  };
  Verified("memory " + std::to_string(range.address), write, isThere);
}

void BREFILE::Tell(const std::string& action) const {
  if (onAction) onAction(action);
}

void BREFILE::TellDone(std::size_t done, std::size_t all) const {
  if (onProgress) onProgress(static_cast<int>(done * kDone / all));
}

// The bytes of a file

Bytes BREFILE::Packed(const Content& content) {
  Bytes unit;
  Append(unit, 1, content.unit.part);
  Append(unit, 4, Bits(content.unit.userInfo28));
  Append(unit, 4, Bits(content.unit.userInfo29));
  Bytes items;
  for (const auto& [name, mask, value] : content.items) {
    Append(items, 1, SizeOf<std::uint8_t>(name));
    items.insert(items.end(), name.begin(), name.end());
    Append(items, 4, Bits(mask));
    Append(items, 4, Bits(value));
  }
  Bytes ranges;
  for (const auto& [kind, address, mask, bytes] : content.ranges) {
    Append(ranges, 1, Bits(kind));
    Append(ranges, 2, Bits(address));
    Append(ranges, 2, SizeOf<std::uint16_t>(bytes));
    Append(ranges, 1, Bits(mask));
    ranges.insert(ranges.end(), bytes.begin(), bytes.end());
  }
  auto file = container::Empty();
  container::PutBlock(file, unitBlock, unit);
  container::PutBlock(file, itemBlock, items);
  container::PutBlock(file, rangeBlock, ranges);
  container::Seal(file, kVersion);
  return file;
}

BREFILE::Content BREFILE::Unpacked(std::span<const container::Block> blocks) {
  Content content;
  auto unit = FieldsOf(blocks, unitBlock);
  content.unit.part = static_cast<std::uint8_t>(unit.Number(1));
  content.unit.userInfo28 = unit.Signed();
  content.unit.userInfo29 = unit.Signed();
  if (!unit.AtEnd()) throw std::out_of_range("A block of another size");
  auto items = FieldsOf(blocks, itemBlock);
  while (!items.AtEnd()) {
    const auto name = items.Raw(items.Number(1));
    const auto mask = items.Signed();
    content.items.push_back({{name.begin(), name.end()}, mask, items.Signed()});
  }
  auto ranges = FieldsOf(blocks, rangeBlock);
  while (!ranges.AtEnd()) {
    Range range;
    range.kind = static_cast<int>(ranges.Number(1));
    range.address = static_cast<int>(ranges.Number(2));
    const auto count = ranges.Number(2);
    range.mask = static_cast<int>(ranges.Number(1));
    range.bytes = ranges.Raw(count);
    content.ranges.push_back(range);
  }
  return content;
}

}  // namespace brelant
