// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "comm/SensorImage.h"
#include "comm/snscom.h"
#include "knowledge/definitions.h"
#include "platform/machine.h"
#include "shell/session.h"

namespace brelant {

/// What the attached sensor is and what its channels mean (docs/memory-maps.md, Identity and Channels).
/// Nothing is cached but in the images: each query fetches the bytes whose valid flag is clear and computes
/// its answer anew. A query whose fetch fails gives the zero value of its type, with LastError as the read
/// left it.
class SnsInfo {
 public:
  SnsInfo(Session& session, SensorImage& image, snscom& com, Definitions& definitions,
          const Machine& machine);

  std::uint8_t GetPartNumber() { return com_.GetPartNumber(); }
  std::uint8_t GetPlatform() { return com_.GetPlatform(); }
  std::uint8_t GetProtocolGeneration() { return com_.GetProtocolGeneration(); }
  float GetSerialNumber();
  /// Part number and five-digit serial number; empty if the serial number is longer.
  std::string GetSensorIdentity();
  /// Sub-model inside a platform, 0 to 5.
  float GetProductVariant();
  /// Factor of the CO2 calibration word: 0, 1 or 2.
  float GetScaleFactor();

  /// `relayNames`: the outputs of platform 6 that switch a relay are named so.
  std::string GetChannelName(float channel, bool relayNames);
  bool IsChannelPresent(float channel, bool hideDtemp, bool hideOutputs);
  /// 1, 10, 100 or 1000.
  float GetChannelScale(float channel);
  std::uint8_t GetChannelDivider(float channel);
  /// 1: the raw word carries an offset of 5000.
  std::uint8_t GetChannelOffsetFlag(float channel);
  std::string GetChannelUnit(float channel);
  /// Platform 5, channels 0 to 3.
  int GetChannelType(float channel);
  /// Which gas curve a calibration uses.
  std::uint8_t GetCurveType(float channel);

  /// Raw word of a channel. With `refresh` platforms 5 and 6 read all channels in one go, at most every 2 s.
  float GetChannelRaw(float channel, bool refresh);

  float GetZeroWord(float channel);
  float GetSpanWord(float channel);
  /// Always a fresh read, as is GetTempDeviation.
  float GetSignalWord(float channel);
  float GetTempCoefficient(float channel);
  float GetTempDeviation(float channel);
  /// Stores the word in the image and, with `send`, in the sensor. False only if the sending failed.
  bool SetZeroWord(float channel, bool send, bool keepPortOpen, float value);
  bool SetSpanWord(float channel, bool send, bool keepPortOpen, float value);

  std::uint8_t GetGasChannel(std::uint8_t gasIndex);
  std::uint8_t GetChannelTable(float channel);

  /// Display text of a raw value; `noOffset`: the value carries none.
  std::string RawToText(float raw, float channel, bool noOffset, bool keepFraction = false);
  /// Raw value of a text that a user typed.
  float TextToRaw(const std::string& text, float channel, bool noOffset);

 private:
  /// Reads the bytes only when one of their flags is clear.
  bool FetchRam(int address, int count);
  bool FetchEeprom(int address, int count);
  /// Two bytes at the address, when one flag is clear.
  bool FetchEepromPair(int address, int flag);
  bool ReadRam(int address, int count);
  bool ReadEeprom(int address, int count);
  float Ram(int address) const { return image_.RamImage.at(static_cast<std::size_t>(address)); }
  float Eeprom(int address) const { return image_.EepromImage.at(static_cast<std::size_t>(address)); }

  /// The configuration byte of a channel, nothing if the platform has none or the fetch failed.
  std::optional<int> ConfigurationByte(float channel);
  float CalibrationWordOf5(int address);
  float VariantOf6And61();
  std::string NameOn6(int channel, bool relayNames);
  bool IsPresentOn6(int channel, bool hideDtemp, bool hideOutputs);
  std::string UnitOn5(int channel);
  float LittleEndianSerial(int address);
  bool SetWord(std::optional<int> address, bool isEeprom, bool send, bool keepPortOpen, float value);
  std::optional<int> ZeroWordAddress(float channel);

  Session& session_;
  SensorImage& image_;
  snscom& com_;
  Definitions& definitions_;
  Machine machine_;
  /// Time of the last block read of GetChannelRaw, in seconds since midnight.
  double lastBlockRead_ = 0;
};

}  // namespace brelant
