// SPDX-License-Identifier: GPL-3.0-or-later
// make-data DIRECTORY PART...: writes the definition file and a simulated sensor of each platform 5 part
// number, and the simulated sensors "Last" and "Platform 5 chart" (both of the first part), "Vega 3" and one
// for each face of platforms 6, 61 and 7. The formats: docs/memory-maps.md.
#include <algorithm>
#include <array>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <initializer_list>
#include <iostream>
#include <numeric>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "bench/channel_plan.h"
#include "bench/product.h"
#include "bench/virtual_sensor.h"
#include "bench/whole_file.h"

namespace {

using brelant::bench::ChannelPlan;
using brelant::bench::ChannelPlans;
using brelant::bench::Decimal;
using brelant::bench::Quantity;
using brelant::bench::WriteWhole;
using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kPart = 65;
constexpr int kChartVariant = 3;

// Little-endian, as everything in these files.
void Put(Bytes& file, std::size_t at, std::size_t width, std::int64_t value) {
  for (std::size_t i = 0; i < width; ++i) file[at + i] = static_cast<std::uint8_t>(value >> (8 * i) & 255);
}

void PutText(Bytes& file, std::size_t at, std::string_view text) {
  std::ranges::copy(text, file.begin() + static_cast<std::ptrdiff_t>(at));
}

void PutDecimal(Bytes& file, std::size_t at, const Decimal& decimal) {
  Put(file, at, 4, decimal.mantissa);
  Put(file, at + 4, 4, decimal.exponent);
}

void PutChannel(Bytes& file, std::size_t index, const ChannelPlan& plan) {
  const std::size_t block = 8 + 96 * index;
  const bool active = plan.quantity != Quantity::kNone;
  Put(file, block, 4, active ? 1 : 0);
  Put(file, block + 4, 4, plan.curve ? 1 : 0);
  if (plan.curve) {
    PutDecimal(file, block + 32, plan.curve->a1);
    PutDecimal(file, block + 40, plan.curve->k);
    PutDecimal(file, block + 48, plan.curve->a2);
    PutDecimal(file, block + 56, plan.curve->b);
    PutDecimal(file, block + 64, plan.curve->a3);
  }
  Put(file, block + 72, 4, plan.full_scale);
  Put(file, block + 80, 4, active ? 1 : 0);
  PutText(file, 424 + 15 * index, plan.name);
  Put(file, 624 + 4 * index, 4, plan.type);
}

Bytes DefinitionFile(int part) {
  Bytes file(640);
  const ChannelPlans plans = brelant::bench::PlanOf(part);
  for (std::size_t i = 0; i < plans.size(); ++i) PutChannel(file, i, plans[i]);
  PutText(file, 404, "Part " + std::to_string(part));
  PutText(file, 584, "Platform 5");
  return file;
}

struct Block {
  int type;
  std::span<const std::uint8_t> payload;
};

void AppendBlock(Bytes& file, const Block& block) {
  constexpr std::size_t kBlockHeader = 4;
  const std::size_t at = file.size();
  file.resize(at + kBlockHeader);
  Put(file, at, 2, block.type);
  Put(file, at + 2, 2, static_cast<std::int64_t>(block.payload.size()));
  file.insert(file.end(), block.payload.begin(), block.payload.end());
}

Bytes SimulationFile(std::initializer_list<Block> blocks) {
  constexpr std::size_t kHeader = 17;
  Bytes file(kHeader);
  for (const Block& block : blocks) AppendBlock(file, block);
  Put(file, 0, 1, 1);
  Put(file, 1, 2, std::accumulate(file.begin() + kHeader, file.end(), 0));
  Put(file, 3, 2, static_cast<std::int64_t>(file.size() - kHeader));
  Put(file, 5, 2, static_cast<std::int64_t>(blocks.size()));
  return file;
}

// The one block of a platform 5 sensor: RAM 0 to 111 and 128 to 255.
Bytes FileOfRam(std::span<const std::uint8_t> ram) {
  constexpr int kType = 1;
  constexpr std::size_t kLower = 112;
  constexpr std::size_t kUpper = 128;
  Bytes payload(kLower + kUpper);
  std::ranges::copy(ram.first(kLower), payload.begin());
  std::ranges::copy(ram.last(kUpper), payload.begin() + kLower);
  return SimulationFile({{kType, payload}});
}

Bytes SimulatedSensor(int part, int variant = 0) {
  brelant::bench::VirtualSensor sensor({.part = part, .variant = variant});
  return FileOfRam(sensor.Ram());
}

// The EEPROM of a sensor; what does not fit into the first block stands in a second one.
Bytes FileOfEeprom(int part, std::span<const std::uint8_t> eeprom) {
  constexpr int kLowerType = 10;
  constexpr int kUpperType = 11;
  constexpr std::size_t kLowerSize = 512;
  constexpr std::size_t kPartInEeprom = 164;
  Bytes lower(eeprom.begin(), eeprom.begin() + kLowerSize);
  // Whoever loads the block takes the part number from here, wherever the sensor itself keeps it.
  lower[kPartInEeprom] = static_cast<std::uint8_t>(part);
  if (eeprom.size() == kLowerSize) return SimulationFile({{kLowerType, lower}});
  return SimulationFile({{kLowerType, lower}, {kUpperType, eeprom.subspan(kLowerSize)}});
}

// One for each face.
struct Face {
  std::string_view name;
  int part;
  int variant;
};
constexpr std::array kFaces{Face{"Platform 6 generic", 88, 0},      Face{"Platform 6 VAV 222", 222, 1},
                            Face{"Platform 6 VAV 223", 223, 1},     Face{"Platform 6 three outputs", 88, 2},
                            Face{"Platform 6 jumper table", 88, 3}, Face{"Platform 6 sequential", 88, 4},
                            Face{"Platform 6 compact", 221, 5},     Face{"Platform 61 CO2 and O2", 215, 0},
                            Face{"Platform 61 CO2", 215, 1},        Face{"Platform 7 variant 1", 50, 1},
                            Face{"Platform 7 variant 2", 50, 2}};

void WriteFace(const std::filesystem::path& directory, const Face& face) {
  brelant::bench::VirtualSensor sensor({.part = face.part, .variant = face.variant});
  WriteWhole(directory / (std::string(face.name) + ".sim"), FileOfEeprom(face.part, sensor.Eeprom()));
}

// The program knows this one by its name; the file only has to be there and to be whole.
Bytes SafetySystem() {
  Bytes ram(256);
  ram[kPart] = 154;
  return FileOfRam(ram);
}

std::string DefinitionName(int part) {
  const std::string number = std::to_string(part);
  return "DEF" + std::string(5 - number.size(), '0') + number + ".PDT";
}

void WritePart(const std::filesystem::path& directory, int part) {
  if (brelant::bench::PlatformOfPart(part) != 5) {
    throw std::invalid_argument("Part number " + std::to_string(part) + " is not of platform 5.");
  }
  WriteWhole(directory / DefinitionName(part), DefinitionFile(part));
  WriteWhole(directory / ("Platform 5 part " + std::to_string(part) + ".sim"), SimulatedSensor(part));
}

}  // namespace

int main(int argc, char** argv) {
  const std::span<char*> arguments(argv, static_cast<std::size_t>(argc));
  if (arguments.size() < 3) {
    std::cerr << "make-data DIRECTORY PART...\n";
    return 2;
  }
  try {
    const std::filesystem::path directory = arguments[1];
    std::filesystem::create_directories(directory);
    for (const char* part : arguments.subspan(2)) WritePart(directory, std::stoi(part));
    const int first = std::stoi(arguments[2]);
    WriteWhole(directory / "Last.sim", SimulatedSensor(first));
    WriteWhole(directory / "Platform 5 chart.sim", SimulatedSensor(first, kChartVariant));
    WriteWhole(directory / "Vega 3.sim", SafetySystem());
    for (const Face& face : kFaces) WriteFace(directory, face);
    return 0;
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
