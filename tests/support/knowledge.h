// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "knowledge/SnsInfo.h"
#include "knowledge/Table.h"
#include "knowledge/definitions.h"
#include "knowledge/snsFil.h"
#include "support/bus.h"
#include "support/dialogue.h"

namespace brelant::test {

/// Part numbers, one of each platform.
inline constexpr std::uint8_t kPart5 = 109;
inline constexpr std::uint8_t kPart6 = 88;
inline constexpr std::uint8_t kPart61 = 85;
inline constexpr std::uint8_t kPart7 = 33;
inline constexpr std::uint8_t kPart8 = 40;
inline constexpr std::uint8_t kPart9 = 154;
inline constexpr std::uint8_t kPartUnknown = 64;

/// A definition file, byte by byte (docs/memory-maps.md, Definition files).
class DefinitionFile {
 public:
  void Put(std::size_t offset, std::int32_t value) {
    for (std::size_t i = 0; i < 4; ++i) {
      bytes[offset + i] = static_cast<std::uint8_t>(static_cast<std::uint32_t>(value) >> (8 * i));
    }
  }
  void PutText(std::size_t offset, const std::string& text) {
    for (std::size_t i = 0; i < text.size(); ++i) bytes[offset + i] = static_cast<std::uint8_t>(text[i]);
  }
  static std::size_t Block(std::size_t channel) { return 8 + 96 * channel; }

  void SetName(std::size_t channel, const std::string& name) { PutText(424 + 15 * channel, name); }
  void SetType(std::size_t channel, std::int32_t type) { Put(624 + 4 * channel, type); }
  void SetActive(std::size_t channel, std::int32_t active) { Put(Block(channel) + 80, active); }
  /// y = e^(-c / 10000), up to that full scale.
  void SetCurve(std::size_t channel, std::int32_t fullScale) {
    Put(Block(channel) + 32, 1);
    Put(Block(channel) + 40, -1);
    Put(Block(channel) + 44, -4);
    Put(Block(channel) + 72, fullScale);
  }

  std::vector<std::uint8_t> bytes = std::vector<std::uint8_t>(640);
};

/// What the program knows of a sensor, over a line for which a test speaks.
class KnowledgeTest : public testing::Test {
 protected:
  void SetRam(int address, float value) {
    image.RamImage.at(static_cast<std::size_t>(address)) = value;
    image.RamValid.at(static_cast<std::size_t>(address)) = true;
  }
  void SetEeprom(int address, float value) {
    image.EepromImage.at(static_cast<std::size_t>(address)) = value;
    image.EepromValid.at(static_cast<std::size_t>(address)) = true;
  }
  /// A sensor whose memory has been read and is all zeros.
  void Attach(std::uint8_t part) {
    image.EepromValid.fill(true);
    image.RamValid.fill(true);
    bus.KnowPart(part);
  }
  void Install(std::uint8_t part, const DefinitionFile& content) {
    const auto number = std::to_string(part);
    bus.files.Put("C:\\KVX\\DEF" + std::string(5 - number.size(), '0') + number + ".PDT", content.bytes);
  }
  /// A platform 5 sensor whose four channels have these types and are in use.
  void AttachTyped(std::int32_t type0, std::int32_t type1 = 0, std::int32_t type2 = 0,
                   std::int32_t type3 = 0) {
    DefinitionFile content;
    const std::int32_t types[] = {type0, type1, type2, type3};
    for (std::size_t i = 0; i < 4; ++i) {
      content.SetType(i, types[i]);
      content.SetActive(i, 1);
    }
    Install(kPart5, content);
    Attach(kPart5);
    // No channel has an override: low nibble 15.
    SetRam(205, 15);
    SetRam(206, 15);
    definitions.LoadDefinition();
  }

  ScriptedBus bus;
  Session& session = bus.session;
  SensorImage& image = bus.image;
  ScriptedPort& port = bus.port;
  Definitions definitions{session, image, bus.com, bus.machine};
  SnsInfo info{session, image, bus.com, definitions, bus.machine};
  Table table{session, image, bus.com, definitions, info};
  snsFil file{session, image, bus.com, info, table, bus.machine};
};

}  // namespace brelant::test
