// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace brelant::test {

/// mantissa x 10^exponent, as definition files hold it.
struct Scientific {
  std::int32_t mantissa = 0;
  std::int32_t exponent = 0;
};

struct DefinedChannel {
  std::string name;
  std::int32_t type = 0;
  std::int32_t active = 1;
  Scientific a1 = {};
  Scientific k = {};
  std::int32_t fullScale = 0;
};

using DefinedChannels = std::array<DefinedChannel, 4>;

/// The bytes of a definition file (docs/memory-maps.md, Definition files), put together here and nowhere
/// else.
inline std::vector<std::uint8_t> DefinitionFile(const DefinedChannels& channels) {
  std::vector<std::uint8_t> file(640);
  const auto put = [&file](std::size_t offset, std::int32_t value) {
    const auto bits = static_cast<std::uint32_t>(value);
    for (std::size_t i = 0; i < 4; ++i) file[offset + i] = static_cast<std::uint8_t>(bits >> (8 * i) & 255);
  };
  for (std::size_t i = 0; i < channels.size(); ++i) {
    const auto& channel = channels[i];
    const std::size_t block = 8 + 96 * i;
    put(block + 32, channel.a1.mantissa);
    put(block + 36, channel.a1.exponent);
    put(block + 40, channel.k.mantissa);
    put(block + 44, channel.k.exponent);
    put(block + 72, channel.fullScale);
    put(block + 80, channel.active);
    for (std::size_t c = 0; c < channel.name.size() && c < 15; ++c) {
      file[424 + 15 * i + c] = static_cast<std::uint8_t>(channel.name[c]);
    }
    put(624 + 4 * i, channel.type);
  }
  return file;
}

/// Temperature in tenths, CO2 in ppm, humidity in tenths, and a channel that is not in use.
inline DefinedChannels SampleChannels() {
  return {DefinedChannel{.name = "TEMP", .type = 0}, DefinedChannel{.name = "CO2", .type = 4},
          DefinedChannel{.name = "RH", .type = 6}, DefinedChannel{.name = "", .active = 0}};
}

}  // namespace brelant::test
