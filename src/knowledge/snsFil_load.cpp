// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <array>
#include <exception>
#include <optional>
#include <utility>

#include "knowledge/settings_container.h"
#include "knowledge/snsFil.h"
#include "shell/Common.h"

namespace brelant {

namespace {

constexpr std::uint8_t kWholeByte = 255;
constexpr std::size_t kRamBytes = 256;
constexpr std::size_t kEepromBytes = 512;
constexpr std::size_t kModelBits = 165;
constexpr std::size_t kGasCurve = 58;
constexpr int kChannelsOf6 = 13;

/// A word of a gas, which is a position in the tables of one sensor and means nothing in another's.
struct GasWord {
  /// The address whose mark tells that the word was taken from the file.
  std::size_t mark;
  bool isBase;
  std::uint8_t gas;
};

constexpr std::array kWordsOf5{GasWord{216, false, 0}, GasWord{223, false, 1}};
constexpr std::array kWordsOf6{GasWord{36, true, 0}, GasWord{38, false, 0}, GasWord{41, true, 1},
                               GasWord{43, false, 1}};
constexpr std::array kWordsOf61{GasWord{34, true, 0}, GasWord{36, true, 1}, GasWord{58, false, 0},
                                GasWord{60, false, 1}};

/// A block of a file that is to be loaded is not shorter: what is missing would be merged as zeros.
std::size_t SizeOf(std::uint8_t block) {
  switch (block) {
    case snsFil::ram5:
      return 240;
    case snsFil::eeprom:
      return kEepromBytes;
    default:
      return 30 + kEepromBytes;
  }
}

std::span<const GasWord> WordsOf(int platform) {
  if (platform == 5) return kWordsOf5;
  if (platform == 6) return kWordsOf6;
  return kWordsOf61;
}

/// The bits of the mark from the file, the others from the sensor.
float Merged(float sensor, std::uint8_t file, std::uint8_t mark) {
  if (mark == 0) return sensor;
  return static_cast<float>((Bits(sensor) & (kWholeByte - mark)) + (file & mark));
}

}  // namespace

bool snsFil::LoadSettings(const std::string& fileName, std::int32_t selector) {
  const int platform = com_.GetPlatform();
  if (platform != 5 && platform != 6 && platform != 61) return true;
  const auto image = platform == 5 ? std::span<float>(image_.RamImage).first(kRamBytes)
                                   : std::span<float>(image_.EepromImage).first(kEepromBytes);
  const std::vector<float> sensor(image.begin(), image.end());
  try {
    if (TakeSettings(fileName, selector, sensor, image)) return true;
  } catch (const std::exception& fault) {
    session_.Fail(fault.what());
  }
  std::copy(sensor.begin(), sensor.end(), image.begin());
  return false;
}

bool snsFil::TakeSettings(const std::string& fileName, std::int32_t selector, std::span<const float> sensor,
                          std::span<float> image) {
  const int platform = com_.GetPlatform();
  const auto model = Model(platform);
  if (platform != 5 && !SelectSettings(fileName, selector)) return false;
  if (!RequireBlock(fileName, platform == 5 ? ram5 : eeprom, true)) return false;
  if (Model(platform) != model && session_.LastError != kCancelled) {
    session_.LastError = container::kOtherSensor;
  }
  if (!session_.LastError.empty()) return false;

  if (platform == 5 && selector != 0) com_.SelectBlock(selector);
  // A copy, as a fetch has a selection of its own.
  const auto marks = image_.ReadRequest;
  std::vector<std::pair<GasWord, float>> values;
  for (const auto& word : WordsOf(platform)) {
    if (marks[word.mark] != kWholeByte) continue;
    const auto value = FileValue(word.isBase, word.gas);
    // As 0 it would be stored as a position that means another concentration.
    if (!value) return false;
    values.emplace_back(word, *value);
  }
  for (std::size_t i = 0; i < image.size(); ++i) {
    image[i] = Merged(sensor[i], image_.SetBuffer[i], marks[i]);
  }
  for (const auto& [word, value] : values) {
    if (word.isBase) {
      table_.SetCalibrationBase(word.gas, true, value);
    } else {
      table_.SetBackgroundWord(word.gas, value);
    }
  }
  return session_.LastError.empty();
}

std::optional<float> snsFil::FileValue(bool isBase, std::uint8_t gas) {
  if (!isBase) return table_.Background(gas);
  const float base = table_.GetCalibrationBase(gas, true, false);
  return session_.LastError.empty() ? std::optional(base) : std::nullopt;
}

bool snsFil::SelectSettings(const std::string& fileName, std::int32_t selector) {
  if (selector == 0) return RequireBlock(fileName, selection, false);
  com_.SelectBlock(selector);
  return true;
}

bool snsFil::RequireBlock(const std::string& fileName, std::uint8_t block, bool apply) {
  const auto found = ReadBlock(fileName, {block, apply, SizeOf(block)}, true);
  if (found == Found::noBlocks) session_.Fail(container::kNoBlock);
  if (found == Found::otherSize) session_.Fail(container::Damaged(fileName));
  return found == Found::block;
}

std::vector<float> snsFil::Model(int platform) {
  // Of another platform nothing more is asked: what is missing would be fetched from this sensor.
  if (com_.GetPlatform() != platform) return {};
  if (platform != 6) return {info_.GetProductVariant()};
  std::vector<float> model{static_cast<float>(com_.GetPartNumber())};
  for (int channel = 0; channel < kChannelsOf6; ++channel) {
    model.push_back(info_.IsChannelPresent(static_cast<float>(channel), false, false) ? 1.0F : 0.0F);
  }
  model.push_back(HasBit(image_.EepromImage[kModelBits], 1) ? 1.0F : 0.0F);
  model.push_back(image_.EepromImage[kGasCurve]);
  return model;
}

}  // namespace brelant
