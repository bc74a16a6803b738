// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "comm/SensorImage.h"
#include "comm/snscom.h"
#include "knowledge/SnsInfo.h"
#include "knowledge/Table.h"
#include "platform/machine.h"
#include "shell/session.h"

namespace brelant {

/// Settings files: the container that user files, "last.set" and simulation files have in common
/// (docs/memory-maps.md, Settings files).
class snsFil {
 public:
  enum BlockType : std::uint8_t {
    first = 0,
    ram5 = 1,
    eeprom = 10,
    upperEeprom = 11,
    selection = 15,
    ram = 20
  };

  /// A block to write; `useSelection` takes ReadRequest for a selection block, otherwise the one in SetBuffer
  /// is copied.
  struct BlockWrite {
    std::uint8_t type;
    bool useSelection;
  };

  snsFil(Session& session, SensorImage& image, snscom& com, SnsInfo& info, Table& table,
         const Machine& machine);

  /// Reads one block into SetBuffer, and with `apply` into the images too. `block` 0 means the first block of
  /// type 1 or 10 and becomes the type found. False: the reason is in LastError; of a fault inside the file
  /// only if `reportError`.
  bool ReadSetBlock(const std::string& fileName, std::uint8_t& block, bool reportError, bool apply);

  /// Loads a file of the same kind of sensor into the images: only what its selection marks, and the words of
  /// the gases expressed by this sensor's own tables. `selector` 0 takes the selection of the file (platforms
  /// 6 and 61) or the one that ReadRequest holds (platform 5); otherwise it is a block of
  /// docs/memory-maps.md. False: the images show the sensor's bytes again, and the reason is in LastError. On
  /// other platforms nothing happens.
  bool LoadSettings(const std::string& fileName, std::int32_t selector);

  /// Writes one block of the images into a file and keeps the blocks that the file holds. `block` 0 becomes
  /// the type that belongs to the platform; on a platform without one nothing is written and the result is
  /// false. `fresh` keeps nothing of an old file.
  bool SaveSettings(std::uint8_t& block, const std::string& fileName, std::uint8_t version, bool useSelection,
                    bool fresh = false);
  /// Writes several blocks, in that order, in one step: the file has them all or none.
  bool SaveBlocks(const std::string& fileName, std::uint8_t version, std::span<const BlockWrite> blocks,
                  bool fresh = false);

  /// The block type that holds the settings of the attached platform, 0 if it has none.
  std::uint8_t BlockOfPlatform();

 private:
  enum class Found { failed, noBlocks, otherSize, block };
  /// What is wanted of a file. `size`: the block is taken only if it has that many bytes.
  struct Wanted {
    std::uint8_t& block;
    bool apply;
    std::optional<std::size_t> size = {};
  };
  Found ReadBlock(const std::string& fileName, const Wanted& wanted, bool reportError);
  Found TakeBlocks(std::span<const std::uint8_t> file, const Wanted& wanted);
  void TakeRamBlock(std::span<const std::uint8_t> payload, bool apply);
  void TakeBlock(std::uint32_t type, std::span<const std::uint8_t> payload, bool apply);

  /// `sensor`: the bytes of the image before anything was read into it.
  bool TakeSettings(const std::string& fileName, std::int32_t selector, std::span<const float> sensor,
                    std::span<float> image);
  /// A word of a gas, as the file's bytes in the images give it; nothing if it cannot be had.
  std::optional<float> FileValue(bool isBase, std::uint8_t gas);
  bool SelectSettings(const std::string& fileName, std::int32_t selector);
  /// Reads a block that must be there, whole.
  bool RequireBlock(const std::string& fileName, std::uint8_t block, bool apply);
  /// What a file must have in common with the sensor.
  std::vector<float> Model(int platform);

  std::vector<std::uint8_t> KeptFile(const std::string& name, bool fresh) const;
  std::vector<std::uint8_t> Payload(const BlockWrite& block) const;

  Session& session_;
  SensorImage& image_;
  snscom& com_;
  SnsInfo& info_;
  Table& table_;
  Machine machine_;
};

}  // namespace brelant
