// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "calibration/response.h"
#include "calibration/table_search.h"
#include "comm/SensorImage.h"
#include "comm/SerialLink.h"
#include "comm/snscom.h"
#include "knowledge/SnsInfo.h"
#include "knowledge/Table.h"
#include "platform/machine.h"
#include "shell/session.h"

namespace brelant {

/// Turns a known gas or temperature at the sensor into new calibration data, in the image and in the sensor
/// (docs/memory-maps.md, Calibration). Every procedure returns true on success; otherwise the reason is in
/// LastError. What cannot be computed, and what would have to be computed from a read that failed or after a
/// cancel, ends a procedure before anything is written to image or sensor.
class snsCal {
 public:
  /// Stands for the channel of the quantity on the attached platform.
  static constexpr float kPlatformChannel = 99;
  enum ZeroKind { zeroGas = 0, freshAir = 1, otherGas = 2 };

  snsCal(Session& session, SensorImage& image, SerialLink& link, snscom& com, SnsInfo& info, Table& table,
         const Machine& machine);

  /// `spanText`: the raw concentration, offset included, as a text. Platforms 5, 6 and 61; nothing on others.
  bool CalibrateCO2Span(float channel, const std::string& spanText, bool keepPortOpen);
  /// `spanRaw`: the raw concentration, without offset.
  bool CalibrateCO2SpanPlatform7(float spanRaw);
  /// `text`: the concentration in the channel's unit, for otherGas. A failure of the last step, which sends
  /// the word, shows in LastError only.
  bool CalibrateCO2Zero(float channel, bool keepPortOpen, int kind, const std::string& text);

  /// `value`: the correct temperature in the unit of the channel. Any channel but kPlatformChannel counts as
  /// 0.
  bool CalibrateTemperature(float value, float channel, bool keepPortOpen);
  bool CalibrateO2Zero();
  /// `rawValue`: the O2 reading that is correct, raw.
  bool CalibrateO2Span(float rawValue);

  /// What the last procedure did, nothing if it failed or did nothing that a curve shows. Only for showing.
  const std::optional<CalibrationChange>& LastChange() const { return change_; }

 private:
  using Procedure = std::function<bool()>;

  /// Runs a procedure, and closes the port after it if the caller wants that.
  bool Run(bool closePort, const Procedure& procedure);
  bool Sound() const { return session_.LastError.empty(); }
  bool Read(int address, int count, bool isEeprom, bool keepPortOpen);
  /// Unlocks, writes, locks; all bytes, changed or not.
  bool Write(int address, int count, bool isEeprom, bool saveAfter);
  bool WriteTable(int table, bool keepPortOpen);

  bool SpanOf5(const std::string& spanText);
  bool SpanOf6And61(float channel, const std::string& spanText, bool keepPortOpen);
  bool SpanPass(float channel, const SpanCurve& curve, Measurement measured, float span, bool keepPortOpen);
  bool WaitForSensor();
  bool SpanOf7(float spanRaw);
  void StoreSpanOf7(const GasTable& table);

  float CO2Channel();
  bool ZeroOf7();
  bool ZeroOfChannel(float channel, bool keepPortOpen, int kind, const std::string& text);
  double ZeroWordFor(double target, float channel, float signal);

  float TemperatureChannel();
  bool MoveTemperature(float value, float channel);
  double Signed(float word);
  int TemperatureTable(float channel);
  bool MoveTable(int table, float delta);
  bool SendTemperatureTable(float channel);

  void NoteGas(float channel, std::vector<ResponsePoint> before, float signal, std::optional<float> given);
  void NoteTemperature(float channel, std::vector<ResponsePoint> before, float wanted);

  Session& session_;
  SensorImage& image_;
  SerialLink& link_;
  snscom& com_;
  SnsInfo& info_;
  Table& table_;
  Machine machine_;
  std::optional<CalibrationChange> change_;
};

}  // namespace brelant
