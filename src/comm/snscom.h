// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "comm/Exchange.h"
#include "comm/SensorImage.h"
#include "comm/SerialLink.h"
#include "comm/kibus.h"
#include "comm/traffic_log.h"
#include "platform/machine.h"
#include "shell/session.h"

namespace brelant {

/// Moves bytes between the image and the sensor, and knows what is attached as far as a transfer must know
/// it. Every operation returns true on success; on failure the reason is in Session::LastError.
class snscom {
 public:
  enum Command {
    saveToRam = 0,
    saveToEeprom = 1,
    lockEeprom = 2,
    unlockEeprom = 3,
    saveId = 4,
    twaReset = 5
  };

  snscom(Session& session, SensorImage& image, SerialLink& link, const Machine& machine);

  /// Empties the image and sets the bus ID.
  void ClearImage(std::uint8_t id);
  /// Fills ReadRequest with a block of docs/memory-maps.md; a selector without a block leaves it as it is.
  void SelectBlock(std::int32_t selector);

  /// Reads into the image: `count` bytes from `address`, or with count 0 the block, or with selector 0 too
  /// what ReadRequest holds. Leaves the port open after success or giving up if `keepPortOpen`.
  bool ReadSensorMemory(std::int32_t selector, float address, std::uint8_t count, bool isEeprom,
                        bool keepPortOpen, std::uint8_t retries = 100, bool reportError = true);

  /// Writes from the image, with the same selection. EEPROM is unlocked first and locked after at wish, and
  /// only changed bytes go out unless `forceAll`; `saveAfter` has the sensor copy EEPROM into RAM after a
  /// write of EEPROM, and RAM into EEPROM after a write of RAM.
  bool WriteSensorMemory(std::int32_t selector, float address, std::uint8_t count, bool isEeprom,
                         bool saveAfter, bool keepPortOpen, bool unlockFirst, bool lockAfter, bool forceAll);

  /// Sends one of the Command operations. Closes the port after success, whatever `keepPortOpen` says.
  bool SensorCommand(std::int32_t operation, bool keepPortOpen);

  /// Part number of what is attached, 0 if it cannot be read.
  std::uint8_t GetPartNumber();
  /// 5, 6, 61, 7, 8, 9, or 0 with "Unknown product" in LastError.
  std::uint8_t GetPlatform();
  /// 1, 2, or 0 with "Unkown protokol" in LastError.
  std::uint8_t GetProtocolGeneration();

 private:
  struct Selection {
    std::int32_t selector;
    int address;
    int count;
  };

  bool RunTransfer(bool keepPortOpen, const std::string& failure, const std::function<bool()>& transfer);
  bool Read(const Selection& selection, bool isEeprom, std::uint8_t retries, ReadRecord& record);
  bool ReadChunk(const kibus::Chunk& chunk, bool isEeprom, kibus::AddressForm form, std::uint8_t retries,
                 ReadRecord& record);
  /// With the sensor that SensorId names; an error ends the retries of a read.
  kibus::Exchange Exchanges();
  void StoreRead(int address, bool isEeprom, std::uint8_t value);

  bool Write(const Selection& selection, bool isEeprom, bool saveAfter, bool unlockFirst, bool lockAfter,
             bool forceAll);
  /// The bytes that went out, none if they did not.
  std::vector<std::uint8_t> WriteChunk(const kibus::Chunk& chunk, bool isEeprom, kibus::AddressForm form);
  bool CompleteWords(std::vector<bool>& flags);
  void NoteWritten(const kibus::Chunk& chunk, bool isEeprom, std::span<const std::uint8_t> written);
  bool FinishWrite(bool isEeprom, bool saveAfter, bool lockAfter);

  bool Command(std::int32_t operation);
  bool ResetTmoCounter();
  void ShowProgress(int done, int total);

  Session& session_;
  SensorImage& image_;
  SerialLink& link_;
  Machine machine_;
};

}  // namespace brelant
