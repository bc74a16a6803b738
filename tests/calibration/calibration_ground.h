// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "calibration/plain_search.h"
#include "calibration/snsCal.h"
#include "knowledge/SnsInfo.h"
#include "knowledge/Table.h"
#include "knowledge/definitions.h"
#include "support/bus.h"

namespace brelant::test {

using std::chrono::milliseconds;

/// A virtual sensor at the far end of the line, and the calibration of it.
class CalibrationGround : public SensorBus {
 public:
  explicit CalibrationGround(const bench::SensorSetup& setup);

  /// The image as after a full read. With platform 5 come its definition and tables.
  void ReadWhole();
  /// The byte or word in the sensor and, if it has been read, in the image.
  void SetRam(std::size_t address, int byte);
  void SetRamWord(std::size_t address, int word);
  void SetEeprom(std::size_t address, int byte);
  void SetEepromWord(std::size_t address, int word);
  int RamWord(std::size_t address) { return bench::Word(sensor.Ram(), address); }
  int EepromWord(std::size_t address) { return bench::Word(sensor.Eeprom(), address); }
  /// 17 entries from an address of EEPROM on, falling evenly down to `last` at entry 15.
  void SetEvenTable(std::size_t address, int last, int step);

  /// The sensor hears nothing more after that many frames.
  void SilenceAfter(int frames) { deafAfter_ = frames; }
  /// `act` runs when the sensor has carried out its n-th frame, the first being 1.
  void AfterFrame(int n, std::function<void()> act) { acts_.emplace_back(n, std::move(act)); }
  /// What the Cancel button of the progress box does.
  void Cancel();

  int Frames() const { return static_cast<int>(port.sensor.Frames().size()); }
  /// What the frames asked for: "read R72+2", "write E444+34", "unlock", "lock", "save to RAM",
  /// "save to EEPROM". Neighbouring chunks are one.
  std::vector<std::string> Story() const;
  /// Frames before the first that writes or unlocks.
  int ReadFrames() const;

  /// RAM and EEPROM of the sensor with the differences from `before`, each as "R72: 1, was 2".
  std::vector<std::string> Changes(const Bytes& before) const;
  /// What the image has that came from no sensor, in the same words.
  std::vector<std::string> ImageChanges() const;
  /// The live values follow the settings, at the moment at which they stand.
  void Settle() { sensor.Advance(std::chrono::microseconds(0)); }

  bench::VirtualSensor& sensor = port.sensor;
  Definitions definitions{session, image, com, machine};
  SnsInfo info{session, image, com, definitions, machine};
  Table table{session, image, com, definitions, info};
  snsCal cal{session, image, link, com, info, table, machine};

 private:
  void Hear(const Bytes& bytes);

  std::function<void(const Bytes&)> hear_;
  int deafAfter_ = -1;
  std::vector<std::pair<int, std::function<void()>>> acts_;
};

/// The difference of a word that was changed, in the words of CalibrationGround::Changes.
std::vector<std::string> WordChange(char memory, std::size_t address, int before, int after);
/// The words of a table as the bytes of the sensor.
Bytes TableBytes(const GasTable& table);
Bytes Slice(std::span<const std::uint8_t> memory, std::size_t address, std::size_t count);

/// A procedure on a fresh sensor.
struct Trial {
  std::function<std::unique_ptr<CalibrationGround>()> make;
  std::function<bool(CalibrationGround&)> run;
  /// A write that fails shows in LastError only.
  bool trueAfterFailedWrite = false;
  /// Frames at the end whose loss does not count.
  int idleFrames = 0;
};

/// The sensor falls silent before each frame in turn: nothing is computed from what did not come, nothing
/// goes out behind it, the reason is told and the port is closed.
void ExpectEndsWhereTheSensorFallsSilent(const Trial& trial);
/// The user cancels in each pass of the pump in turn.
void ExpectEndsWhereTheUserCancels(const Trial& trial);
/// The user cancels at a step of each table search, before anything of it is stored.
void ExpectCancelInASearchLeavesAllAsItWas(const Trial& trial);

}  // namespace brelant::test
