// SPDX-License-Identifier: GPL-3.0-or-later
// The files that make-data wrote, read again by other means.
#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "bench/virtual_sensor.h"

namespace brelant::bench {
namespace {

using testing::ElementsAre;

const std::filesystem::path kDirectory = BRELANT_DATA_DIR;

std::string Load(const std::string& name) {
  std::ifstream file(kDirectory / name, std::ios::binary);
  EXPECT_TRUE(file.is_open()) << name;
  return {std::istreambuf_iterator<char>(file), {}};
}

int ByteAt(const std::string& file, std::size_t at) {
  return static_cast<unsigned char>(file.at(at));
}
int HalfAt(const std::string& file, std::size_t at) {
  return ByteAt(file, at) + 256 * ByteAt(file, at + 1);
}

std::int32_t IntAt(const std::string& file, std::size_t at) {
  std::uint32_t value = 0;
  for (std::size_t i = 4; i-- > 0;) value = value << 8 | static_cast<std::uint32_t>(ByteAt(file, at + i));
  std::int32_t result = 0;
  std::memcpy(&result, &value, sizeof result);
  return result;
}

struct Channel {
  double a1, k, a2, b, a3;
  int full_scale;
  bool active;
  int type;
  std::string name;

  double Transmission(double c) const {
    return a1 * std::exp(k * c) + a2 * std::exp(k * b * c) + a3 * std::exp(k * b * b * c) + 1 - a1 - a2 - a3;
  }
};

Channel ChannelAt(const std::string& file, std::size_t index) {
  const std::size_t block = 8 + 96 * index;
  const auto coefficient = [&](std::size_t at) {
    return IntAt(file, block + at) * std::pow(10.0, IntAt(file, block + at + 4));
  };
  std::string name = file.substr(424 + 15 * index, 15);
  std::erase(name, '\0');
  return {.a1 = coefficient(32),
          .k = coefficient(40),
          .a2 = coefficient(48),
          .b = coefficient(56),
          .a3 = coefficient(64),
          .full_scale = IntAt(file, block + 72),
          .active = IntAt(file, block + 80) > 0,
          .type = IntAt(file, 624 + 4 * index),
          .name = name};
}

std::vector<Channel> ChannelsOf(const std::string& name) {
  const std::string file = Load(name);
  EXPECT_GE(file.size(), 640U);
  return {ChannelAt(file, 0), ChannelAt(file, 1), ChannelAt(file, 2), ChannelAt(file, 3)};
}

void ExpectCurve(const Channel& channel, double k, double a1, double a2, double b, double a3) {
  EXPECT_NEAR(channel.k, k, 1e-12);
  EXPECT_NEAR(channel.a1, a1, 1e-12);
  EXPECT_NEAR(channel.a2, a2, 1e-12);
  EXPECT_NEAR(channel.b, b, 1e-12);
  EXPECT_NEAR(channel.a3, a3, 1e-12);
}

void ExpectNoCurve(const Channel& channel) {
  ExpectCurve(channel, 0, 0, 0, 0, 0);
}

TEST(DefinitionFile, OfPart231) {
  const auto channels = ChannelsOf("DEF00231.PDT");
  EXPECT_EQ(channels[0].name, "TEMP");
  EXPECT_EQ(channels[1].name, "CO2");
  EXPECT_EQ(channels[2].name, "RH");
  EXPECT_EQ(channels[3].name, "CO2 TWA");
  EXPECT_EQ(channels[0].type, 0);
  EXPECT_EQ(channels[1].type, 15);
  EXPECT_EQ(channels[2].type, 6);
  EXPECT_EQ(channels[3].type, 15);
  for (const Channel& channel : channels) EXPECT_TRUE(channel.active);
  ExpectNoCurve(channels[0]);
  ExpectNoCurve(channels[2]);
  for (const std::size_t gas : {1U, 3U}) {
    ExpectCurve(channels[gas], -0.01291, 0.0514902, 0.178395, 0.173295, 0.480166);
    EXPECT_EQ(channels[gas].full_scale, 5000);
  }
}

TEST(DefinitionFile, OfPart104HasTheFourCurves) {
  const auto channels = ChannelsOf("DEF00104.PDT");
  ExpectCurve(channels[0], -0.00185441, 0.115081, 0.42264, 0.114645, 0.2415);
  ExpectCurve(channels[1], -0.00995154, 0.0717408, 0.218223, 0.194551, 0.386614);
  ExpectCurve(channels[2], -0.00162505, 0.124038, 0.390136, 0.130051, 0.213468);
  ExpectCurve(channels[3], -0.01291, 0.0514902, 0.178395, 0.173295, 0.480166);
  EXPECT_EQ(channels[0].type, 4);
  EXPECT_EQ(channels[1].type, 15);
}

TEST(DefinitionFile, OfPart112HasTwoChannels) {
  const auto channels = ChannelsOf("DEF00112.PDT");
  EXPECT_TRUE(channels[0].active);
  EXPECT_TRUE(channels[1].active);
  for (const std::size_t off : {2U, 3U}) {
    EXPECT_FALSE(channels[off].active);
    EXPECT_EQ(channels[off].name, "");
    ExpectNoCurve(channels[off]);
  }
}

TEST(DefinitionFile, OfPart120HasAnActiveChannelWithoutACurve) {
  const auto channels = ChannelsOf("DEF00120.PDT");
  EXPECT_TRUE(channels[2].active);
  ExpectNoCurve(channels[2]);
  EXPECT_FALSE(channels[3].active);
}

TEST(DefinitionFile, EveryCurveFallsClearlyUpToItsFullScale) {
  for (const char* name : {"DEF00104.PDT", "DEF00112.PDT", "DEF00120.PDT", "DEF00231.PDT"}) {
    for (const Channel& channel : ChannelsOf(name)) {
      if (channel.k == 0) continue;
      ASSERT_GT(channel.full_scale, 0);
      EXPECT_NEAR(channel.Transmission(0), 1, 1e-12);
      // A step of single precision near 1 is 6e-8; a unit of gas must be far more than that.
      for (int c = 0; c < channel.full_scale; c += 100) {
        EXPECT_GT(channel.Transmission(c) - channel.Transmission(c + 1), 1e-6) << name << " at " << c;
      }
    }
  }
}

TEST(DefinitionFile, FullScaleIsNeverExceededByTheLiveValues) {
  for (const auto& [part, name] :
       {std::pair{104, "DEF00104.PDT"}, {112, "DEF00112.PDT"}, {231, "DEF00231.PDT"}}) {
    const auto channels = ChannelsOf(name);
    VirtualSensor sensor({.part = part});
    for (int t = 0; t < 3600; t += 5) {
      sensor.Advance(std::chrono::seconds(t));
      for (std::size_t i = 0; i < 4; ++i) {
        if (channels[i].k == 0) continue;
        const int units = sensor.Ram()[20 + 2 * i] * 256 + sensor.Ram()[21 + 2 * i] - 5000;
        ASSERT_GT(units, 0);
        ASSERT_LT(units, channels[i].full_scale);
      }
    }
  }
}

std::vector<int> RamOf(const std::string& file) {
  std::vector<int> ram(256, -1);
  for (std::size_t i = 0; i < 112; ++i) ram[i] = ByteAt(file, 21 + i);
  for (std::size_t i = 0; i < 128; ++i) ram[128 + i] = ByteAt(file, 21 + 112 + i);
  return ram;
}

struct Extent {
  int type;
  int size;
};

// The blocks stand one behind the other and fill the file.
void ExpectWhole(const std::string& name, const std::vector<Extent>& blocks) {
  const std::string file = Load(name);
  int sum = 0;
  for (std::size_t i = 17; i < file.size(); ++i) sum += ByteAt(file, i);
  EXPECT_EQ(ByteAt(file, 0), 1);
  EXPECT_EQ(HalfAt(file, 1), sum % 65536) << name;
  EXPECT_EQ(HalfAt(file, 3), static_cast<int>(file.size()) - 17) << name;
  EXPECT_EQ(HalfAt(file, 5), static_cast<int>(blocks.size())) << name;
  EXPECT_EQ(file.substr(7, 10), std::string(10, '\0'));
  std::size_t at = 17;
  for (const auto& [type, size] : blocks) {
    ASSERT_LE(at + 4, file.size()) << name;
    EXPECT_EQ(HalfAt(file, at), type) << name;
    EXPECT_EQ(HalfAt(file, at + 2), size) << name;
    at += 4 + static_cast<std::size_t>(size);
  }
  EXPECT_EQ(file.size(), at) << name;
}

TEST(SimulationFile, EachIsAWholeContainer) {
  for (const char* name : {"Last.sim", "Vega 3.sim", "Platform 5 chart.sim", "Platform 5 part 104.sim",
                           "Platform 5 part 112.sim", "Platform 5 part 120.sim", "Platform 5 part 231.sim"}) {
    ExpectWhole(name, {{1, 240}});
  }
}

struct FaceFile {
  const char* name;
  int part;
  int variant;
};

// The block is EEPROM 0 to 511, in order.
TEST(SimulationFile, OfEachFaceOfPlatforms6And61IsTheEepromOfItsSensor) {
  for (const auto& [name, part, variant] :
       {FaceFile{"6 generic", 88, 0}, FaceFile{"6 VAV 222", 222, 1}, FaceFile{"6 VAV 223", 223, 1},
        FaceFile{"6 three outputs", 88, 2}, FaceFile{"6 jumper table", 88, 3},
        FaceFile{"6 sequential", 88, 4}, FaceFile{"6 compact", 221, 5}, FaceFile{"61 CO2 and O2", 215, 0},
        FaceFile{"61 CO2", 215, 1}}) {
    const std::string path = "Platform " + std::string(name) + ".sim";
    ExpectWhole(path, {{10, 512}});
    const std::string file = Load(path);
    ASSERT_EQ(ByteAt(file, 21 + 164), part) << name;
    VirtualSensor sensor({.part = part, .variant = variant});
    for (std::size_t at = 0; at < 512; ++at) {
      ASSERT_EQ(ByteAt(file, 21 + at), sensor.Eeprom()[at]) << name << ' ' << at;
    }
  }
}

// 17 bytes of header, then two blocks of 4 + 512: EEPROM 0 to 511 from 21 on, 512 to 1023 from 537 on.
TEST(SimulationFile, OfPlatform7IsTheEepromOfItsSensorInTwoBlocks) {
  for (const auto& [name, part, variant] :
       {FaceFile{"Platform 7 variant 1.sim", 50, 1}, FaceFile{"Platform 7 variant 2.sim", 50, 2}}) {
    ExpectWhole(name, {{10, 512}, {11, 512}});
    const std::string file = Load(name);
    ASSERT_EQ(file.size(), 1049U);
    VirtualSensor sensor({.part = part, .variant = variant});
    for (std::size_t at = 0; at < 1024; ++at) {
      const int byte = ByteAt(file, at < 512 ? 21 + at : 25 + at);
      ASSERT_EQ(byte, at == 164 ? part : sensor.Eeprom()[at]) << name << ' ' << at;
    }
    EXPECT_EQ(ByteAt(file, 1048), variant);
  }
}

TEST(SimulationFile, OfPlatform61TellsItsVariant) {
  const std::string with_oxygen = Load("Platform 61 CO2 and O2.sim");
  const std::string without = Load("Platform 61 CO2.sim");
  EXPECT_EQ(ByteAt(with_oxygen, 21 + 173), 0);
  EXPECT_EQ(ByteAt(without, 21 + 173), 1);
  // Bit 0 of 165 set and bit 0 of 90 clear: neither of them says another variant.
  for (const std::string& file : {with_oxygen, without}) {
    EXPECT_EQ(ByteAt(file, 21 + 165) & 1, 1);
    EXPECT_EQ(ByteAt(file, 21 + 90) & 1, 0);
  }
}

TEST(SimulationFile, IsWhatTheVirtualSensorHolds) {
  for (const int part : {104, 112, 120, 231}) {
    const auto ram = RamOf(Load("Platform 5 part " + std::to_string(part) + ".sim"));
    VirtualSensor sensor({.part = part});
    EXPECT_EQ(ram[65], part);
    EXPECT_EQ(ram[226], 0);
    for (std::size_t at = 0; at < 256; ++at) {
      if (ram[at] < 0) continue;
      ASSERT_EQ(ram[at], sensor.Ram()[at]) << at;
    }
  }
}

// Its levels are shown through channels 1 and 3, so both must be of one type.
TEST(SimulationFile, ChartIsASensorWithAlarmLevels) {
  const auto ram = RamOf(Load("Platform 5 chart.sim"));
  EXPECT_EQ(ram[65], 231);
  EXPECT_EQ(ram[226], 3);
  EXPECT_EQ(ram[162], 3);
  EXPECT_EQ(ram[205], 243);
  const auto channels = ChannelsOf("DEF00231.PDT");
  EXPECT_EQ(channels[1].type, 15);
  EXPECT_EQ(channels[3].type, 15);
}

TEST(SimulationFile, LastIsAnOrdinaryOne) {
  EXPECT_EQ(Load("Last.sim"), Load("Platform 5 part 231.sim"));
}

TEST(SimulationFile, Vega3IsTheSafetySystem) {
  EXPECT_EQ(RamOf(Load("Vega 3.sim"))[65], 154);
}

}  // namespace
}  // namespace brelant::bench
