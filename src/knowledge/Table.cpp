// SPDX-License-Identifier: GPL-3.0-or-later
#include "knowledge/Table.h"

#include <algorithm>

#include "knowledge/table_address.h"
#include "shell/Common.h"

namespace brelant {

namespace {

constexpr double kSegment = 4096;
constexpr double kZeroGas = 61440;
constexpr double kOne = 2048;
constexpr double kHighestValue = 65535;
constexpr double kHighestPosition = 65536;
constexpr float kNowhere = 65535;
constexpr int kFirstTableBlock = 32;
constexpr int kBackgroundTableOf7 = 5;

bool Between(float value, float lo, float hi) {
  return value >= std::min(lo, hi) && value <= std::max(lo, hi);
}

}  // namespace

Table::Table(Session& session, SensorImage& image, snscom& com, Definitions& definitions, SnsInfo& info)
    : session_(session), image_(image), com_(com), definitions_(definitions), info_(info) {}

// Entries

float Table::ReadTableEntry(int table, int entry) {
  return Entry(table, entry).value_or(0.0F);
}

void Table::WriteTableEntry(int table, int entry, float& value) {
  const auto address = Address(table, entry);
  if (!address) return;
  const auto at = static_cast<std::size_t>(*address);
  image_.EepromImage.at(at) = HighByte(value);
  image_.EepromImage.at(at + 1) = LowByte(value);
}

std::optional<float> Table::Entry(int table, int entry) {
  const auto address = Address(table, entry);
  if (!address || !Fetch(table, *address)) return {};
  return image_.EepromWord(*address);
}

std::optional<int> Table::Address(int table, int entry) {
  const auto platform = info_.GetPlatform();
  // Nothing of platform 5's tables is in the sensor: they come with the definition.
  if (platform == 5 && !definitions_.RequireDefinition()) return {};
  return TableAddress(platform, table, entry);
}

bool Table::Fetch(int table, int address) {
  const auto platform = info_.GetPlatform();
  const auto at = static_cast<std::size_t>(address);
  if (platform == 5 || (image_.EepromValid.at(at) && image_.EepromValid.at(at + 1))) return true;
  if (platform != 7) return com_.ReadSensorMemory(table + kFirstTableBlock, 0, 0, true, false);
  const auto first = static_cast<float>(*TableAddress(platform, table, 0));
  return com_.ReadSensorMemory(0, first, kTableSize, true, false);
}

// Interpolation

float Table::TableToValue(int table, float x) {
  return Value(table, x).value_or(0.0F);
}

std::optional<float> Table::Value(int table, float x) {
  for (int i = 0; i + 1 < kEntries; ++i) {
    // Entries that the position lies behind are fetched too.
    const auto lo = Entry(table, i);
    const auto hi = Entry(table, i + 1);
    if (!lo || !hi) return {};
    if (kSegment * (i + 1) < x) continue;
    const double value = Round((x - kSegment * i) / kSegment * (double{*hi} - *lo) + *lo);
    return static_cast<float>(std::clamp(value, 0.0, kHighestValue));
  }
  return 0.0F;
}

float Table::ValueToTable(int table, float value) {
  float result = 0;
  for (int i = 0; i + 1 < kEntries; ++i) {
    const auto lo = Entry(table, i);
    const auto hi = Entry(table, i + 1);
    if (!lo || !hi) return 0;
    if (*lo == *hi) continue;
    if (Between(value, *lo, *hi)) {
      const double x = Round((double{value} - *lo) / (double{*hi} - *lo) * kSegment + kSegment * i);
      return static_cast<float>(std::clamp(x, 0.0, kHighestPosition));
    }
    result = kNowhere;
  }
  return result;
}

// The words of a gas

float Table::GetBackgroundWord(std::uint8_t gasIndex) {
  const auto background = Background(gasIndex);
  if (!background) session_.LastError.clear();
  return background.value_or(0.0F);
}

std::optional<float> Table::Background(std::uint8_t gasIndex) {
  const auto word = BackgroundAddress(gasIndex);
  if (!word) return 0.0F;
  if (!FetchBackground(gasIndex, *word)) return {};
  return ValueAt([&] { return Load(*word); }, gasIndex);
}

float Table::GetCalibrationBase(std::uint8_t gasIndex, bool eepromForm, bool fetch) {
  const auto word = BaseAddress(gasIndex, eepromForm);
  if (!word) return 0;
  if (fetch && !com_.ReadSensorMemory(0, static_cast<float>(word->address), 2, word->isEeprom, false)) {
    return 0;
  }
  const auto stored = [&] { return double{GasZeroWord(gasIndex)} * Load(*word) / kOne; };
  return ValueAt(stored, gasIndex).value_or(0.0F);
}

/// The table value of a stored word, which `stored` may have to ask the sensor for.
std::optional<float> Table::ValueAt(const std::function<double()>& stored, std::uint8_t gasIndex) {
  const bool sound = session_.LastError.empty();
  const double word = stored();
  const double x = kZeroGas - (kZeroGas - word) * Spread(gasIndex);
  // A query on the way gives 0 when its fetch fails, which is no part of a value.
  if (sound && !session_.LastError.empty()) return {};
  return Value(GasTable(gasIndex), static_cast<float>(x));
}

void Table::SetBackgroundWord(std::uint8_t gasIndex, float value) {
  auto word = BackgroundAddress(gasIndex);
  if (!word) return;
  if (info_.GetPlatform() == 5) {
    if (Spread(gasIndex) == 0 || !session_.LastError.empty()) return;
    // Words lie 7 apart when they are read, and 6 apart when they are written.
    word->address = 216 + 6 * gasIndex;
  }
  Store(*word, WordOf(value, gasIndex));
}

void Table::SetCalibrationBase(std::uint8_t gasIndex, bool eepromForm, float value) {
  auto word = BaseAddress(gasIndex, eepromForm);
  const double zeroWord = GasZeroWord(gasIndex);
  if (!word || zeroWord == 0 || !session_.LastError.empty()) return;
  const auto platform = info_.GetPlatform();
  if (platform == 5) {
    if (Spread(gasIndex) == 0) return;
    word->address = 214 + 6 * gasIndex;
  }
  // The RAM form of platform 6 is read from RAM, and written into the copy of EEPROM.
  if (platform == 6) word->isEeprom = true;
  Store(*word, WordOf(value, gasIndex) * kOne / zeroWord);
}

std::optional<Table::Word> Table::BackgroundAddress(std::uint8_t gasIndex) {
  switch (info_.GetPlatform()) {
    case 5:
      return Word{false, 216 + 7 * gasIndex};
    case 6:
      return Word{true, 38 + 5 * gasIndex};
    case 61:
      return Word{true, 58 + 2 * gasIndex};
    case 7:
      return Word{true, 976 + 2 * gasIndex};
    default:
      return {};
  }
}

std::optional<Table::Word> Table::BaseAddress(std::uint8_t gasIndex, bool eepromForm) {
  switch (info_.GetPlatform()) {
    case 5:
      return Word{false, 214 + 7 * gasIndex};
    case 6:
      return Word{eepromForm, (eepromForm ? 36 : 212) + 5 * gasIndex};
    case 61:
      return Word{eepromForm, (eepromForm ? 34 : 210) + 2 * gasIndex};
    default:
      return {};
  }
}

/// Fetches what stands for the word; on platform 6 and 7 that is not always the word itself.
bool Table::FetchBackground(std::uint8_t gasIndex, const Word& word) {
  const auto at = static_cast<std::size_t>(word.address);
  const bool known = word.isEeprom ? image_.EepromValid.at(at) && image_.EepromValid.at(at + 1)
                                   : image_.RamValid.at(at) && image_.RamValid.at(at + 1);
  if (known) return true;
  const auto platform = info_.GetPlatform();
  const int address = platform == 6 ? 38 + 4 * gasIndex : platform == 7 ? 58 + 2 * gasIndex : word.address;
  return com_.ReadSensorMemory(0, static_cast<float>(address), 2, word.isEeprom, false);
}

int Table::GasTable(std::uint8_t gasIndex) {
  switch (info_.GetPlatform()) {
    case 5:
      return gasIndex + 1;
    case 7:
      return kBackgroundTableOf7;
    default:
      return info_.GetChannelTable(info_.GetGasChannel(gasIndex));
  }
}

float Table::GasZeroWord(std::uint8_t gasIndex) {
  const int channel = info_.GetPlatform() == 5 ? gasIndex + 1 : info_.GetGasChannel(gasIndex);
  return info_.GetZeroWord(static_cast<float>(channel));
}

double Table::Spread(std::uint8_t gasIndex) {
  if (info_.GetPlatform() != 5) return info_.GetScaleFactor();
  return info_.GetSpanWord(static_cast<float>(gasIndex + 1)) / kOne;
}

double Table::WordOf(float value, std::uint8_t gasIndex) {
  const double x = ValueToTable(GasTable(gasIndex), value);
  const double spread = Spread(gasIndex);
  if (spread == 0) throw NoResult("Can't compute the background, the scale factor is 0");
  return Round(kZeroGas - (kZeroGas - x) / spread);
}

float Table::Load(const Word& word) const {
  return word.isEeprom ? image_.EepromWord(word.address) : image_.RamWord(word.address);
}

void Table::Store(const Word& word, double value) {
  if (word.isEeprom) {
    image_.SetEepromWord(word.address, static_cast<float>(value));
  } else {
    image_.SetRamWord(word.address, static_cast<float>(value));
  }
}

}  // namespace brelant
