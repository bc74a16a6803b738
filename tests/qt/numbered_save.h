// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <string>

#include "knowledge/snsFil.h"
#include "qt/QtFiles.h"
#include "support/bus.h"

namespace brelant::test {

inline constexpr std::size_t kEepromBytes = 512;

/// What save number n holds: no two of 65536 numbers share a content.
inline std::uint8_t EepromByte(unsigned number, std::size_t address) {
  if (address == 0) return static_cast<std::uint8_t>(number);
  if (address == 1) return static_cast<std::uint8_t>(number >> 8);
  return static_cast<std::uint8_t>(number + 3 * address);
}
inline std::uint8_t MarkByte(unsigned number, std::size_t address) {
  return static_cast<std::uint8_t>(5 * number + address);
}

/// Saves the settings of a platform 6 sensor into real files.
class NumberedSaver {
 public:
  NumberedSaver() { bus_.KnowPart(88); }

  /// Both blocks of the save with that number, in one file.
  bool Save(const std::string& path, unsigned number) {
    Fill(number);
    return file_.SaveBlocks(path, 1, kBlocks);
  }
  /// Only the block of the platform.
  bool SaveSettings(const std::string& path, unsigned number) {
    Fill(number);
    std::uint8_t block = 0;
    return file_.SaveSettings(block, path, 1, false);
  }
  void Remove(const std::string& path) { files_.Remove(path); }

 private:
  void Fill(unsigned number) {
    for (std::size_t i = 0; i < kEepromBytes; ++i) {
      bus_.image.EepromImage[i] = EepromByte(number, i);
      bus_.image.ReadRequest[i] = MarkByte(number, i);
    }
  }

  static constexpr std::array<snsFil::BlockWrite, 2> kBlocks{{{10, false}, {15, true}}};

  ScriptedBus bus_;
  QtFiles files_;
  Machine machine_{bus_.clock, bus_.pump, bus_.port, bus_.modbus, files_, bus_.store, bus_.ui};
  Definitions definitions_{bus_.session, bus_.image, bus_.com, machine_};
  SnsInfo info_{bus_.session, bus_.image, bus_.com, definitions_, machine_};
  Table table_{bus_.session, bus_.image, bus_.com, definitions_, info_};
  snsFil file_{bus_.session, bus_.image, bus_.com, info_, table_, machine_};
};

}  // namespace brelant::test
