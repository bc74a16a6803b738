// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "comm/SensorImage.h"
#include "comm/snscom.h"
#include "platform/machine.h"
#include "shell/session.h"

namespace brelant {

/// Settings files: the container that user files, "last.set" and simulation files have in common
/// (docs/memory-maps.md, Settings files).
class snsFil {
 public:
  enum BlockType : std::uint8_t { first = 0, ram5 = 1, eeprom = 10, selection = 15, ram = 20 };

  snsFil(Session& session, SensorImage& image, snscom& com, const Machine& machine);

  /// Reads one block into SetBuffer, and with `apply` into the images too. `block` 0 means the first block of
  /// type 1 or 10 and becomes the type found. False: the reason is in LastError; of a fault inside the file
  /// only if `reportError`.
  bool ReadSetBlock(const std::string& fileName, std::uint8_t& block, bool reportError, bool apply);

  /// Writes one block of the images into a file and keeps the blocks that the file holds. `block` 0 becomes
  /// the type that belongs to the platform; on a platform without one nothing is written and the result is
  /// false. `useSelection` takes ReadRequest for a selection block, otherwise the one in SetBuffer is copied.
  /// `fresh` keeps nothing of an old file.
  bool SaveSettings(std::uint8_t& block, const std::string& fileName, std::uint8_t version, bool useSelection,
                    bool fresh = false);

  /// The block type that holds the settings of the attached platform, 0 if it has none.
  std::uint8_t BlockOfPlatform();

 private:
  bool TakeBlocks(std::span<const std::uint8_t> file, std::uint8_t& block, bool apply);
  void TakeRamBlock(std::span<const std::uint8_t> payload, bool apply);
  void TakeBlock(std::uint32_t type, std::span<const std::uint8_t> payload, bool apply);
  std::vector<std::uint8_t> Payload(std::uint8_t block, bool useSelection) const;

  Session& session_;
  SensorImage& image_;
  snscom& com_;
  Machine machine_;
};

}  // namespace brelant
