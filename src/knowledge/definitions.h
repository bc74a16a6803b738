// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "comm/SensorImage.h"
#include "comm/snscom.h"
#include "knowledge/gas_curve.h"
#include "platform/machine.h"
#include "shell/session.h"

namespace brelant {

/// What a definition file says of one channel of a platform 5 sensor.
struct ChannelDefinition {
  float A1 = 0;
  float K = 0;
  float A2 = 0;
  float B = 0;
  float A3 = 0;
  /// In the unit of the curve.
  float FullScale = 0;
  /// Greater than 0: the channel is in use.
  float Active = 0;
  /// Type of docs/memory-maps.md, Channel types of platform 5; the panel may overwrite it.
  float ChannelType = 0;
  std::string ChannelName;

  GasCurve Curve() const { return {A1, K, A2, B, A3}; }
};

/// The definition file of the attached part number: what the channels of a platform 5 sensor are
/// (docs/memory-maps.md, Definition files).
class Definitions {
 public:
  static constexpr int kChannels = 4;

  Definitions(Session& session, SensorImage& image, snscom& com, const Machine& machine);

  /// Loads the file of the current part number and builds the gas tables in the image. False: the reason is
  /// in LastError and no definition is loaded.
  bool LoadDefinition();
  /// Loads it if another part number's is loaded.
  bool RequireDefinition();

  /// Computes one table and stores it in the image. False and nothing changed if the channel has no curve, or
  /// if yFull is not 0 and the search fails; throws NoResult.
  bool BuildGasTable(int table, const GasCurve& curve, float fullScale, float yFull);

  ChannelDefinition& Channel(int channel) { return content_.channels.at(static_cast<std::size_t>(channel)); }
  /// Part number of the definition that is loaded, 0 for none.
  std::uint8_t DefinitionPart() const { return part_; }

  struct Content {
    std::array<ChannelDefinition, kChannels> channels;
    std::uint8_t DefinitionFlagsA = 0;
    std::uint8_t DefinitionFlagsB = 0;
    std::array<std::string, 3> texts;
  };
  const Content& Loaded() const { return content_; }

 private:
  void StoreTable(int table, const GasTable& entries);

  Session& session_;
  SensorImage& image_;
  snscom& com_;
  Machine machine_;
  Content content_;
  std::uint8_t part_ = 0;
};

/// Reads the bytes of a definition file; throws std::exception if they are too few or a coefficient is no
/// number.
Definitions::Content ParseDefinition(std::span<const std::uint8_t> bytes);

}  // namespace brelant
