// SPDX-License-Identifier: GPL-3.0-or-later
// make-data DIRECTORY PART...: writes the definition file and a simulated sensor of each platform 5 part
// number, and the simulated sensors "Last" and "Platform 5 chart" (both of the first part), "Vega 3" and one
// for each face of platform 6. The formats: docs/memory-maps.md.
#include <algorithm>
#include <array>
#include <cstdint>
#include <exception>
#include <filesystem>
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

// A container of one block.
Bytes SimulationFile(int type, std::span<const std::uint8_t> payload) {
  constexpr std::size_t kHeader = 17;
  constexpr std::size_t kBlockHeader = 4;
  Bytes file(kHeader + kBlockHeader + payload.size());
  std::ranges::copy(payload, file.begin() + kHeader + kBlockHeader);
  Put(file, kHeader, 2, type);
  Put(file, kHeader + 2, 2, static_cast<std::int64_t>(payload.size()));
  Put(file, 0, 1, 1);
  Put(file, 1, 2, std::accumulate(file.begin() + kHeader, file.end(), 0));
  Put(file, 3, 2, static_cast<std::int64_t>(file.size() - kHeader));
  Put(file, 5, 2, 1);
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
  return SimulationFile(kType, payload);
}

Bytes SimulatedSensor(int part, int variant = 0) {
  brelant::bench::VirtualSensor sensor({.part = part, .variant = variant});
  return FileOfRam(sensor.Ram());
}

// One for each face of platform 6.
struct Face {
  std::string_view name;
  int part;
  int variant;
};
constexpr std::array kFaces{Face{"generic", 88, 0},      Face{"VAV 222", 222, 1},
                            Face{"VAV 223", 223, 1},     Face{"three outputs", 88, 2},
                            Face{"jumper table", 88, 3}, Face{"sequential", 88, 4},
                            Face{"compact", 221, 5}};

void WriteFace(const std::filesystem::path& directory, const Face& face) {
  constexpr int kType = 10;
  brelant::bench::VirtualSensor sensor({.part = face.part, .variant = face.variant});
  WriteWhole(directory / ("Platform 6 " + std::string(face.name) + ".sim"),
             SimulationFile(kType, sensor.Eeprom()));
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
