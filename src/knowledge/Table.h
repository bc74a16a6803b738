// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "comm/SensorImage.h"
#include "comm/snscom.h"
#include "knowledge/SnsInfo.h"
#include "knowledge/definitions.h"
#include "shell/session.h"

namespace brelant {

/// The linearisation tables of a sensor, and the two words of a gas that are stored as positions in them
/// (docs/memory-maps.md, Sensor tables). Positions x run from 0 to 61440; values are raw and carry the
/// channel's offset.
class Table {
 public:
  static constexpr int kEntries = 17;

  Table(Session& session, SensorImage& image, snscom& com, Definitions& definitions, SnsInfo& info);

  /// Entry 0 to 16 of a table; 0 if it cannot be read, or on a platform without tables.
  float ReadTableEntry(int table, int entry);
  /// Stores the entry in the image only. A value above 65535 becomes 65535 in the caller's variable.
  void WriteTableEntry(int table, int entry, float& value);

  /// The value at a position, limited to 65535; 0 beyond the table.
  float TableToValue(int table, float x);
  /// The position of a value, limited to 65536; 65535 if no segment holds it.
  float ValueToTable(int table, float value);

  /// The background of gas 0 or 1 as a table value. If a fetch fails it is 0, and LastError is emptied.
  float GetBackgroundWord(std::uint8_t gasIndex);
  /// The same, but a fetch that fails gives nothing and leaves LastError as the read set it.
  std::optional<float> Background(std::uint8_t gasIndex);
  /// The calibration base as a table value; with `fetch` the word is read from the sensor first.
  float GetCalibrationBase(std::uint8_t gasIndex, bool eepromForm, bool fetch);

  /// The reverse of the two, into the image. Throw NoResult where the scale factor is 0.
  void SetBackgroundWord(std::uint8_t gasIndex, float value);
  void SetCalibrationBase(std::uint8_t gasIndex, bool eepromForm, float value);

 private:
  struct Word {
    bool isEeprom;
    int address;
  };

  std::optional<float> Entry(int table, int entry);
  std::optional<float> Value(int table, float x);
  bool Fetch(int table, int entry);
  /// Address of the high byte in EepromImage, nothing on a platform without tables.
  std::optional<int> Address(int table, int entry);

  std::optional<Word> BackgroundAddress(std::uint8_t gasIndex);
  std::optional<Word> BaseAddress(std::uint8_t gasIndex, bool eepromForm);
  bool FetchBackground(std::uint8_t gasIndex, const Word& word);
  int GasTable(std::uint8_t gasIndex);
  float GasZeroWord(std::uint8_t gasIndex);
  /// The factor between a stored word and a position, both counted down from zero gas.
  double Spread(std::uint8_t gasIndex);
  std::optional<float> ValueAt(const std::function<double()>& stored, std::uint8_t gasIndex);
  double WordOf(float value, std::uint8_t gasIndex);
  float Load(const Word& word) const;
  void Store(const Word& word, double value);

  Session& session_;
  SensorImage& image_;
  snscom& com_;
  Definitions& definitions_;
  SnsInfo& info_;
};

}  // namespace brelant
