// SPDX-License-Identifier: GPL-3.0-or-later
#include "calibration/known_response.h"

#include <algorithm>
#include <optional>

#include "knowledge/table_address.h"

namespace brelant {

namespace {

constexpr int kTemperatureTableOf7 = 0;
constexpr int kGasTableOf7 = 2;
constexpr float kKindOf7 = 792;
constexpr int kZeroWordOf7 = 14;
constexpr int kScaleWordOf7 = 762;
constexpr float kOne = 2048;
constexpr std::size_t kRamBytes = 256;
constexpr std::size_t kEepromBytes = 512;

bool AllOf(const auto& flags, std::size_t from, std::size_t count) {
  const auto begin = flags.begin() + static_cast<std::ptrdiff_t>(from);
  return std::all_of(begin, begin + static_cast<std::ptrdiff_t>(count), [](bool valid) { return valid; });
}

/// Everything is there that a query about the channel could want to fetch.
bool IsKnown(const SensorImage& image, int platform, int tableOf7, float channel) {
  switch (platform) {
    case 5:
      return AllOf(image.RamValid, 0, kRamBytes);
    case 6:
    case 61:
      return AllOf(image.EepromValid, 0, kEepromBytes);
    case 7:
      return AllOf(image.EepromValid, static_cast<std::size_t>(kKindOf7 + channel), 1) &&
             AllOf(image.EepromValid, kZeroWordOf7, 2) && AllOf(image.EepromValid, kScaleWordOf7, 2) &&
             AllOf(image.EepromValid, static_cast<std::size_t>(*TableAddress(7, tableOf7, 0)), kTableSize);
    default:
      return false;
  }
}

/// The entries, nothing if they are all the same: there is no table then.
std::optional<GasTable> TableOf(const SensorImage& image, int platform, int table) {
  GasTable entries{};
  for (std::size_t i = 0; i < entries.size(); ++i) {
    entries[i] = image.EepromWord(*TableAddress(platform, table, static_cast<int>(i)));
  }
  if (std::all_of(entries.begin(), entries.end(), [&](float entry) { return entry == entries[0]; }))
    return {};
  return entries;
}

}  // namespace

std::vector<ResponsePoint> KnownGasResponse(const SensorImage& image, SnsInfo& info, float channel) {
  const int platform = info.GetPlatform();
  if (!IsKnown(image, platform, kGasTableOf7, channel)) return {};
  const auto table = TableOf(image, platform, platform == 7 ? kGasTableOf7 : info.GetChannelTable(channel));
  if (!table) return {};
  const float zeroWord = platform == 7 ? image.EepromWord(kZeroWordOf7) : info.GetZeroWord(channel);
  const float spread = platform == 5 ? info.GetSpanWord(channel) / kOne : info.GetScaleFactor();
  return ResponseOf(*table, zeroWord, spread);
}

std::vector<ResponsePoint> KnownTemperatureResponse(const SensorImage& image, SnsInfo& info, float channel) {
  const int platform = info.GetPlatform();
  // The correction of platform 5 is an addend of the channel, its tables are those of gases.
  if (platform == 5 || !IsKnown(image, platform, kTemperatureTableOf7, channel)) return {};
  const auto table =
      TableOf(image, platform, platform == 7 ? kTemperatureTableOf7 : info.GetChannelTable(channel));
  return table ? ResponseOf(*table) : std::vector<ResponsePoint>{};
}

}  // namespace brelant
