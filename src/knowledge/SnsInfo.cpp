// SPDX-License-Identifier: GPL-3.0-or-later
#include "knowledge/SnsInfo.h"

#include <array>
#include <cmath>

#include "knowledge/channel_text.h"
#include "shell/Common.h"

namespace brelant {

namespace {

constexpr const char* kNotDone = "Ej klart";
constexpr float kOffset = 5000;
constexpr int kChannelsOf5 = 4;

constexpr int kScaleMask = 3;
constexpr int kUnitMask = 28;
constexpr int kDividerMask = 96;
constexpr int kOffsetMask = 128;

int Index(float channel) {
  return static_cast<int>(Round(channel));
}

bool IsOf5(float channel) {
  return channel >= 0 && channel < kChannelsOf5;
}

std::string NumberedName(float channel) {
  return "Ch " + NumberText(channel);
}

const char* UnitOfCode(int code) {
  static constexpr std::array<const char*, 8> kUnits{"", "C", "F", "V", "ppm", "%", "g/kg", "tool"};
  return kUnits.at(static_cast<std::size_t>(code));
}

float ScaleOfCode(int code) {
  static constexpr std::array<float, 4> kScales{1, 1000, 100, 10};
  return kScales.at(static_cast<std::size_t>(code));
}

std::uint8_t DividerOfCode(int code, std::uint8_t platform) {
  static constexpr std::array<std::uint8_t, 4> kOn6{1, 10, 100, 163};
  static constexpr std::array<std::uint8_t, 4> kOn7{1, 10, 16, 163};
  return (platform == 7 || platform == 8 ? kOn7 : kOn6).at(static_cast<std::size_t>(code));
}

bool Is6Or61(std::uint8_t platform) {
  return platform == 6 || platform == 61;
}

bool IsTemperatureOrHumidity(int channel) {
  return channel >= 2 && channel <= 7;
}

}  // namespace

SnsInfo::SnsInfo(Session& session, SensorImage& image, snscom& com, Definitions& definitions,
                 const Machine& machine)
    : session_(session), image_(image), com_(com), definitions_(definitions), machine_(machine) {}

// Fetches

bool SnsInfo::ReadRam(int address, int count) {
  return com_.ReadSensorMemory(0, static_cast<float>(address), static_cast<std::uint8_t>(count), false,
                               false);
}

bool SnsInfo::FetchRam(int address, int count) {
  for (int i = 0; i < count; ++i) {
    if (!image_.RamValid.at(static_cast<std::size_t>(address + i))) return ReadRam(address, count);
  }
  return true;
}

bool SnsInfo::ReadEeprom(int address, int count) {
  return com_.ReadSensorMemory(0, static_cast<float>(address), static_cast<std::uint8_t>(count), true, false);
}

bool SnsInfo::FetchEeprom(int address, int count) {
  for (int i = 0; i < count; ++i) {
    if (!image_.EepromValid.at(static_cast<std::size_t>(address + i))) return ReadEeprom(address, count);
  }
  return true;
}

bool SnsInfo::FetchEepromPair(int address, int flag) {
  return image_.EepromValid.at(static_cast<std::size_t>(flag)) || ReadEeprom(address, 2);
}

float SnsInfo::CalibrationWordOf5(int address) {
  const auto at = static_cast<std::size_t>(address);
  const bool known = image_.RamValid.at(at) && image_.RamValid.at(at + 1);
  // The fetch goes to EEPROM although the value stands in RAM; on a sensor that was read it never runs.
  return known || ReadEeprom(address, 2) ? image_.RamWord(address) : 0;
}

// Identity

float SnsInfo::GetSerialNumber() {
  switch (GetPlatform()) {
    case 5:
      return FetchRam(66, 2) ? image_.RamWord(66) : 0;
    case 6:
    case 61:
      return FetchEeprom(170, 2) ? image_.EepromWord(170) : 0;
    case 7:
      return LittleEndianSerial(998);
    case 8:
      return LittleEndianSerial(8166);
    default:
      return 0;
  }
}

float SnsInfo::LittleEndianSerial(int address) {
  if (!FetchEeprom(address, 3)) return 0;
  return Eeprom(address + 1) * 256 + Eeprom(address + 2) * 65536 + Eeprom(address);
}

std::string SnsInfo::GetSensorIdentity() {
  constexpr std::size_t kDigits = 5;
  const auto part = std::to_string(GetPartNumber());
  const auto serial = NumberText(GetSerialNumber());
  if (serial.size() > kDigits) return {};
  return part + std::string(kDigits - serial.size(), '0') + serial;
}

float SnsInfo::GetProductVariant() {
  switch (GetPlatform()) {
    case 5:
      return FetchRam(226, 1) ? Ram(226) : 0;
    case 6:
    case 61:
      return VariantOf6And61();
    case 7:
      return FetchEeprom(1023, 1) ? Eeprom(1023) : 0;
    default:
      return 0;
  }
}

float SnsInfo::VariantOf6And61() {
  if (!FetchEepromPair(172, 173) || !FetchEepromPair(90, 90) || !FetchEepromPair(164, 164)) return 0;
  const float model = Eeprom(173);
  if (!HasBit(Eeprom(165), 1) && model == 0) return 4;
  if (GetPartNumber() == 221) return 5;
  if (HasBit(Eeprom(90), 1)) return 2;
  return model == 6 ? 0 : model;
}

float SnsInfo::GetScaleFactor() {
  switch (GetPlatform()) {
    case 5:
      return 1;
    case 6:
      if (!FetchEepromPair(164, 165)) return 0;
      return HasBit(Eeprom(165), 2) ? 2 : 1;
    case 61: {
      const auto part = GetPartNumber();
      if (part == 0) return 1;
      if (part != 215) return 0;
      const float variant = GetProductVariant();
      return variant == 0 ? 1 : variant == 1 ? 2 : 0;
    }
    case 7:
      if (!FetchEepromPair(762, 762)) return 0;
      return image_.EepromWord(762) == 2048 ? 1 : 2;
    default:
      return 0;
  }
}

// Names and presence

std::string SnsInfo::GetChannelName(float channel, bool relayNames) {
  switch (GetPlatform()) {
    case 5: {
      if (!definitions_.RequireDefinition()) return {};
      if (!IsOf5(channel)) return "OFF";
      const auto& definition = definitions_.Channel(Index(channel));
      return definition.Active > 0 ? definition.ChannelName : "OFF";
    }
    case 6:
      return NameOn6(Index(channel), relayNames);
    case 61:
      if (channel == 4) return "Temp";
      if (channel == 5) return "CO2";
      if (channel == 14) return "Old 0";
      if (channel == 15) return "Dtemp";
      return NumberedName(channel);
    case 7:
      if (channel == 4) return "Temp";
      if (channel == 5) return "CO2";
      if (channel == 6) return "O2";
      return NumberedName(channel);
    default:
      return {};
  }
}

std::string SnsInfo::NameOn6(int channel, bool relayNames) {
  const bool exchanged = GetPartNumber() == 223;
  if (IsTemperatureOrHumidity(channel)) {
    static constexpr std::array<const char*, 3> kNames{"Temp", "AH", "RH"};
    const std::string name = kNames.at(static_cast<std::size_t>(channel / 2 - 1));
    const int first = channel - channel % 2;
    const bool both = IsPresentOn6(first, false, false) && IsPresentOn6(first + 1, false, false);
    return both ? name + (channel == first ? " 1" : " 2") : name;
  }
  switch (channel) {
    case 0:
      return exchanged ? "Out 2" : "Out 1";
    case 1:
      return exchanged ? "Out 1" : "Out 2";
    case 8:
      return "Dtemp";
    case 9:
      return relayNames ? "Relay 1" : "Out 3";
    case 10:
      if (!FetchEepromPair(90, 90)) return {};
      if (HasBit(Eeprom(90), 1)) return "CO";
      return relayNames ? "Relay 2" : "Out 4";
    case 11:
      return "CO2";
    case 12:
      return "CO";
    case 13:
      return "Error";
    default:
      return NumberedName(static_cast<float>(channel));
  }
}

bool SnsInfo::IsChannelPresent(float channel, bool hideDtemp, bool hideOutputs) {
  switch (GetPlatform()) {
    case 5:
      return IsOf5(channel) && definitions_.RequireDefinition() &&
             definitions_.Channel(Index(channel)).Active > 0;
    case 6:
      return IsPresentOn6(Index(channel), hideDtemp, hideOutputs);
    case 61:
      session_.Fail(kNotDone);
      return false;
    default:
      return false;
  }
}

bool SnsInfo::IsPresentOn6(int channel, bool hideDtemp, bool hideOutputs) {
  bool present = false;
  if (channel >= 2 && channel <= 8) {
    if (!FetchEepromPair(98, 98)) return false;
    present = HasBit(Eeprom(98), 1 << (channel - 2));
  }
  if (channel == 11 || channel == 12) {
    if (!FetchEepromPair(158, 158)) return false;
    present = !HasBit(Eeprom(158), channel == 11 ? 2 : 4);
  }
  if (channel == 13) present = true;
  if (channel == 8 && hideDtemp) present = false;
  const bool isOutput = channel == 0 || channel == 1 || channel == 9 || channel == 10;
  if (isOutput) present = !hideOutputs;
  const float variant = GetProductVariant();
  if (variant == 1 && (channel == 9 || channel == 10)) present = false;
  if (variant == 2) {
    if (channel == 12 || channel == 2) present = false;
    if (channel == 10 && hideOutputs) present = true;
  }
  return present;
}

// Channel configuration

std::optional<int> SnsInfo::ConfigurationByte(float channel) {
  const auto platform = GetPlatform();
  const int first = Is6Or61(platform) ? 218 : platform == 7 ? 792 : platform == 8 ? 7960 : -1;
  if (first < 0) return {};
  const int address = first + Index(channel);
  if (!FetchEepromPair(address, address)) return {};
  return Bits(Eeprom(address));
}

float SnsInfo::GetChannelScale(float channel) {
  const auto platform = GetPlatform();
  if (platform == 5) session_.Fail(kNotDone);
  if (Is6Or61(platform) && channel > 12) return 1;
  const auto configuration = ConfigurationByte(channel);
  return configuration ? ScaleOfCode(*configuration & kScaleMask) : 0;
}

std::uint8_t SnsInfo::GetChannelDivider(float channel) {
  const auto platform = GetPlatform();
  if (platform == 5) session_.Fail(kNotDone);
  if (Is6Or61(platform) && channel > 12) return 1;
  const auto configuration = ConfigurationByte(channel);
  return configuration ? DividerOfCode((*configuration & kDividerMask) / 32, platform) : std::uint8_t{0};
}

std::uint8_t SnsInfo::GetChannelOffsetFlag(float channel) {
  const auto platform = GetPlatform();
  if (platform == 5) return 1;
  if (!Is6Or61(platform) || channel > 12) return 0;
  const auto configuration = ConfigurationByte(channel);
  return configuration && (*configuration & kOffsetMask) != 0 ? 1 : 0;
}

std::string SnsInfo::GetChannelUnit(float channel) {
  const auto platform = GetPlatform();
  if (platform == 5) return IsOf5(channel) ? UnitOn5(Index(channel)) : "";
  if ((!Is6Or61(platform) && platform != 7) || (Is6Or61(platform) && channel == 13)) return {};
  const auto configuration = ConfigurationByte(channel);
  return configuration ? UnitOfCode((*configuration & kUnitMask) / 4) : "";
}

std::string SnsInfo::UnitOn5(int channel) {
  if (!definitions_.RequireDefinition() || !FetchRam(205, 2)) return {};
  if ((Bits(Ram(205)) & 15) != 0) {
    if (!FetchRam(207, 1)) return {};
    // The divisor is 17, not the 16 of a nibble.
    definitions_.Channel(0).ChannelType = static_cast<float>(Bits(Ram(207)) & 240) / 17;
  }
  return TypedUnit(GetChannelType(static_cast<float>(channel)));
}

int SnsInfo::GetChannelType(float channel) {
  const int index = Index(channel);
  if (!definitions_.RequireDefinition()) return -1;
  int type = static_cast<int>(AsByte(definitions_.Channel(index).ChannelType));
  if (!FetchRam(205, 2)) return -1;
  for (const int address : {205, 206}) {
    const int override = Bits(Ram(address));
    if ((override & 15) == index) type = override >> 4 & 15;
  }
  return type;
}

std::uint8_t SnsInfo::GetCurveType(float channel) {
  const auto platform = GetPlatform();
  if (platform == 61) {
    const float variant = GetProductVariant();
    return variant == 0 ? 2 : variant == 1 ? 9 : 0;
  }
  if (platform != 6) return 0;
  int address = 0;
  switch (Index(channel)) {
    case 2:
    case 3:
      address = 51 + Index(channel);
      break;
    case 6:
    case 7:
    case 8:
      address = 49 + Index(channel);
      break;
    case 11:
    case 12:
      address = 47 + Index(channel);
      break;
    case 13:
      return 0;
    default:
      session_.Fail("Unknown channel '" + NumberText(channel) + "'.");
      return 0;
  }
  if (!FetchEepromPair(address, address)) return 0;
  return static_cast<std::uint8_t>(AsByte(Eeprom(address)));
}

// Live values

float SnsInfo::GetChannelRaw(float channel, bool refresh) {
  const auto platform = GetPlatform();
  const int index = Index(channel);
  if (platform == 61 || platform == 7) {
    const int address = 12 + 2 * index;
    return ReadRam(address, 2) ? image_.RamWord(address) : 0;
  }
  if (platform != 5 && platform != 6) return 0;
  const bool isByte = platform == 6 && index == 13;
  const int address = platform == 5 ? 20 + 2 * index
                      : isByte      ? 34
                      : index < 2   ? 236 + 2 * index
                                    : 12 + 2 * (index - 2);
  if (!refresh) {
    if (!FetchRam(address, isByte ? 1 : 2)) return 0;
  } else if (machine_.clock.Timer() + 2 > lastBlockRead_) {
    lastBlockRead_ = machine_.clock.Timer();
    const bool done = platform == 5 ? ReadRam(20, 6) : ReadRam(12, 23);
    if (!done || !ReadRam(236, 4)) return 0;
  }
  return isByte ? Ram(address) : image_.RamWord(address);
}

// Calibration words

std::optional<int> SnsInfo::ZeroWordAddress(float channel) {
  switch (GetPlatform()) {
    case 5:
      return 128 + 2 * Index(channel);
    case 6:
      if (channel == 11) return 46;
      if (channel == 12) return 48;
      return {};
    case 61:
      if (channel == 5) return 46;
      return {};
    default:
      return {};
  }
}

float SnsInfo::GetZeroWord(float channel) {
  const auto address = ZeroWordAddress(channel);
  if (!address) return 0;
  if (GetPlatform() == 5) return CalibrationWordOf5(*address);
  return FetchEeprom(*address, 2) ? image_.EepromWord(*address) : 0;
}

float SnsInfo::GetSpanWord(float channel) {
  return GetPlatform() == 5 ? CalibrationWordOf5(136 + 2 * Index(channel)) : 0;
}

float SnsInfo::GetSignalWord(float channel) {
  int address = 0;
  switch (GetPlatform()) {
    case 5:
      address = 68 + 2 * Index(channel);
      break;
    case 6:
      if (channel == 11) address = 72;
      if (channel == 12) address = 74;
      break;
    case 61: {
      const float variant = GetProductVariant();
      if (channel == 5 && (variant == 0 || variant == 1)) address = 40;
      break;
    }
    default:
      break;
  }
  return address != 0 && ReadRam(address, 2) ? image_.RamWord(address) : 0;
}

float SnsInfo::GetTempCoefficient(float channel) {
  int address = 0;
  switch (GetPlatform()) {
    case 5:
      return FetchRam(202, 1) ? Ram(202) : 0;
    case 6:
      if (channel == 11) address = 104;
      if (channel == 12) address = 105;
      break;
    case 61:
      if (channel == 5) address = 83;
      break;
    default:
      break;
  }
  return address != 0 && FetchEeprom(address, 1) ? Eeprom(address) : 0;
}

float SnsInfo::GetTempDeviation(float /*channel*/) {
  constexpr float kMiddle = 127;
  switch (GetPlatform()) {
    case 5:
      return ReadRam(234, 1) ? Ram(234) - kMiddle : 0;
    case 6:
      return ReadRam(254, 1) ? Ram(254) - kMiddle : 0;
    case 61:
      return ReadRam(42, 2) ? static_cast<float>(SignedWord(image_.RamWord(42))) : 0;
    default:
      return 0;
  }
}

bool SnsInfo::SetZeroWord(float channel, bool send, bool keepPortOpen, float value) {
  const bool on5 = GetPlatform() == 5;
  const auto address = on5 && channel >= 5 ? std::optional<int>{} : ZeroWordAddress(channel);
  return SetWord(address, !on5, send, keepPortOpen, value);
}

bool SnsInfo::SetSpanWord(float channel, bool send, bool keepPortOpen, float value) {
  const bool has = GetPlatform() == 5 && channel < 5;
  return SetWord(has ? std::optional(136 + 2 * Index(channel)) : std::nullopt, false, send, keepPortOpen,
                 value);
}

bool SnsInfo::SetWord(std::optional<int> address, bool isEeprom, bool send, bool keepPortOpen, float value) {
  if (!address) return true;
  if (isEeprom) {
    image_.SetEepromWord(*address, value);
  } else {
    image_.SetRamWord(*address, value);
  }
  return !send || com_.WriteSensorMemory(0, static_cast<float>(*address), 2, isEeprom, true, keepPortOpen,
                                         true, true, true);
}

// Gas index, table

std::uint8_t SnsInfo::GetGasChannel(std::uint8_t gasIndex) {
  switch (GetPlatform()) {
    case 5:
      return gasIndex == 0 ? 1 : gasIndex == 1 ? 2 : 0;
    case 6:
      return gasIndex == 0 ? 11 : gasIndex == 1 ? 12 : 0;
    case 61:
      return gasIndex == 0 ? 5 : 0;
    default:
      return 0;
  }
}

std::uint8_t SnsInfo::GetChannelTable(float channel) {
  switch (GetPlatform()) {
    case 5:
      return static_cast<std::uint8_t>(AsByte(channel));
    case 6:
      switch (Index(channel)) {
        case 4:
        case 5:
          return 1;
        case 6:
        case 7:
          return 2;
        case 8:
          return 3;
        case 11:
          return 4;
        case 12:
          return 5;
        default:
          return 0;
      }
    case 61:
      return channel == 5 ? 4 : 0;
    default:
      return 0;
  }
}

// Conversions

std::string SnsInfo::RawToText(float raw, float channel, bool noOffset, bool keepFraction) {
  const auto platform = GetPlatform();
  switch (platform) {
    case 5:
      if (!IsOf5(channel)) return NumberText(raw);
      return TypedText(noOffset ? raw : raw - kOffset, GetChannelType(channel));
    case 6:
    case 61:
      if (!noOffset) raw -= static_cast<float>(GetChannelOffsetFlag(channel)) * kOffset;
      break;
    case 7:
    case 8:
      break;
    default:
      return {};
  }
  const double value = Is6Or61(platform) ? static_cast<double>(raw) : SignedWord(raw);
  const ChannelFormat format{GetChannelScale(channel), static_cast<float>(GetChannelDivider(channel)),
                             GetChannelUnit(channel) == "F"};
  return FormattedText(value, format, keepFraction);
}

float SnsInfo::TextToRaw(const std::string& text, float channel, bool noOffset) {
  float value = ParseNumber(text);
  const auto platform = GetPlatform();
  switch (platform) {
    case 5:
      if (!IsOf5(channel)) return value;
      return TypedRaw(value, GetChannelType(channel)) + (noOffset ? 0 : kOffset);
    case 6:
    case 61:
      if (channel == 13) return LowByte(value);
      break;
    case 7:
      break;
    default:
      return 0;
  }
  const ChannelFormat format{GetChannelScale(channel), static_cast<float>(GetChannelDivider(channel)),
                             GetChannelUnit(channel) == "F"};
  const float raw = FormattedRaw(value, format);
  if (platform == 7) return raw < 0 ? raw + 65536 : raw;
  return noOffset ? raw : raw + static_cast<float>(GetChannelOffsetFlag(channel)) * kOffset;
}

}  // namespace brelant
